#include "kit/check/ProcessorWait.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

namespace plugincheck
{

namespace
{

namespace fs = std::filesystem;

/// Its second number: nanoseconds on the queue of those that could run.
std::chrono::nanoseconds WaitOf(const fs::path& thread)
{
    std::ifstream file(thread / "schedstat");
    long long ran = 0;
    long long waited = 0;
    if (!(file >> ran >> waited))
        waited = 0;
    return std::chrono::nanoseconds(waited);
}

} // namespace

ProcessorWait::ProcessorWait(pid_t process) : process(process) {}

std::chrono::nanoseconds ProcessorWait::Since()
{
    std::chrono::nanoseconds longest{0};
    std::map<pid_t, std::chrono::nanoseconds> now;
    std::error_code error;
    fs::directory_iterator thread("/proc/" + std::to_string(process) + "/task", error);
    for (const fs::directory_iterator end; !error && thread != end; thread.increment(error)) {
        const auto number = static_cast<pid_t>(std::atol(thread->path().filename().c_str()));
        const std::chrono::nanoseconds waited = WaitOf(thread->path());
        const auto before = known.find(number);
        longest = std::max(longest, before == known.end() ? waited : waited - before->second);
        now.emplace(number, waited);
    }
    known = std::move(now);
    return longest;
}

} // namespace plugincheck
