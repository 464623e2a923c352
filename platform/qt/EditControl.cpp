// The class EDIT: its messages and its word to the parent. What the window's text is, the control
// holds letter for letter until the person changes it.
#include "platform/qt/ControlMessages.h"
#include "platform/qt/ControlSupport.h"
#include "platform/qt/EditWidget.h"
#include "platform/qt/InputRoute.h"
#include "platform/qt/StockClasses.h"
#include "platform/qt/Window.h"

#include <QApplication>
#include <QResizeEvent>
#include <QWidget>

#include <algorithm>
#include <climits>

namespace tavrix::platform
{
namespace
{

constexpr int NoLimit = 0x7FFFFFFE;

EditWidget& EditOf(Window& window)
{
    return *std::static_pointer_cast<EditWidget>(window.extra);
}

bool IsReadOnly(const Window& window)
{
    return (window.style & ES_READONLY) != 0;
}

/// The person typed, or the program replaced a part.
void OnTextChanged(HWND handle)
{
    Window* window = FindWindowRecord(handle);
    if (window == nullptr || window->destroying)
        return;
    std::u16string now = EditOf(*window).Text();
    if (now == window->text)
        return;
    window->text = std::move(now);
    NotifyParent(handle, EN_CHANGE);
}

void ShowText(Window& window)
{
    EditOf(window).SetText(window.text);
}

LRESULT GetSelection(Window& window, DWORD* first, DWORD* behind)
{
    const auto [from, to] = EditOf(window).Selection();
    if (first != nullptr)
        *first = static_cast<DWORD>(from);
    if (behind != nullptr)
        *behind = static_cast<DWORD>(to);
    constexpr int Most = 0xFFFF;
    return from > Most || to > Most ? -1 : MAKELONG(from, to);
}

LRESULT Select(Window& window, int start, int end)
{
    EditWidget& edit = EditOf(window);
    if (start < 0) { // takes the selection away
        const int caret = edit.Selection().second;
        edit.Select(caret, caret);
        return 0;
    }
    edit.Select(start, end < 0 ? INT_MAX : end);
    return 0;
}

LRESULT SetReadOnly(Window& window, bool on)
{
    window.style = on ? window.style | ES_READONLY : window.style & ~ES_READONLY;
    EditOf(window).SetReadOnly(on);
    return TRUE;
}

LRESULT SetLimit(Window& window, WPARAM units)
{
    const bool none = units == 0 || units > static_cast<WPARAM>(NoLimit);
    EditOf(window).SetLimit(none ? NoLimit : static_cast<int>(units));
    return 0;
}

/// A character that the style keeps out, whoever sends it.
bool IsRefused(const Window& window, WPARAM unit)
{
    const bool digit = unit >= '0' && unit <= '9';
    return (window.style & ES_NUMBER) != 0 && unit >= VK_SPACE && !digit;
}

/// A hidden widget hears of its size only when it shows, but its lines can be asked for before.
void TellSize(Window& window)
{
    for (QWidget* part : {EditOf(window).Widget(), EditOf(window).PointerTarget()}) {
        QResizeEvent event(part->size(), QSize());
        QCoreApplication::sendEvent(part, &event);
    }
}

/// Enter ends a line in a text of several that asked for it, and is not the dialog's.
bool WantsKey(const Window& window, const MSG* asked)
{
    constexpr DWORD WantReturn = 0x1000; // ES_WANTRETURN
    constexpr DWORD Both = ES_MULTILINE | WantReturn;
    return asked != nullptr && asked->message == WM_KEYDOWN && asked->wParam == VK_RETURN &&
           (window.style & Both) == Both;
}

LRESULT DialogCode(const Window& window, LPARAM lParam)
{
    return DLGC_WANTARROWS | DLGC_WANTCHARS |
           ((window.style & ES_MULTILINE) != 0 ? 0 : DLGC_HASSETSEL) |
           (WantsKey(window, reinterpret_cast<const MSG*>(lParam)) ? DLGC_WANTMESSAGE : 0);
}

} // namespace

bool EndComposing(HWND control, bool take)
{
    Window* window = FindWindowRecord(control);
    if (window == nullptr || window->windowClass->procedure != EditProcedure ||
        !EditOf(*window).IsComposing())
        return false;
    const auto keep = std::static_pointer_cast<EditWidget>(window->extra);
    keep->EndComposing(take);
    return true;
}

QWidget* MakeEditWidget(Window& window, QWidget* parent)
{
    constexpr DWORD SunkenEdge = 0x200; // WS_EX_CLIENTEDGE
    const bool framed = (window.style & WS_BORDER) != 0 || (window.extendedStyle & SunkenEdge) != 0;
    const auto make = (window.style & ES_MULTILINE) != 0 ? MakeTextEdit : MakeLineEdit;
    const HWND handle = window.handle;
    std::shared_ptr<EditWidget> edit = make(
        window.style, framed, [handle] { OnTextChanged(handle); }, parent);
    window.extra = edit;
    QWidget* widget = edit->Widget();
    widget->setEnabled((window.style & WS_DISABLED) == 0);
    edit->SetReadOnly(IsReadOnly(window));
    edit->SetText(window.text);
    RouteInput(handle, widget);
    if (edit->PointerTarget() != widget)
        RouteInput(handle, edit->PointerTarget());
    return widget;
}

LRESULT CALLBACK EditProcedure(HWND handle, UINT message, WPARAM wParam, LPARAM lParam)
{
    Window* window = FindWindowRecord(handle);
    if (window == nullptr)
        return 0;
    LRESULT result = 0;
    bool changed = false;
    if (HandleCommonMessage(*window, message, wParam, lParam, &result, &changed)) {
        if (changed) {
            ShowText(*window);
            NotifyParent(handle, EN_CHANGE);
        }
        return result;
    }
    if (message == WM_CHAR && IsRefused(*window, wParam))
        return 0;
    QWidget* widget = EditOf(*window).Widget();
    if (PassInput(handle, widget, EditOf(*window).PointerTarget(), message, wParam, lParam))
        return 0;
    switch (message) {
    case WM_GETDLGCODE:
        return DialogCode(*window, lParam);
    case WM_SETFOCUS:
        NotifyParent(handle, EN_SETFOCUS);
        return 0;
    case WM_KILLFOCUS:
        NotifyParent(handle, EN_KILLFOCUS);
        return 0;
    case WM_SIZE:
        TellSize(*window);
        return 0;
    case EM_GETSEL:
        return GetSelection(*window, reinterpret_cast<DWORD*>(wParam),
                            reinterpret_cast<DWORD*>(lParam));
    case EM_SETSEL:
        return Select(*window, static_cast<int>(wParam), static_cast<int>(lParam));
    case EM_REPLACESEL:
        if (lParam != 0)
            EditOf(*window).Replace(reinterpret_cast<const WCHAR*>(lParam));
        return 0;
    case EM_SETLIMITTEXT:
        return SetLimit(*window, wParam);
    case EM_SETREADONLY:
        return SetReadOnly(*window, wParam != 0);
    case EM_GETLINECOUNT:
        return EditOf(*window).LineCount();
    default:
        return DefWindowProcW(handle, message, wParam, lParam);
    }
}

} // namespace tavrix::platform
