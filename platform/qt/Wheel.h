// The mouse wheel, which the device lacks: over a window of the program's own classes it types the
// arrow keys for the main window, so that the picture moves as the content of any scrolled window
// does. User-interface thread.
#pragma once

#include "platform/qt/Window.h"

class QWheelEvent;

namespace tavrix::platform
{

/// Queues for the main window a press and a release of an arrow key for each notch that the wheel
/// has come to over `window`: Down for up, Up for down, Right for left, Left for right, with Shift
/// the first two sideways. `under` got the event.
void QueueWheel(const Window& window, const QWidget& under, const QWheelEvent& event);

} // namespace tavrix::platform
