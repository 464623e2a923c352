// Print by the commands of its entries: the way through the dialog to the job.

#include "shell/tests/RoadTesting.h"

using namespace roadtest;

namespace
{

constexpr u32 FirstPrint = 41501;
constexpr u32 PrintWithoutEntry = 41500;

class PrintFlow : public ::testing::Test
{
protected:
    PrintFlow()
    {
        SetLanguage(1033);
        InstallPlugin(tavrix::testing::InBuild("/bin/PLUGINS/INPUT/PNG.dll"));
        InstallFixture("printing", "PRINT");
        person.onDialog = [this](HWND dialog) {
            ++dialogs;
            EXPECT_NE(GetDlgItem(dialog, ControlPrintConfigure), nullptr);
            owner = GetParent(dialog);
            if (onPrintDialog)
                onPrintDialog(dialog);
            PostMessageW(dialog, WM_COMMAND, print ? IDOK : IDCANCEL, 0);
        };
    }
    void Run(const Step& step)
    {
        EXPECT_EQ(RunProgramOn(WriteTestPng(PictureWidth, PictureHeight), step), 0);
    }

    Scope scope;
    Person person;
    std::function<void(HWND dialog)> onPrintDialog;
    bool print = true;
    int dialogs = 0;
    HWND owner = nullptr;
};

} // namespace

TEST_F(PrintFlow, TheWholePictureIsPrintedWhateverIsSelected)
{
    Run([&](MainFrame& frame) {
        Select(frame, 10, 20, 29, 34);
        person.headlines.clear();
        onPrintDialog = [&](HWND) { EXPECT_TRUE(frame.printPlugins->IsLoaded()); };
        Send(frame, FirstPrint);
        EXPECT_EQ(dialogs, 1);
        EXPECT_EQ(owner, frame.window);
        EXPECT_EQ(person.headlines, std::vector<std::u16string>{u"Printing an image..."});
        EXPECT_EQ(Stored(frame, TEXT("FixtureRuns")), 1u);
        EXPECT_EQ(Stored(frame, TEXT("FixtureWidth")), u32{PictureWidth});
        EXPECT_EQ(StoredText(frame, TEXT("FixtureTitle")), u"Tavrix -image-");
        EXPECT_EQ(Stored(frame, TEXT("FixtureOwner")),
                  static_cast<u32>(reinterpret_cast<uintptr_t>(frame.window)));
        EXPECT_FALSE(frame.printPlugins->IsLoaded());
        SetLanguage(1041);
        Send(frame, PrintWithoutEntry);
        EXPECT_EQ(dialogs, 2);
        EXPECT_EQ(person.headlines.back(), u"印刷を行っています...");
        EXPECT_EQ(Stored(frame, TEXT("FixtureRuns")), 2u);
        EXPECT_TRUE(person.TakeBoxes().empty());
        ExpectPicture(*frame.image);
    });
}

TEST_F(PrintFlow, CancelPrintsNothing)
{
    Run([&](MainFrame& frame) {
        print = false;
        person.headlines.clear();
        frame.abortRequested = 1;
        Send(frame, FirstPrint);
        EXPECT_EQ(dialogs, 1);
        EXPECT_FALSE(IsStored(frame, TEXT("FixtureRuns")));
        EXPECT_TRUE(person.headlines.empty());
        EXPECT_FALSE(frame.printPlugins->IsLoaded());
        EXPECT_EQ(frame.abortRequested, 1u) << "no job, nothing to clear";
        EXPECT_TRUE(person.TakeBoxes().empty());
    });
}

TEST_F(PrintFlow, TheWishToStopIsClearedInFrontOfTheJobAndBehindIt)
{
    Run([&](MainFrame& frame) {
        Ask(frame, TEXT("FixtureReports"), 3);
        frame.abortRequested = 1; // of an earlier job, so to say
        Send(frame, FirstPrint);
        EXPECT_EQ(Stored(frame, TEXT("FixtureAnswer")), 1u);
        EXPECT_EQ(frame.abortRequested, 0u);
        person.onProgress = [&] {
            SendMessageW(progressState.dialog, WM_COMMAND, ControlAbort, 0);
            EXPECT_EQ(frame.abortRequested, 1u);
        };
        Send(frame, FirstPrint);
        EXPECT_EQ(Stored(frame, TEXT("FixtureAnswer")), 0xFFFFFFFFu);
        EXPECT_EQ(frame.abortRequested, 0u);
        EXPECT_EQ(Stored(frame, TEXT("FixtureRuns")), 2u);
        EXPECT_TRUE(StatusTexts().empty()) << "a print tells no failure";
        ExpectPicture(*frame.image);
    });
}

TEST_F(PrintFlow, WithoutAPictureItBeepsAndWithoutAPluginItIsSilent)
{
    RunProgram(u"", [&](MainFrame& frame) {
        const unsigned beeps = Beeps();
        Send(frame, FirstPrint);
        Send(frame, PrintWithoutEntry);
        EXPECT_EQ(Beeps(), beeps + 2);
        frame.imagePresent = 1;
        Send(frame, FirstPrint + 1);
        EXPECT_EQ(Beeps(), beeps + 2) << "no such entry";
        RemovePlugin("PRINT", "printing");
        Send(frame, FirstPrint);
        EXPECT_EQ(Beeps(), beeps + 2) << "a plugin that does not load";
        EXPECT_EQ(dialogs, 0);
        EXPECT_TRUE(person.TakeBoxes().empty());
    });
}

TEST_F(PrintFlow, WhatThePluginLeftLockedIsUnlocked)
{
    Run([&](MainFrame& frame) {
        ASSERT_EQ(frame.image->Create(8, 6, 24, TEXT("\\Temp\\"), nullptr), Done);
        ASSERT_TRUE(CanPage(*frame.image));
        Ask(frame, TEXT("FixtureLocks"), 1);
        person.onProgress = [&] { frame.imagePresent = 0; }; // the view would release its lines
        Send(frame, FirstPrint);
        EXPECT_EQ(Stored(frame, TEXT("FixtureRuns")), 1u);
        EXPECT_TRUE(CanPage(*frame.image));
    });
}

TEST_F(PrintFlow, AThreadThatIsNotMadeIsNotTold)
{
    Run([&](MainFrame& frame) {
        SetThreadFault([] { return true; });
        Send(frame, FirstPrint);
        EXPECT_TRUE(person.TakeBoxes().empty());
        EXPECT_FALSE(frame.printPlugins->IsLoaded());
        EXPECT_EQ(frame.abortRequested, 0u);
    });
}

TEST_F(PrintFlow, AFileHandedOverWhileTheDialogIsOpenWaitsForTheEnd)
{
    InstallReader("Reader.raw");
    MakeSource("handed.raw", 'h');
    Run([&](MainFrame& frame) {
        onPrintDialog = [&](HWND) {
            HandOver(frame, u"\\handed.raw");
            ExpectPicture(*frame.image);
        };
        Send(frame, FirstPrint);
        EXPECT_EQ(Stored(frame, TEXT("FixtureWidth")), u32{PictureWidth});
        ExpectRead(frame, 'h');
    });
}
