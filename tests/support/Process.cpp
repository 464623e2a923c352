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

ProcessResult RunTavrix(const std::vector<std::string>& arguments,
                        const std::map<std::string, std::string>& environment,
                        const std::function<void(int)>& whileRunning, const std::string& program,
                        int secondsAtMost)
{
    const std::string outputFile = TestHome() + "/output.txt";
    const pid_t child = fork();
    if (child == 0) {
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

    ProcessResult result;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(secondsAtMost);
    int status = 0;
    rusage usage = {};
    while (wait4(child, &status, WNOHANG, &usage) == 0) {
        if (whileRunning)
            whileRunning(child);
        if (std::chrono::steady_clock::now() > end) {
            kill(child, SIGKILL);
            wait4(child, &status, 0, &usage);
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(3));
    }
    if (WIFEXITED(status))
        result.exitCode = WEXITSTATUS(status);
    result.peakResidentKilobytes = usage.ru_maxrss;
    std::ostringstream text;
    text << std::ifstream(outputFile).rdbuf();
    result.output = text.str();
    return result;
}

} // namespace tavrix::testing
