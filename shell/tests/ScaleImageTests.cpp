// Resolution, from the command to the pixels, with plugins that scale well, badly and not at all.

#include "shell/tests/SizingTesting.h"

using namespace sizingtest;

namespace
{

constexpr int PluginList = 1010;

/// What the fixture makes of the test picture.
std::function<u32(int, int)> Scaled(int width, int height, int oldWidth = PictureWidth,
                                    int oldHeight = PictureHeight)
{
    return [=](int x, int y) { return TestColor(x * oldWidth / width, y * oldHeight / height); };
}

void RunResizing(const Step& step)
{
    InstallFixture("resizing", "SCALE");
    RunOnPicture(step);
}

} // namespace

TEST(ScaleImage, ThePluginMakesTheSizeThatWasTypedAndTheViewShowsIt)
{
    HideToolWindows();
    Sizer sizer;
    RunResizing([&](MainFrame& frame) {
        sizer.headlines.clear(); // of the load
        sizer.Enter(90, 25);
        frame.scrollX = 1234;
        Select(frame, 1, 2, 3, 4);
        Send(frame, ResolutionCommand);
        EXPECT_EQ(sizer.offered.back().width, u"60");
        EXPECT_EQ(sizer.offered.back().height, u"50");
        EXPECT_EQ(sizer.headlines, std::vector<std::u16string>{u"Scaling an image..."});
        ExpectPixels(frame, 90, 25, Scaled(90, 25));
        ExpectOnScreen(frame, 90, 25);
        EXPECT_EQ(frame.selectionActive, 0u);
        EXPECT_TRUE(IsGray(frame.editMenu, 40074)) << "Deselect";
        EXPECT_EQ(Stored(frame, TEXT("FixtureRuns")), 1u);
        EXPECT_FALSE(IsStored(frame, TEXT("FixtureConfigures"))) << "it is not asked for settings";
        EXPECT_FALSE(frame.scalePlugins->IsLoaded());
        EXPECT_TRUE(sizer.TakeBoxes().empty());
    });
}

TEST(ScaleImage, TheDialogOfTheWorkSpeaksJapaneseOnAJapaneseSystem)
{
    SetLanguage(1041);
    Sizer sizer;
    RunResizing([&](MainFrame& frame) {
        sizer.headlines.clear(); // of the load
        Send(frame, ResolutionCommand);
        EXPECT_EQ(sizer.headlines, std::vector<std::u16string>{u"画像を伸縮しています..."});
        ExpectPicture(*frame.image);
    });
}

TEST(ScaleImage, UndoBringsTheOldSizeBackAndTheViewStartsAnew)
{
    UndoAndNoToolWindows();
    Sizer sizer;
    RunResizing([&](MainFrame& frame) {
        sizer.Enter(20, 100);
        Send(frame, ResolutionCommand);
        EXPECT_TRUE(CanUndo(frame));
        EXPECT_EQ(frame.undoX, -1);
        EXPECT_EQ(frame.undoY, -1);
        ExpectPicture(frame.undoImage);
        frame.scrollX = 1234;
        Send(frame, UndoCommand);
        ExpectPicture(*frame.image);
        ExpectOnScreen(frame, PictureWidth, PictureHeight);
        EXPECT_FALSE(CanUndo(frame));
    });
}

TEST(ScaleImage, WithUndoSwitchedOffNothingIsKept)
{
    Sizer sizer;
    RunResizing([&](MainFrame& frame) {
        sizer.Enter(20, 100);
        Send(frame, ResolutionCommand);
        EXPECT_FALSE(CanUndo(frame));
        EXPECT_FALSE(HasSnapshot(frame));
        Send(frame, UndoCommand);
        ExpectPixels(frame, 20, 100, Scaled(20, 100));
    });
}

