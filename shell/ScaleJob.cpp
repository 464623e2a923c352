#include "shell/Job.h"
#include "shell/JobEnd.h"
#include "shell/JobThreads.h"
#include "shell/PluginCallbacks.h"

DWORD WINAPI ScaleJobThread(LPVOID parameter)
{
    const auto& arguments = *static_cast<const ScaleArguments*>(parameter);
    return RunPluginJob(JobScale, [&] {
        return arguments.host->ScaleImage(
            arguments.image, arguments.width, arguments.height,
            {ProgressCallback, MessageCallback, arguments.put, arguments.get});
    });
}
