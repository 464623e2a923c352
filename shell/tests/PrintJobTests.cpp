// The job that the user can stop.

#include "shell/tests/JobTesting.h"

using namespace jobtest;

namespace
{

/// Presses Abort, as a person does, once the job has run for a while.
void PressSoon(std::function<void(HWND dialog)> behind)
{
    static std::function<void(HWND)> then;
    then = std::move(behind);
    SetTimer(nullptr, 0, 250, [](HWND, UINT, UINT_PTR id, DWORD) {
        KillTimer(nullptr, id);
        const HWND dialog = progressState.dialog;
        ClickControl(dialog, ControlAbort);
        (void)PumpUntil([&] { return mainFrame->abortRequested != 0; }, 1000);
        then(dialog);
    });
}

} // namespace

TEST(Printing, ThePluginGetsTheOwnerTheTitleAndFourZeros)
{
    InstallKinds();
    RunProgram(u"", [](MainFrame& frame) {
        EXPECT_EQ(RunKind(frame, JobPrint), 1);
        EXPECT_EQ(StoredText(frame, TEXT("FixtureTitle")), u"Tavrix -image-");
        EXPECT_EQ(Stored(frame, TEXT("FixtureZeros")), 0U);
        EXPECT_EQ(Stored(frame, TEXT("FixtureOwner")),
                  static_cast<u32>(reinterpret_cast<uintptr_t>(frame.window)));
        EXPECT_EQ(Stored(frame, TEXT("FixtureWidth")), 8U);
        EXPECT_EQ(frame.abortRequested, 0U);
    });
}

TEST(Printing, AbortGraysItsButtonAtOnceAndTheNextReportIsRefused)
{
    InstallKinds();
    Watched watched;
    bool enabledBehind = true;
    bool openBehind = false;
    watched.script = [&](HWND, bool) {
        PressSoon([&](HWND dialog) {
            enabledBehind = IsWindowEnabled(GetDlgItem(dialog, ControlAbort)) != FALSE;
            openBehind = IsWindow(dialog) != FALSE;
        });
    };
    RunProgram(u"", [&](MainFrame& frame) {
        Ask(frame, TEXT("FixtureReports"), 100);
        Ask(frame, TEXT("FixtureWait"), 100);
        EXPECT_EQ(RunKind(frame, JobPrint), 1);
        EXPECT_EQ(watched.stoppable, std::vector<bool>{true});
        EXPECT_FALSE(enabledBehind);
        EXPECT_TRUE(openBehind); // it closes when the plugin has returned
        EXPECT_EQ(Stored(frame, TEXT("FixtureAnswer")), 0xFFFFFFFF);
        EXPECT_LT(ProgressDialogTime(), 5000U);
        EXPECT_EQ(frame.abortRequested, 1U); // who prints puts it back
        EXPECT_TRUE(StatusTexts().empty());
    });
}

TEST(Printing, AnotherJobStartsWithItsButtonEnabledAndIsRefusedUntilTheFlagIsPutBack)
{
    InstallKinds();
    Watched watched;
    RunProgram(u"", [&](MainFrame& frame) {
        Ask(frame, TEXT("FixtureReports"), 3);
        frame.abortRequested = 1;
        EXPECT_EQ(RunKind(frame, JobPrint), 1);
        EXPECT_EQ(Stored(frame, TEXT("FixtureAnswer")), 0xFFFFFFFF);
        // No job puts it back, so another kind meets it too.
        EXPECT_EQ(RunKind(frame, JobAdjust), 1);
        EXPECT_EQ(Stored(frame, TEXT("FixtureAnswer")), 0xFFFFFFFF);
        frame.abortRequested = 0;
        EXPECT_EQ(RunKind(frame, JobPrint), 1);
        EXPECT_EQ(Stored(frame, TEXT("FixtureAnswer")), 1U);
        EXPECT_EQ(watched.stoppable, (std::vector<bool>{true, false, true}));
    });
}

TEST(Printing, TheDialogComesToTheFrontWithTheKeyboardOnAbort)
{
    InstallKinds();
    Watched watched;
    watched.script = [&](HWND dialog, bool) {
        EXPECT_EQ(GetFocus(), GetDlgItem(dialog, ControlAbort));
    };
    RunProgram(u"", [&](MainFrame& frame) { EXPECT_EQ(RunKind(frame, JobPrint), 1); });
}

TEST(Printing, NoKeyDismissesTheDialogOfAnyKind)
{
    InstallKinds();
    Watched watched;
    watched.script = [&](HWND, bool) {
        SetTimer(nullptr, 0, 150, [](HWND, UINT, UINT_PTR id, DWORD) {
            KillTimer(nullptr, id);
            for (const int key : {VK_ESCAPE, VK_RETURN, VK_SPACE})
                TypeKey(key);
        });
        SetTimer(nullptr, 0, 400, [](HWND, UINT, UINT_PTR id, DWORD) {
            KillTimer(nullptr, id);
            if (IsWindow(progressState.dialog))
                Ask(*mainFrame, TEXT("TestStillOpen"), 1);
        });
    };
    RunProgram(u"", [&](MainFrame& frame) {
        Ask(frame, TEXT("FixtureReports"), 10);
        Ask(frame, TEXT("FixtureWait"), 60);
        EXPECT_EQ(RunKind(frame, JobAdjust), 1);
        EXPECT_EQ(Stored(frame, TEXT("TestStillOpen")), 1U);
        EXPECT_EQ(frame.abortRequested, 0U);
        // Enter presses the one button that a print job has.
        EXPECT_EQ(RunKind(frame, JobPrint), 1);
        EXPECT_EQ(frame.abortRequested, 1U);
        EXPECT_EQ(Stored(frame, TEXT("FixtureAnswer")), 0xFFFFFFFF);
    });
}
