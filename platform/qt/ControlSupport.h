// What the stock controls have in common: their text, their state and their word to the parent.
// User-interface thread.
#pragma once

#include <windows.h>

#include <commctrl.h>

namespace tavrix::platform
{

struct Window;

/// Handles the messages that all controls treat alike (WM_SETTEXT, WM_ENABLE, WM_SETFONT,
/// WM_GETFONT). True when the message was one of them; `*changed` tells whether the text is another
/// one now. Setting a text that the control already holds changes nothing.
bool HandleCommonMessage(Window& window, UINT message, WPARAM wParam, LPARAM lParam,
                         LRESULT* result, bool* changed);

/// Sends WM_COMMAND with a notify code to the control's parent, which may destroy the control.
void NotifyParent(HWND control, WORD code);

/// Sends WM_NOTIFY with a record that begins with `header` to the control's parent, which may
/// destroy the control, and answers what the parent does (of a dialog its message result). The
/// caller has set the code and what follows the header; this sets the rest of the header.
LRESULT NotifyParent(HWND control, NMHDR* header);

} // namespace tavrix::platform
