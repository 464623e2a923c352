#include "platform/tests/core/ChildProcess.h"

#include "platform/tests/core/ChildRoles.h"

#include <windows.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <cstring>

#include "platform/testing/core/TestPaths.h"

extern char** environ;

void Tell(const std::string& line)
{
    const std::string text = line + "\n";
    if (write(STDOUT_FILENO, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        _exit(3);
}

void Tell(unsigned long long number)
{
    Tell(std::to_string(number));
}

void WaitToGoOn()
{
    char byte = 0;
    if (read(STDIN_FILENO, &byte, 1) < 0)
        _exit(4);
}

namespace
{

constexpr const char* RoleName = "TAVRIX_CORE_TEST_ROLE";

// Makes the mutex as its owner, tells the last error, keeps it until told.
void HoldMutex()
{
    const HANDLE mutex = CreateMutexW(nullptr, TRUE, TEXT("Core_Test_Mutex"));
    const DWORD error = GetLastError();
    Tell(mutex == nullptr ? 9999 : error);
    WaitToGoOn();
    Tell(ReleaseMutex(mutex) ? 1 : 0);
    WaitToGoOn();
}

// Opens the mutex, tells the last error and whether it could be owned within 100 ms.
void TryMutex()
{
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, TEXT("Core_Test_Mutex"));
    Tell(GetLastError());
    Tell(WaitForSingleObject(mutex, 100));
    WaitToGoOn();
}

void TellMemory()
{
    MEMORYSTATUS status{};
    GlobalMemoryStatus(&status);
    Tell(status.dwAvailPhys);
    Tell(status.dwTotalPhys);
}

void TellAvailable()
{
    MEMORYSTATUS status{};
    GlobalMemoryStatus(&status);
    Tell(status.dwAvailPhys);
}

void TellMemoryWhileHolding()
{
    const HANDLE heap = HeapCreate(0, 0, 0);
    (void)HeapAlloc(heap, 0, 1000000);
    TellAvailable();
    const HGLOBAL block = GlobalAlloc(GMEM_FIXED, 2000000);
    TellAvailable();
    HeapDestroy(heap);
    TellAvailable();
    GlobalFree(block);
    TellAvailable();
    (void)GlobalAlloc(GMEM_FIXED, 20000000);
    TellAvailable();
}

void TellLanguage()
{
    Tell(GetSystemDefaultLangID());
}

// Starts a program that goes on and one that stays suspended, tells their numbers and waits.
void StartPrograms()
{
    WCHAR seconds[] = TEXT("60");
    PROCESS_INFORMATION running{};
    PROCESS_INFORMATION suspended{};
    for (PROCESS_INFORMATION* started : {&running, &suspended}) {
        const DWORD flags = started == &suspended ? CREATE_SUSPENDED : 0;
        if (!CreateProcessW(TEXT("\\Computer\\bin\\sleep"), seconds, nullptr, nullptr, FALSE, flags,
                            nullptr, nullptr, nullptr, started))
            _exit(5);
        Tell(started->dwProcessId);
    }
    WaitToGoOn();
}

std::string Self()
{
    char path[4096];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
    if (length < 0)
        std::abort();
    return std::string(path, static_cast<size_t>(length));
}

struct Role {
    const char* name;
    void (*play)();
};

const struct Start {
    Start()
    {
        const Role roles[] = {{"hold-mutex", HoldMutex},
                              {"try-mutex", TryMutex},
                              {"memory", TellMemory},
                              {"memory-held", TellMemoryWhileHolding},
                              {"language", TellLanguage},
                              {"window", ShowWindowToOthers},
                              {"window-until-told", ShowWindowUntilTold},
                              {"window-unserved", ShowWindowThatNobodyServes},
                              {"window-retitled", ShowWindowThatChanges},
                              {"window-until-quit", ShowWindowUntilQuit},
                              {"sender", SendToWindow},
                              {"starter", StartPrograms}};
        const char* wanted = std::getenv(RoleName);
        if (wanted == nullptr)
            return;
        for (const Role& role : roles)
            if (std::strcmp(role.name, wanted) == 0) {
                role.play();
                _exit(0);
            }
        _exit(2);
    }
} start;

} // namespace

ChildProcess::ChildProcess(const std::string& role, const std::vector<std::string>& settings)
{
    int in[2];
    int out[2];
    if (pipe2(in, O_CLOEXEC) != 0 || pipe2(out, O_CLOEXEC) != 0)
        std::abort();
    std::vector<std::string> texts = settings;
    texts.push_back(std::string(RoleName) + "=" + role);
    std::vector<char*> environment;
    for (std::string& text : texts)
        environment.push_back(text.data());
    // Those given stand in place of inherited ones.
    for (char** inherited = environ; *inherited != nullptr; ++inherited) {
        bool replaced = false;
        for (const std::string& text : texts)
            replaced = replaced || std::strncmp(*inherited, text.c_str(), text.find('=') + 1) == 0;
        if (!replaced)
            environment.push_back(*inherited);
    }
    environment.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    // A test program of another machine's kind cannot be started without what runs it.
    std::vector<std::string> words = tavrix::testing::TestEmulator();
    words.push_back(Self());
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    pid_t started = -1;
    if (posix_spawn(&started, words[0].c_str(), &actions, nullptr, arguments.data(),
                    environment.data()) != 0)
        std::abort();
    posix_spawn_file_actions_destroy(&actions);
    close(in[0]);
    close(out[1]);
    process = started;
    toChild = in[1];
    fromChild = out[0];
}

ChildProcess::~ChildProcess()
{
    Kill();
    close(toChild);
    close(fromChild);
}

std::string ChildProcess::Line()
{
    std::string line;
    char byte = 0;
    while (read(fromChild, &byte, 1) == 1 && byte != '\n')
        line.push_back(byte);
    return line;
}

void ChildProcess::GoOn()
{
    if (write(toChild, "\n", 1) != 1)
        std::abort();
}

void ChildProcess::Signal(int number)
{
    kill(process, number);
}

int ChildProcess::Wait()
{
    int status = 0;
    waitpid(process, &status, 0);
    process = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void ChildProcess::Kill()
{
    if (process < 0)
        return;
    kill(process, SIGKILL);
    int status = 0;
    waitpid(process, &status, 0);
    process = -1;
}
