#include "platform/core/MessageQueue.h"
#include "platform/core/Rest.h"
#include "platform/core/Timers.h"
#include "platform/core/WindowTable.h"
#include "platform/tests/core/DeviceThread.h"
#include "platform/tests/core/EarlyTimer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>

using namespace tavrix::platform;

namespace
{

using Clock = std::chrono::steady_clock;

int ticks = 0;
UINT_PTR lastId = 0;
UINT lastMessage = 0;

void CALLBACK CountTick(HWND, UINT message, UINT_PTR id, DWORD)
{
    ++ticks;
    lastId = id;
    lastMessage = message;
}

constexpr UINT EarlyPeriod = 5;
constexpr UINT Never = 1000000;

// Set before main runs, as a static object of the program does.
const UINT_PTR earlyTimer = SetTimer(nullptr, 0, EarlyPeriod, CountTick);

LRESULT CALLBACK Nothing(HWND, UINT, WPARAM, LPARAM)
{
    return 0;
}

// Runs the loop until `count` timer messages were dispatched, or two seconds are over.
void RunTicks(int count)
{
    const Clock::time_point end = Clock::now() + std::chrono::seconds(2);
    MSG message;
    while (ticks < count && Clock::now() < end && GetMessageW(&message, nullptr, 0, 0))
        DispatchMessageW(&message);
}

} // namespace

void RestEarlyTimer()
{
    SetTimer(nullptr, earlyTimer, Never, CountTick);
}

void ResumeEarlyTimer()
{
    SetTimer(nullptr, earlyTimer, EarlyPeriod, CountTick);
}

namespace
{

class TimersTest : public ::testing::Test
{
protected:
    void SetUp() override { RestEarlyTimer(); }
    void TearDown() override { ResumeEarlyTimer(); }
};

} // namespace

TEST(Timers, ATimerWithoutAWindowSetBeforeMainFiresOnceALoopRuns)
{
    ASSERT_NE(earlyTimer, 0u);
    ticks = 0;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(ticks, 0) << "fired without a loop";
    RunTicks(3);
    EXPECT_EQ(ticks, 3);
    EXPECT_EQ(lastId, earlyTimer);
    EXPECT_EQ(lastMessage, static_cast<UINT>(WM_TIMER));
}

TEST_F(TimersTest, FiveMillisecondsAreKeptOverManyTicks)
{
    constexpr int Ticks = 20;
    constexpr auto Least = std::chrono::milliseconds(Ticks * 5 - 1);
    // None may be lost to rounding: with six milliseconds a tick it would be 120.
    constexpr auto Most = std::chrono::milliseconds(115);
    // A busy machine takes ticks away, each a period long: one undisturbed stretch is looked for.
    auto shortest = Clock::duration::max();
    for (int attempt = 0; attempt < 100 && shortest > Most; ++attempt)
    {
        ticks = 0;
        const Clock::time_point start = Clock::now();
        const UINT_PTR id = SetTimer(nullptr, 0, 5, CountTick);
        RunTicks(Ticks);
        const Clock::duration taken = Clock::now() - start;
        EXPECT_TRUE(KillTimer(nullptr, id));
        EXPECT_FALSE(KillTimer(nullptr, id));
        ASSERT_EQ(ticks, Ticks);
        ASSERT_GE(taken, Least);
        shortest = std::min(shortest, taken);
    }
    EXPECT_LE(shortest, Most);
}

TEST_F(TimersTest, MissedTicksBecomeOneMessage)
{
    ticks = 0;
    const UINT_PTR id = SetTimer(nullptr, 0, 200, CountTick);
    std::this_thread::sleep_for(std::chrono::milliseconds(650));
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageW(&message);
    KillTimer(nullptr, id);
    EXPECT_EQ(ticks, 1);
}

TEST_F(TimersTest, AWindowsTimerGivesAMessageWithItsId)
{
    WNDPROC procedure = Nothing;
    int record = 0;
    const HWND window = AddWindowHandle(&record, &procedure);
    EXPECT_EQ(SetTimer(window, 2, 1, nullptr), 2u);
    MSG message{};
    GetMessageW(&message, nullptr, 0, 0);
    EXPECT_EQ(message.message, static_cast<UINT>(WM_TIMER));
    EXPECT_EQ(message.hwnd, window);
    EXPECT_EQ(message.wParam, 2u);
    EXPECT_EQ(message.lParam, 0);
    // Setting it again replaces it.
    EXPECT_EQ(SetTimer(window, 2, 100000, nullptr), 2u);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_FALSE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_TRUE(KillTimer(window, 2));
    EXPECT_FALSE(KillTimer(window, 2));
    ForgetWindow(window);
    RemoveWindowHandle(window);
    EXPECT_EQ(SetTimer(window, 2, 1, nullptr), 0u);
}

