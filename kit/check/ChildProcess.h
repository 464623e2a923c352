// One check in a process of its own, with a home folder of its own, no display and a time limit, so
// that no plugin can take the checking program down with it: whatever it does, the answer is an
// outcome.
#pragma once

#include <functional>
#include <string>

namespace plugincheck
{

struct ChildOutcome {
    enum How { Returned, Exited, Killed, TimedOut, NotStarted };
    How how = NotStarted;
    int number = 0;     // the exit status or the signal
    std::string errors; // what it wrote to standard error, at most its first 64 kilobytes
};

struct ChildPlan {
    /// The work. Behind it the process ends with a status of its own, without the end of a program:
    /// a plugin's exit() is told from it by what the work noted.
    std::function<void()> work;
    /// What it may take. On a busy machine the wait for a processor does not count, but for ten
    /// times as long at most.
    double seconds = 20;
    /// A folder of this run; the child gets one of its own in it, which is removed behind it.
    std::string folder;
};

/// Runs the plan to its end. What the child started dies with it.
ChildOutcome RunChild(const ChildPlan& plan);

/// The child's status when its work came to its end.
inline constexpr int WorkDone = 93;

/// Ends a child at once from inside of its work.
[[noreturn]] void EndChild();

/// Whether this process is such a child.
bool IsChild();

/// "a segmentation fault" and the like.
std::string SignalText(int signal);
/// What a sanitizer said before it ended a process, such as "heap-buffer-overflow"; empty when none
/// did.
std::string SanitizerText(const std::string& errors);

} // namespace plugincheck
