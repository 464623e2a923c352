// Numbers as decimal text, for both character widths. `capacity` counts characters with the final
// zero and must be two more than the characters of the number, one more than is strictly needed.
//
// The 32-bit forms write numbers of ten digits wrong, and that is meant: the search for the first
// digit's power multiplies in 32 bits and does not notice a product that wraps to a larger value.
// 1000000000 comes out as "709186972", 4294967295 as "3045934808", and some numbers have a first
// character past "9". Names of paging files are made this way. All numbers below 1000000000, and
// all of the 64-bit forms, are right.
#pragma once

#include "foundation/Result.h"

#include <windows.h>

/// Writes `value` into `text`. Done; NothingDone for a capacity of 1, with nothing written; Failed
/// for null or no capacity. A number that does not fit is cut after capacity - 2 characters, the
/// last cell alone becomes 0, and the result is Failed.
i32 FormatUnsigned(u32 value, WCHAR* text, u32 capacity);
i32 FormatUnsigned(u32 value, char* text, u32 capacity);
i32 FormatUnsigned64(u64 value, WCHAR* text, u32 capacity);
i32 FormatUnsigned64(u64 value, char* text, u32 capacity);

/// The same with a "-", which counts as a character, before the digits of a negative number.
i32 FormatSigned(i32 value, WCHAR* text, u32 capacity);
i32 FormatSigned(i32 value, char* text, u32 capacity);
i32 FormatSigned64(i64 value, WCHAR* text, u32 capacity);
i32 FormatSigned64(i64 value, char* text, u32 capacity);
