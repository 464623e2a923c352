// What windows are asked and told besides their place: shown, enabled, texts, words, who is who.
#include "platform/core/MessageQueue.h"
#include "platform/core/WindowRegistry.h"
#include "platform/core/WindowTable.h"
#include "platform/qt/Backing.h"
#include "platform/qt/UiThread.h"
#include "platform/qt/WindowRecords.h"

#include <QWidget>

#include <algorithm>

namespace tavrix::platform
{
namespace
{

constexpr UINT StyleChanged = 0x007D;

// Showing a top-level window gives it the keyboard, unless a modal one has it.
void Activate(Window& window)
{
    if (!window.isChild && window.windowClass->makeWidget == nullptr && TakesInput(window))
        window.widget->setFocus();
}

} // namespace

void PassFocusOn(const Window& leaving)
{
    if (leaving.isChild || !IsSameOrBelow(GetFocus(), leaving.handle))
        return;
    const Window* next = leaving.parent != nullptr ? leaving.parent : MainWindow();
    if (next != nullptr && next != &leaving && IsWindowVisible(next->handle) && TakesInput(*next))
        SetFocus(next->handle);
}

namespace
{

int CopyOut(const std::u16string& text, LPWSTR buffer, int capacity)
{
    if (buffer == nullptr || capacity <= 0)
        return 0;
    const size_t length = std::min(text.size(), static_cast<size_t>(capacity) - 1);
    std::copy_n(text.data(), length, buffer);
    buffer[length] = 0;
    return static_cast<int>(length);
}

LONG_PTR* WordOf(Window& window, int index)
{
    constexpr int WordSize = sizeof(LONG_PTR);
    if (index == GWLP_USERDATA)
        return &window.userData;
    if (index >= 0 && index % WordSize == 0 && index / WordSize < 3)
        return &window.dialogWords[index / WordSize];
    return nullptr;
}

// The bits that ShowWindow and EnableWindow keep are not the caller's.
LONG_PTR SetStyle(Window& window, LONG_PTR value)
{
    constexpr DWORD Kept = WS_VISIBLE | WS_DISABLED | WS_CHILD;
    const DWORD before = window.style;
    const DWORD after = (static_cast<DWORD>(value) & ~Kept) | (before & Kept);
    window.style = after;
    if (after != before)
        CallWindow(window.handle, StyleChanged, static_cast<WPARAM>(INT_PTR{GWL_STYLE}), 0);
    return static_cast<LONG_PTR>(before);
}

} // namespace
} // namespace tavrix::platform

using namespace tavrix::platform;

BOOL WINAPI ShowWindow(HWND handle, int command)
{
    Window* window = FindWindowRecord(handle);
    if (window == nullptr || window->destroying)
        return FALSE;
    const bool before = (window->style & WS_VISIBLE) != 0;
    const bool show = command != SW_HIDE;
    if (show == before) {
        if (show)
            Activate(*window);
        return before;
    }
    CallWindow(handle, WM_SHOWWINDOW, show, 0);
    window = FindWindowRecord(handle);
    if (window == nullptr)
        return before;
    if (!show) {
        window->style &= ~WS_VISIBLE;
        PassFocusOn(*window);
        if (IsWindow(handle))
            window->widget->hide();
        return before;
    }
    window->style |= WS_VISIBLE;
    if (window->windowClass->paints)
        InvalidateRect(handle, nullptr, TRUE);
    window->widget->show();
    Activate(*window);
    if (!window->isChild)
        ShowScreen();
    return before;
}

BOOL WINAPI IsWindowVisible(HWND handle)
{
    const Window* window = FindWindowRecord(handle);
    while (window != nullptr && (window->style & WS_VISIBLE) != 0) {
        if (!window->isChild)
            return TRUE;
        window = window->parent;
    }
    return FALSE;
}

BOOL WINAPI IsWindowEnabled(HWND handle)
{
    const Window* window = FindWindowRecord(handle);
    return window != nullptr && (window->style & WS_DISABLED) == 0;
}

