// The pen of a graphics tablet, which is the pen of the device: what it does on any window is a
// mouse's doing, its tip the left button. A finger on a touch screen needs nothing of this: the
// toolkit makes the mouse of the first finger and ignores the others. User-interface thread.
#pragma once

class QEvent;
class QWindow;

namespace tavrix::platform
{

/// Takes an event that a host window gets if it is a pen's, and gives the window the mouse event
/// that stands for it. False for any other event.
bool TakePen(QWindow& window, QEvent& event);

} // namespace tavrix::platform
