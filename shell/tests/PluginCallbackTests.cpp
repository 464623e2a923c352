// The four callbacks that plugins get: who may use them, what they show, and what they count.

#include "shell/tests/JobTesting.h"

#include "tests/support/DeviceCalls.h"

#include <commctrl.h>

#include <cstring>
#include <thread>

using namespace jobtest;

namespace
{

unsigned IdleResets()
{
    return tavrix::platform::Hooks().idleTimerResets;
}

} // namespace

TEST(PluginCallbacks, OutsideOfAnExportEachRefusesAndTouchesNothing)
{
    InstallKinds();
    Watched watched;
    LRESULT bar = -1;
    watched.script = [&](HWND dialog, bool) {
        // The job's worker is still asleep, and this thread is in no export.
        EXPECT_EQ(ProgressCallback(1, 1), -1);
        EXPECT_EQ(ProgressCallback(0, 0), -1);
        bar = SendMessageW(GetDlgItem(dialog, ControlProgressBar), PBM_GETPOS, 0, 0);
        EXPECT_EQ(MessageCallback(TEXT("x"), TEXT("x"), MB_ICONHAND), -1);
        Variant item = {TEXT("TestOutside"), VariantUnsigned, 5};
        EXPECT_EQ(PutPropertyCallback(&item), -1);
        EXPECT_EQ(GetPropertyCallback(&item), -1);
        EXPECT_EQ(item.value, 5U);
    };
    RunProgram(u"", [&](MainFrame& frame) {
        watched.boxes.clear();
        EXPECT_EQ(RunKind(frame, JobAdjust), 1);
        EXPECT_EQ(bar, 0);
        EXPECT_FALSE(IsStored(frame, TEXT("TestOutside")));
        EXPECT_TRUE(StatusTexts().empty());
        // And beyond the job, when there is no dialog.
        EXPECT_EQ(MessageCallback(TEXT("x"), TEXT("x"), MB_ICONHAND), -1);
        EXPECT_TRUE(watched.boxes.empty());
        EXPECT_EQ(tavrix::platform::Hooks().beeps, 0U);
    });
}

TEST(PluginCallbacks, AThreadThatThePluginStartedIsRefusedWhileItsOwnIsServed)
{
    InstallFixture("threading", "ADJUST");
    Watched watched;
    RunProgram(u"", [&](MainFrame& frame) {
        watched.boxes.clear();
        EXPECT_EQ(RunKind(frame, JobAdjust), 1);
        for (const WCHAR* key : {TEXT("FixtureThreadProgress"), TEXT("FixtureThreadMessage"),
                                 TEXT("FixtureThreadPut"), TEXT("FixtureThreadGet")})
            EXPECT_EQ(Stored(frame, key), 0xFFFFFFFF) << Utf8(key);
        EXPECT_FALSE(IsStored(frame, TEXT("FixtureForeign")));
        EXPECT_TRUE(StatusTexts().empty());
        EXPECT_TRUE(watched.boxes.empty());
    });
}

TEST(PluginCallbacks, OneKeptBeyondTheCallRefusesOnAnyThread)
{
    MainFrame frame;
    EXPECT_EQ(Report(1, 2), 1);
    EXPECT_EQ(ProgressCallback(1, 2), -1);
    i32 answers[4] = {};
    std::thread other([&] {
        Variant item = {TEXT("x"), VariantUnsigned, 0};
        answers[0] = ProgressCallback(1, 2);
        answers[1] = MessageCallback(TEXT("x"), TEXT("x"), 0);
        answers[2] = PutPropertyCallback(&item);
        answers[3] = GetPropertyCallback(&item);
    });
    other.join();
    for (const i32 answer : answers)
        EXPECT_EQ(answer, -1);
}

TEST(PluginCallbacks, AMessageInTheSettingsIsABoxOfTheMainWindowBeforeAndAfterAJob)
{
    InstallFixture("confiding", "EFFECT");
    Watched watched;
    RunProgram(u"", [&](MainFrame& frame) {
        Raster image(&frame.allocator);
        ASSERT_EQ(image.Create(8, 4, 24, nullptr, nullptr), Done);
        Blocks blocks;
        blocks.image = &image;
        const size_t before = BoxCalls().size();
        for (size_t i = 1; i <= 2; ++i) {
            ASSERT_EQ(frame.effectPlugins->LoadByIndex(0, 0), Done);
            EXPECT_EQ(frame.effectPlugins->Configure(frame.window, &image, JobCallbacks), 1);
            ASSERT_EQ(BoxCalls().size(), before + i);
            EXPECT_EQ(BoxCalls().back().owner, frame.window);
            EXPECT_EQ(BoxCalls().back().text, u"settings");
            EXPECT_EQ(BoxCalls().back().caption, u"confiding");
            EXPECT_EQ(BoxCalls().back().flags, 48U);
            EXPECT_EQ(Stored(frame, TEXT("FixtureConfigured")), 0U);
            // In the run the words stand in the dialog, and the caption nowhere.
            Ask(frame, TEXT("FixtureReports"), 1);
            Ask(frame, TEXT("FixtureWait"), 100);
            EXPECT_EQ(RunKind(frame, JobEffect, blocks), 1);
            EXPECT_EQ(BoxCalls().size(), before + i);
            EXPECT_EQ(StatusTexts().back(), u"run");
            EXPECT_NE(progressState.statusLine, nullptr); // the old handle stays
        }
        // The exclamation mark's number, 48, has the bit of the stop icon in it: each run beeped,
        // and waited.
        EXPECT_EQ(tavrix::platform::Hooks().beeps, 2U);
        EXPECT_GE(ProgressDialogTime(), 2000U);
    });
}

