// The clipboard at the end of the program.
#pragma once

#include <windows.h>

namespace tavrix::platform
{

/// Lets the desktop's clipboard manager, where an X server has one, take over the picture that the
/// program has put on the clipboard, which would be gone with the process. Waits for that, but only
/// for some seconds. After the last window, on the user-interface thread.
CE_API void LeaveClipboardToDesktop();

} // namespace tavrix::platform
