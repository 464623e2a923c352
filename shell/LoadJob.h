// The worker of a load job.
#pragma once

#include <windows.h>

/// `parameter` is a LoadArguments. Decodes, tells a failure in the dialog's status line, and posts
/// the end to the dialog.
DWORD WINAPI LoadJobThread(LPVOID parameter);
