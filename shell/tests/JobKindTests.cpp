// Every kind of job: its texts in both languages, what its plugin is given, its failure, a
// hand-over in its middle, a thread that cannot be made.

#include "shell/tests/JobTesting.h"

#include "shell/JobKinds.h"

#include <cstring>

using namespace jobtest;

namespace
{

struct Texts {
    u32 kind;
    const char16_t* status;
    const char16_t* japaneseStatus;
    const char16_t* error;
    const char16_t* japaneseError;
};

const Texts Table[] = {
    {1, u"Loading an image...", u"画像を読み込んでいます...",
     u"Failed to load an image file, might be broken or unknown-format.",
     u"画像ファイルがロードできません。ファイルが壊れているか未対応の画像形式です。"},
    {2, u"Loading an object from IrDA...", u"赤外線デバイスから読み込んでいます...",
     u"Failed to receive an object.", u"受信に失敗しました。"},
    {3, u"Storing an image...", u"画像を書き込んでいます...",
     u"Failed to write an image on file. System doesn't have enough work memory or storage.",
     u"画像ファイルが書き出せません。作業用メモリが足りない、または書き込み先に十分な空き容量があ"
     u"りません。"},
    {4, u"Virtualy storing an image...", u"仮想的に画像を書き込んでいます...",
     u"Processing was terminated by the plug-in. The plug-in doesn't support stream I/O, or system "
     u"doesn't have enough work memory.",
     u"プラグインによって処理が中断されました。プラグインがストリーム入出力に対応していない、また"
     u"は作業用メモリが足りない可能性があります。"},
    {16, u"Effecting an image...", u"画像に効果を加えています...",
     u"Error occurred during effecting an image.", u"画像効果処理中にエラーが発生しました。"},
    {17, u"Adjusting an image...", u"画像を調整しています...",
     u"Error occurred during adjusting an image.", u"画像調整中にエラーが発生しました。"},
    {18, u"Scaling an image...", u"画像を伸縮しています...",
     u"Error occurred during scaling an image.", u"解像度変更中にエラーが発生しました。"},
    {19, u"Subtracting an image...", u"画像を減色しています...",
     u"Error occurred during subtracting an image.", u"減色中にエラーが発生しました。"},
    {20, u"Printing an image...", u"印刷を行っています...", nullptr, nullptr},
};

class Kinds : public ::testing::TestWithParam<LANGID>
{
protected:
    bool IsJapanese() const { return GetParam() == 1041; }
    const char16_t* Status(const Texts& row) const
    {
        return IsJapanese() ? row.japaneseStatus : row.status;
    }
    const char16_t* Error(const Texts& row) const
    {
        return IsJapanese() ? row.japaneseError : row.error;
    }
    const char16_t* Caption() const { return IsJapanese() ? u"エラー" : u"ERROR"; }
};

} // namespace

TEST_P(Kinds, TheHeadlineNamesTheWorkAndOnlyPrintingCanBeStopped)
{
    Scope scope;
    SetLanguage(GetParam());
    InstallKinds();
    Watched watched;
    RunProgram(u"", [&](MainFrame& frame) {
        for (const Texts& row : Table) {
            SCOPED_TRACE(row.kind);
            if (row.kind == JobReceive)
                continue; // it has no such delay (ReceiveJobTests.cpp)
            const DWORD start = GetTickCount();
            EXPECT_EQ(RunKind(frame, row.kind), 1);
            // The thread's delay. Who watches the dialog by a timer sees less of it on a busy
            // machine.
            EXPECT_GE(GetTickCount() - start, 100U);
            ASSERT_FALSE(watched.headlines.empty());
            EXPECT_EQ(watched.headlines.back(), Status(row));
            EXPECT_EQ(watched.stoppable.back(), row.kind == JobPrint);
        }
        EXPECT_EQ(watched.headlines.size(), 8U);
        EXPECT_TRUE(StatusTexts().empty());
    });
}

