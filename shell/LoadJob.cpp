#include "shell/LoadJob.h"

#include "shell/Job.h"
#include "shell/JobEnd.h"
#include "shell/PluginCallbacks.h"

DWORD WINAPI LoadJobThread(LPVOID parameter)
{
    auto* arguments = static_cast<LoadArguments*>(parameter);
    Sleep(StartDelay);
    const i32 result = arguments->host->GetImage(arguments->path, arguments->stream,
                                                 arguments->target, JobCallbacks);
    if (result < 0)
        ReportJobError(JobLoad);
    PostJobEnd();
    return 0;
}
