// Events: manual and automatic, set, reset and pulsed.

#include <handheld.h>
#include <windows.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace
{

/// Threads that wait for an event and count when they are released.
class Waiters
{
public:
    Waiters(HANDLE waitedFor, int count) : event(waitedFor)
    {
        for (int number = 0; number < count; ++number)
            threads.emplace_back([this] {
                ++waiting;
                if (WaitForSingleObject(event, 20000) == WAIT_OBJECT_0)
                    ++released;
            });
        while (waiting != count)
            Sleep(1);
        // They have said so just before they wait.
        Sleep(50);
    }
    ~Waiters()
    {
        for (std::thread& thread : threads)
            thread.join();
    }
    bool ReachesReleased(int count) const
    {
        for (int tries = 0; tries < 2000 && released < count; ++tries)
            Sleep(5);
        Sleep(50);
        return released == count;
    }

private:
    HANDLE event;
    std::atomic<int> waiting{0};
    std::atomic<int> released{0};
    std::vector<std::thread> threads;
};

TEST(Events, AManualEventStaysSetUntilItIsReset)
{
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    ASSERT_NE(event, nullptr);
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_TIMEOUT);
    EXPECT_TRUE(EventModify(event, 3));
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(EventModify(event, 2));
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_TIMEOUT);
    CloseHandle(event);
}

TEST(Events, AnAutomaticEventIsResetByTheWaitItEnds)
{
    const HANDLE event = CreateEventW(nullptr, FALSE, TRUE, nullptr);
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_TIMEOUT);
    // Set twice is set once.
    EventModify(event, EVENT_SET);
    EventModify(event, EVENT_SET);
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_TIMEOUT);
    CloseHandle(event);
}

TEST(Events, SettingAManualEventReleasesAllWhoWait)
{
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    {
        const Waiters waiters(event, 3);
        EventModify(event, EVENT_SET);
        EXPECT_TRUE(waiters.ReachesReleased(3));
    }
    CloseHandle(event);
}

TEST(Events, SettingAnAutomaticEventReleasesOne)
{
    const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    {
        const Waiters waiters(event, 2);
        EventModify(event, EVENT_SET);
        EXPECT_TRUE(waiters.ReachesReleased(1));
        EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_TIMEOUT);
        EventModify(event, EVENT_SET);
        EXPECT_TRUE(waiters.ReachesReleased(2));
    }
    CloseHandle(event);
}

TEST(Events, APulseReleasesThoseWhoWaitAndLeavesTheEventReset)
{
    const HANDLE manual = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    {
        const Waiters waiters(manual, 3);
        EXPECT_TRUE(EventModify(manual, 1));
        EXPECT_TRUE(waiters.ReachesReleased(3));
    }
    EXPECT_EQ(WaitForSingleObject(manual, 0), WAIT_TIMEOUT);
    // Nobody waits: nothing of it is kept, and a set event is reset.
    EventModify(manual, EVENT_SET);
    EventModify(manual, EVENT_PULSE);
    EXPECT_EQ(WaitForSingleObject(manual, 0), WAIT_TIMEOUT);
    CloseHandle(manual);

    const HANDLE automatic = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    {
        const Waiters waiters(automatic, 2);
        EventModify(automatic, EVENT_PULSE);
        EXPECT_TRUE(waiters.ReachesReleased(1));
        EventModify(automatic, EVENT_PULSE);
        EXPECT_TRUE(waiters.ReachesReleased(2));
    }
    CloseHandle(automatic);
}

TEST(Events, AWaitOutlivesTheHandleItBeganWith)
{
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    std::thread waiting([event] { EXPECT_EQ(WaitForSingleObject(event, 100), WAIT_TIMEOUT); });
    Sleep(30);
    EXPECT_TRUE(CloseHandle(event));
    waiting.join();
}

TEST(Events, AnUnknownActionAHandleOfAnotherKindAndANameAreRefused)
{
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    EXPECT_FALSE(EventModify(event, 0));
    EXPECT_FALSE(EventModify(event, 4));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    CloseHandle(event);
    EXPECT_FALSE(EventModify(event, EVENT_SET));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_FALSE(EventModify(nullptr, EVENT_SET));
    EXPECT_EQ(CreateEventW(nullptr, TRUE, FALSE, TEXT("name")), nullptr);
}

} // namespace
