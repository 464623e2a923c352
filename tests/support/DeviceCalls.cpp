#include "tests/support/DeviceCalls.h"

#include "platform/testing/Testing.h"

#include <commctrl.h>

#include <dlfcn.h>

namespace tavrix::testing
{

namespace
{

// Made when first asked for: the device may be called before this file's objects are there.
std::vector<std::string>& Lines()
{
    static std::vector<std::string> lines;
    return lines;
}

std::vector<BoxCall>& Boxes()
{
    static std::vector<BoxCall> boxes;
    return boxes;
}

WNDCLASSW& Class()
{
    static WNDCLASSW record = {};
    return record;
}

/// The device's own function of that name.
template <class Function>
Function* Device(Function*, const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

std::string NameOf(LPCWSTR name)
{
    if (IS_INTRESOURCE(name))
        return std::to_string(reinterpret_cast<ULONG_PTR>(name));
    return Utf8(name);
}

} // namespace

const std::vector<BoxCall>& BoxCalls()
{
    return Boxes();
}

const std::vector<std::string>& Happenings()
{
    return Lines();
}

void AddHappening(const std::string& line)
{
    if (Lines().empty() || Lines().back() != line)
        Lines().push_back(line);
}

void WatchFiles()
{
    SetFileFault([](platform::FileOperation operation, const WCHAR* path, DWORD*) {
        const char* const names[] = {"create ", "open ",   "read ",       "write ",
                                     "sync ",   "rename ", "sync folder "};
        AddHappening(names[static_cast<size_t>(operation)] + Utf8(path));
        return false;
    });
}

const WNDCLASSW& LastClass()
{
    return Class();
}

} // namespace tavrix::testing

using namespace tavrix::testing;

int WINAPI MessageBoxW(HWND owner, LPCWSTR text, LPCWSTR caption, UINT flags)
{
    AddHappening("box " + Utf8(text));
    Boxes().push_back({owner, text, caption, flags});
    return Device(&MessageBoxW, "MessageBoxW")(owner, text, caption, flags);
}

HANDLE WINAPI CreateMutexW(LPSECURITY_ATTRIBUTES security, BOOL owned, LPCWSTR name)
{
    AddHappening("mutex " + NameOf(name));
    return Device(&CreateMutexW, "CreateMutexW")(security, owned, name);
}

ATOM WINAPI RegisterClassW(const WNDCLASSW* record)
{
    AddHappening("class " + NameOf(record->lpszClassName));
    Class() = *record;
    return Device(&RegisterClassW, "RegisterClassW")(record);
}

HACCEL WINAPI LoadAcceleratorsW(HINSTANCE instance, LPCWSTR name)
{
    AddHappening("accelerators " + NameOf(name));
    return Device(&LoadAcceleratorsW, "LoadAcceleratorsW")(instance, name);
}

HWND WINAPI FindWindowW(LPCWSTR className, LPCWSTR title)
{
    AddHappening("find " + NameOf(className));
    return Device(&FindWindowW, "FindWindowW")(className, title);
}

HWND WINAPI CreateWindowExW(DWORD extendedStyle, LPCWSTR className, LPCWSTR title, DWORD style,
                            int x, int y, int width, int height, HWND parent, HMENU menu,
                            HINSTANCE instance, LPVOID parameter)
{
    AddHappening("window " + NameOf(className));
    return Device(&CreateWindowExW, "CreateWindowExW")(extendedStyle, className, title, style, x, y,
                                                       width, height, parent, menu, instance,
                                                       parameter);
}

BOOL WINAPI InitCommonControlsEx(const INITCOMMONCONTROLSEX* record)
{
    AddHappening("common controls " + std::to_string(record->dwSize) + ' ' +
                 std::to_string(record->dwICC));
    return Device(&InitCommonControlsEx, "InitCommonControlsEx")(record);
}
