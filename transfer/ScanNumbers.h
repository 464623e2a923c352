// Reading numbers out of text by a fixed pattern, as the C library's scanf reads "%u": space in
// front and one sign are allowed, and the value is taken modulo 2^32.
#pragma once

#include "foundation/Types.h"

#include <windows.h>

/// By "%u.%u.%u.%u": the number of fields read, -1 when the text ends before the first one could
/// begin.
i32 ScanAddress(const WCHAR* text, u32 (&fields)[4]);
/// By "HTTP/%u.%u %u": major and minor version and the code. The result as above.
i32 ScanStatusLine(const char* line, u32 (&fields)[3]);
