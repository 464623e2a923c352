// A thread of the platform's own that serves the program unseen: no signal reaches it, since they
// are the main thread's, and it does not hold up the process's end. Any thread may start one.
#pragma once

namespace tavrix::platform
{

/// Runs `run(parameter)`. False when there is no thread; the parameter stays the caller's then.
bool StartBackgroundThread(void* (*run)(void*), void* parameter);

} // namespace tavrix::platform
