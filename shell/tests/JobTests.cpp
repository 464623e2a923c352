// Jobs with real plugins under the real progress dialog, in the headless platform.

#include "shell/tests/JobTesting.h"

#include <commctrl.h>

using namespace jobtest;

namespace
{

/// A picture file whose extension leads to the fixture plugin of that name.
std::string FileFor(const std::string& extension)
{
    return MakeFile("picture." + extension);
}

} // namespace

TEST(Jobs, AJobOfNoWorkStillShowsTheDialogForItsDelay)
{
    InstallFixture("quick");
    RunProgramOn(FileFor("quick"), [](MainFrame& frame) {
        EXPECT_EQ(frame.imagePresent, 1U);
        EXPECT_GE(ProgressDialogTime() + 20, 100U);
        EXPECT_TRUE(StatusTexts().empty());
        // It never reported, so nothing told the device that it is in use.
        EXPECT_EQ(tavrix::platform::Hooks().idleTimerResets, 0U);
    });
}

TEST(Jobs, ProgressSetsTheBarInThreeHundredStepsAndATotalOfNoneEmptiesIt)
{
    InstallFixture("progress");
    // The plugin waits after each report, so that the bar can be looked at meanwhile, and stores
    // what each report answered.
    std::vector<LRESULT> positions;
    static std::vector<LRESULT>* seen = &positions;
    OnModal([](HWND dialog, bool box) {
        if (box)
            return;
        SetTimer(nullptr, 0, 5, [](HWND, UINT, UINT_PTR, DWORD) {
            if (!IsWindow(progressState.bar))
                return;
            const LRESULT position = SendMessageW(progressState.bar, PBM_GETPOS, 0, 0);
            if (seen->empty() || seen->back() != position)
                seen->push_back(position);
        });
        (void)dialog;
    });
    RunProgramOn(FileFor("progress"), [](MainFrame& frame) {
        EXPECT_EQ(Stored(frame, TEXT("ProgressFixtureHalf")), 1U);
        EXPECT_EQ(Stored(frame, TEXT("ProgressFixtureNone")), 0U);
        EXPECT_EQ(Stored(frame, TEXT("ProgressFixtureFull")), 1U);
    });
    // 1 of 2 is 150; 1 of 7 is 42.857, truncated; 2 of 2 is the whole.
    EXPECT_EQ(positions, (std::vector<LRESULT>{0, 150, 0, 42, 300}));
}

TEST(Jobs, AFailureShowsTheKindsTextForTwoSecondsAndBeeps)
{
    Scope scope;
    SetLanguage(1033);
    InstallFixture("failing");
    RunProgramOn(FileFor("failing"), [](MainFrame& frame) {
        ASSERT_EQ(StatusTexts().size(), 1U);
        EXPECT_EQ(StatusTexts()[0],
                  u"Failed to load an image file, might be broken or unknown-format.");
        EXPECT_GE(ProgressDialogTime(), 2000U);
        EXPECT_EQ(tavrix::platform::Hooks().beeps, 1U);
        // The flow takes its success path all the same.
        EXPECT_EQ(frame.imagePresent, 1U);
        EXPECT_EQ(GetMenuState(frame.editMenu, CommandSelectAll, MF_BYCOMMAND) & MF_GRAYED, 0U);
    });
}

TEST(Jobs, AFailureIsToldInJapanese)
{
    Scope scope;
    SetLanguage(1041);
    InstallFixture("failing");
    RunProgramOn(FileFor("failing"), [](MainFrame&) {
        ASSERT_EQ(StatusTexts().size(), 1U);
        EXPECT_EQ(StatusTexts()[0],
                  u"画像ファイルがロードできません。ファイルが壊れているか未対応の画像形式です。");
    });
}

TEST(Jobs, ThePluginsOwnWordsStandInTheStatusLine)
{
    InstallFixture("talking");
    RunProgramOn(FileFor("talking"), [](MainFrame&) {
        ASSERT_EQ(StatusTexts().size(), 1U);
        EXPECT_EQ(StatusTexts()[0], u"half way");
        EXPECT_EQ(tavrix::platform::Hooks().beeps, 0U);
    });
}

