// SIGTERM and SIGINT as the program understands them: a request to close its main window. While
// that window is disabled or a modal loop runs the request is kept.
#pragma once

namespace tavrix::platform
{

/// Catches the two signals, unless the process was started with them ignored.
void WatchSignals();
/// Posts WM_CLOSE to the main window if a signal came. Called by the outermost loop.
void PassSignalOn();

} // namespace tavrix::platform