BOOL WINAPI EnableWindow(HWND handle, BOOL enable)
{
    Window* window = FindWindowRecord(handle);
    if (window == nullptr)
        return FALSE;
    const bool disabledBefore = (window->style & WS_DISABLED) != 0;
    if (disabledBefore == (enable == FALSE))
        return disabledBefore;
    if (enable)
        window->style &= ~WS_DISABLED;
    else
        window->style |= WS_DISABLED;
    // A top-level window that is shut out looks as before; only a control is drawn grey.
    if (window->isChild)
        window->widget->setEnabled(enable != FALSE);
    if (!enable && (GetCapture() == handle || IsSameOrBelow(GetCapture(), handle)))
        ReleaseCapture();
    CallWindow(handle, WM_ENABLE, enable != FALSE, 0);
    return disabledBefore;
}

HWND WINAPI GetParent(HWND handle)
{
    const Window* window = FindWindowRecord(handle);
    return window != nullptr && window->parent != nullptr ? window->parent->handle : nullptr;
}

HWND WINAPI FindWindowW(LPCWSTR className, LPCWSTR title)
{
    HWND found = nullptr;
    CallOnUiThread([&]() -> LRESULT {
        for (const Window* window : AllWindows()) {
            if (window->isChild || window->destroying)
                continue;
            if (className != nullptr &&
                (IS_INTRESOURCE(className)
                     ? FindWindowClassByNameOrAtom(className) != window->windowClass
                     : !SameName(window->windowClass->name, className)))
                continue;
            if (title != nullptr && !SameName(window->text, title))
                continue;
            found = window->handle;
            break;
        }
        return 0;
    });
    // A class by its number means something in this process alone.
    if (found == nullptr && !(className != nullptr && IS_INTRESOURCE(className)))
        found = FindForeignWindow(className, title);
    return found;
}

int WINAPI GetClassNameW(HWND handle, LPWSTR buffer, int capacity)
{
    const Window* window = FindWindowRecord(handle);
    return window != nullptr ? CopyOut(window->windowClass->name, buffer, capacity) : 0;
}

BOOL WINAPI SetWindowTextW(HWND window, LPCWSTR text)
{
    return SendMessageW(window, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text)) > 0;
}

int WINAPI GetWindowTextW(HWND window, LPWSTR buffer, int capacity)
{
    if (buffer == nullptr || capacity <= 0)
        return 0;
    buffer[0] = 0;
    return static_cast<int>(SendMessageW(window, WM_GETTEXT, static_cast<WPARAM>(capacity),
                                         reinterpret_cast<LPARAM>(buffer)));
}

int WINAPI GetWindowTextLengthW(HWND window)
{
    return static_cast<int>(SendMessageW(window, WM_GETTEXTLENGTH, 0, 0));
}

LONG_PTR WINAPI GetWindowLongPtrW(HWND handle, int index)
{
    Window* window = FindWindowRecord(handle);
    if (window == nullptr)
        return 0;
    switch (index) {
    case GWLP_WNDPROC:
        return reinterpret_cast<LONG_PTR>(window->procedure);
    case GWLP_HINSTANCE:
        return reinterpret_cast<LONG_PTR>(window->instance);
    case GWLP_ID:
        return static_cast<LONG_PTR>(window->id);
    case GWL_STYLE:
        return static_cast<LONG_PTR>(window->style);
    case GWL_EXSTYLE:
        return static_cast<LONG_PTR>(window->extendedStyle);
    default: {
        const LONG_PTR* word = WordOf(*window, index);
        return word != nullptr ? *word : 0;
    }
    }
}

LONG_PTR WINAPI SetWindowLongPtrW(HWND handle, int index, LONG_PTR value)
{
    Window* window = FindWindowRecord(handle);
    if (window == nullptr)
        return 0;
    const LONG_PTR before = GetWindowLongPtrW(handle, index);
    switch (index) {
    case GWLP_WNDPROC:
        if (value == 0)
            return 0;
        window->procedure = reinterpret_cast<WNDPROC>(value);
        break;
    case GWLP_HINSTANCE:
        window->instance = reinterpret_cast<HINSTANCE>(value);
        break;
    case GWLP_ID:
        window->id = static_cast<UINT_PTR>(value);
        break;
    case GWL_STYLE:
        return SetStyle(*window, value);
    case GWL_EXSTYLE:
        window->extendedStyle = static_cast<DWORD>(value);
        break;
    default:
        if (LONG_PTR* word = WordOf(*window, index))
            *word = value;
        break;
    }
    return before;
}
