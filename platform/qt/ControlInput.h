// Keys and the pointer for stock controls that act on messages as the device's own do: the widget
// turns each event of the toolkit into a message and sends it through the window procedure chain at
// once, so that a program that has put its own procedure in sees it, changes it or keeps it. The
// control's procedure then does the work. Behind each call the control may be gone.
// User-interface thread.
#pragma once

#include <windows.h>

class QKeyEvent;
class QMouseEvent;

namespace tavrix::platform
{

/// Sends the message of a press, release, double click or move of the left or right button, at the
/// event's own position in the client area. The event goes no further.
void SendPointer(HWND control, QMouseEvent& event);
/// Sends the message of a key and, when it goes down and types something, WM_CHAR for each unit. A
/// key with Alt is left to the menus afterwards, any other goes no further.
void SendKey(HWND control, QKeyEvent& event);

} // namespace tavrix::platform
