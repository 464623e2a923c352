// Waiting for the next timer without the toolkit. A turn of the toolkit's event dispatcher costs
// several times what a plain wait costs, and a program that samples its memory 200 times a second
// would spend more than a hundredth of a processor on doing nothing. So once the toolkit has had
// nothing for the person for a second, only every sixth of these short waits is the toolkit's; the
// first event after that comes up to five of them late, which is less than two frames of the
// screen.
#pragma once

#include <windows.h>

namespace tavrix::platform
{

/// The toolkit delivers something other than a timer. User-interface thread.
CE_API void NoteToolkitEvent();
/// Whether a wait of so many milliseconds (0: none, below 0: without end) may pass without the
/// toolkit, which then has had its last turn not long ago. User-interface thread.
CE_API bool MayWaitQuietly(int milliseconds);
/// Waits until the time is over or WakeQuietWait. User-interface thread.
CE_API void WaitQuietly(int milliseconds);
/// Ends the wait under way, or else the next one at once. Any thread.
CE_API void WakeQuietWait();

} // namespace tavrix::platform
