// The program as a process of its own, as a user starts it: with arguments and an environment, in
// the headless platform, until it ends.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/testing/core/TestPaths.h"

namespace tavrix::testing
{

struct ProcessResult {
    int exitCode = -1;  // -1 when it was killed or did not end in time
    std::string output; // standard output and standard error together
    long peakResidentKilobytes = 0;
};

/// The program as the build made it, with its plugins beside it.
inline const std::string BuiltProgram = tavrix::testing::InBuild("/bin/tavrix");

/// Runs a program, by default the built one. `whileRunning` is called every few milliseconds with
/// the process id.
ProcessResult RunTavrix(const std::vector<std::string>& arguments,
                        const std::map<std::string, std::string>& environment,
                        const std::function<void(int)>& whileRunning = {},
                        const std::string& program = BuiltProgram, int secondsAtMost = 100);

/// A program that runs beside the test. Killed at its end if it still runs then.
class BackgroundProcess
{
public:
    explicit BackgroundProcess(const std::vector<std::string>& arguments,
                               const std::map<std::string, std::string>& environment = {},
                               const std::string& program = BuiltProgram);
    ~BackgroundProcess();
    BackgroundProcess(const BackgroundProcess&) = delete;
    BackgroundProcess& operator=(const BackgroundProcess&) = delete;

    int Id() const { return process; }
    /// Sends it a signal of the host.
    void Signal(int number) const;
    /// Looks, without waiting.
    bool HasEnded();
    /// Waits until it ends and answers how; kills it when that takes too long.
    ProcessResult Wait(int secondsAtMost = 100);

private:
    int process = -1; // -1 once it has ended
    std::string outputFile;
    ProcessResult result;
};

} // namespace tavrix::testing
