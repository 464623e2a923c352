// The device's idle timer. A program that works for long resets it so that the device stays awake.
// Here the time of the last reset is kept, and resets are counted for tests; whoever carries them
// to the host's screen follows them (qt/KeepAwake).
#pragma once

#include <windows.h>

namespace tavrix::platform
{

/// GetTickCount() at the last SystemIdleTimerReset; 0 when there was none.
DWORD LastIdleTimerReset();

/// `follower` is called behind each reset, on the thread that resets, which may be any; it must not
/// wait. Null follows no more.
void FollowIdleTimer(void (*follower)());

} // namespace tavrix::platform
