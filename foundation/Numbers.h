// Text to numbers, and the one conversion of a double to an integer. The parsers leave their output
// at 0 on failure. Overflow is not looked at: values wrap in 64 bits. For numbers to text see
// NumberText.h.
#pragma once

#include "foundation/Result.h"

#include <windows.h>

/// Digits only; an empty text gives 0. Failed for null or any other character.
i32 ParseUnsigned(const WCHAR* text, u64* value);
i32 ParseUnsigned(const char* text, u64* value);
/// As ParseUnsigned with one leading "-", which is skipped and never applied.
i32 ParseSigned(const WCHAR* text, u64* value);
i32 ParseSigned(const char* text, u64* value);

/// Digits and "."; an empty text gives 0. Failed for null only, as no character is refused: each
/// one but "." counts as a digit of the value `c - 48`, so that "1a" gives 59. Before the point the
/// number becomes `number * 10 + digit`; the k-th digit behind it adds `digit` multiplied k times
/// by 0.1. A second "." changes nothing, and there is no sign.
i32 ParseReal(const WCHAR* text, f64* value);
i32 ParseReal(const char* text, f64* value);

/// Truncation towards zero with saturation at the ends of the type, the same on every processor
/// (a plain conversion is undefined outside the range). Not-a-number gives 0.
i32 TruncateToSigned(f64 value);
u32 TruncateToUnsigned(f64 value);
/// Truncates and adds 1 if the fraction is at least 0.5. Below zero the rule is the reverse of the
/// usual one, as its callers expect: t - 1 if the fraction is at least -0.5, else t.
i32 RoundToSigned(f64 value);
u32 RoundToUnsigned(f64 value);
