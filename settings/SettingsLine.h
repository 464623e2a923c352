// The grammar of one line of the settings file, apart from the file it stands in. Blanks are spaces
// and tabs. The text taken apart stays the caller's; what is found points into it.
#pragma once

#include "foundation/Types.h"

#include <windows.h>

enum class SettingsLineKind {
    Nothing, // blank, a comment, or a name with no "=" behind it
    Section, // "[name]", whatever follows
    Key,     // "name=value"
    Broken   // "[" without "]": the whole file is refused
};

struct SettingsLine {
    SettingsLineKind kind;
    const WCHAR* name;  // Section, Key
    const WCHAR* value; // Key; null when nothing but blanks stands behind the "="
};

/// Takes `line` apart, which must end in a zero and is written to: each part found gets a zero of
/// its own behind it.
SettingsLine ParseSettingsLine(WCHAR* line);
