#include "shell/Job.h"
#include "shell/JobEnd.h"
#include "shell/JobThreads.h"
#include "shell/PluginCallbacks.h"

DWORD WINAPI LoadJobThread(LPVOID parameter)
{
    const auto& arguments = *static_cast<const LoadArguments*>(parameter);
    return RunPluginJob(JobLoad, [&] {
        return arguments.host->GetImage(arguments.path, arguments.stream, arguments.target,
                                        JobCallbacks);
    });
}
