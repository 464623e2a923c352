#include "shell/Job.h"
#include "shell/JobEnd.h"
#include "shell/JobThreads.h"
#include "shell/PluginCallbacks.h"

DWORD WINAPI SubtractJobThread(LPVOID parameter)
{
    const auto& arguments = *static_cast<const SubtractArguments*>(parameter);
    return RunPluginJob(JobSubtract, [&] {
        return arguments.host->SubtractImage(arguments.image, arguments.argument, JobCallbacks);
    });
}
