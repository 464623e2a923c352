// The two folders of the device that the program knows by role. Answers are device paths without a
// final backslash; `capacity` counts characters with the final zero. BadArgument for a null buffer
// or no capacity.
#pragma once

#include "foundation/Result.h"

#include <windows.h>

/// The folder of the program's own file. Done, or NothingDone when its path is not known or does
/// not fit.
i32 GetApplicationDirectory(WCHAR* buffer, u32 capacity);
/// The user's documents folder: what the shell library says, which needs a capacity of at least
/// 260, else "\My Documents". Done, or NothingDone when the latter did not fit.
i32 GetDocumentsDirectory(WCHAR* buffer, u32 capacity);
