// The thread of a call that is waited for elsewhere.
#pragma once

#include <windows.h>

/// Gives the call up: ends the thread, closes its handle and clears the word. When it returns the
/// thread is gone, and whatever its record points at is the owner's alone.
void EndWorkerThread(HANDLE& thread);
