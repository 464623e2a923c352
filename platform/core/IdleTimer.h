// The device's idle timer. A program that works for long resets it so that the device stays awake.
//
// What this does: it keeps the time of the last reset and counts resets. What it does not do: it
// speaks to no desktop and to no power manager, so the host's screen saver and suspend are not held
// back by it. Who carries that out reads the time from here.
#pragma once

#include <windows.h>

namespace tavrix::platform
{

/// GetTickCount() at the last SystemIdleTimerReset; 0 when there was none.
DWORD LastIdleTimerReset();

} // namespace tavrix::platform
