// The state of the one progress dialog. Process-wide, since only one can be open; the handles stay
// after the dialog is gone, and those who use them ask IsWindow first.
#pragma once

#include "shell/Job.h"

struct ProgressState {
    JobRecord* record;
    HANDLE thread;
    HWND bar;
    HWND statusLine;
    HWND dialog;
};

extern ProgressState progressState;

/// Steps of the progress bar.
inline constexpr u32 ProgressSteps = 300;
