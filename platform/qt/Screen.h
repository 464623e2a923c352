// The device screen: a widget of a fixed size on the one host window (HostWindow.h). Its
// coordinates are the ones that every call of the device's interface uses; one device pixel is one
// physical pixel.
#pragma once

#include <QSize>

namespace tavrix::platform
{

/// The device screen's size: TAVRIX_SCREEN=WxH, with TAVRIX_FULLSCREEN=1 the whole of the host's,
/// else four fifths of the desktop's height at 4:3 and at least 640x480. The same for the whole
/// run.
QSize ScreenSize();
/// Whether TAVRIX_FULLSCREEN=1 asks for a start without a window's frame.
bool StartsFullScreen();
/// Brings the host window to the front, also out of the task bar.
void RaiseScreen();
/// The same, and gives it the keyboard.
void ActivateScreen();

} // namespace tavrix::platform
