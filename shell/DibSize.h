// The size of a picture as the clipboard holds it: a header, then palette and rows in one block.
#pragma once

#include "foundation/Result.h"

#include <windows.h>

/// Reads the header at the start of a block of that many bytes. The height is without its sign,
/// which says that the lines run downwards. Failed, with nothing written, for a block that is
/// smaller than a header and for a width below 0: other programs put it there.
[[nodiscard]] i32 ReadDibSize(const void* block, size_t bytes, u32* width, u32* height);
