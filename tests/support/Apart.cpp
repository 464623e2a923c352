#include "tests/support/Apart.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace tavrix::testing
{

namespace
{

namespace fs = std::filesystem;

void SettleIn(const std::string& home)
{
    const int output = open((home + "/output.txt").c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0600);
    dup2(output, STDOUT_FILENO);
    dup2(output, STDERR_FILENO);
    setenv("HOME", home.c_str(), 1);
    setenv("XDG_DATA_HOME", (home + "/data").c_str(), 1);
    setenv("XDG_CONFIG_HOME", (home + "/config").c_str(), 1);
    setenv("XDG_RUNTIME_DIR", (home + "/runtime").c_str(), 1);
    setenv("TMPDIR", (home + "/tmp").c_str(), 1);
}

} // namespace

Apart::Apart(const std::string& homeFolder, const std::function<int()>& work, int secondsAtMost)
    : home(homeFolder),
      limit(std::chrono::steady_clock::now() + std::chrono::seconds(secondsAtMost))
{
    fs::create_directories(home + "/tmp");
    fs::create_directories(home + "/runtime");
    fs::permissions(home + "/runtime", fs::perms::owner_all);
    std::fflush(nullptr);
    child = fork();
    if (child == 0) {
        SettleIn(home);
        const int code = work();
        std::fflush(nullptr);
        _exit(code & 0xFF);
    }
}

Apart::~Apart()
{
    if (!ended) {
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
    }
}

bool Apart::HasEnded()
{
    if (ended)
        return true;
    int status = 0;
    if (waitpid(child, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() < limit)
            return false;
        result.timedOut = true;
        kill(child, SIGKILL);
        waitpid(child, &status, 0);
    }
    ended = true;
    if (WIFEXITED(status))
        result.exitCode = WEXITSTATUS(status);
    else if (WIFSIGNALED(status))
        result.signal = WTERMSIG(status);
    std::ostringstream text;
    text << std::ifstream(home + "/output.txt").rdbuf();
    result.output = text.str();
    return true;
}

const ApartResult& Apart::Result()
{
    while (!HasEnded())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return result;
}

} // namespace tavrix::testing
