// Locks within the process.

#include "DeviceThread.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace
{

struct Section {
    Section() { InitializeCriticalSection(&record); }
    ~Section() { DeleteCriticalSection(&record); }
    CRITICAL_SECTION record;
};

} // namespace

TEST(CriticalSections, LetOneThreadInAtATime)
{
    Section section;
    // Not atomic: with two threads inside at once some turns would be lost.
    volatile int count = 0;
    {
        std::vector<std::unique_ptr<DeviceThread>> threads;
        for (int i = 0; i < 4; ++i)
            threads.push_back(std::make_unique<DeviceThread>([&] {
                for (int turn = 0; turn < 20000; ++turn) {
                    EnterCriticalSection(&section.record);
                    count = count + 1;
                    LeaveCriticalSection(&section.record);
                }
                return DWORD{0};
            }));
    }
    EXPECT_EQ(80000, count);
}

TEST(CriticalSections, TheHolderMayEnterAgainAndLeavesAsOften)
{
    Section section;
    std::atomic<bool> inside{false};
    EnterCriticalSection(&section.record);
    EnterCriticalSection(&section.record);
    DeviceThread other([&] {
        EnterCriticalSection(&section.record);
        inside = true;
        LeaveCriticalSection(&section.record);
        return DWORD{0};
    });
    EXPECT_TRUE(other.Waits());
    LeaveCriticalSection(&section.record);
    EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(other.Handle(), 30));
    EXPECT_FALSE(inside);
    LeaveCriticalSection(&section.record);
    EXPECT_EQ(0u, other.ExitCode());
    EXPECT_TRUE(inside);
}

TEST(CriticalSections, DoNotKnowOfEachOther)
{
    Section first;
    Section second;
    EnterCriticalSection(&first.record);
    DeviceThread other([&] {
        EnterCriticalSection(&second.record);
        LeaveCriticalSection(&second.record);
        return DWORD{4};
    });
    EXPECT_EQ(4u, other.ExitCode());
    LeaveCriticalSection(&first.record);
}

TEST(CriticalSections, MayBeMadeAgainInTheSameRecord)
{
    CRITICAL_SECTION record;
    for (int round = 0; round < 3; ++round) {
        InitializeCriticalSection(&record);
        EnterCriticalSection(&record);
        LeaveCriticalSection(&record);
        DeleteCriticalSection(&record);
    }
}
