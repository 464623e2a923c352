// Two moments of the start for the benchmark, appended to the file that TAVRIX_STARTUP_LOG names,
// in nanoseconds of the monotonic clock: "first-paint", when the device screen has been painted for
// the first time, and "start-over", when the outermost message loop has nothing to do for the first
// time with the main window shown and painted.
#pragma once

#include <functional>

namespace tavrix::platform
{

/// The device screen's paint event ran.
void NoteScreenPainted();
bool ScreenWasPainted();
/// Does what can wait until the device screen shows: at once when it does, else when the first
/// paint has been logged. Of several works that wait the last takes the others' place.
void WhenScreenIsPainted(std::function<void()> work);
/// Logs the first paint once it is finished; nothing on later calls.
void LogFirstPaint();

/// Whether the start is over.
bool StartIsOver();
void LogStartOver();

} // namespace tavrix::platform