namespace
{

void ExpectHeadline(LANGID language, const WCHAR* expected)
{
    Scope scope;
    SetLanguage(language);
    InstallFixture("quick");
    std::u16string headline;
    bool abortEnabled = true;
    RECT dialogPlace = {};
    OnModal([&](HWND dialog, bool) {
        headline = ControlText(dialog, ControlHeadline);
        abortEnabled = IsWindowEnabled(GetDlgItem(dialog, ControlAbort));
        GetWindowRect(dialog, &dialogPlace);
    });
    RunProgramOn(FileFor("quick"), [](MainFrame&) {});
    EXPECT_EQ(headline, expected);
    EXPECT_FALSE(abortEnabled);
    // The middle of the screen, which the main window fills.
    EXPECT_EQ(dialogPlace.left, (640 - (dialogPlace.right - dialogPlace.left)) / 2);
    EXPECT_EQ(dialogPlace.top, (480 - (dialogPlace.bottom - dialogPlace.top)) / 2);
}

} // namespace

TEST(Jobs, TheHeadlineNamesTheWork)
{
    ExpectHeadline(1033, TEXT("Loading an image..."));
}

TEST(Jobs, TheHeadlineNamesTheWorkInJapanese)
{
    ExpectHeadline(1041, TEXT("画像を読み込んでいます..."));
}

TEST(Jobs, AThreadThatCannotBeMadeClosesTheDialogAndTellsByABox)
{
    Scope scope;
    InstallFixture("quick");
    SetThreadFault([] { return true; });
    std::u16string text;
    std::u16string caption;
    OnModal([&](HWND dialog, bool box) {
        if (!box)
            return;
        text = BoxText(dialog);
        caption = BoxCaption(dialog);
        EndDialog(dialog, IDOK);
    });
    RunProgramOn(FileFor("quick"), [](MainFrame& frame) { EXPECT_EQ(frame.imagePresent, 0U); });
    EXPECT_EQ(text, u"Failed to load an image file, might be broken or unknown-format.");
    EXPECT_EQ(caption, u"ERROR");
}

TEST(Jobs, TheDeviceIsKeptAwakeEveryTenSecondsAcrossJobs)
{
    Scope scope;
    auto& resets = tavrix::platform::Hooks().idleTimerResets;
    SetTickCount(50000);
    EXPECT_EQ(Report(1, 10), 1); // the first report of the process only starts the clock
    EXPECT_EQ(resets, 0U);
    SetTickCount(59999);
    EXPECT_EQ(Report(2, 10), 1);
    EXPECT_EQ(resets, 0U);
    SetTickCount(60000);
    EXPECT_EQ(Report(3, 10), 1);
    EXPECT_EQ(resets, 1U);
    SetTickCount(61000);
    EXPECT_EQ(Report(0, 0), 0);
    SetTickCount(70000);
    EXPECT_EQ(Report(1, 10), 1);
    EXPECT_EQ(resets, 2U);
}

TEST(Jobs, ARequestToStopIsSeenAtTheNextReport)
{
    MainFrame frame;
    EXPECT_EQ(Report(1, 10), 1);
    frame.abortRequested = 1;
    EXPECT_EQ(Report(2, 10), -1);
    EXPECT_EQ(Report(0, 0), 0);
}

TEST(Jobs, WithoutADialogAMessageIsABox)
{
    Scope scope;
    std::u16string text;
    std::u16string caption;
    OnModal([&](HWND box, bool isBox) {
        ASSERT_TRUE(isBox);
        text = BoxText(box);
        caption = BoxCaption(box);
        EndDialog(box, IDOK);
    });
    EXPECT_EQ(InPluginCall([] {
                  return MessageCallback(TEXT("words"), TEXT("WARNING"), MB_ICONEXCLAMATION);
              }),
              0);
    EXPECT_EQ(text, u"words");
    EXPECT_EQ(caption, u"WARNING");
}

TEST(Jobs, AfterAJobAMessageIsABoxAgainThoughTheOldHandleIsStillStored)
{
    InstallFixture("quick");
    int boxes = 0;
    OnModal([&](HWND dialog, bool box) {
        if (!box)
            return;
        ++boxes;
        EndDialog(dialog, IDOK);
    });
    RunProgramOn(FileFor("quick"), [](MainFrame&) {
        EXPECT_NE(progressState.statusLine, nullptr);
        EXPECT_EQ(InPluginCall(
                      [] { return MessageCallback(TEXT("words"), TEXT("caption"), MB_ICONHAND); }),
                  0);
    });
    EXPECT_EQ(boxes, 1);
}

