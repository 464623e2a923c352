// The two kinds that change a picture in place.

#include "shell/Job.h"
#include "shell/JobEnd.h"
#include "shell/JobThreads.h"
#include "shell/PluginCallbacks.h"

DWORD WINAPI EffectJobThread(LPVOID parameter)
{
    const auto& arguments = *static_cast<const EffectArguments*>(parameter);
    return RunPluginJob(JobEffect, [&] {
        return arguments.host->Process(
            arguments.image, {ProgressCallback, MessageCallback, arguments.put, arguments.get});
    });
}

DWORD WINAPI AdjustJobThread(LPVOID parameter)
{
    const auto& arguments = *static_cast<const AdjustArguments*>(parameter);
    return RunPluginJob(JobAdjust,
                        [&] { return arguments.host->Process(arguments.image, JobCallbacks); });
}