TEST(ScaleImage, APictureFittedToTheWindowIsFittedAnew)
{
    Sizer sizer;
    RunResizing([&](MainFrame& frame) {
        Send(frame, FitCommand);
        sizer.Enter(320, 10);
        Send(frame, ResolutionCommand);
        EXPECT_EQ(frame.zoom, 0.5);
        EXPECT_EQ(frame.zoomCommand, FitCommand);
    });
}

TEST(ScaleImage, GivenUpItChangesNothingAndRemembersNothing)
{
    SwitchUndoOn();
    Sizer sizer;
    RunResizing([&](MainFrame& frame) {
        sizer.headlines.clear(); // of the load
        sizer.Enter(20, 30);
        sizer.end = IDCANCEL;
        Select(frame, 1, 2, 3, 4);
        Send(frame, ResolutionCommand);
        EXPECT_EQ(sizer.offered.size(), 1u);
        EXPECT_TRUE(sizer.headlines.empty());
        ExpectPicture(*frame.image);
        EXPECT_FALSE(CanUndo(frame));
        EXPECT_EQ(frame.selectionActive, 1u);
        EXPECT_EQ(Setting(frame, TEXT("DefaultSCALE")), 12345u) << "not stored";
    });
}

TEST(ScaleImage, TheChosenPluginIsRememberedAndOfferedTheNextTime)
{
    InstallPluginAs(tavrix::testing::InBuild("/tests/shell-fixtures/resizing.dll"), "SCALE",
                    "A.dll");
    InstallLabelled("SCALE", "B.Second");
    InstallLabelled("SCALE", "C.Third");
    Sizer sizer;
    std::vector<LRESULT> data;
    const auto dataOf = [](HWND dialog) {
        const HWND list = GetDlgItem(dialog, PluginList);
        return SendMessageW(list, CB_GETITEMDATA,
                            static_cast<WPARAM>(SendMessageW(list, CB_GETCURSEL, 0, 0)), 0);
    };
    sizer.before = [&](HWND dialog) {
        data.push_back(dataOf(dialog));
        SendDlgItemMessageW(dialog, PluginList, CB_SETCURSEL, 1, 0); // of C, B, A
        data.push_back(dataOf(dialog));
    };
    RunOnPicture([&](MainFrame& frame) {
        Send(frame, ResolutionCommand);
        EXPECT_EQ(data, (std::vector<LRESULT>{0, 1})) << "the first without a setting";
        EXPECT_EQ(Setting(frame, TEXT("DefaultSCALE")), 1u);
        Send(frame, ResolutionCommand);
        EXPECT_EQ(data[2], 1);
    });
}

TEST(ScaleImage, WithoutAPluginToChooseNothingIsDone)
{
    SwitchUndoOn();
    Sizer sizer;
    RunOnPicture([&](MainFrame& frame) {
        sizer.headlines.clear(); // of the load
        sizer.before = [](HWND dialog) {
            EXPECT_EQ(SendDlgItemMessageW(dialog, PluginList, CB_GETCOUNT, 0, 0), 0);
        };
        sizer.Enter(20, 30);
        Send(frame, ResolutionCommand);
        EXPECT_EQ(sizer.offered.size(), 1u);
        ExpectPicture(*frame.image);
        EXPECT_TRUE(sizer.headlines.empty());
        EXPECT_TRUE(sizer.TakeBoxes().empty());
        EXPECT_FALSE(CanUndo(frame));
        EXPECT_EQ(Setting(frame, TEXT("DefaultSCALE")), 12345u);
    });
}

TEST(ScaleImage, OfAHundredAndOnePluginsAHundredCanBeChosen)
{
    for (int i = 0; i < 101; ++i) {
        const std::string number = std::to_string(1000 + i).substr(1);
        InstallLabelled("SCALE", number + ".Plugin " + number);
    }
    Sizer sizer;
    sizer.before = [](HWND dialog) {
        const HWND list = GetDlgItem(dialog, PluginList);
        ASSERT_EQ(SendMessageW(list, CB_GETCOUNT, 0, 0), 100);
        for (WPARAM row = 0; row < 100; ++row)
            EXPECT_EQ(SendMessageW(list, CB_GETITEMDATA, row, 0), 99 - static_cast<LRESULT>(row));
    };
    RunOnPicture([&](MainFrame& frame) {
        EXPECT_EQ(frame.scalePlugins->Count(), 101);
        Send(frame, ResolutionCommand);
        EXPECT_EQ(sizer.offered.size(), 1u);
        EXPECT_EQ(Setting(frame, TEXT("DefaultSCALE")), 0u);
    });
}

