// What every worker does around its work.
#pragma once

#include "foundation/Types.h"

#include <windows.h>

/// Milliseconds that a worker waits first, so that the dialog shows before the work takes the
/// processor.
inline constexpr u32 StartDelay = 100;

/// Shows the kind's error text in the dialog for two seconds; without a dialog as a message box.
/// Nothing for a kind that tells no failure.
void ReportJobError(u32 kind);
/// Tells the dialog that the job has ended: a worker's last act. What it still gives up behind that
/// the dialog waits for.
void PostJobEnd();

/// The life of a plugin job's worker. `work` calls the plugin's host and gives what that gave. The
/// thread's exit code.
template <class Work>
DWORD RunPluginJob(u32 kind, const Work& work)
{
    Sleep(StartDelay);
    if (work() < 0)
        ReportJobError(kind);
    PostJobEnd();
    return 0;
}
