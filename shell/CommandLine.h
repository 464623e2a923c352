// The command line: one file name, optionally in double quotes. There is no further parsing.
#pragma once

#include "foundation/Types.h"

#include <windows.h>

/// A quoted command line without its quotes: the text behind the first quote, bounded to 1023
/// characters and then cut at its last quote, whatever stands between. Null when the line is not
/// quoted (then it is used as it stands) or there is no memory. The caller frees it with free().
[[nodiscard]] WCHAR* TakeQuotedName(const WCHAR* commandLine);
