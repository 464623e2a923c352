// What a reset of the device's idle timer does to the host: for 30 seconds from the last reset on
// the desktop's screen saver is inhibited over the session bus, and each reset restarts the screen
// saver timer of an X server.
//
// Nothing is asked of the host before the first reset. The bus is spoken to on a thread of this
// file's own, which waits for it as long as it takes; the thread that resets waits for nothing.
// Without a bus, or without a screen saver on it, nothing happens. A run without a display uses a
// bus only where DBUS_SESSION_BUS_ADDRESS names one.
#pragma once

namespace tavrix::platform
{

/// Follows the idle timer from now on. On the user-interface thread, when the toolkit is up.
void InstallKeepAwake();

} // namespace tavrix::platform
