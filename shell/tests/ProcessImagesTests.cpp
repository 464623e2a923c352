// Effect and Adjust, by their menu commands and with real plugins: what is changed, what is told,
// and what is left when a plugin or its user breaks off.

#include "platform/testing/Faults.h"
#include "shell/tests/FlowTesting.h"

using namespace flowtest;

namespace
{

/// What differs between the two commands, typed by hand.
struct Kind {
    const char* name;
    u32 first;
    u32 (*change)(u32);
    const char* folder;
    const char* fixture;
    const char16_t* headline;
    const char16_t* japaneseHeadline;
    const char16_t* loadError;
    const char16_t* japaneseLoadError;
    const char16_t* jobError;
    const char16_t* japaneseJobError;
};

const Kind kinds[] = {
    {"Effect", 41200, Inverted, "EFFECT", "inverting", u"Effecting an image...",
     u"画像に効果を加えています...", u"Failed to load selected EFFECT plugin.",
     u"指定の効果プラグインがロードできませんでした。",
     u"Error occurred during effecting an image.", u"画像効果処理中にエラーが発生しました。"},
    {"Adjust", 41300, Halved, "ADJUST", "halving", u"Adjusting an image...",
     u"画像を調整しています...", u"Failed to load selected ADJUST plugin.",
     u"指定の調整プラグインがロードできませんでした。",
     u"Error occurred during adjusting an image.", u"画像調整中にエラーが発生しました。"},
};

std::ostream& operator<<(std::ostream& out, const Kind& kind)
{
    return out << kind.name;
}

class ProcessImages : public ::testing::TestWithParam<Kind>
{
protected:
    ProcessImages() { SetLanguage(1033); }

