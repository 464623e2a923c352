// Other programs: how they are found, what they get, and what they leave.

#include "platform/core/HandleTable.h"
#include "platform/testing/Testing.h"
#include "platform/tests/core/ChildProcess.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <set>
#include <sstream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace hand = tavrix::testing;
namespace fs = std::filesystem;

namespace
{

constexpr DWORD Patience = 10000;

bool Await(const std::function<bool()>& finished)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!finished()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

std::string ReadAll(const fs::path& path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

// A folder below the device's root, and shell scripts in it as programs.
class ProcessTest : public ::testing::Test
{
protected:
    ProcessTest() : home(hand::HostPath(TEXT("\\"))), folder(home + "/programs")
    {
        fs::create_directories(folder);
    }
    ~ProcessTest() override { fs::remove_all(folder); }

    void WriteProgram(const std::string& name, const std::string& lines)
    {
        std::ofstream(folder / name) << "#!/bin/sh\n" << lines << "\n";
        fs::permissions(folder / name, fs::perms::owner_all);
    }

    BOOL Start(const WCHAR* name, const WCHAR* commandLine = nullptr, DWORD flags = 0)
    {
        const std::u16string path = std::u16string(TEXT("\\programs\\")) + name;
        std::u16string line = commandLine != nullptr ? commandLine : u"";
        started = {};
        return CreateProcessW(path.c_str(), commandLine != nullptr ? line.data() : nullptr, nullptr,
                              nullptr, FALSE, flags, nullptr, nullptr, nullptr, &started);
    }

    // What a program that was started wrote, once it is over.
    std::string Output()
    {
        EXPECT_EQ(WaitForSingleObject(started.hProcess, Patience), WAIT_OBJECT_0);
        CloseHandle(started.hProcess);
        CloseHandle(started.hThread);
        return ReadAll(folder / "out");
    }

    fs::path HostProcess() const { return fs::path("/proc") / std::to_string(started.dwProcessId); }

    std::string OutFile() const { return "'" + (folder / "out").string() + "'"; }

    const std::string home;
    const fs::path folder;
    PROCESS_INFORMATION started{};
};

} // namespace

TEST_F(ProcessTest, AProgramIsFoundUnderThreeNamesOneAfterTheOther)
{
    WriteProgram("look", "echo small >" + OutFile());
    ASSERT_TRUE(Start(TEXT("Look.exe")));
    EXPECT_EQ(Output(), "small\n");
    WriteProgram("Look", "echo bare >" + OutFile());
    ASSERT_TRUE(Start(TEXT("Look.exe")));
    EXPECT_EQ(Output(), "bare\n");
    WriteProgram("Look.exe", "echo whole >" + OutFile());
    ASSERT_TRUE(Start(TEXT("Look.exe")));
    EXPECT_EQ(Output(), "whole\n");
}

TEST_F(ProcessTest, WhatIsNoProgramCannotBeStarted)
{
    EXPECT_FALSE(Start(TEXT("None.exe")));
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_FALSE(Start(TEXT("no\\such\\folder.exe")));
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    std::ofstream(folder / "text") << "#!/bin/sh\n";
    EXPECT_FALSE(Start(TEXT("Text.exe")));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    fs::create_directory(folder / "Folder");
    EXPECT_FALSE(Start(TEXT("Folder.exe")));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    // A folder does not stand in the way of the program behind it.
    WriteProgram("folder", "echo found >" + OutFile());
    ASSERT_TRUE(Start(TEXT("Folder.exe")));
    EXPECT_EQ(Output(), "found\n");
    PROCESS_INFORMATION information{};
    EXPECT_FALSE(CreateProcessW(nullptr, nullptr, nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                                nullptr, &information));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

TEST_F(ProcessTest, AProgramThatTheHostCannotRunIsToldAtOnceAndLeavesNoHandle)
{
    std::ofstream(folder / "broken") << "#!/no/such/interpreter\n";
    fs::permissions(folder / "broken", fs::perms::owner_all);
    const size_t before = tavrix::platform::CountHandles();
    EXPECT_FALSE(Start(TEXT("Broken.exe")));
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND); // the host's "no such file"
    EXPECT_EQ(tavrix::platform::CountHandles(), before);
}

TEST_F(ProcessTest, TheCommandLineIsOneArgumentAndADevicePathBecomesTheHosts)
{
    WriteProgram("tell", "printf '%s|' $# \"$@\" >" + OutFile());
    const std::string picture = folder.string() + "/二 枚目.png";
    const struct {
        const WCHAR* line;
        std::string expected;
    } cases[] = {
        {nullptr, "0|"},
        {TEXT(""), "0|"},
        {TEXT("\"\""), "0|"},
        {TEXT("two words"), "1|two words|"},
        {TEXT("\\programs\\二 枚目.png"), "1|" + picture + "|"},
        {TEXT("\"\\programs\\二 枚目.png\""), "1|" + picture + "|"},
        {TEXT("\\Computer\\etc\\none"), "1|/etc/none|"},
    };
    for (const auto& one : cases) {
        ASSERT_TRUE(Start(TEXT("tell"), one.line));
        EXPECT_EQ(Output(), one.expected);
    }
    const WCHAR half[] = {u'x', 0xD800, 0};
    EXPECT_FALSE(Start(TEXT("tell"), half));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

TEST_F(ProcessTest, ASuspendedProcessIsThereAndItsProgramBeginsWhenItIsResumed)
{
    WriteProgram("late", "echo ran >" + OutFile());
    ASSERT_TRUE(Start(TEXT("Late.exe"), nullptr, CREATE_SUSPENDED));
    EXPECT_EQ(kill(static_cast<pid_t>(started.dwProcessId), 0), 0);
    EXPECT_EQ(WaitForSingleObject(started.hProcess, 200), WAIT_TIMEOUT);
    EXPECT_FALSE(fs::exists(folder / "out"));
    EXPECT_EQ(ResumeThread(started.hThread), 1u);
    EXPECT_EQ(ResumeThread(started.hThread), 0u);
    EXPECT_EQ(Output(), "ran\n");
}

TEST_F(ProcessTest, ResumingTellsWhatIsNoThread)
{
    WriteProgram("now", "exit 0");
    ASSERT_TRUE(Start(TEXT("now")));
    EXPECT_EQ(ResumeThread(started.hThread), 0u);
    for (const HANDLE none : {HANDLE{}, INVALID_HANDLE_VALUE, started.hProcess}) {
        SetLastError(0);
        EXPECT_EQ(ResumeThread(none), 0xFFFFFFFFu);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    }
    const HANDLE own = CreateThread(
        nullptr, 0, [](LPVOID) -> DWORD { return 0; }, nullptr, 0, nullptr);
    EXPECT_EQ(ResumeThread(own), 0u);
    WaitForSingleObject(own, INFINITE);
    CloseHandle(own);
    (void)Output();
}

TEST_F(ProcessTest, AnEndedProgramLeavesNoDeadEntryThoughNobodyWaits)
{
    WriteProgram("brief", "exit 3");
    ASSERT_TRUE(Start(TEXT("Brief.exe"), nullptr, CREATE_SUSPENDED));
    ASSERT_EQ(ResumeThread(started.hThread), 1u);
    const auto process = static_cast<pid_t>(started.dwProcessId);
    // A dead entry would still take the signal.
    EXPECT_TRUE(Await([&] { return kill(process, 0) != 0; }));
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "no child is left";
}

TEST_F(ProcessTest, ASuspendedProcessThatNobodyCanResumeAnyMoreGoes)
{
    WriteProgram("never", "echo ran >" + OutFile());
    ASSERT_TRUE(Start(TEXT("never"), nullptr, CREATE_SUSPENDED));
    // Another one that waits must not hold its channel open.
    const PROCESS_INFORMATION first = started;
    ASSERT_TRUE(Start(TEXT("never"), nullptr, CREATE_SUSPENDED));
    CloseHandle(first.hThread);
    EXPECT_EQ(WaitForSingleObject(first.hProcess, Patience), WAIT_OBJECT_0);
    CloseHandle(first.hProcess);
    EXPECT_EQ(WaitForSingleObject(started.hProcess, 50), WAIT_TIMEOUT);
    CloseHandle(started.hThread);
    EXPECT_EQ(Output(), "");
}

TEST_F(ProcessTest, TheProgramGetsTheStandardDescriptorsAndOrdinarySignalsInASessionOfItsOwn)
{
    const int open = ::open("/dev/null", O_RDONLY); // to be inherited, were it not closed
    const int high = fcntl(open, F_DUPFD, 200);
    signal(SIGUSR1, SIG_IGN);
    sigset_t blocked;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR2);
    sigprocmask(SIG_BLOCK, &blocked, nullptr);
    WCHAR seconds[] = TEXT("60");
    ASSERT_TRUE(CreateProcessW(TEXT("\\Computer\\bin\\sleep"), seconds, nullptr, nullptr, FALSE, 0,
                               nullptr, nullptr, nullptr, &started));
    sigset_t now;
    sigprocmask(SIG_UNBLOCK, &blocked, &now);
    EXPECT_EQ(sigismember(&now, SIGUSR2), 1) << "the caller's own are as they were";
    signal(SIGUSR1, SIG_DFL);
    close(open);
    close(high);
    const auto process = static_cast<pid_t>(started.dwProcessId);
    // While it begins it reads libraries of its own; what it inherited would stay.
    std::set<std::string> descriptors;
    EXPECT_TRUE(Await([&] {
        descriptors.clear();
        for (const auto& entry : fs::directory_iterator(HostProcess() / "fd"))
            descriptors.insert(entry.path().filename());
        return descriptors == std::set<std::string>{"0", "1", "2"};
    })) << descriptors.size();
    const std::string status = ReadAll(HostProcess() / "status");
    for (const char* none : {"SigBlk:\t0000000000000000\n", "SigIgn:\t0000000000000000\n"})
        EXPECT_NE(status.find(none), status.npos) << status;
    EXPECT_EQ(getsid(process), process);
    kill(process, SIGKILL);
    (void)Output();
}

TEST_F(ProcessTest, OfAProcessThatEndsTheStartedProgramGoesOnAndTheSuspendedOneGoes)
{
    ChildProcess parent("starter");
    const auto running = static_cast<pid_t>(std::stol(parent.Line()));
    const auto suspended = static_cast<pid_t>(std::stol(parent.Line()));
    EXPECT_EQ(kill(running, 0), 0);
    EXPECT_EQ(kill(suspended, 0), 0);
    parent.Kill();
    EXPECT_TRUE(Await([&] {
        const std::string state = ReadAll("/proc/" + std::to_string(suspended) + "/stat");
        return state.empty() || state.find(") Z ") != state.npos;
    }));
    EXPECT_EQ(kill(running, 0), 0);
    kill(running, SIGKILL);
}
