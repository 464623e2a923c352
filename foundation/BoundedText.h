// Bounded copies of text, for both character widths. `capacity` counts characters with the final
// zero. Copying ends at the first character equal to `terminator` (0 for the end of the text), and
// at the end of the text in any case.
#pragma once

#include "foundation/Result.h"

#include <windows.h>

/// Appends `source` behind the text in `target`. Failed for null or no capacity; NothingDone when
/// the text was cut, had no room at all, or fits exactly to the last cell; else Done. The last cell
/// of `target` is always 0.
i32 AppendText(WCHAR* target, u32 capacity, const WCHAR* source, WCHAR terminator = 0);
i32 AppendText(char* target, u32 capacity, const char* source, char terminator = 0);

/// As AppendText into an emptied `target`. Failed for null, NothingDone for no capacity.
i32 CopyText(WCHAR* target, u32 capacity, const WCHAR* source, WCHAR terminator = 0);
i32 CopyText(char* target, u32 capacity, const char* source, char terminator = 0);