TEST(ScaleImage, APluginThatDoesNotLoadIsToldInBothLanguagesAndIsTheOneThatIsOfferedNext)
{
    SwitchUndoOn();
    Sizer sizer;
    RunResizing([&](MainFrame& frame) {
        sizer.headlines.clear(); // of the load
        RemovePlugin("SCALE", "resizing");
        sizer.Enter(20, 30);
        Select(frame, 1, 2, 3, 4);
        Send(frame, ResolutionCommand);
        ExpectBox(frame, sizer, u"Failed to load selected SCALE plugin.", u"ERROR", 16);
        SetLanguage(1041);
        Send(frame, ResolutionCommand);
        ExpectBox(frame, sizer, u"指定の伸縮プラグインがロードできませんでした。", u"エラー", 16);
        EXPECT_TRUE(sizer.headlines.empty());
        ExpectPicture(*frame.image);
        EXPECT_FALSE(CanUndo(frame));
        EXPECT_EQ(frame.selectionActive, 1u);
        EXPECT_EQ(Setting(frame, TEXT("DefaultSCALE")), 0u) << "stored before it was tried";
    });
}

TEST(ScaleImage, AFailureIsToldInBothLanguagesAndWhatThePluginLeftIsShown)
{
    UndoAndNoToolWindows();
    Sizer sizer;
    RunResizing([&](MainFrame& frame) {
        Ask(frame, TEXT("FixtureFails"), 1);
        for (const LANGID language : {1033, 1041}) {
            SetLanguage(language);
            Paint(frame, PictureWidth, PictureHeight);
            Select(frame, 1, 2, 3, 4);
            sizer.Enter(30, 20);
            Send(frame, ResolutionCommand);
            EXPECT_EQ(StatusTexts().back(), language == 1041
                                                ? u"解像度変更中にエラーが発生しました。"
                                                : u"Error occurred during scaling an image.");
            ExpectPixels(frame, 30, 20, Scaled(30, 20));
            ExpectOnScreen(frame, 30, 20);
            EXPECT_EQ(frame.selectionActive, 0u);
            EXPECT_FALSE(frame.scalePlugins->IsLoaded());
            Send(frame, UndoCommand);
            ExpectPicture(*frame.image);
        }
        EXPECT_TRUE(sizer.TakeBoxes().empty());
    });
}

TEST(ScaleImage, APluginThatGivesAnotherSizeOrNoneIsBelieved)
{
    HideToolWindows();
    Sizer sizer;
    RunResizing([&](MainFrame& frame) {
        sizer.Enter(30, 20);
        Ask(frame, TEXT("FixtureMore"), 7);
        Send(frame, ResolutionCommand);
        ExpectPixels(frame, 37, 27, Scaled(37, 27));
        ExpectOnScreen(frame, 37, 27);
        Ask(frame, TEXT("FixtureKeeps"), 1);
        sizer.Enter(9, 9);
        Send(frame, ResolutionCommand);
        ExpectPixels(frame, 37, 27, Scaled(37, 27));
        EXPECT_EQ(Stored(frame, TEXT("FixtureWidth")), 9u);
    });
}