TEST_P(Kinds, AFailureIsToldForTwoSecondsInTheStatusLineAndTheResultIsStillOne)
{
    Scope scope;
    SetLanguage(GetParam());
    InstallKinds("failing");
    Watched watched;
    RunProgram(u"", [&](MainFrame& frame) {
        Ask(frame, TEXT("FixtureFails"), 1);
        size_t failures = 0;
        for (const Texts& row : Table) {
            SCOPED_TRACE(row.kind);
            if (row.kind == JobPrint)
                continue;
            EXPECT_EQ(RunKind(frame, row.kind), 1);
            ++failures;
            ASSERT_EQ(StatusTexts().size(), failures);
            EXPECT_EQ(StatusTexts().back(), Error(row));
            // Without the delay of the others the watching timer sees a little less of it.
            EXPECT_GE(ProgressDialogTime(), row.kind == JobReceive ? 1000U : 2000U);
            EXPECT_LT(ProgressDialogTime(), 4000U);
            EXPECT_EQ(tavrix::platform::Hooks().beeps, failures);
        }
        // A print job that fails says nothing.
        EXPECT_EQ(RunKind(frame, JobPrint), 1);
        EXPECT_LT(ProgressDialogTime(), 2000U);
        EXPECT_EQ(StatusTexts().size(), failures);
        EXPECT_EQ(tavrix::platform::Hooks().beeps, failures);
        EXPECT_TRUE(watched.boxes.empty());
    });
}

TEST_P(Kinds, AThreadThatCannotBeMadeClosesTheDialogAndTheErrorComesAsABox)
{
    Scope scope;
    SetLanguage(GetParam());
    InstallKinds();
    Watched watched;
    RunProgram(u"", [&](MainFrame& frame) {
        SetThreadFault([] { return true; });
        size_t boxes = 0;
        for (const Texts& row : Table) {
            SCOPED_TRACE(row.kind);
            EXPECT_EQ(RunKind(frame, row.kind), 0);
            EXPECT_FALSE(IsWindow(progressState.dialog));
            EXPECT_TRUE(IsWindowEnabled(frame.window));
            if (row.kind != JobPrint)
                ++boxes;
            ASSERT_EQ(watched.boxes.size(), boxes);
            if (row.kind == JobPrint)
                continue;
            EXPECT_EQ(watched.boxes.back().text, Error(row));
            EXPECT_EQ(watched.boxes.back().caption, Caption());
        }
    });
}

INSTANTIATE_TEST_SUITE_P(InBothLanguages, Kinds, ::testing::Values(LANGID{1033}, LANGID{1041}),
                         [](const auto& test) {
                             return std::string(test.param == 1041 ? "Japanese" : "English");
                         });

TEST(JobKinds, NoOtherKindExists)
{
    for (u32 kind = 0; kind < 64; ++kind) {
        bool known = false;
        for (const Texts& row : Table)
            known = known || row.kind == kind;
        EXPECT_EQ(FindJobKind(kind) != nullptr, known) << kind;
    }
}

TEST(JobKinds, AKindThatDoesNotExistRunsNothingAndItsDialogWaitsForTheEndMessage)
{
    Watched watched;
    watched.script = [](HWND dialog, bool box) {
        if (!box) {
            EXPECT_EQ(progressState.thread, nullptr);
            PostMessageW(dialog, WM_COMMAND, 1, 0);
        }
    };
    RunProgram(u"", [&](MainFrame& frame) {
        JobRecord record = {5, nullptr};
        EXPECT_EQ(RunJob(frame.window, frame.instance, &record), 1);
        EXPECT_EQ(watched.headlines, std::vector<std::u16string>{u"Processing..."});
    });
}

TEST(JobKinds, ASaveGivesThePluginThePathAndNoStream)
{
    InstallKinds();
    RunProgram(u"", [](MainFrame& frame) {
        Blocks blocks;
        blocks.path = TEXT("\\My Documents\\a b.fixture");
        EXPECT_EQ(RunKind(frame, JobSave, blocks), 1);
        EXPECT_EQ(StoredText(frame, TEXT("FixturePath")), u"\\My Documents\\a b.fixture");
        EXPECT_EQ(Stored(frame, TEXT("FixtureStreamGiven")), 0U);
        EXPECT_EQ(Stored(frame, TEXT("FixtureWidth")), 8U);
    });
}

