// The workers, one for each kind of job that a plugin carries out. `parameter` is the kind's
// argument block (Job.h). Each waits a moment, calls the plugin's host, tells a failure in the
// dialog's status line, and posts the end to the dialog. The exit code says nothing.
#pragma once

#include <windows.h>

DWORD WINAPI LoadJobThread(LPVOID parameter);
/// Receives an object; waits no moment first.
DWORD WINAPI ReceiveJobThread(LPVOID parameter);
DWORD WINAPI SaveJobThread(LPVOID parameter);
/// Tells the sizes in a message box on the dialog before it ends.
DWORD WINAPI VirtualSaveJobThread(LPVOID parameter);
DWORD WINAPI EffectJobThread(LPVOID parameter);
DWORD WINAPI AdjustJobThread(LPVOID parameter);
DWORD WINAPI ScaleJobThread(LPVOID parameter);
DWORD WINAPI SubtractJobThread(LPVOID parameter);
/// Tells no failure.
DWORD WINAPI PrintJobThread(LPVOID parameter);