TEST(ScaleImage, WhatThePluginAndTheSnapshotLockedIsUnlockedAtTheEnd)
{
    SwitchUndoOn();
    Sizer sizer;
    RunResizing([&](MainFrame& frame) {
        sizer.Enter(8, 6);
        Ask(frame, TEXT("FixtureLocks"), 1);
        frame.imagePresent = 0; // the view would release the lines that it shows
        Send(frame, ResolutionCommand);
        EXPECT_TRUE(CanPage(*frame.image));
        for (int y = 0; y < 6; ++y) {
            u8* line = nullptr;
            ASSERT_EQ(frame.image->LockLines(y, &line, nullptr), Done);
        }
        ASSERT_FALSE(CanPage(*frame.image)) << "what the test looks for";
        // Without a job the snapshot's lines have to be let go, too.
        SetThreadFault([] { return true; });
        Send(frame, ResolutionCommand);
        SetThreadFault(nullptr);
        EXPECT_TRUE(CanPage(*frame.image));
    });
}

TEST(ScaleImage, AThreadThatIsNotMadeIsToldAndChangesNothing)
{
    Sizer sizer;
    RunResizing([&](MainFrame& frame) {
        sizer.Enter(30, 20);
        SetThreadFault([] { return true; });
        Select(frame, 1, 2, 3, 4);
        Send(frame, ResolutionCommand);
        ExpectBox(frame, sizer, u"Error occurred during scaling an image.", u"ERROR", 16);
        SetLanguage(1041);
        Send(frame, ResolutionCommand);
        ExpectBox(frame, sizer, u"解像度変更中にエラーが発生しました。", u"エラー", 16);
        SetThreadFault(nullptr);
        ExpectPicture(*frame.image);
        EXPECT_EQ(frame.selectionActive, 1u);
        EXPECT_FALSE(frame.scalePlugins->IsLoaded());
    });
}

TEST(ScaleImage, SizesThatNoPictureHasAndAnEmptyDocumentAreSurvived)
{
    SwitchUndoOn();
    InstallFixture("scaling", "SCALE");
    Sizer sizer;
    RunOnPicture([&](MainFrame& frame) {
        const struct {
            u32 width;
            u32 height;
        } sizes[] = {{0, 0}, {0, 9}, {9, 0}, {4000000000u, 9}, {9, 4000000000u}};
        for (const auto& size : sizes) {
            sizer.Enter(size.width, size.height);
            Send(frame, ResolutionCommand);
            Send(frame, FitCommand);
            Send(frame, UndoCommand);
            ExpectPicture(*frame.image);
            Send(frame, 40018);
        }
    });
}

TEST(ScaleImage, WithoutAPictureItIsSurvived)
{
    SwitchUndoOn();
    InstallFixture("quick");
    InstallFixture("resizing", "SCALE");
    Sizer sizer;
    EXPECT_EQ(RunProgram(u"",
                         [&](MainFrame& frame) {
                             sizer.Enter(30, 20);
                             Send(frame, ResolutionCommand);
                             EXPECT_EQ(sizer.offered.back().width, u"0");
                             EXPECT_EQ(Stored(frame, TEXT("FixtureRuns")), 1u);
                             EXPECT_EQ(Stored(frame, TEXT("FixtureWidth")), 0u)
                                 << "a part of nothing";
                             EXPECT_EQ(frame.imagePresent, 0u);
                             Send(frame, UndoCommand);
                         }),
              0);
}

TEST(ScaleImage, AFileHandedOverDuringTheWorkWaitsForTheEnd)
{
    InstallFixture("quick");
    const std::string file = MakeFile("a.quick");
    Sizer sizer;
    RunResizing([&](MainFrame& frame) {
        sizer.headlines.clear(); // of the load
        sizer.Enter(90, 25);
        bool handed = false;
        sizer.onProgress = [&] {
            if (!handed)
                HandOver(frame, DevicePath(file));
            handed = true;
        };
        Send(frame, ResolutionCommand);
        EXPECT_EQ(sizer.headlines,
                  (std::vector<std::u16string>{u"Scaling an image...", u"Loading an image..."}));
        EXPECT_EQ(Stored(frame, TEXT("FixtureWidth")), 90u);
        EXPECT_EQ(InfoOf(*frame.image).width, 30u);
    });
}
