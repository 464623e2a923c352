// Accelerator tables: loading them, turning key messages into commands, and keeping the toolkit's
// menu bar from taking a key of theirs (Alt and a letter) before a message has come of it.
#include "platform/qt/AcceleratorTable.h"
#include "platform/qt/DialogState.h"
#include "platform/qt/KeyCodes.h"
#include "platform/qt/Window.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

#include <algorithm>
#include <unordered_map>

namespace tavrix::platform
{
namespace
{

using Tables = std::unordered_map<UINT_PTR, std::vector<Accelerator>>;

Tables& LoadedTables()
{
    static Tables tables;
    return tables;
}

bool IsDown(int key)
{
    return (GetKeyState(key) & 0x8000) != 0;
}

/// The modifiers as they stood when the message arose.
KeyModifiers MessageModifiers()
{
    return {IsDown(VK_SHIFT), IsDown(VK_CONTROL), IsDown(VK_MENU)};
}

const Accelerator* FindAccelerator(const std::vector<Accelerator>& table, const MSG& message)
{
    const WORD key = LOWORD(message.wParam);
    switch (message.message) {
    case WM_KEYDOWN:
    case WM_SYSKEYDOWN:
        return FindVirtualKey(table, key, MessageModifiers());
    case WM_CHAR:
        return FindCharacter(table, key, false);
    case WM_SYSCHAR:
        return FindCharacter(table, key, true);
    default:
        return nullptr;
    }
}

bool IsAcceleratorKey(const QKeyEvent& event)
{
    const auto key = static_cast<WORD>(VirtualKeyOf(event));
    if (key == 0)
        return false;
    const Qt::KeyboardModifiers held = event.modifiers();
    const KeyModifiers modifiers{(held & Qt::ShiftModifier) != 0, (held & Qt::ControlModifier) != 0,
                                 (held & Qt::AltModifier) != 0};
    return std::any_of(LoadedTables().begin(), LoadedTables().end(), [&](const auto& entry) {
        return FindVirtualKey(entry.second, key, modifiers) != nullptr;
    });
}

/// Accelerators are the main window's: in a dialog or an opened menu a key keeps its own meaning.
bool TakesAccelerators(const QWidget& widget)
{
    if (widget.window() != ScreenWidget()->window())
        return false;
    const Window* window = WindowOfWidget(&widget);
    while (window != nullptr && window->isChild)
        window = window->parent;
    return window != nullptr && !DialogStateOf(window) && TakesInput(*window);
}

class OverrideWatcher : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event->type() != QEvent::ShortcutOverride || !object->isWidgetType())
            return false;
        if (!TakesAccelerators(*static_cast<QWidget*>(object)) ||
            !IsAcceleratorKey(*static_cast<QKeyEvent*>(event)))
            return false;
        event->accept(); // "no shortcut, please": the key comes as an ordinary one
        return true;
    }
};

void WatchOverrides()
{
    static OverrideWatcher* watcher = nullptr;
    if (watcher != nullptr)
        return;
    ScreenWidget(); // the toolkit must be up to be watched
    watcher = new OverrideWatcher(qApp);
    qApp->installEventFilter(watcher);
}

} // namespace
} // namespace tavrix::platform

using namespace tavrix::platform;

HACCEL WINAPI LoadAcceleratorsW(HINSTANCE instance, LPCWSTR name)
{
    const HRSRC resource = FindResourceW(instance, name, RT_ACCELERATOR);
    if (resource == nullptr)
        return nullptr;
    const auto table = ParseAccelerators(LockResource(LoadResource(instance, resource)),
                                         SizeofResource(instance, resource));
    if (!table) {
        SetLastError(ERROR_RESOURCE_DATA_NOT_FOUND);
        return nullptr;
    }
    WatchOverrides();
    static UINT_PTR last = 0x3000;
    last += 4;
    LoadedTables()[last] = *table;
    return reinterpret_cast<HACCEL>(last);
}

int WINAPI TranslateAcceleratorW(HWND window, HACCEL handle, LPMSG message)
{
    const auto table = LoadedTables().find(reinterpret_cast<UINT_PTR>(handle));
    if (table == LoadedTables().end() || message == nullptr || !IsWindow(window))
        return 0;
    const Accelerator* found = FindAccelerator(table->second, *message);
    if (found == nullptr)
        return 0;
    // A key of the table is taken even while its window is shut out, but then nothing is sent.
    // Whether the menu entry of the command is gray makes no difference.
    if (IsWindowEnabled(window))
        SendMessageW(window, WM_COMMAND, MAKEWPARAM(found->command, 1), 0);
    return 1;
}
