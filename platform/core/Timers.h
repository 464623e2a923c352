// The timers of SetTimer, with and without a window. A timer does not run code by itself: it falls
// due, and the message loop hands out one WM_TIMER for it however often it fell due meanwhile. The
// schedule follows the monotonic clock, so that a late message does not shift the later ones.
// Usable before main.
#pragma once

#include <windows.h>

#include <optional>

namespace tavrix::platform
{

/// Fills in the WM_TIMER of the timer that has been due for longest among those of `window` and
/// what lies below it (null: all). With `take` its next time is set.
bool TakeDueTimer(HWND window, bool take, MSG* message);
/// Milliseconds until the next timer falls due, rounded up; empty without timers. One without a
/// window falls due no sooner than in `leastWithoutWindow`.
std::optional<int> UntilNextTimer(int leastWithoutWindow);
/// Whether a timer with this callback still exists: the callback of a message is never trusted.
bool IsTimerCallback(HWND window, UINT_PTR id, TIMERPROC callback);
/// Drops every timer of a window.
void DropTimers(HWND window);

} // namespace tavrix::platform
