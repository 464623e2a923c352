#include "platform/qt/StockClasses.h"
#include "platform/qt/WindowRecords.h"

#include <deque>

namespace tavrix::platform
{
namespace
{

constexpr ATOM FirstAtom = 0xC000;
constexpr DWORD ClassAlreadyExists = 1410;

// A deque, since windows keep pointers to their classes. Never destroyed.
std::deque<WindowClass>& Classes()
{
    static auto& classes = *new std::deque<WindowClass>;
    return classes;
}

const WindowClass* Find(const WCHAR* name)
{
    for (const WindowClass& entry : Classes())
        if (SameName(entry.name, name))
            return &entry;
    return nullptr;
}

} // namespace

void RegisterStockClass(const WCHAR* name, WNDPROC procedure, MakeWidgetFunction makeWidget,
                        bool paints)
{
    if (name == nullptr || Find(name) != nullptr)
        return;
    WindowClass entry;
    entry.name = name;
    entry.style = CS_DBLCLKS;
    entry.procedure = procedure;
    entry.makeWidget = makeWidget;
    entry.paints = paints;
    Classes().push_back(std::move(entry));
}

const WindowClass* FindWindowClass(const WCHAR* name)
{
    RegisterStockClasses();
    return name != nullptr ? Find(name) : nullptr;
}

const WindowClass* FindWindowClassByNameOrAtom(const WCHAR* nameOrAtom)
{
    if (!IS_INTRESOURCE(nameOrAtom))
        return FindWindowClass(nameOrAtom);
    const size_t number = reinterpret_cast<ULONG_PTR>(nameOrAtom);
    const auto& classes = Classes();
    if (number < FirstAtom || number - FirstAtom >= classes.size())
        return nullptr;
    return &classes[number - FirstAtom];
}

} // namespace tavrix::platform

using namespace tavrix::platform;

ATOM WINAPI RegisterClassW(const WNDCLASSW* record)
{
    if (record == nullptr || record->lpszClassName == nullptr ||
        IS_INTRESOURCE(record->lpszClassName) || *record->lpszClassName == 0 ||
        record->lpfnWndProc == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    if (FindWindowClass(record->lpszClassName) != nullptr) {
        SetLastError(ClassAlreadyExists);
        return 0;
    }
    WindowClass entry;
    entry.name = record->lpszClassName;
    entry.style = record->style;
    entry.procedure = record->lpfnWndProc;
    entry.background = record->hbrBackground;
    entry.paints = true;
    Classes().push_back(std::move(entry));
    return static_cast<ATOM>(FirstAtom + Classes().size() - 1);
}
