// What every worker does around its work.
#pragma once

#include "foundation/Types.h"

/// Milliseconds that a worker waits first, so that the dialog shows before the work takes the
/// processor.
inline constexpr u32 StartDelay = 100;

/// Shows the kind's error text in the dialog for two seconds.
void ReportJobError(u32 kind);
/// Tells the dialog that the job has ended: a worker's last act.
void PostJobEnd();
