#include "shell/Job.h"
#include "shell/JobEnd.h"
#include "shell/JobThreads.h"
#include "shell/PluginCallbacks.h"

DWORD WINAPI PrintJobThread(LPVOID parameter)
{
    const auto& arguments = *static_cast<const PrintArguments*>(parameter);
    return RunPluginJob(JobPrint, [&] {
        return arguments.host->Print(arguments.image, arguments.owner, 0, 0, 0, 0,
                                     TEXT("Tavrix -image-"), JobCallbacks);
    });
}
