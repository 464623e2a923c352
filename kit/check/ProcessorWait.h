// What a process lost to others on a busy machine: a limit in seconds is about the process itself.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <map>

namespace plugincheck
{

/// How long a process stood ready without getting a processor, as the system's scheduler counts it
/// (/proc/PID/task/TID/schedstat). Nothing where the system does not count.
class ProcessorWait
{
public:
    explicit ProcessorWait(pid_t process);

    /// What has come since the last call, or since the process began: of its threads', which wait
    /// side by side, the longest. A thread that came and went between two calls is not seen.
    std::chrono::nanoseconds Since();

private:
    pid_t process;
    std::map<pid_t, std::chrono::nanoseconds> known; // by thread
};

} // namespace plugincheck
