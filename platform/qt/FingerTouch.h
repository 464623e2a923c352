// A finger on a dialog that meets nothing to use there goes to the nearest control within its reach
// (FingerReach.h). Mouse and pen stay exact to the pixel. User-interface thread.
#pragma once

class QEvent;
class QWindow;

namespace tavrix::platform
{

/// Takes an event of a host window if it is the mouse's that the toolkit made of a finger which
/// came down beside a control, and gives the window the one in its place that meets the control.
/// While the finger stays within reach of that control, so does the pointer in it; farther away it
/// is where the finger is. False for any other event.
bool TakeFinger(QWindow& window, QEvent& event);

} // namespace tavrix::platform
