#include "bench/program/Flow.h"

#include "platform/testing/core/TestPaths.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <poll.h>
#include <sstream>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace bench
{

namespace
{

const std::string folder = tavrix::testing::InBuild("/bench/program");

[[noreturn]] void Become(const std::vector<std::string>& steps, const std::string& memory,
                         const std::string& pages)
{
    const std::string home = folder + "/home";
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    setenv("HOME", home.c_str(), 1);
    setenv("XDG_DATA_HOME", (home + "/data").c_str(), 1);
    setenv("XDG_CONFIG_HOME", (home + "/config").c_str(), 1);
    setenv("XDG_RUNTIME_DIR", home.c_str(), 1);
    setenv("TAVRIX_SCREEN", "800x480", 1);
    setenv("TMPDIR", pages.c_str(), 1);
    unsetenv("TAVRIX_MEMORY");
    if (!memory.empty())
        setenv("TAVRIX_MEMORY", memory.c_str(), 1);
    const std::string program = folder + "/program-run";
    std::vector<char*> arguments = {const_cast<char*>(program.c_str())};
    for (const std::string& step : steps)
        arguments.push_back(const_cast<char*>(step.c_str()));
    arguments.push_back(nullptr);
    execv(program.c_str(), arguments.data());
    _exit(127);
}

/// Starts it with its output in the pipe, whose other end stays open.
pid_t Start(const std::vector<std::string>& steps, const std::string& memory,
            const std::string& pages, const int (&ends)[2])
{
    const pid_t child = fork();
    if (child == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL); // no flow outlives the bench
        dup2(ends[1], STDOUT_FILENO);
        close(ends[0]);
        close(ends[1]);
        Become(steps, memory, pages);
    }
    close(ends[1]);
    return child;
}

/// How it ended; empty for as it should.
std::string WaitFor(pid_t child)
{
    int status = 0;
    waitpid(child, &status, 0);
    if (WIFSIGNALED(status))
        return "killed by signal " + std::to_string(WTERMSIG(status));
    return status == 0 ? "" : "ended with " + std::to_string(WEXITSTATUS(status));
}

// A request to end would wait for the job under way, so that a process that takes too long is
// killed.
std::string ReadUntilEnd(int pipe, pid_t child, int secondsAtMost)
{
    using Clock = std::chrono::steady_clock;
    const auto limit = Clock::now() + std::chrono::seconds(secondsAtMost);
    std::string text;
    char part[4096];
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(limit - Clock::now());
        pollfd waiting = {pipe, POLLIN, 0};
        if (left.count() <= 0 || poll(&waiting, 1, static_cast<int>(left.count())) == 0) {
            kill(child, SIGKILL);
            return text;
        }
        const ssize_t got = read(pipe, part, sizeof part);
        if (got <= 0)
            return text;
        text.append(part, static_cast<size_t>(got));
    }
}

void Take(FlowResult* result, const std::string& line)
{
    std::istringstream in(line);
    std::string kind;
    in >> kind;
    if (kind == "step") {
        std::string name;
        int count = 1;
        StepFigures figures;
        long kilobytes = 0;
        in >> name >> count >> figures.seconds >> figures.processorSeconds >> kilobytes;
        figures.seconds /= count;
        figures.processorSeconds /= count;
        figures.peakMegabytes = static_cast<double>(kilobytes) / 1024;
        StepFigures& kept = result->steps[name];
        if (figures.seconds > kept.seconds) {
            kept.seconds = figures.seconds;
            kept.processorSeconds = figures.processorSeconds;
        }
        kept.peakMegabytes = std::max(kept.peakMegabytes, figures.peakMegabytes);
        result->peakMegabytes = std::max(result->peakMegabytes, figures.peakMegabytes);
    } else if (kind == "check") {
        Places places;
        in >> std::dec >> places.width >> places.height >> std::hex;
        for (unsigned& color : places.colors)
            in >> color;
        result->checks.push_back(places);
    } else if (kind == "fault") {
        result->fault = line.substr(6);
    }
}

} // namespace

FlowResult RunFlow(const std::vector<std::string>& steps, const std::string& memory,
                   const std::string& pages, int secondsAtMost)
{
    std::filesystem::create_directories(folder + "/home");
    std::filesystem::permissions(folder + "/home", std::filesystem::perms::owner_all);
    std::filesystem::create_directories(pages);
    FlowResult result;
    int ends[2] = {};
    if (pipe(ends) != 0) {
        result.fault = "no pipe";
        return result;
    }
    const pid_t child = Start(steps, memory, pages, ends);
    const std::string text = ReadUntilEnd(ends[0], child, secondsAtMost);
    close(ends[0]);
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        Take(&result, line);
    const std::string end = WaitFor(child);
    if (result.fault.empty())
        result.fault = end;
    return result;
}

bool Alike(const Places& one, const Places& other, int tolerance)
{
    bool alike = one.width == other.width && one.height == other.height;
    for (int i = 0; i < 4; ++i)
        for (const int shift : {0, 8, 16}) {
            const int first = static_cast<int>(one.colors[i] >> shift & 255);
            const int second = static_cast<int>(other.colors[i] >> shift & 255);
            alike = alike && std::abs(first - second) <= tolerance;
        }
    return alike;
}

Places Turned(const Places& places)
{
    const unsigned* const c = places.colors;
    return {places.height, places.width, {c[1], c[3], c[0], c[2]}};
}

Places Reversed(const Places& places)
{
    const unsigned* const c = places.colors;
    return {places.width, places.height, {c[1], c[0], c[3], c[2]}};
}

} // namespace bench