    const Kind& kind = GetParam();
    Scope scope;
};

PluginModule& HostOf(MainFrame& frame, const Kind& kind)
{
    if (kind.first == FirstEffect)
        return *frame.effectPlugins;
    return *frame.adjustPlugins;
}

TEST_P(ProcessImages, WithoutASelectionTheWholePictureIsChangedAndShown)
{
    RunOnPicture([&](MainFrame& frame) {
        const Answering answering;
        const Picture before = ScreenPixels();
        const int left = (640 - PictureWidth) / 2;
        int top = static_cast<int>(frame.clientOriginY);
        top += (480 - top - 1 - PictureHeight) / 2;
        ASSERT_EQ(before.At(left + 7, top + 9), TestColor(7, 9));
        Send(frame, kind.first);
        ExpectPicture(*frame.image, kind.change);
        EXPECT_EQ(ScreenPixels().At(left + 7, top + 9), kind.change(TestColor(7, 9)));
        EXPECT_EQ(answering.headlines, std::vector<std::u16string>{kind.headline});
        EXPECT_TRUE(answering.Boxes().empty());
        // Configure and run have both met the picture itself and the main window.
        EXPECT_EQ(Stored(frame, TEXT("FixtureConfigures")), 1u);
        EXPECT_EQ(Stored(frame, TEXT("FixtureRuns")), 1u);
        EXPECT_EQ(Stored(frame, TEXT("FixtureAskedWidth")), u32{PictureWidth});
        EXPECT_EQ(Stored(frame, TEXT("FixtureAskedHeight")), u32{PictureHeight});
        EXPECT_EQ(Stored(frame, TEXT("FixtureWidth")), u32{PictureWidth});
        EXPECT_EQ(Stored(frame, TEXT("FixtureOwner")),
                  static_cast<u32>(reinterpret_cast<uintptr_t>(frame.window)));
        EXPECT_FALSE(HostOf(frame, kind).IsLoaded());
        EXPECT_EQ(frame.workImage, nullptr);
    });
}

TEST_P(ProcessImages, TheDialogSpeaksJapaneseOnAJapaneseSystem)
{
    SetLanguage(1041);
    RunOnPicture([&](MainFrame& frame) {
        const Answering answering;
        Send(frame, kind.first);
        EXPECT_EQ(answering.headlines, std::vector<std::u16string>{kind.japaneseHeadline});
    });
}

TEST_P(ProcessImages, WithASelectionOnlyItsPixelsAreChanged)
{
    RunOnPicture([&](MainFrame& frame) {
        const Answering answering;
        // Each corner loses its fraction.
        Select(frame, 10.9, 20.2, 29.99, 34.5);
        Send(frame, kind.first);
        ExpectPicture(*frame.image, kind.change, {10, 20, 29, 34});
        EXPECT_EQ(Stored(frame, TEXT("FixtureAskedWidth")), 20u);
        EXPECT_EQ(Stored(frame, TEXT("FixtureAskedHeight")), 15u);
        EXPECT_EQ(Stored(frame, TEXT("FixtureWidth")), 20u);
        EXPECT_EQ(Stored(frame, TEXT("FixtureHeight")), 15u);
        EXPECT_EQ(frame.workImage, nullptr);
        EXPECT_EQ(frame.workAllocator, nullptr);
        EXPECT_EQ(frame.selectionActive, 1u) << "it stays";
        EXPECT_EQ(frame.selectionLeft, 10.9);
    });
}

TEST_P(ProcessImages, AnEntryWithoutAPluginBeepsAndDoesNothing)
{
    RunOnPicture([&](MainFrame& frame) {
        const Answering answering;
        const unsigned beeps = Beeps();
        Send(frame, kind.first + 1);
        Send(frame, kind.first + 99);
        EXPECT_EQ(Beeps(), beeps + 2);
        EXPECT_TRUE(answering.headlines.empty());
        EXPECT_TRUE(answering.Boxes().empty());
        ExpectPicture(*frame.image);
    });
}

TEST_P(ProcessImages, APluginThatDoesNotLoadIsToldInBothLanguages)
{
    RunOnPicture([&](MainFrame& frame) {
        std::filesystem::remove(TestHome() + "/data/tavrix/PLUGINS/" + kind.folder + "/" +
                                kind.fixture + ".dll");
        for (const LANGID language : {1033, 1041}) {
            SetLanguage(language);
            const Answering answering;
            Send(frame, kind.first);
            ExpectOneBox(frame, answering,
                         language == 1041 ? kind.japaneseLoadError : kind.loadError,
                         language == 1041 ? u"エラー" : u"ERROR", 16);
            EXPECT_TRUE(answering.headlines.empty());
        }
        ExpectPicture(*frame.image);
        EXPECT_FALSE(CanUndo(frame));
    });
}

TEST_P(ProcessImages, CancelledSettingsEndItBeforeAnythingIsTaken)
{
    SwitchUndoOn();
    RunOnPicture([&](MainFrame& frame) {
        const Answering answering;
        Ask(frame, TEXT("FixtureConfigure"), 100);
        Send(frame, kind.first);
        EXPECT_EQ(Stored(frame, TEXT("FixtureConfigures")), 1u);
        EXPECT_FALSE(IsStored(frame, TEXT("FixtureRuns")));
        EXPECT_TRUE(answering.headlines.empty());
        EXPECT_TRUE(answering.Boxes().empty());
        EXPECT_FALSE(HostOf(frame, kind).IsLoaded());
        EXPECT_FALSE(CanUndo(frame));
        EXPECT_FALSE(HasSnapshot(frame));
        EXPECT_EQ(frame.workImage, nullptr);
        ExpectPicture(*frame.image);
    });
}

TEST_P(ProcessImages, AWorkCopyLeftByCancelledSettingsGoesAtTheNextCopy)
{
    RunOnPicture([&](MainFrame& frame) {
        const Answering answering;
        Ask(frame, TEXT("FixtureConfigure"), 100);
        Select(frame, 10, 20, 29, 34);
        Send(frame, kind.first);
        ASSERT_NE(frame.workImage, nullptr);
        ASSERT_NE(frame.workAllocator, nullptr);
        ExpectPicture(*frame.image);
        Ask(frame, TEXT("FixtureConfigure"), 101);
        Select(frame, 0, 0, 4, 4);
        Send(frame, kind.first);
        ExpectPicture(*frame.image, kind.change, {0, 0, 4, 4});
        EXPECT_EQ(frame.workImage, nullptr);
        EXPECT_EQ(frame.workAllocator, nullptr);
    });
}

TEST_P(ProcessImages, AWorkCopyLeftByCancelledSettingsGoesBackOverTheNextWholePicture)
{
    RunOnPicture([&](MainFrame& frame) {
        const Answering answering;
        Ask(frame, TEXT("FixtureConfigure"), 100);
        Select(frame, 10, 20, 29, 34);
        Send(frame, kind.first);
        Ask(frame, TEXT("FixtureConfigure"), 101);
        frame.Deselect();
        Send(frame, kind.first);
        EXPECT_EQ(frame.workImage, nullptr);
        const Area stale = {10, 20, 29, 34};
        for (int y = 0; y < PictureHeight; ++y)
            for (int x = 0; x < PictureWidth; ++x)
                ASSERT_EQ(PixelOf(*frame.image, x, y),
                          stale.Holds(x, y) ? TestColor(x, y) : kind.change(TestColor(x, y)))
                    << x << ", " << y;
    });
}

TEST_P(ProcessImages, SettingsThatFailAreToldInBothLanguagesAndTheWorkGoesOn)
{
    RunOnPicture([&](MainFrame& frame) {
        Ask(frame, TEXT("FixtureConfigure"), 95);
        {
            const Answering answering;
            Send(frame, kind.first);
            ExpectOneBox(frame, answering,
                         u"Failed to initialize plugin settings, but enforce next process...",
                         u"WARNING", 16);
        }
        ExpectPicture(*frame.image, kind.change);
        SetLanguage(1041);
        const Answering answering;
        Send(frame, kind.first);
        ExpectOneBox(frame, answering, u"プラグイン設定の初期化に失敗しました。強行します。",
                     u"警告", 48);
        EXPECT_EQ(Stored(frame, TEXT("FixtureRuns")), 2u);
    });
}

TEST_P(ProcessImages, AFailedRunIsToldAndWhatItDidGoesBackAllTheSame)
{
    RunOnPicture([&](MainFrame& frame) {
        Ask(frame, TEXT("FixtureFails"), 1);
        Select(frame, 10, 20, 29, 34);
        {
            const Answering answering;
            Send(frame, kind.first);
            EXPECT_TRUE(answering.Boxes().empty());
        }
        ExpectPicture(*frame.image, kind.change, {10, 20, 29, 34});
        EXPECT_EQ(frame.workImage, nullptr);
        EXPECT_FALSE(HostOf(frame, kind).IsLoaded());
    });
}

TEST_P(ProcessImages, AThreadThatIsNotMadeIsToldAndChangesNothing)
{
    RunOnPicture([&](MainFrame& frame) {
        SetThreadFault([] { return true; });
        for (const LANGID language : {1033, 1041}) {
            SetLanguage(language);
            const Answering answering;
            Select(frame, 10, 20, 29, 34);
            Send(frame, kind.first);
            ExpectOneBox(frame, answering, language == 1041 ? kind.japaneseJobError : kind.jobError,
                         language == 1041 ? u"エラー" : u"ERROR", 16);
        }
        ExpectPicture(*frame.image);
        EXPECT_FALSE(HostOf(frame, kind).IsLoaded());
        frame.DropWorkImage();
    });
}

TEST_P(ProcessImages, NoToTheQuestionAboutMemoryChangesTheWholePicture)
{
    RunOnPicture(
        [&](MainFrame& frame) {
            const Answering answering(IDNO);
            Select(frame, 0, 0, 599, 399);
            SetFreeMemory(600 * 400 * 4);
            Send(frame, kind.first);
            ExpectOneBox(frame, answering,
                         u"Physical memory available might be not enough. Enforce the process?",
                         u"confirm", 52);
            ExpectPicture(*frame.image, kind.change, Everywhere, 600, 410);
        },
        600, 410);
}

TEST_P(ProcessImages, YesToTheQuestionAboutMemoryChangesTheSelection)
{
    SetLanguage(1041);
    RunOnPicture(
        [&](MainFrame& frame) {
            const Answering answering(IDYES);
            Select(frame, 0, 0, 599, 399);
            SetFreeMemory(600 * 400 * 4);
            Send(frame, kind.first);
            ExpectOneBox(frame, answering,
                         u"作業用メモリが足りない可能性があります。強行しますか？", u"確認", 52);
            ExpectPicture(*frame.image, kind.change, {0, 0, 599, 399}, 600, 410);
        },
        600, 410);
}

TEST_P(ProcessImages, AnAbsentPictureIsSurvivedWithAndWithoutASelection)
{
    InstallFixture("quick", "INPUT");
    InstallFixture("inverting", "EFFECT");
    InstallFixture("halving", "ADJUST");
    SwitchUndoOn();
    RunProgram(u"", [&](MainFrame& frame) {
        const Answering answering;
        Send(frame, kind.first);
        Send(frame, 40056);
        EXPECT_EQ(frame.selectionActive, 1u);
        Send(frame, kind.first);
        Send(frame, 40205);
        EXPECT_EQ(Stored(frame, TEXT("FixtureRuns")), 2u);
        EXPECT_EQ(frame.imagePresent, 0u);
        EXPECT_EQ(frame.workImage, nullptr);
    });
}

TEST_P(ProcessImages, WhatThePluginAndTheSnapshotLockedIsUnlockedAtTheEnd)
{
    SwitchUndoOn();
    RunOnPicture([&](MainFrame& frame) {
        const Answering answering;
        ASSERT_EQ(frame.image->Create(8, 6, 24, TEXT("\\Temp\\"), nullptr), Done);
        frame.imagePresent = 0; // the view would release the lines that it shows
        ASSERT_TRUE(CanPage(*frame.image));
        for (int y = 0; y < 6; ++y) {
            u8* line = nullptr;
            ASSERT_EQ(frame.image->LockLines(y, &line, nullptr), Done);
        }
        ASSERT_FALSE(CanPage(*frame.image)) << "what the test looks for";
        Ask(frame, TEXT("FixtureLocks"), 1);
        Send(frame, kind.first);
        EXPECT_TRUE(CanPage(*frame.image));
        Ask(frame, TEXT("FixtureConfigure"), 100);
        Send(frame, kind.first);
        EXPECT_TRUE(CanPage(*frame.image)) << "cancelled";
    });
}

TEST_P(ProcessImages, AFileHandedOverDuringTheSettingsWaitsForTheEnd)
{
    InstallFixture("quick", "INPUT");
    const std::string file = MakeFile("a.quick");
    RunOnPicture([&](MainFrame& frame) {
        Ask(frame, TEXT("FixtureAsks"), 1);
        Answering answering;
        answering.onBox = [&] {
            std::u16string path = DevicePath(file);
            COPYDATASTRUCT record = {1, static_cast<DWORD>((path.size() + 1) * sizeof(WCHAR)),
                                     path.data()};
            EXPECT_EQ(SendMessageW(frame.window, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&record)),
                      1);
            ExpectPicture(*frame.image);
        };
        Send(frame, kind.first);
        EXPECT_EQ(answering.headlines,
                  (std::vector<std::u16string>{kind.headline, u"Loading an image..."}));
        EXPECT_EQ(Stored(frame, TEXT("FixtureWidth")), u32{PictureWidth});
        EXPECT_EQ(InfoOf(*frame.image).width, 30u);
    });
}

INSTANTIATE_TEST_SUITE_P(Of, ProcessImages, ::testing::ValuesIn(kinds),
                         [](const ::testing::TestParamInfo<Kind>& row) {
                             return std::string(row.param.name);
                         });

} // namespace
