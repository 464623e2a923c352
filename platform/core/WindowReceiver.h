// Takes what other processes send to this one's windows and gives it to the user-interface thread
// in the way of sent messages, so that every loop serves it, a modal one included.
//
// One thread of the platform's own listens. It never waits for the program: a request that is whole
// goes into the message queue and is answered from there, however late. One that is broken, comes
// from another user or does not come at all is dropped, and no sender keeps another one waiting.
// The thread ends with the process and does not hold its end up.
#pragma once

#include <windows.h>

#include <string>

namespace tavrix::platform
{

/// Listens under `name` in `folder` from now on. False when the host refuses.
bool StartWindowReceiver(const std::string& folder, const std::string& name);

/// Brings a window to the front of the host's desktop; with `activate` gives it the keyboard, which
/// the desktop may want `token` for (empty: none). User-interface thread.
using RaiseFunction = void (*)(HWND window, bool activate, const std::string& token);
/// How another process's BringWindowToTop and SetForegroundWindow are carried out here.
void SetRaiseForOthers(RaiseFunction raise);

} // namespace tavrix::platform
