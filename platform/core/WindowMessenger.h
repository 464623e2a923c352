// Sends to windows of other processes (WindowRegistry finds them). Every operation is harmless on a
// handle of any other kind and on a window whose process is gone. From any thread.
#pragma once

#include <windows.h>

namespace tavrix::platform
{

/// SendMessageW to a window of another process. WM_COPYDATA goes with a copy of its bytes, 65,536
/// at most, and without wParam, which would be a handle of this process; waits for the answer of
/// the other's window procedure as long as it takes, and meanwhile serves what is sent to this
/// process. 0 with the last error set for any other message, for more bytes, and when the other
/// process ends before it answers.
LRESULT SendToForeignWindow(HWND window, UINT message, LPARAM lParam);

/// Asks the other process to bring the window to the front, with `activate` also to give it the
/// keyboard. Does not wait for it. False when that process is gone.
bool RaiseForeignWindow(HWND window, bool activate);

} // namespace tavrix::platform
