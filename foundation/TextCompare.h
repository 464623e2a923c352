// Compares of two texts: for being the same, for the order of a list, and without regard to case.
// Units count as unsigned numbers in both widths. The orders are 0, 1 (`a` sorts behind `b`) and
// -1.
#pragma once

#include "foundation/Result.h"

#include <windows.h>

/// Done when both texts are the same unit by unit, else NothingDone. Failed for null.
i32 IsSameText(const WCHAR* a, const WCHAR* b);
i32 IsSameText(const char* a, const char* b);

/// The order of a list: punctuation before digits before letters, without regard to the case of A
/// to Z; units of 128 and more follow by their number. A text that the other one begins with sorts
/// first. Numbers are digits like others: "a10" comes before "A9". Done with `*order`, Failed for
/// null with `*order` as it was.
i32 CompareCollated(const WCHAR* a, const WCHAR* b, i32* order);
i32 CompareCollated(const char* a, const char* b, i32* order);

/// Compares at most `count` units, A to Z folded to small letters, and returns the order itself: 0
/// also for null and for a count of 0. Nothing behind the end of either text is read.
i32 CompareNoCase(const WCHAR* a, const WCHAR* b, u32 count);
i32 CompareNoCase(const char* a, const char* b, u32 count);

/// CompareNoCase over the length of the longer text; 0 for null.
i32 CompareNoCaseAll(const WCHAR* a, const WCHAR* b);
i32 CompareNoCaseAll(const char* a, const char* b);
