// Whether somebody lays windows out on the host's display. User-interface thread.
#pragma once

namespace tavrix::platform
{

/// Whether the display is an X server on which no window manager takes requests such as "full
/// screen": what such a request asks for the window then has to do itself.
bool IsUnmanagedDisplay();

} // namespace tavrix::platform
