#include "kit/check/ChildProcess.h"

#include "kit/check/ProcessorWait.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace plugincheck
{

namespace
{

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr size_t MostErrors = 64 * 1024;
constexpr int PollMilliseconds = 5;
constexpr std::chrono::milliseconds WaitInterval{50}; // between two looks at the scheduler's count
constexpr int MostStretch = 10;                       // of the limit, however busy the machine

bool inChild = false;

bool MakeHome(const std::string& home)
{
    std::error_code error;
    for (const char* part : {"", "/data", "/config", "/runtime", "/tmp", "/here"})
        fs::create_directories(home + part, error);
    fs::permissions(home + "/runtime", fs::perms::owner_all, error);
    return !error;
}

void SettleIn(const std::string& home, int errors)
{
    inChild = true;
    // Ends with the checker even where that is killed.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    setpgid(0, 0);
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
    signal(SIGPIPE, SIG_IGN);

    const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
    dup2(nothing, STDIN_FILENO);
    dup2(nothing, STDOUT_FILENO);
    dup2(errors, STDERR_FILENO);

    setenv("HOME", home.c_str(), 1);
    setenv("XDG_DATA_HOME", (home + "/data").c_str(), 1);
    setenv("XDG_CONFIG_HOME", (home + "/config").c_str(), 1);
    setenv("XDG_RUNTIME_DIR", (home + "/runtime").c_str(), 1);
    setenv("TMPDIR", (home + "/tmp").c_str(), 1);
    if (chdir((home + "/here").c_str()) != 0)
        _exit(1);
}

void TakeErrors(int pipe, std::string* errors)
{
    char buffer[4096];
    for (ssize_t got = read(pipe, buffer, sizeof buffer); got > 0;
         got = read(pipe, buffer, sizeof buffer))
        if (errors->size() < MostErrors)
            errors->append(buffer, static_cast<size_t>(got));
}

/// A child's time, less what it waited for a processor.
class Limit
{
public:
    Limit(pid_t child, double seconds)
        : start(Clock::now()), lastLook(start), waited(0), wait(child),
          limit(std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds)))
    {
    }

    bool IsReached()
    {
        const Clock::time_point now = Clock::now();
        if (now - lastLook >= WaitInterval) {
            waited += wait.Since();
            lastLook = now;
        }
        const Clock::duration taken = now - start;
        return taken - waited >= limit || taken >= MostStretch * limit;
    }

private:
    Clock::time_point start;
    Clock::time_point lastLook;
    Clock::duration waited;
    ProcessorWait wait;
    Clock::duration limit;
};

ChildOutcome Watch(pid_t child, int pipe, double seconds)
{
    ChildOutcome outcome;
    Limit limit(child, seconds);
    int status = 0;
    while (waitpid(child, &status, WNOHANG) == 0) {
        if (limit.IsReached()) {
            outcome.how = ChildOutcome::TimedOut;
            kill(-child, SIGKILL);
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            TakeErrors(pipe, &outcome.errors);
            return outcome;
        }
        pollfd waiting{pipe, POLLIN, 0};
        poll(&waiting, 1, PollMilliseconds);
        TakeErrors(pipe, &outcome.errors);
        // A child that closed its standard error must not make this loop spin.
        if ((waiting.revents & POLLHUP) != 0)
            usleep(200);
    }
    // What the plugin started on its own goes too.
    kill(-child, SIGKILL);
    TakeErrors(pipe, &outcome.errors);
    if (WIFSIGNALED(status)) {
        outcome.how = ChildOutcome::Killed;
        outcome.number = WTERMSIG(status);
    } else {
        outcome.number = WEXITSTATUS(status);
        outcome.how = outcome.number == WorkDone ? ChildOutcome::Returned : ChildOutcome::Exited;
    }
    return outcome;
}

} // namespace

ChildOutcome RunChild(const ChildPlan& plan)
{
    static unsigned number = 0;
    ChildOutcome outcome;
    const std::string home = plan.folder + "/" + std::to_string(number++);
    int ends[2];
    if (!MakeHome(home) || pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0)
        return outcome;
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        SettleIn(home, ends[1]);
        plan.work();
        EndChild();
    }
    close(ends[1]);
    if (child > 0)
        outcome = Watch(child, ends[0], plan.seconds);
    close(ends[0]);
    std::error_code ignored;
    fs::remove_all(home, ignored);
    return outcome;
}

bool IsChild()
{
    return inChild;
}

void EndChild()
{
    _exit(WorkDone);
}

std::string SignalText(int number)
{
    switch (number) {
    case SIGSEGV:
        return "a segmentation fault";
    case SIGBUS:
        return "a bus error";
    case SIGFPE:
        return "an arithmetic fault such as a division by zero";
    case SIGILL:
        return "an illegal instruction";
    case SIGABRT:
        return "abort()";
    case SIGTRAP:
        return "a trap";
    case SIGKILL:
        return "a kill, perhaps for lack of memory";
    default:
        return "signal " + std::to_string(number);
    }
}

std::string SanitizerText(const std::string& errors)
{
    const std::string tool = "Sanitizer: ";
    const size_t found = errors.find(tool);
    if (found != std::string::npos) {
        const size_t start = found + tool.size();
        return errors.substr(start, errors.find_first_of(" \n", start) - start);
    }
    const std::string undefined = "runtime error: ";
    const size_t other = errors.find(undefined);
    if (other == std::string::npos)
        return {};
    const size_t start = other + undefined.size();
    return errors.substr(start, errors.find('\n', start) - start);
}

} // namespace plugincheck
