// Mutexes in one process, and named ones between processes.

#include "platform/tests/core/ChildProcess.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace
{

constexpr const WCHAR* Name = TEXT("Core_Test_Mutex");

TEST(Mutexes, OneThreadMayTakeItAgainAndMustGiveItBackAsOften)
{
    const HANDLE mutex = CreateMutexW(nullptr, TRUE, nullptr);
    ASSERT_NE(mutex, nullptr);
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    const auto tryElsewhere = [mutex] {
        DWORD result = WAIT_FAILED;
        std::thread([mutex, &result] {
            result = WaitForSingleObject(mutex, 20);
            if (result == WAIT_OBJECT_0)
                ReleaseMutex(mutex);
        }).join();
        return result;
    };
    EXPECT_EQ(tryElsewhere(), WAIT_TIMEOUT);
    EXPECT_TRUE(ReleaseMutex(mutex));
    EXPECT_EQ(tryElsewhere(), WAIT_TIMEOUT);
    EXPECT_TRUE(ReleaseMutex(mutex));
    EXPECT_EQ(tryElsewhere(), WAIT_OBJECT_0);
    // Not owned any more.
    EXPECT_FALSE(ReleaseMutex(mutex));
    EXPECT_EQ(GetLastError(), 288u);
    CloseHandle(mutex);
}

TEST(Mutexes, OnlyOneThreadIsInsideAtATime)
{
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, nullptr);
    int unguarded = 0;
    const auto count = [mutex, &unguarded] {
        for (int turn = 0; turn < 500; ++turn) {
            WaitForSingleObject(mutex, INFINITE);
            ++unguarded;
            ReleaseMutex(mutex);
        }
    };
    std::thread first(count);
    std::thread second(count);
    first.join();
    second.join();
    EXPECT_EQ(unguarded, 1000);
    CloseHandle(mutex);
}

TEST(Mutexes, OneWhoseOwnerEndedIsReportedAsAbandonedOnce)
{
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, nullptr);
    std::thread([mutex] { WaitForSingleObject(mutex, INFINITE); }).join();
    EXPECT_EQ(WaitForSingleObject(mutex, 5000), WAIT_ABANDONED);
    EXPECT_TRUE(ReleaseMutex(mutex));
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    CloseHandle(mutex);
}

TEST(Mutexes, ANameExistsAsLongAsAHandleToItDoes)
{
    const HANDLE first = CreateMutexW(nullptr, TRUE, TEXT("Own_Process"));
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    const HANDLE second = CreateMutexW(nullptr, TRUE, TEXT("Own_Process"));
    EXPECT_NE(second, nullptr);
    EXPECT_NE(second, first);
    EXPECT_EQ(GetLastError(), 183u);
    EXPECT_TRUE(CloseHandle(first));
    const HANDLE third = CreateMutexW(nullptr, TRUE, TEXT("Own_Process"));
    EXPECT_EQ(GetLastError(), 183u);
    CloseHandle(second);
    CloseHandle(third);
    const HANDLE fourth = CreateMutexW(nullptr, TRUE, TEXT("Own_Process"));
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    // Another spelling is another name.
    const HANDLE other = CreateMutexW(nullptr, TRUE, TEXT("own_process"));
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    CloseHandle(other);
    CloseHandle(fourth);
}

TEST(Mutexes, AnotherLiveProcessKeepsTheNameAndAKilledOneDoesNot)
{
    ChildProcess holder("hold-mutex");
    EXPECT_EQ(holder.Line(), "0");
    const HANDLE second = CreateMutexW(nullptr, TRUE, Name);
    EXPECT_NE(second, nullptr);
    EXPECT_EQ(GetLastError(), 183u);
    // The handle of a name that existed is not owned, whatever was asked.
    EXPECT_EQ(WaitForSingleObject(second, 0), WAIT_TIMEOUT);
    CloseHandle(second);
    holder.Kill();
    const HANDLE third = CreateMutexW(nullptr, TRUE, Name);
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    CloseHandle(third);
}

TEST(Mutexes, ASecondProcessKeepsTheNameAfterTheFirstHasGone)
{
    ChildProcess first("hold-mutex");
    EXPECT_EQ(first.Line(), "0");
    ChildProcess second("try-mutex");
    EXPECT_EQ(second.Line(), "183");
    EXPECT_EQ(second.Line(), "258");
    first.Kill();
    ChildProcess third("try-mutex");
    EXPECT_EQ(third.Line(), "183");
    EXPECT_EQ(third.Line(), "0");
}

TEST(Mutexes, OwnershipIsHandedFromProcessToProcess)
{
    ChildProcess holder("hold-mutex");
    EXPECT_EQ(holder.Line(), "0");
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, Name);
    EXPECT_EQ(GetLastError(), 183u);
    EXPECT_EQ(WaitForSingleObject(mutex, 30), WAIT_TIMEOUT);
    holder.GoOn();
    EXPECT_EQ(holder.Line(), "1");
    EXPECT_EQ(WaitForSingleObject(mutex, 10000), WAIT_OBJECT_0);
    ChildProcess other("try-mutex");
    EXPECT_EQ(other.Line(), "183");
    EXPECT_EQ(other.Line(), "258");
    EXPECT_TRUE(ReleaseMutex(mutex));
    ChildProcess last("try-mutex");
    EXPECT_EQ(last.Line(), "183");
    EXPECT_EQ(last.Line(), "0");
    CloseHandle(mutex);
}

TEST(Mutexes, OtherDisplaysOtherRuntimeFoldersAndPictureRunsHaveNamesOfTheirOwn)
{
    ChildProcess holder("hold-mutex");
    EXPECT_EQ(holder.Line(), "0");
    ChildProcess sameDisplay("hold-mutex");
    EXPECT_EQ(sameDisplay.Line(), "183");
    ChildProcess otherDisplay("hold-mutex", {"DISPLAY=:7"});
    EXPECT_EQ(otherDisplay.Line(), "0");
    // One display of the X server by two spellings.
    ChildProcess otherDisplayAgain("hold-mutex", {"DISPLAY=:7.0"});
    EXPECT_EQ(otherDisplayAgain.Line(), "183");
    ChildProcess picture("hold-mutex", {"TAVRIX_SHOT=/nowhere/shot.png"});
    EXPECT_EQ(picture.Line(), "0");
    ChildProcess otherPicture("hold-mutex", {"TAVRIX_SHOT=/nowhere/shot.png"});
    EXPECT_EQ(otherPicture.Line(), "0");
}

TEST(Mutexes, ManyStartsAtOnceHaveExactlyOneFirst)
{
    for (int round = 0; round < 3; ++round) {
        std::atomic<int> firsts{0};
        std::vector<std::unique_ptr<ChildProcess>> children;
        for (int number = 0; number < 6; ++number)
            children.push_back(std::make_unique<ChildProcess>("hold-mutex"));
        for (const auto& child : children)
            firsts += child->Line() == "0" ? 1 : 0;
        EXPECT_EQ(firsts, 1);
    }
}

TEST(Mutexes, ANameTooLongAndAHandleOfAnotherKindAreRefused)
{
    const std::u16string longest(260, u'n');
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, longest.c_str());
    EXPECT_NE(mutex, nullptr);
    CloseHandle(mutex);
    EXPECT_EQ(CreateMutexW(nullptr, FALSE, (longest + u"n").c_str()), nullptr);
    EXPECT_EQ(GetLastError(), 206u);
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    EXPECT_FALSE(ReleaseMutex(event));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    CloseHandle(event);
}

} // namespace
