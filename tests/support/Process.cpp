#include "tests/support/Process.h"

#include "platform/testing/core/TestHome.h"

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace tavrix::testing
{

BackgroundProcess::BackgroundProcess(const std::vector<std::string>& arguments,
                                     const std::map<std::string, std::string>& environment,
                                     const std::string& program)
{
    static int started = 0;
    outputFile = TestHome() + "/output-" + std::to_string(++started) + ".txt";
    process = fork();
    if (process != 0)
        return;
    const int output = open(outputFile.c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0600);
    dup2(output, STDOUT_FILENO);
    dup2(output, STDERR_FILENO);
    for (const auto& [name, value] : environment)
        setenv(name.c_str(), value.c_str(), 1);
    std::vector<char*> list;
    list.push_back(const_cast<char*>(program.c_str()));
    for (const std::string& argument : arguments)
        list.push_back(const_cast<char*>(argument.c_str()));
    list.push_back(nullptr);
    execv(program.c_str(), list.data());
    _exit(127);
}

BackgroundProcess::~BackgroundProcess()
{
    if (HasEnded())
        return;
    Signal(SIGKILL);
    (void)Wait();
}

void BackgroundProcess::Signal(int number) const
{
    if (process > 0)
        kill(process, number);
}

bool BackgroundProcess::HasEnded()
{
    if (process < 0)
        return true;
    int status = 0;
    rusage usage = {};
    if (wait4(process, &status, WNOHANG, &usage) == 0)
        return false;
    process = -1;
    if (WIFEXITED(status))
        result.exitCode = WEXITSTATUS(status);
    result.peakResidentKilobytes = usage.ru_maxrss;
    std::ostringstream text;
    text << std::ifstream(outputFile).rdbuf();
    result.output = text.str();
    return true;
}

ProcessResult BackgroundProcess::Wait(int secondsAtMost)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(secondsAtMost);
    while (!HasEnded()) {
        if (std::chrono::steady_clock::now() > end)
            Signal(SIGKILL);
        std::this_thread::sleep_for(std::chrono::milliseconds(3));
    }
    return result;
}

ProcessResult RunTavrix(const std::vector<std::string>& arguments,
                        const std::map<std::string, std::string>& environment,
                        const std::function<void(int)>& whileRunning, const std::string& program,
                        int secondsAtMost)
{
    BackgroundProcess process(arguments, environment, program);
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(secondsAtMost);
    while (whileRunning && !process.HasEnded() && std::chrono::steady_clock::now() < end) {
        whileRunning(process.Id());
        std::this_thread::sleep_for(std::chrono::milliseconds(3));
    }
    return process.Wait(whileRunning ? 0 : secondsAtMost);
}

} // namespace tavrix::testing
