#include "foundation/Event.h"

#include <gtest/gtest.h>

#include <handheld.h>

#include <atomic>
#include <thread>
#include <vector>

namespace
{

constexpr u32 Patience = 20000; // milliseconds in which a thread that works will have come

/// An event whose device handle the test may bend behind its back.
class OpenEvent final : public Event
{
public:
    HANDLE Handle() const { return handle; }
};

} // namespace

TEST(Event, WithoutAnEventNothingWorks)
{
    Event event;
    EXPECT_EQ(-1, event.Set());
    EXPECT_EQ(-1, event.Reset());
    EXPECT_EQ(-1, event.Wait(0));
    EXPECT_EQ(0, event.Close());
    ASSERT_EQ(1, event.Create(0));
    EXPECT_EQ(1, event.Close());
    EXPECT_EQ(0, event.Close());
    EXPECT_EQ(-1, event.Set());
    EXPECT_EQ(-1, event.Reset());
    EXPECT_EQ(-1, event.Wait(0));
}

TEST(Event, SettingTwiceCallsTheDeviceOnce)
{
    OpenEvent event;
    ASSERT_EQ(1, event.Create(0));
    EXPECT_EQ(0, event.Wait(0));
    EXPECT_EQ(1, event.Set());
    EXPECT_EQ(1, event.Wait(0));
    // Were the device called again, it would be set again.
    ASSERT_TRUE(EventModify(event.Handle(), EVENT_RESET));
    EXPECT_EQ(0, event.Set());
    EXPECT_EQ(0, event.Wait(0));
}

TEST(Event, ResettingTwiceCallsTheDeviceOnce)
{
    OpenEvent event;
    ASSERT_EQ(1, event.Create(0));
    EXPECT_EQ(0, event.Reset()) << "it was never set";
    ASSERT_EQ(1, event.Set());
    EXPECT_EQ(1, event.Reset());
    EXPECT_EQ(0, event.Wait(0));
    ASSERT_TRUE(EventModify(event.Handle(), EVENT_SET));
    EXPECT_EQ(0, event.Reset());
    EXPECT_EQ(1, event.Wait(0));
}

TEST(Event, StaysSetHoweverOftenItIsWaitedFor)
{
    Event event;
    ASSERT_EQ(1, event.Create(0));
    ASSERT_EQ(1, event.Set());
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(1, event.Wait(Patience));
    EXPECT_EQ(1, event.Reset());
    EXPECT_EQ(1, event.Set());
    EXPECT_EQ(1, event.Wait(0));
}

TEST(Event, ItsMemoryDoesNotKnowTheInitialState)
{
    Event event;
    ASSERT_EQ(1, event.Create(1));
    EXPECT_EQ(1, event.Wait(0));
    EXPECT_EQ(0, event.Reset());
    EXPECT_EQ(1, event.Wait(0)) << "the reset reached the device";
    EXPECT_EQ(1, event.Set());
    EXPECT_EQ(1, event.Reset());
    EXPECT_EQ(0, event.Wait(0));
}

TEST(Event, CreateClosesTheEarlierEvent)
{
    OpenEvent event;
    ASSERT_EQ(1, event.Create(0));
    const HANDLE earlier = event.Handle();
    ASSERT_EQ(1, event.Set());
    ASSERT_EQ(1, event.Create(0));
    EXPECT_EQ(WAIT_FAILED, WaitForSingleObject(earlier, 0));
    EXPECT_EQ(0, event.Wait(0));
    EXPECT_EQ(1, event.Set()) << "the memory of the earlier one was kept";
}

TEST(Event, CloseForgetsThatItWasSet)
{
    Event event;
    ASSERT_EQ(1, event.Create(0));
    ASSERT_EQ(1, event.Set());
    ASSERT_EQ(1, event.Close());
    ASSERT_EQ(1, event.Create(0));
    EXPECT_EQ(0, event.Wait(0));
    EXPECT_EQ(1, event.Set());
}

TEST(Event, EndsWithItsObject)
{
    HANDLE left = nullptr;
    {
        OpenEvent event;
        ASSERT_EQ(1, event.Create(1));
        left = event.Handle();
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(left, 0));
    }
    EXPECT_EQ(WAIT_FAILED, WaitForSingleObject(left, 0));
}

TEST(Event, WhatTheDeviceRefusesIsNotRemembered)
{
    OpenEvent event;
    ASSERT_EQ(1, event.Create(0));
    ASSERT_TRUE(CloseHandle(event.Handle()));
    EXPECT_EQ(-1, event.Set());
    EXPECT_EQ(-1, event.Set()) << "a set that failed counts as done";
    EXPECT_EQ(0, event.Reset());
    EXPECT_EQ(-1, event.Wait(0));
}

