// The dialog for the address of a picture. User-interface thread.
#pragma once

#include "foundation/Types.h"

#include <windows.h>

/// Characters of an address, the final zero included.
inline constexpr u32 UrlCapacity = 4096;

/// Shows `address`, of UrlCapacity characters, and takes what the user makes of it. Done on Open,
/// whatever the text; NothingDone when it was given up, and nothing is changed; Failed when there
/// was no dialog; BadArgument for null.
[[nodiscard]] i32 ShowUrlDialog(HWND owner, HINSTANCE instance, WCHAR* address);
