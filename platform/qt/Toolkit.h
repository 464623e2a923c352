// The toolkit's one start: made at the first use of a window, never at the program's start, so that
// a run that only hands its file over to another one pays nothing for it.
#pragma once

namespace tavrix::platform
{

/// Makes the toolkit's application object and puts the platform's functions into the message loop.
/// On the user-interface thread; only the first call does anything.
void EnsureToolkit();
/// Whether EnsureToolkit has run.
bool ToolkitIsUp();

} // namespace tavrix::platform
