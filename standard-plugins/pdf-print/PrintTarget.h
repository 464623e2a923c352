// The file that a print goes to. A file that is there already is replaced only where the user has
// agreed to it; otherwise the first free name is taken, numbered from 2, and kept for the print by
// an empty file, so that no other program's file of that name is ever replaced either.
#pragma once

#include "standard-plugins/pdf-print/PrintSettings.h"

/// Plain data; zeroed memory keeps no name.
struct PrintTarget {
    TavrixChar path[MAX_PATH];
    /// The name is not the one of the settings.
    bool isNumbered;
    /// An empty file keeps the name.
    bool isKept;
};

/// Finds the name. False when none could be kept: the folder is missing or takes no files, or the
/// disk is full, which whoever tries to write there learns in detail; `path` is one to try.
bool ChooseTarget(PrintTarget* target, const PrintSettings& settings);
/// Deletes the empty file of a print that came to nothing.
void GiveUpTarget(PrintTarget* target);