TEST_F(TimersTest, AKilledTimersMessageNoLongerCallsItsFunction)
{
    ticks = 0;
    const UINT_PTR id = SetTimer(nullptr, 0, 1, CountTick);
    MSG message{};
    GetMessageW(&message, nullptr, 0, 0);
    ASSERT_EQ(message.message, static_cast<UINT>(WM_TIMER));
    KillTimer(nullptr, id);
    DispatchMessageW(&message);
    EXPECT_EQ(ticks, 0);
}

TEST_F(TimersTest, OnlyATimerWithoutAWindowIsPutOffAndOnlyAsFarAsAsked)
{
    WNDPROC procedure = Nothing;
    int record = 0;
    const UINT_PTR id = SetTimer(nullptr, 0, 5, CountTick);
    EXPECT_LE(UntilNextTimer(0).value_or(-1), 5);
    EXPECT_EQ(UntilNextTimer(50), 50);
    const HWND window = AddWindowHandle(&record, &procedure);
    SetTimer(window, 2, 20, nullptr);
    EXPECT_LE(UntilNextTimer(50).value_or(50), 20);
    KillTimer(nullptr, id);
    EXPECT_LE(UntilNextTimer(50).value_or(50), 20);
    SetTimer(window, 2, 70, nullptr);
    EXPECT_GT(UntilNextTimer(50).value_or(0), 0);
    KillTimer(window, 2);
    ForgetWindow(window);
    RemoveWindowHandle(window);
}

TEST_F(TimersTest, TheProgramRestsASecondAfterTheLastMessageUnlessAThreadRuns)
{
    NoteActivity();
    EXPECT_FALSE(IsAtRest());
    std::this_thread::sleep_for(std::chrono::milliseconds(1050));
    EXPECT_TRUE(IsAtRest());
    std::atomic<bool> over{false};
    {
        const DeviceThread thread([&over] {
            while (!over)
                Sleep(1);
            return DWORD{0};
        });
        EXPECT_FALSE(IsAtRest());
        over = true;
    }
    EXPECT_TRUE(IsAtRest());
    const UINT_PTR id = SetTimer(nullptr, 0, Never, CountTick);
    EXPECT_FALSE(IsAtRest()) << "with a timer just set";
    KillTimer(nullptr, id);
}

TEST_F(TimersTest, AShortTimerIsLateAtRestAndInTimeAgainAfterAMessage)
{
    // What a busy machine takes away makes the ticks at rest fewer, never more.
    constexpr int MostAtRest = 11; // of half a second, a beat of 50 each
    const UINT_PTR id = SetTimer(nullptr, 0, 5, CountTick);
    const auto runFor = [](std::chrono::milliseconds time) {
        const Clock::time_point end = Clock::now() + time;
        MSG message;
        for (ticks = 0; Clock::now() < end && GetMessageW(&message, nullptr, 0, 0);)
            DispatchMessageW(&message);
        return ticks;
    };
    (void)runFor(std::chrono::milliseconds(1100));
    const int atRest = runFor(std::chrono::milliseconds(500));
    EXPECT_GT(atRest, 0);
    EXPECT_LE(atRest, MostAtRest);
    // The best of some stretches, as a busy machine lets ticks be missed.
    int awake = 0;
    for (int attempt = 0; attempt < 20 && awake <= 2 * MostAtRest; ++attempt) {
        PostMessageW(nullptr, WM_NULL, 0, 0);
        awake = std::max(awake, runFor(std::chrono::milliseconds(500)));
    }
    EXPECT_GT(awake, 2 * MostAtRest);
    KillTimer(nullptr, id);
}

TEST_F(TimersTest, ATimerMessageWithAFunctionThatNobodySetIsNotFollowed)
{
    MSG message{};
    message.message = WM_TIMER;
    message.wParam = 1;
    message.lParam = 0x1234;
    EXPECT_EQ(DispatchMessageW(&message), 0);
}
