// Threads, last errors, waiting and the identities of threads and processes.

#include <windows.h>

#include <gtest/gtest.h>

#include <unistd.h>

#include <atomic>
#include <vector>

namespace
{

DWORD Return77(LPVOID)
{
    return 77;
}

std::atomic<bool> mayEnd{false};

DWORD WaitUntilAllowed(LPVOID)
{
    while (!mayEnd)
        Sleep(1);
    return 5;
}

DWORD TellOwnId(LPVOID out)
{
    *static_cast<DWORD*>(out) = GetCurrentThreadId();
    return 0;
}

DWORD SpoilLastError(LPVOID)
{
    SetLastError(123);
    return GetLastError();
}

DWORD ReturnParameter(LPVOID parameter)
{
    return static_cast<DWORD>(reinterpret_cast<uintptr_t>(parameter));
}

std::atomic<bool> lateDestructorRan{false};

struct Late {
    ~Late()
    {
        Sleep(50);
        lateDestructorRan = true;
    }
};

DWORD LeaveALateVariable(LPVOID)
{
    thread_local Late late;
    (void)&late;
    return 0;
}

TEST(Threads, TheExitCodeIsWhatTheRoutineReturned)
{
    const HANDLE thread = CreateThread(nullptr, 0, Return77, nullptr, 0, nullptr);
    ASSERT_NE(thread, nullptr);
    EXPECT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
    DWORD code = 0;
    EXPECT_TRUE(GetExitCodeThread(thread, &code));
    EXPECT_EQ(code, 77u);
    // A thread stays signalled.
    EXPECT_EQ(WaitForSingleObject(thread, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(CloseHandle(thread));
    EXPECT_EQ(WaitForSingleObject(thread, 0), WAIT_FAILED);
}

TEST(Threads, ARunningThreadIsStillActiveAndAWaitForItTimesOut)
{
    mayEnd = false;
    const HANDLE thread = CreateThread(nullptr, 0, WaitUntilAllowed, nullptr, 0, nullptr);
    DWORD code = 0;
    EXPECT_TRUE(GetExitCodeThread(thread, &code));
    EXPECT_EQ(code, 259u);
    EXPECT_EQ(WaitForSingleObject(thread, 0), WAIT_TIMEOUT);
    const DWORD before = GetTickCount();
    EXPECT_EQ(WaitForSingleObject(thread, 30), WAIT_TIMEOUT);
    EXPECT_GE(GetTickCount() - before, 29u);
    mayEnd = true;
    EXPECT_EQ(WaitForSingleObject(thread, 10000), WAIT_OBJECT_0);
    EXPECT_TRUE(GetExitCodeThread(thread, &code));
    EXPECT_EQ(code, 5u);
    CloseHandle(thread);
}

TEST(Threads, TheCreatorLearnsTheIdThatTheThreadHas)
{
    DWORD toldToCreator = 0;
    DWORD seenInside = 0;
    const HANDLE thread = CreateThread(nullptr, 0, TellOwnId, &seenInside, 0, &toldToCreator);
    WaitForSingleObject(thread, INFINITE);
    EXPECT_NE(toldToCreator, 0u);
    EXPECT_EQ(toldToCreator, seenInside);
    EXPECT_NE(toldToCreator, GetCurrentThreadId());
    CloseHandle(thread);
}

TEST(Threads, AThreadRunsOnWhenItsHandleIsClosed)
{
    static std::atomic<int> ran;
    ran = 0;
    const auto count = [](LPVOID) -> DWORD {
        Sleep(20);
        return static_cast<DWORD>(++ran);
    };
    const HANDLE thread = CreateThread(nullptr, 0, count, nullptr, 0, nullptr);
    EXPECT_TRUE(CloseHandle(thread));
    for (int tries = 0; ran == 0 && tries < 1000; ++tries)
        Sleep(10);
    EXPECT_EQ(ran, 1);
}

TEST(Threads, AWaitSeesTheVeryEndOfTheThread)
{
    lateDestructorRan = false;
    const HANDLE thread = CreateThread(nullptr, 0, LeaveALateVariable, nullptr, 0, nullptr);
    EXPECT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
    EXPECT_TRUE(lateDestructorRan);
    CloseHandle(thread);
}

TEST(Threads, ManyThreadsEachReturnTheirOwnParameter)
{
    std::vector<HANDLE> threads;
    for (uintptr_t number = 0; number < 100; ++number)
        threads.push_back(CreateThread(nullptr, 65536, ReturnParameter,
                                       reinterpret_cast<void*>(number), 0, nullptr));
    for (DWORD number = 0; number < 100; ++number) {
        DWORD code = 9999;
        EXPECT_EQ(WaitForSingleObject(threads[number], 10000), WAIT_OBJECT_0);
        EXPECT_TRUE(GetExitCodeThread(threads[number], &code));
        EXPECT_EQ(code, number);
        CloseHandle(threads[number]);
    }
}

TEST(Threads, ASuspendedStartAndANullRoutineAreRefused)
{
    EXPECT_EQ(CreateThread(nullptr, 0, Return77, nullptr, CREATE_SUSPENDED, nullptr), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    SetLastError(0);
    EXPECT_EQ(CreateThread(nullptr, 0, nullptr, nullptr, 0, nullptr), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

TEST(Threads, TheExitCodeOfWhatIsNoThreadIsRefused)
{
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    DWORD code = 1;
    EXPECT_FALSE(GetExitCodeThread(event, &code));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_FALSE(GetExitCodeThread(nullptr, &code));
    CloseHandle(event);
}

TEST(Threads, WaitingForWhatIsNoObjectFails)
{
    for (const HANDLE handle : {static_cast<HANDLE>(nullptr), INVALID_HANDLE_VALUE,
                                reinterpret_cast<HANDLE>(static_cast<uintptr_t>(0x12345))}) {
        SetLastError(0);
        EXPECT_EQ(WaitForSingleObject(handle, INFINITE), WAIT_FAILED);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    }
}

TEST(LastError, EachThreadHasItsOwn)
{
    SetLastError(7);
    const HANDLE thread = CreateThread(nullptr, 0, SpoilLastError, nullptr, 0, nullptr);
    WaitForSingleObject(thread, INFINITE);
    DWORD code = 0;
    GetExitCodeThread(thread, &code);
    EXPECT_EQ(code, 123u);
    EXPECT_EQ(GetLastError(), 7u);
    CloseHandle(thread);
}

TEST(Threads, TheProcessIdIsTheHosts)
{
    EXPECT_EQ(GetCurrentProcessId(), static_cast<DWORD>(getpid()));
}

TEST(Threads, SleepLastsAsLongAsAsked)
{
    const DWORD before = GetTickCount();
    Sleep(40);
    EXPECT_GE(GetTickCount() - before, 39u);
}

} // namespace