TEST(PluginCallbacks, TheTenSecondsOfTheIdleTimerCountAcrossJobs)
{
    InstallKinds();
    RunProgram(u"", [](MainFrame& frame) {
        // A job that never reports does not start the clock.
        SetTickCount(5000);
        EXPECT_EQ(RunKind(frame, JobAdjust), 1);
        Ask(frame, TEXT("FixtureReports"), 3);
        const struct {
            DWORD time;
            unsigned resets;
        } jobs[] = {{50000, 0}, {59999, 0}, {60000, 1}, {60001, 1},
                    {69999, 1}, {90000, 2}, {99999, 2}, {100000, 3}};
        for (const auto& job : jobs) {
            SetTickCount(job.time);
            EXPECT_EQ(RunKind(frame, JobAdjust), 1);
            EXPECT_EQ(IdleResets(), job.resets) << job.time;
        }
        // One that never reports resets nothing, however late.
        Ask(frame, TEXT("FixtureReports"), 0);
        SetTickCount(200000);
        EXPECT_EQ(RunKind(frame, JobAdjust), 1);
        EXPECT_EQ(IdleResets(), 3U);
    });
}

TEST(PluginCallbacks, ATotalOfNoneStartsTheIdleClockAndResetsNothing)
{
    Scope scope;
    SetTickCount(1000);
    EXPECT_EQ(Report(0, 0), 0);
    SetTickCount(11000);
    EXPECT_EQ(Report(5, 0), 0);
    EXPECT_EQ(IdleResets(), 0U);
    EXPECT_EQ(Report(1, 2), 1);
    EXPECT_EQ(IdleResets(), 1U);
}

TEST(PluginCallbacks, ARefusedCallDoesNotStartTheIdleClock)
{
    Scope scope;
    SetTickCount(1000);
    EXPECT_EQ(ProgressCallback(1, 2), -1);
    SetTickCount(11000);
    EXPECT_EQ(Report(1, 2), 1);
    EXPECT_EQ(IdleResets(), 0U);
}

TEST(PluginCallbacks, WhereTheTicksBeginAnewTheIdleTimerFollowsItsSumOf32Bits)
{
    Scope scope;
    SetTickCount(0xFFFFE000); // 8192 before the end: the sum is 1808
    EXPECT_EQ(Report(1, 2), 1);
    EXPECT_EQ(IdleResets(), 1U); // every report up to the end resets
    EXPECT_EQ(Report(1, 2), 1);
    EXPECT_EQ(IdleResets(), 2U);
    SetTickCount(1807);
    EXPECT_EQ(Report(1, 2), 1);
    EXPECT_EQ(IdleResets(), 2U);
    SetTickCount(1808);
    EXPECT_EQ(Report(1, 2), 1);
    EXPECT_EQ(IdleResets(), 3U);
}

TEST(PluginCallbacks, WhatAPluginGotStaysWhileHandOversComeAndTheSettingWaitsForTheWorker)
{
    InstallFixture("keeping", "EFFECT");
    Watched watched;
    static const WCHAR name[] = u"\\none.xyz";
    static int sent;
    sent = 0;
    watched.script = [&](HWND, bool box) {
        if (box)
            return;
        // The worker is asleep, and what it gets and puts later the other key must not meet.
        const auto handOver = [](HWND, UINT, UINT_PTR id, DWORD) {
            if (!IsWindow(progressState.dialog)) {
                KillTimer(nullptr, id);
                return;
            }
            COPYDATASTRUCT record = {1, sizeof name, const_cast<WCHAR*>(name)};
            EXPECT_EQ(
                SendMessageW(mainFrame->window, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&record)),
                1);
            ++sent;
        };
        handOver(nullptr, 0, 0, 0);
        const WCHAR* text = nullptr;
        EXPECT_EQ(mainFrame->settings->GetText(TEXT("Tavrix"), TEXT("LastCommandLine"), &text), 1);
        EXPECT_EQ(std::u16string(text), u"first line");
        SetTimer(nullptr, 0, 5, handOver);
    };
    RunProgram(u"first line", [&](MainFrame& frame) {
        Ask(frame, TEXT("FixtureReports"), 200);
        Ask(frame, TEXT("FixtureWait"), 2);
        EXPECT_EQ(RunKind(frame, JobEffect), 1);
        EXPECT_GT(sent, 10);
        EXPECT_EQ(Stored(frame, TEXT("FixtureStillKept")), 1U);
        // The bytes of the last pointer, as text.
        WCHAR expected[sizeof(void*) / sizeof(WCHAR) + 1] = {};
        const void* pointer = name;
        std::memcpy(expected, &pointer, sizeof pointer);
        const WCHAR* text = nullptr;
        EXPECT_EQ(frame.settings->GetText(TEXT("Tavrix"), TEXT("LastCommandLine"), &text), 1);
        EXPECT_EQ(std::u16string(text), expected);
    });
}