TEST(JobKinds, AnEffectAndAnAdjustmentChangeThePictureInPlace)
{
    InstallKinds();
    RunProgram(u"", [](MainFrame& frame) {
        Raster image(&frame.allocator);
        ASSERT_EQ(image.Create(8, 4, 24, nullptr, nullptr), Done);
        Blocks blocks;
        blocks.image = &image;
        EXPECT_EQ(RunKind(frame, JobEffect, blocks), 1);
        EXPECT_EQ(RunKind(frame, JobAdjust, blocks), 1);
        u8* line = nullptr;
        ASSERT_EQ(image.LockLines(0, &line, nullptr), Done);
        // The plugins' values hold the stored bytes 0, 1, 2 in bits 8 to 31, lowest first.
        const u8 expected[] = {0x33, 0x22, 0x11, 0x66, 0x55, 0x44, 0, 0, 0};
        EXPECT_EQ(std::memcmp(line, expected, sizeof expected), 0);
        image.UnlockAll();
    });
}

TEST(JobKinds, AScaleIsToldTheNewSize)
{
    InstallKinds();
    RunProgram(u"", [](MainFrame& frame) {
        Raster image(&frame.allocator);
        ASSERT_EQ(image.Create(8, 4, 24, nullptr, nullptr), Done);
        Blocks blocks;
        blocks.image = &image;
        blocks.width = 13;
        blocks.height = 7;
        EXPECT_EQ(RunKind(frame, JobScale, blocks), 1);
        RasterInfo info = {};
        info.size = sizeof info;
        image.GetInfo(&info);
        EXPECT_EQ(info.width, 13U);
        EXPECT_EQ(info.height, 7U);
    });
}

TEST(JobKinds, ASubtractionIsHandedTheWordOfItsBlock)
{
    InstallKinds();
    RunProgram(u"", [](MainFrame& frame) {
        Blocks blocks;
        blocks.argument = 0xFFFFFFFE;
        EXPECT_EQ(RunKind(frame, JobSubtract, blocks), 1);
        EXPECT_EQ(Stored(frame, TEXT("FixtureArgument")), 0xFFFFFFFE);
    });
}

TEST(JobKinds, EffectAndScaleTakeTheirPropertyCallbacksFromTheBlockAndTheOthersTheFramesOwn)
{
    InstallKinds();
    static int calls;
    Blocks blocks;
    blocks.put = [](Variant*) -> i32 { return 3; };
    blocks.get = [](Variant* item) -> i32 {
        ++calls;
        item->value = 0;
        return 1;
    };
    Watched watched;
    RunProgram(u"", [&](MainFrame& frame) {
        Ask(frame, TEXT("FixtureReports"), 1); // which the block's own callback hides
        for (const u32 kind : {16U, 18U}) {
            calls = 0;
            EXPECT_EQ(RunKind(frame, kind, blocks), 1);
            EXPECT_EQ(calls, 4) << kind;
            EXPECT_FALSE(IsStored(frame, TEXT("FixtureAnswer"))) << kind;
        }
        for (const u32 kind : {3U, 4U, 17U, 19U, 20U}) {
            calls = 0;
            Ask(frame, TEXT("FixtureAnswer"), 99);
            EXPECT_EQ(RunKind(frame, kind, blocks), 1);
            EXPECT_EQ(calls, 0) << kind;
            EXPECT_EQ(Stored(frame, TEXT("FixtureAnswer")), 1U) << kind;
        }
    });
}

TEST(JobKinds, AHandOverDuringAJobOfAnyKindWaitsForItsEnd)
{
    InstallKinds();
    const std::u16string path = DevicePath(MakeFile("a.quick"));
    Watched watched;
    bool sent = false;
    watched.script = [&](HWND, bool box) {
        if (sent || box)
            return;
        sent = true;
        COPYDATASTRUCT record = {1, static_cast<DWORD>((path.size() + 1) * sizeof(WCHAR)),
                                 const_cast<WCHAR*>(path.c_str())};
        EXPECT_EQ(
            SendMessageW(mainFrame->window, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&record)), 1);
        EXPECT_EQ(mainFrame->openedPath[0], 0);
    };
    RunProgram(u"", [&](MainFrame& frame) {
        for (const Texts& row : Table) {
            SCOPED_TRACE(row.kind);
            sent = false;
            watched.deepest = 0;
            frame.openedPath[0] = 0;
            EXPECT_EQ(RunKind(frame, row.kind), 1);
            EXPECT_TRUE(sent);
            EXPECT_EQ(std::u16string(frame.openedPath), path);
            // The report of a virtual save lies over its own job.
            EXPECT_EQ(watched.deepest, row.kind == JobVirtualSave ? 2U : 1U);
        }
    });
}
