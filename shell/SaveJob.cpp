#include "shell/Job.h"
#include "shell/JobEnd.h"
#include "shell/JobThreads.h"
#include "shell/PluginCallbacks.h"

DWORD WINAPI SaveJobThread(LPVOID parameter)
{
    const auto& arguments = *static_cast<const SaveArguments*>(parameter);
    return RunPluginJob(JobSave, [&] {
        return arguments.host->PutImage(arguments.path, nullptr, arguments.source, JobCallbacks);
    });
}
