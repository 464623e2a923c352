#include "platform/qt/WindowRecords.h"

#include "platform/core/MessageQueue.h"
#include "platform/core/WindowRegistry.h"
#include "platform/core/WindowTable.h"
#include "platform/qt/Graveyard.h"
#include "platform/qt/UiThread.h"

#include <QString>
#include <QWidget>

#include <algorithm>
#include <unordered_map>

namespace tavrix::platform
{
namespace
{

struct Records {
    std::vector<Window*> windows;
    std::unordered_map<const QWidget*, Window*> ofWidget;
};

// Never destroyed: static objects of the program may still ask.
Records& TheRecords()
{
    static Records& records = *new Records;
    return records;
}

} // namespace

Window* FindWindowRecord(HWND handle)
{
    return static_cast<Window*>(WindowRecord(handle));
}

Window* WindowOfWidget(const QWidget* widget)
{
    const auto& known = TheRecords().ofWidget;
    for (; widget != nullptr; widget = widget->parentWidget())
        if (const auto found = known.find(widget); found != known.end())
            return found->second;
    return nullptr;
}

const std::vector<Window*>& AllWindows()
{
    return TheRecords().windows;
}

Window* AddWindow(std::unique_ptr<Window> window)
{
    const HWND parent =
        window->isChild && window->parent != nullptr ? window->parent->handle : nullptr;
    window->handle = AddWindowHandle(window.get(), &window->procedure, parent);
    if (window->handle == nullptr)
        return nullptr;
    TheRecords().windows.push_back(window.get());
    return window.release();
}

void RemoveWindow(Window& window)
{
    RetractWindow(window.handle);
    ForgetWindow(window.handle);
    RemoveWindowHandle(window.handle);
    Records& records = TheRecords();
    std::erase(records.windows, &window);
    std::erase_if(records.ofWidget,
                  [&window](const auto& entry) { return entry.second == &window; });
    BuryWidget(window.widget);
    window.widget = nullptr;
    window.client = nullptr;
    BuryRecord(std::unique_ptr<Window>(&window));
}

void LinkWidget(Window& window)
{
    TheRecords().ofWidget[window.widget] = &window;
}

Window& TopLevelOf(Window& window)
{
    Window* top = &window;
    while (top->isChild && top->parent != nullptr)
        top = top->parent;
    return *top;
}

bool IsOwnedBy(const Window& window, const Window& owner)
{
    for (const Window* at = window.parent; at != nullptr; at = at->parent)
        if (at == &owner)
            return true;
    return false;
}

Window* MainWindow()
{
    for (Window* window : AllWindows())
        if (!window->isChild && window->parent == nullptr && !window->destroying &&
            window->windowClass->makeWidget == nullptr)
            return window;
    return nullptr;
}

bool SameName(const std::u16string& a, const WCHAR* b)
{
    return QString::fromStdU16String(a).compare(QString::fromUtf16(b), Qt::CaseInsensitive) == 0;
}

LRESULT CallOnUiThread(std::function<LRESULT()> call)
{
    return RunOnUiThread(std::move(call));
}

} // namespace tavrix::platform