TEST(Jobs, ThePressOfAbortAsksToStopAndGraysTheButtonAtOnce)
{
    InstallFixture("quick");
    bool enabledAfter = true;
    OnModal([&](HWND dialog, bool box) {
        if (box)
            return;
        HWND button = GetDlgItem(dialog, ControlAbort);
        EnableWindow(button, TRUE);
        SendMessageW(dialog, WM_COMMAND, ControlAbort, reinterpret_cast<LPARAM>(button));
        enabledAfter = IsWindowEnabled(button);
    });
    RunProgramOn(FileFor("quick"), [](MainFrame& frame) {
        EXPECT_EQ(frame.abortRequested, 1U);
        EXPECT_EQ(Report(1, 2), -1);
    });
    EXPECT_FALSE(enabledAfter);
}

TEST(Jobs, PluginsPropertiesLieInTheirOwnSection)
{
    MainFrame frame;
    const std::u16string path = DevicePath(TestHome() + "/x.ini");
    ASSERT_EQ(frame.settings->Load(path.c_str()), Done);
    const auto Get = [](Variant* given) {
        return InPluginCall([given] { return GetPropertyCallback(given); });
    };
    const auto Put = [](Variant* given) {
        return InPluginCall([given] { return PutPropertyCallback(given); });
    };
    Variant item = {TEXT("SomePluginLevel"), VariantUnsigned, 42};
    EXPECT_EQ(Get(&item), -1); // nothing was ever stored
    item = {TEXT("SomePluginLevel"), VariantUnsigned, 42};
    EXPECT_EQ(Put(&item), 3);
    EXPECT_EQ(Put(&item), 5);
    Variant asked = {TEXT("SomePluginLevel"), VariantUnsigned, 0};
    EXPECT_EQ(Get(&asked), 1);
    EXPECT_EQ(asked.value, 42U);
    asked = {TEXT("Other"), VariantUnsigned, 0};
    EXPECT_EQ(Get(&asked), -10);
}

TEST(Jobs, TheDialogsPlaceIsMeasuredFromTheScreensCornerByTheParentsSizeAlone)
{
    InstallKinds();
    Watched watched;
    RECT place = {};
    watched.script = [&](HWND dialog, bool) { GetWindowRect(dialog, &place); };
    RunProgram(u"", [&](MainFrame& frame) {
        SetWindowPos(frame.window, nullptr, 100, 50, 500, 300, SWP_NOZORDER);
        EXPECT_EQ(RunKind(frame, JobAdjust), 1);
        const LONG width = place.right - place.left;
        const LONG height = place.bottom - place.top;
        EXPECT_GT(width, 200);
        EXPECT_EQ(place.left, (500 - width) / 2);
        EXPECT_EQ(place.top, (300 - height) / 2);
    });
}

TEST(Jobs, TheBarRunsFromNoughtToThreeHundredAndAReportBeyondTheTotalFillsIt)
{
    InstallKinds();
    Watched watched;
    watched.script = [&](HWND dialog, bool) {
        const HWND bar = GetDlgItem(dialog, ControlProgressBar);
        EXPECT_EQ(SendMessageW(bar, PBM_GETPOS, 0, 0), 0);
        // What was before is the answer.
        EXPECT_EQ(SendMessageW(bar, PBM_SETRANGE, 0, MAKELPARAM(0, 300)), 19660800);
        EXPECT_EQ(Report(3, 1), 1);
        EXPECT_EQ(SendMessageW(bar, PBM_GETPOS, 0, 0), 300);
        EXPECT_EQ(Report(0xFFFFFFFE, 0xFFFFFFFF), 1); // 299.99..., truncated
        EXPECT_EQ(SendMessageW(bar, PBM_GETPOS, 0, 0), 299);
        EXPECT_EQ(Report(7, 0), 0);
        EXPECT_EQ(SendMessageW(bar, PBM_GETPOS, 0, 0), 0);
    };
    RunProgram(u"", [&](MainFrame& frame) { EXPECT_EQ(RunKind(frame, JobAdjust), 1); });
}

TEST(Jobs, WhenTheCallComesBackTheThreadIsGoneAndTheOldHandlesStay)
{
    InstallKinds();
    RunProgram(u"", [](MainFrame& frame) {
        const size_t handles = tavrix::platform::CountHoldings().kernelHandles;
        EXPECT_EQ(RunKind(frame, JobAdjust), 1);
        EXPECT_EQ(tavrix::platform::CountHoldings().kernelHandles, handles);
        EXPECT_EQ(progressState.thread, nullptr);
        EXPECT_NE(progressState.dialog, nullptr);
        EXPECT_NE(progressState.bar, nullptr);
        EXPECT_NE(progressState.statusLine, nullptr);
        EXPECT_FALSE(IsWindow(progressState.dialog));
        EXPECT_TRUE(IsWindowEnabled(frame.window));
    });
}
