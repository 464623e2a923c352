// Replacing inside a text, in place: the text never grows.
#pragma once

#include "foundation/Result.h"

#include <windows.h>

/// Replaces every `from` of `text` by `to`, which is at most as long. The places are those that
/// FindTextNoCase finds, its blindness for some of them included, and the search goes on behind
/// each replacement, so that nothing just written is replaced again. Done; NothingDone when `from`
/// does not occur or is empty; Failed for null and when `to` is longer than `from`.
i32 ReplaceAll(WCHAR* text, const WCHAR* from, const WCHAR* to);
i32 ReplaceAll(char* text, const char* from, const char* to);
