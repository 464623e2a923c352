// The time and memory of one step of program-run, printed when it stops:
// "step NAME COUNT CLOCK PROCESSOR PEAK", seconds and KB. Where the kernel lets the peak be set
// back, it is the step's own, else that of the process so far.
#pragma once

#include <string>

namespace bench
{

class StepClock
{
public:
    /// `count` repetitions stand behind the one time.
    explicit StepClock(std::string name, int count = 1);
    /// What was before does not count.
    void Restart();
    /// Prints.
    void Stop();

private:
    std::string name;
    int count;
    double clock = 0;
    double processor = 0;
};

} // namespace bench
