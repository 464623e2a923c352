// The waits of a program that does nothing: which of them pass without the toolkit, and that
// nothing is lost by them.

#include "platform/qt/QuietWait.h"
#include "platform/testing/WindowTesting.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QMetaObject>

#include <atomic>
#include <thread>

using namespace tavrix::platform;
using namespace tavrix::testing;

namespace
{

constexpr int Tick = 5;

void SleepFor(int milliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

void CALLBACK DoNothing(HWND, UINT, UINT_PTR, DWORD) {}

/// The program as it stands idle: only its short timer has run for more than a second.
class IdleProgram
{
public:
    IdleProgram() : timer(SetTimer(nullptr, 0, Tick, DoNothing))
    {
        (void)GetSystemMetrics(SM_CXSCREEN); // the toolkit is up from here on
        Pump(1500);
    }
    ~IdleProgram() { KillTimer(nullptr, timer); }
    IdleProgram(const IdleProgram&) = delete;
    IdleProgram& operator=(const IdleProgram&) = delete;

private:
    UINT_PTR timer;
};

} // namespace

TEST(QuietWait, ASecondAfterTheLastEventFiveShortWaitsInSixPassWithoutTheToolkit)
{
    NoteToolkitEvent();
    EXPECT_FALSE(MayWaitQuietly(Tick));
    SleepFor(1100);
    for (int i = 0; i < 3; ++i) {
        for (int quiet = 0; quiet < 5; ++quiet)
            EXPECT_TRUE(MayWaitQuietly(Tick));
        EXPECT_FALSE(MayWaitQuietly(Tick));
    }
    NoteToolkitEvent();
    EXPECT_FALSE(MayWaitQuietly(Tick));
}

TEST(QuietWait, LongWaitsAndThoseWithoutAnEndAreTheToolkits)
{
    SleepFor(1100);
    EXPECT_FALSE(MayWaitQuietly(11));
    EXPECT_FALSE(MayWaitQuietly(0));
    EXPECT_FALSE(MayWaitQuietly(-1));
    EXPECT_TRUE(MayWaitQuietly(10));
}

TEST(QuietWait, AWakeUpThatComesBeforeTheWaitIsNotLost)
{
    constexpr int Minute = 60000;
    const DWORD start = GetTickCount();
    WakeQuietWait();
    WaitQuietly(Minute);
    std::thread other([] { WakeQuietWait(); });
    WaitQuietly(Minute);
    other.join();
    EXPECT_LT(GetTickCount() - start, DWORD{Minute / 2});
}

TEST(QuietWait, WhatAnotherThreadPostsToAnIdleProgramArrives)
{
    const IdleProgram idle;
    std::atomic<int> arrived{0};
    std::thread other([&] {
        for (int i = 0; i < 50; ++i) {
            PostMessageW(nullptr, WM_NULL, 0, 0);
            SleepFor(3);
        }
        arrived = 1;
        PostMessageW(nullptr, WM_NULL, 0, 0);
    });
    EXPECT_TRUE(PumpUntil([&] { return arrived != 0; }));
    other.join();
}

TEST(QuietWait, WhatTheToolkitHasForAnIdleProgramArrives)
{
    const IdleProgram idle;
    std::atomic<int> arrived{0};
    for (int i = 1; i <= 3; ++i) {
        std::thread other([&] {
            QMetaObject::invokeMethod(
                qApp, [&] { ++arrived; }, Qt::QueuedConnection);
        });
        other.join();
        EXPECT_TRUE(PumpUntil([&] { return arrived == i; }));
        Pump(1200);
    }
}
