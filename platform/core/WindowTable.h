// The handles of windows. A handle is a number with a generation in it, never an address, so that a
// stale or made-up one is told from a live one. What a handle stands for is the window part's own
// record; this table only knows its window procedure and its parent, which is all that the message
// queue needs. Safe from any thread; the procedures themselves are called and replaced on the
// user-interface thread only.
#pragma once

#include <windows.h>

namespace tavrix::platform
{

/// A new handle for `record`, whose current window procedure stands in `*procedure`; both live
/// until RemoveWindowHandle. Null when the table is full.
HWND AddWindowHandle(void* record, const WNDPROC* procedure, HWND parent = nullptr);
/// Makes the handle stale.
void RemoveWindowHandle(HWND window);
/// The record behind a handle; null for a null, stale or made-up one.
void* WindowRecord(HWND window);
/// The procedure that a message to the window goes to now; null when there is no such window.
WNDPROC WindowProcedure(HWND window);
/// Whether `window` is `ancestor` or lies below it.
bool IsSameOrBelow(HWND window, HWND ancestor);

} // namespace tavrix::platform
