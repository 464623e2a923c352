#include "bench/program/StepClock.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <utility>

namespace bench
{

namespace
{

double Seconds(clockid_t clock)
{
    timespec time = {};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

long PeakKilobytes()
{
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.starts_with("VmHWM:"))
            return std::atol(line.c_str() + 6);
    return 0;
}

} // namespace

StepClock::StepClock(std::string stepName, int stepCount)
    : name(std::move(stepName)), count(stepCount)
{
    Restart();
}

void StepClock::Restart()
{
    std::ofstream("/proc/self/clear_refs") << "5";
    clock = Seconds(CLOCK_MONOTONIC);
    processor = Seconds(CLOCK_PROCESS_CPUTIME_ID);
}

void StepClock::Stop()
{
    const double clockTime = Seconds(CLOCK_MONOTONIC) - clock;
    const double processorTime = Seconds(CLOCK_PROCESS_CPUTIME_ID) - processor;
    std::printf("step %s %d %.9f %.9f %ld\n", name.c_str(), count, clockTime, processorTime,
                PeakKilobytes());
    std::fflush(stdout);
}

} // namespace bench
