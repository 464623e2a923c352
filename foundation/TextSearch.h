// Lengths, and searches for a character or without regard to case, on wide and narrow text. Case
// folding is that of A to Z only. `*out` may be null, and is written only when something is found.
#pragma once

#include "foundation/Result.h"

#include <windows.h>

/// Counts the characters. Failed for a null `length` (or a null `text`, with `*length` 0).
i32 TextLength(const WCHAR* text, u32* length);
i32 TextLength(const char* text, u32* length);

/// The first, or last, place of `character`. Failed when `text` is null, empty or lacks it.
i32 FindChar(const WCHAR* text, WCHAR character, const WCHAR** out = nullptr);
i32 FindChar(const char* text, char character, const char** out = nullptr);
i32 FindLastChar(const WCHAR* text, WCHAR character, const WCHAR** out = nullptr);
i32 FindLastChar(const char* text, char character, const char** out = nullptr);

/// Searches without regard to ASCII case in a single pass that never steps back: on a mismatch the
/// needle restarts behind the character that broke it, so "aab" is not found in "aaab". The choice
/// of a plugin by extension depends on exactly this. Done with `*out`, NothingDone when not found
/// or the needle is empty, Failed for null.
i32 FindTextNoCase(const WCHAR* haystack, const WCHAR* needle, const WCHAR** out = nullptr);
i32 FindTextNoCase(const char* haystack, const char* needle, const char** out = nullptr);
