// Reports to the progress callback once for each hundredth of the work and once at its end, so that
// the host's bar moves without a call for every line.
#pragma once

#include <tavrix/plugin.h>

struct ProgressThrottle {
    /// May be null: then nobody is told and nobody gives up.
    TavrixProgressCallback callback;
    uint32_t total;
    /// Hundredths reported last; at first more than there are.
    uint32_t reported;
};

/// `total` is at least 1.
void StartProgress(ProgressThrottle* throttle, TavrixProgressCallback callback, uint32_t total);
/// `done` of `total` is finished. False when the user gave up.
bool ReportProgress(ProgressThrottle* throttle, uint32_t done);
/// Reports at once, whatever was reported before: for work whose end is not known.
bool ReportProgressNow(ProgressThrottle* throttle, uint32_t done);
