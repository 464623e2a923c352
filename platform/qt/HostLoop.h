// How the program's message loop and the toolkit's event dispatcher share the thread. No exec() of
// the toolkit runs anywhere: the message loop lets the dispatcher have its turns.
#pragma once

namespace tavrix::platform
{

/// Puts the toolkit into the message loop (see HostLoop in core/MessageQueue.h).
void InstallHostLoop();

} // namespace tavrix::platform