TEST(Event, ARefusedResetLeavesItSet)
{
    OpenEvent event;
    ASSERT_EQ(1, event.Create(0));
    ASSERT_EQ(1, event.Set());
    ASSERT_TRUE(CloseHandle(event.Handle()));
    EXPECT_EQ(-1, event.Reset());
    EXPECT_EQ(-1, event.Reset());
    EXPECT_EQ(0, event.Set());
}

TEST(Event, ARefusedCloseKeepsTheHandle)
{
    OpenEvent event;
    ASSERT_EQ(1, event.Create(0));
    ASSERT_EQ(1, event.Set());
    const HANDLE handle = event.Handle();
    ASSERT_TRUE(CloseHandle(handle));
    EXPECT_EQ(-1, event.Close());
    EXPECT_EQ(handle, event.Handle());
    EXPECT_EQ(-1, event.Close());
    EXPECT_EQ(0, event.Reset()) << "the memory is cleared before the device is asked";
    EXPECT_EQ(1, event.Create(0));
}

TEST(Event, AFullHandleTableMakesNone)
{
    std::vector<HANDLE> all;
    for (HANDLE each = CreateEventW(nullptr, TRUE, FALSE, nullptr); each != nullptr;
         each = CreateEventW(nullptr, TRUE, FALSE, nullptr))
        all.push_back(each);
    {
        Event event;
        EXPECT_EQ(-1, event.Create(0));
        EXPECT_EQ(-1, event.Set());
        EXPECT_EQ(0, event.Close());
    }
    for (const HANDLE each : all)
        CloseHandle(each);
    Event event;
    EXPECT_EQ(1, event.Create(0));
}

TEST(Event, AWaitThatTimesOutHasWaited)
{
    Event event;
    ASSERT_EQ(1, event.Create(0));
    const DWORD start = GetTickCount();
    EXPECT_EQ(0, event.Wait(60));
    EXPECT_LE(55u, GetTickCount() - start);
}

TEST(Event, WakesAnotherThread)
{
    Event event;
    ASSERT_EQ(1, event.Create(0));
    int written = 0; // guarded by nothing but the event
    std::thread worker([&event, &written] {
        Sleep(20);
        written = 42;
        EXPECT_EQ(1, event.Set());
    });
    EXPECT_EQ(1, event.Wait(Patience));
    EXPECT_EQ(42, written);
    worker.join();
}

TEST(Event, TwoThreadsPassABatonManyTimes)
{
    constexpr int Rounds = 20000;
    Event there;
    Event back;
    ASSERT_EQ(1, there.Create(0));
    ASSERT_EQ(1, back.Create(0));
    int baton = 0; // guarded by nothing but the events
    std::thread worker([&] {
        for (int round = 0; round < Rounds; ++round) {
            ASSERT_EQ(1, there.Wait(Patience)) << "round " << round;
            // The one that was woken by it resets it at once, and must not find it unset.
            ASSERT_EQ(1, there.Reset()) << "round " << round;
            ASSERT_EQ(2 * round + 1, baton);
            ++baton;
            ASSERT_EQ(1, back.Set()) << "round " << round;
        }
    });
    for (int round = 0; round < Rounds; ++round) {
        ASSERT_EQ(2 * round, baton);
        ++baton;
        EXPECT_EQ(1, there.Set()) << "round " << round;
        // Polled as often as waited for.
        i32 come = 0;
        while (round % 2 == 1 && (come = back.Wait(0)) == 0)
            Sleep(0);
        if (come == 0)
            come = back.Wait(Patience);
        EXPECT_EQ(1, come) << "round " << round;
        EXPECT_EQ(1, back.Reset()) << "round " << round;
        if (::testing::Test::HasFailure())
            break;
    }
    worker.join();
    EXPECT_EQ(2 * Rounds, baton);
}

TEST(Event, ASetThatFallsIntoAResetDoesNotSilenceTheEvent)
{
    Event event;
    ASSERT_EQ(1, event.Create(0));
    std::atomic<bool> enough{false};
    std::vector<std::thread> bringers;
    for (int number = 0; number < 3; ++number)
        bringers.emplace_back([&] {
            while (!enough)
                EXPECT_LE(0, event.Set());
        });
    // News keep coming, so every wait ends, whatever set and reset met in between.
    for (int wake = 0; wake < 10000 && !enough; ++wake) {
        const i32 come = event.Wait(Patience);
        EXPECT_EQ(1, come) << "no set reaches the event any more, at wake " << wake;
        enough = come != 1;
        EXPECT_LE(0, event.Reset());
    }
    enough = true;
    for (std::thread& bringer : bringers)
        bringer.join();
}

TEST(Event, ClosingUnderAWaitingThreadEndsInItsTimeOut)
{
    Event event;
    ASSERT_EQ(1, event.Create(0));
    std::atomic<bool> started{false};
    i32 result = 99;
    std::thread waiter([&] {
        started = true;
        result = event.Wait(200);
    });
    while (!started)
        Sleep(0);
    Sleep(20);
    EXPECT_EQ(1, event.Close());
    waiter.join();
    EXPECT_GE(0, result);
}
