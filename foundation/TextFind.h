// The exact search, over texts of both widths and over counted bytes. A window of the needle's
// length slides over the haystack, and only where its plain sum is that of the needle are the units
// compared. `*out` may be null, and is written only when something is found. For the search without
// regard to case, which follows another rule, see TextSearch.h.
#pragma once

#include "foundation/Result.h"

#include <windows.h>

/// The first place of `needle`; an empty one is found at the start. Done, NothingDone when it is
/// not there, Failed for null and when the haystack is the shorter of the two.
i32 FindText(const WCHAR* haystack, const WCHAR* needle, const WCHAR** out = nullptr);
i32 FindText(const char* haystack, const char* needle, const char** out = nullptr);

/// The same over bytes whose numbers are given; zeros are bytes like others. Null is refused even
/// with a length of 0.
i32 FindBytes(const void* data, u32 dataLength, const void* needle, u32 needleLength,
              const void** out = nullptr);
