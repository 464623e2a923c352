// The way of keys and the pointer to a stock control: each event of the toolkit becomes the
// device's message, goes through the control's chain of window procedures at once, and only the
// control's own procedure at the end of the chain acts on it. So a program that has put a procedure
// of its own in front sees the input first and may swallow or change it. User-interface thread.
//
// A key that types something comes as WM_KEYDOWN and then as WM_CHAR, once for each unit.
#pragma once

#include <windows.h>

class QWidget;

namespace tavrix::platform
{

/// Sends what happens to `target` (the control's widget, or a part of it such as the viewport of a
/// scrolled one) to the window from now on. Middle buttons and what the device does not know as
/// input are kept from the widget or left to it.
void RouteInput(HWND window, QWidget* target);

/// For the control's own procedure: lets the toolkit's widget have the input behind a message that
/// RouteInput made, changed if the message comes changed; input that the program itself sends is
/// made up for `focus` (keys) or `under` (the pointer). False for a message that is no input. The
/// widget may run the program's handlers, so the window may be gone behind the call.
bool PassInput(HWND window, QWidget* focus, QWidget* under, UINT message, WPARAM wParam,
               LPARAM lParam);

} // namespace tavrix::platform
