// One run of program-run as a process of its own: the steps that it was given, and what each took.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace bench
{

struct StepFigures {
    double seconds = 0; // on the clock, for one of `count`
    double processorSeconds = 0;
    double peakMegabytes = 0;
};

/// The four places that program-run prints, 0xRRGGBB: upper left, upper right, lower left, lower
/// right, and the size.
struct Places {
    unsigned width = 0;
    unsigned height = 0;
    unsigned colors[4] = {};
};

struct FlowResult {
    /// By the step's name; of a step that came several times the slowest.
    std::map<std::string, StepFigures> steps;
    std::vector<Places> checks; // in the order of the steps
    double peakMegabytes = 0;   // of all steps
    std::string fault;          // empty when all steps did their work
};

/// Runs the steps. `memory` goes to TAVRIX_MEMORY, empty for what the machine has; line files go
/// into `pages`. Killed, with a fault, after `secondsAtMost`.
FlowResult RunFlow(const std::vector<std::string>& steps, const std::string& memory,
                   const std::string& pages, int secondsAtMost);

/// Whether two pictures are alike there: each channel within `tolerance`.
bool Alike(const Places& one, const Places& other, int tolerance);
/// The places after a quarter turn as the program's menu does it, counter-clockwise.
Places Turned(const Places& places);
/// The places with left and right exchanged.
Places Reversed(const Places& places);

} // namespace bench
