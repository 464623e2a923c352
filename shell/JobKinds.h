// What the progress dialog shows and runs for each kind of job.
#pragma once

#include "foundation/Types.h"

#include <windows.h>

struct JobKind {
    u32 kind;
    const WCHAR* status; // headline of the dialog
    const WCHAR* japaneseStatus;
    const WCHAR* error; // shown when the work fails; null for a kind that tells no failure
    const WCHAR* japaneseError;
    LPTHREAD_START_ROUTINE run; // gets the argument block
};

/// The row of a kind; null for a kind that does not exist.
const JobKind* FindJobKind(u32 kind);
