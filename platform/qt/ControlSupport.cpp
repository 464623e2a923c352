#include "platform/qt/ControlSupport.h"

#include "platform/qt/Fonts.h"
#include "platform/qt/Window.h"

#include <commctrl.h>

#include <QWidget>

namespace tavrix::platform
{

bool HandleCommonMessage(Window& window, UINT message, WPARAM wParam, LPARAM lParam,
                         LRESULT* result, bool* changed)
{
    *changed = false;
    *result = 0;
    switch (message) {
    case WM_SETTEXT: {
        const auto* text = reinterpret_cast<const WCHAR*>(lParam);
        std::u16string wanted = text != nullptr ? text : TEXT("");
        if (wanted != window.text) {
            window.text = std::move(wanted);
            *changed = true;
        }
        *result = TRUE;
        return true;
    }
    case WM_ENABLE:
        window.widget->setEnabled(wParam != 0);
        return true;
    case WM_SETFONT:
        window.font = reinterpret_cast<HFONT>(wParam);
        // The look is taken now, so that the handle may go before the control.
        window.widget->setFont(FontOf(window.font));
        return true;
    case WM_GETFONT:
        *result = reinterpret_cast<LRESULT>(window.font);
        return true;
    default:
        return false;
    }
}

void NotifyParent(HWND control, WORD code)
{
    const HWND parent = GetParent(control);
    if (parent != nullptr)
        SendMessageW(parent, WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(control), code),
                     reinterpret_cast<LPARAM>(control));
}

LRESULT NotifyParent(HWND control, NMHDR* header)
{
    const HWND parent = GetParent(control);
    if (parent == nullptr)
        return 0;
    header->hwndFrom = control;
    header->idFrom = static_cast<UINT_PTR>(static_cast<UINT>(GetDlgCtrlID(control)));
    return SendMessageW(parent, WM_NOTIFY, header->idFrom, reinterpret_cast<LPARAM>(header));
}

} // namespace tavrix::platform
