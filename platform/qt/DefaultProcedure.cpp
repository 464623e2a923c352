// What a window does with the messages that its own procedure leaves.
#include "platform/core/Gdi.h"
#include "platform/core/MessageQueue.h"
#include "platform/core/WindowRegistry.h"
#include "platform/qt/Backing.h"
#include "platform/qt/HostWindow.h"
#include "platform/qt/StartupLog.h"
#include "platform/qt/WindowRecords.h"

#include <algorithm>

namespace tavrix::platform
{
namespace
{

LRESULT SetText(Window& window, LPARAM lParam)
{
    const auto* text = reinterpret_cast<const WCHAR*>(lParam);
    window.text = text != nullptr ? text : u"";
    RetitleWindow(window.handle, window.text);
    // The main window's title and icons are what the desktop shows for the program.
    if (&window == MainWindow())
        TheHostWindow().SetTitle(window.text);
    return TRUE;
}

LRESULT GetText(const Window& window, WPARAM capacity, LPARAM lParam)
{
    auto* buffer = reinterpret_cast<WCHAR*>(lParam);
    if (buffer == nullptr || capacity == 0)
        return 0;
    const size_t length = std::min<size_t>(window.text.size(), capacity - 1);
    std::copy_n(window.text.data(), length, buffer);
    buffer[length] = 0;
    return static_cast<LRESULT>(length);
}

LRESULT SetIcon(Window& window, WPARAM which, LPARAM icon)
{
    if (which > ICON_BIG)
        return 0;
    const HICON before = window.icons[which];
    window.icons[which] = reinterpret_cast<HICON>(icon);
    // The desktop has no use for them before it shows the window, and their pictures are to be
    // decoded, by libraries that are loaded for it.
    if (&window == MainWindow())
        WhenScreenIsPainted([] {
            if (const Window* shown = MainWindow(); shown != nullptr)
                TheHostWindow().SetIcons(shown->icons[ICON_SMALL], shown->icons[ICON_BIG]);
        });
    return reinterpret_cast<LRESULT>(before);
}

LRESULT GetIcon(const Window& window, WPARAM which)
{
    return which <= ICON_BIG ? reinterpret_cast<LRESULT>(window.icons[which]) : 0;
}

LRESULT Paint(HWND handle)
{
    PAINTSTRUCT paint;
    BeginPaint(handle, &paint);
    EndPaint(handle, &paint);
    return 0;
}

} // namespace
} // namespace tavrix::platform

using namespace tavrix::platform;

LRESULT WINAPI DefWindowProcW(HWND handle, UINT message, WPARAM wParam, LPARAM lParam)
{
    Window* window = FindWindowRecord(handle);
    if (window == nullptr)
        return 0;
    switch (message) {
    case WM_CLOSE:
        DestroyWindow(handle);
        return 0;
    case WM_PAINT:
        return Paint(handle);
    case WM_ERASEBKGND:
        return EraseBackground(*window);
    case WM_SETTEXT:
        return SetText(*window, lParam);
    case WM_GETTEXT:
        return GetText(*window, wParam, lParam);
    case WM_GETTEXTLENGTH:
        return static_cast<LRESULT>(window->text.size());
    case WM_SETICON:
        return SetIcon(*window, wParam, lParam);
    case WM_GETICON:
        return GetIcon(*window, wParam);
    default:
        return 0;
    }
}

LRESULT WINAPI CallWindowProcW(WNDPROC previous, HWND window, UINT message, WPARAM wParam,
                               LPARAM lParam)
{
    return previous != nullptr ? previous(window, message, wParam, lParam) : 0;
}
