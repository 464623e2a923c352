// The ends of all saves, with a plugin that writes a picture's bytes as they stand: what is
// encoded, what is told, and what is left. What both ends have in common runs for both.

#include "shell/tests/RoadTesting.h"

using namespace roadtest;

namespace
{

/// What differs between the two, typed by hand.
struct Kind {
    const char* name;
    i32 (MainFrame::*encode)(const WCHAR* path, i32 plugin, i32 configure);
    bool toFile;
    i32 cancelled;
    const char16_t* headline;
    const char16_t* error;
    const char16_t* japaneseError;
};

const Kind kinds[] = {
    {"SaveToFile", &MainFrame::SaveToFile, true, 0, u"Storing an image...",
     u"Failed to write an image on file. System doesn't have enough work memory or storage.",
     u"画像ファイルが書き出せません。作業用メモリが足りない、または書き込み先に十分な空き容量があり"
     u"ません。"},
    {"SaveVirtual", &MainFrame::SaveVirtual, false, 1, u"Virtualy storing an image...",
     u"Processing was terminated by the plug-in. The plug-in doesn't support stream I/O, or system "
     u"doesn't have enough work memory.",
     u"プラグインによって処理が中断されました。プラグインがストリーム入出力に対応していない、または"
     u"作業用メモリが足りない可能性があります。"},
};

std::ostream& operator<<(std::ostream& out, const Kind& kind)
{
    return out << kind.name;
}

const std::u16string question = u"Do you want to save a selected region?";
const std::u16string japaneseQuestion = u"選択した範囲を保存しますか？";
const std::u16string memoryQuestion =
    u"Physical memory available might be not enough. Enforce the process?";
const std::u16string wholeReport = u"Original : 0.0KB\r\n  Output : 8.8KB"; // 60 by 50 by 3 bytes

class Encoding : public ::testing::TestWithParam<Kind>
{
protected:
    Encoding() { SetLanguage(1033); }

    /// Runs on the test picture with one plugin that writes.
    void Run(const std::vector<Step>& steps, int width = PictureWidth, int height = PictureHeight)
    {
        InstallPlugin(tavrix::testing::InBuild("/bin/PLUGINS/INPUT/PNG.dll"));
        InstallWriter("Painter.aaa");
        EXPECT_EQ(RunProgramOn(WriteTestPng(width, height), steps), 0);
    }
    void Run(const Step& step, int width = PictureWidth, int height = PictureHeight)
    {
        Run(std::vector<Step>{step}, width, height);
    }
    i32 Encode(MainFrame& frame, i32 configure = 1, i32 plugin = 0,
               const WCHAR* path = u"\\out.aaa")
    {
        return (frame.*kind.encode)(path, plugin, configure);
    }
    /// The boxes but for the report that a virtual save ends with.
    std::vector<BoxCall> TakeQuestions()
    {
        std::vector<BoxCall> boxes = person.TakeBoxes();
        std::erase_if(boxes, [](const BoxCall& box) { return box.caption.empty(); });
        return boxes;
    }

    const Kind& kind = GetParam();
    Scope scope;
    Person person;
};

TEST_P(Encoding, ThePictureGoesThroughThePluginsSettingsAndOneJob)
{
    Run([&](MainFrame& frame) {
        EXPECT_EQ(Encode(frame), 1);
        EXPECT_EQ(Stored(frame, TEXT("WriteConfigures")), 1u);
        EXPECT_EQ(Stored(frame, TEXT("WriteOwner")),
                  static_cast<u32>(reinterpret_cast<uintptr_t>(frame.window)));
        EXPECT_EQ(Stored(frame, TEXT("WriteRuns")), 1u);
        EXPECT_EQ(Stored(frame, TEXT("WriteStream")), kind.toFile ? 0u : 1u);
        EXPECT_EQ(StoredText(frame, TEXT("WritePath")), kind.toFile ? u"\\out.aaa" : u"(none)");
        EXPECT_EQ(person.headlines.back(), kind.headline);
        EXPECT_EQ(FileBytes("out.aaa"), kind.toFile ? PictureBytes() : "");
        EXPECT_EQ(FileIsThere("out.aaa"), kind.toFile);
        EXPECT_FALSE(frame.outputPlugins->IsLoaded());
        const std::vector<BoxCall> boxes = person.TakeBoxes();
        ASSERT_EQ(boxes.size(), kind.toFile ? 0u : 1u);
        if (!kind.toFile) {
            EXPECT_EQ(boxes[0].text, wholeReport);
        }
        EXPECT_EQ(Encode(frame, 0), 1);
        EXPECT_EQ(Stored(frame, TEXT("WriteConfigures")), 1u) << "not asked for";
        EXPECT_EQ(Stored(frame, TEXT("WriteRuns")), 2u);
        ExpectPicture(*frame.image);
        EXPECT_EQ(Saved(frame), u"") << "the command's to set";
        EXPECT_TRUE(StatusTexts().empty());
    });
}

TEST_P(Encoding, APluginThatDoesNotLoadIsToldInBothLanguages)
{
    Run([&](MainFrame& frame) {
        Select(frame, 0, 0, 3, 3);
        for (const i32 plugin : {7, -1, 0}) {
            if (plugin == 0)
                RemovePlugin("OUTPUT", "Painter.aaa");
            SetLanguage(1033);
            EXPECT_EQ(Encode(frame, 1, plugin), 0);
            ExpectBox(frame, person, u"Failed to load selected OUTPUT plugin.", u"ERROR", 16);
            SetLanguage(1041);
            EXPECT_EQ(Encode(frame, 1, plugin), 0);
            ExpectBox(frame, person, u"指定の書き込みプラグインがロードできませんでした。",
                      u"エラー", 16);
        }
        EXPECT_EQ(person.headlines.size(), 1u) << "the picture's own";
    });
}

TEST_P(Encoding, CancelledSettingsEndItBeforeAnythingIsWritten)
{
    Run([&](MainFrame& frame) {
        Ask(frame, TEXT("WriteConfigure"), 100);
        EXPECT_EQ(Encode(frame), kind.cancelled);
        EXPECT_EQ(Stored(frame, TEXT("WriteConfigures")), 1u);
        EXPECT_FALSE(IsStored(frame, TEXT("WriteRuns")));
        EXPECT_FALSE(frame.outputPlugins->IsLoaded());
        EXPECT_FALSE(FileIsThere("out.aaa"));
        EXPECT_TRUE(person.TakeBoxes().empty());
        // A copy that nobody needs any more must not lie there for the next effect.
        Select(frame, 10, 20, 29, 34);
        EXPECT_EQ(Encode(frame), kind.cancelled);
        EXPECT_EQ(person.TakeBoxes().size(), 1u);
        EXPECT_EQ(frame.workImage, nullptr);
        EXPECT_EQ(frame.workAllocator, nullptr);
        ExpectPicture(*frame.image);
    });
}

TEST_P(Encoding, SettingsThatFailAreToldInBothLanguagesAndTheWorkGoesOn)
{
    Run([&](MainFrame& frame) {
        Ask(frame, TEXT("WriteConfigure"), 95);
        EXPECT_EQ(Encode(frame), 1);
        std::vector<BoxCall> boxes = TakeQuestions();
        ASSERT_EQ(boxes.size(), 1u);
        EXPECT_EQ(boxes[0].text,
                  u"Failed to initialize plugin settings, but enforce next process...");
        EXPECT_EQ(boxes[0].caption, u"WARNING");
        EXPECT_EQ(boxes[0].flags, 16u);
        SetLanguage(1041);
        EXPECT_EQ(Encode(frame), 1);
        boxes = TakeQuestions();
        ASSERT_EQ(boxes.size(), 1u);
        EXPECT_EQ(boxes[0].text, u"プラグイン設定の初期化に失敗しました。強行します。");
        EXPECT_EQ(boxes[0].caption, u"警告");
        EXPECT_EQ(boxes[0].flags, 48u);
        EXPECT_EQ(Stored(frame, TEXT("WriteRuns")), 2u);
    });
}

// Yes writes the selected part; the virtual save asks as well, makes the copy, and tells the size
// of the whole picture all the same.
TEST_P(Encoding, WithASelectionTheUserIsAskedWhetherToSaveItAlone)
{
    Run([&](MainFrame& frame) {
        Select(frame, 10.9, 20.2, 29.99, 34.5);
        person.onProgress = [&] { EXPECT_NE(frame.workImage, nullptr); };
        EXPECT_EQ(Encode(frame), 1);
        person.onProgress = nullptr;
        std::vector<BoxCall> boxes = TakeQuestions();
        ASSERT_EQ(boxes.size(), 1u);
        EXPECT_EQ(boxes[0].text, question);
        EXPECT_EQ(boxes[0].caption, u"Question");
        EXPECT_EQ(boxes[0].flags, 36u);
        EXPECT_EQ(boxes[0].owner, frame.window);
        EXPECT_EQ(Stored(frame, TEXT("WriteWidth")), kind.toFile ? 20u : u32{PictureWidth});
        EXPECT_EQ(Stored(frame, TEXT("WriteHeight")), kind.toFile ? 15u : u32{PictureHeight});
        EXPECT_EQ(FileBytes("out.aaa"), kind.toFile ? PictureBytes(10, 20, 29, 34) : "");
        EXPECT_EQ(frame.workImage, nullptr);
        EXPECT_EQ(frame.workAllocator, nullptr);
        EXPECT_EQ(frame.selectionActive, 1u);

        SetLanguage(1041);
        person.answers[japaneseQuestion] = IDNO;
        EXPECT_EQ(Encode(frame), 1);
        boxes = TakeQuestions();
        ASSERT_EQ(boxes.size(), 1u);
        EXPECT_EQ(boxes[0].text, japaneseQuestion);
        EXPECT_EQ(boxes[0].caption, u"確認");
        EXPECT_EQ(boxes[0].flags, 36u);
        EXPECT_EQ(Stored(frame, TEXT("WriteWidth")), u32{PictureWidth});
        EXPECT_EQ(FileBytes("out.aaa"), kind.toFile ? PictureBytes() : "");
        ExpectPicture(*frame.image);
    });
}

// The plugin then stays loaded, which the host's next load ends.
TEST_P(Encoding, NoToTheQuestionAboutMemoryEndsItWithThePluginLeftLoadedAndNoHarmDone)
{
    Run(
        [&](MainFrame& frame) {
            Select(frame, 0, 0, 599, 399);
            SetFreeMemory(600 * 400 * 4);
            person.answers[memoryQuestion] = IDNO;
            EXPECT_EQ(Encode(frame), 0);
            const std::vector<BoxCall> boxes = person.TakeBoxes();
            ASSERT_EQ(boxes.size(), 2u);
            EXPECT_EQ(boxes[0].text, question);
            EXPECT_EQ(boxes[1].text, memoryQuestion);
            EXPECT_EQ(boxes[1].caption, u"confirm");
            EXPECT_EQ(boxes[1].flags, 52u);
            EXPECT_FALSE(FileIsThere("out.aaa"));
            EXPECT_FALSE(IsStored(frame, TEXT("WriteConfigures")));
            EXPECT_TRUE(frame.outputPlugins->IsLoaded());
            EXPECT_EQ(frame.workImage, nullptr);

            person.answers[memoryQuestion] = IDYES;
            EXPECT_EQ(Encode(frame), 1);
            EXPECT_EQ(Stored(frame, TEXT("WriteRuns")), 1u);
            EXPECT_FALSE(frame.outputPlugins->IsLoaded());
            person.answers[memoryQuestion] = IDNO;
            EXPECT_EQ(Encode(frame), 0);
            EXPECT_TRUE(frame.outputPlugins->IsLoaded()) << "until the end of the program";
            ExpectPicture(*frame.image, Unchanged, Everywhere, 600, 410);
        },
        600, 410);
}

TEST_P(Encoding, AJobThatFailsIsToldInItsDialogAndCountsAsDone)
{
    Run([&](MainFrame& frame) {
        Ask(frame, TEXT("WriteFails"), 1);
        Select(frame, 10, 20, 29, 34);
        EXPECT_EQ(Encode(frame), 1);
        SetLanguage(1041);
        EXPECT_EQ(Encode(frame), 1);
        EXPECT_EQ(StatusTexts(), (std::vector<std::u16string>{kind.error, kind.japaneseError}));
        EXPECT_EQ(frame.workImage, nullptr);
        EXPECT_FALSE(frame.outputPlugins->IsLoaded());
        ExpectPicture(*frame.image);
    });
}

TEST_P(Encoding, AThreadThatIsNotMadeIsToldInABoxAndCountsAsNothingDone)
{
    Run([&](MainFrame& frame) {
        SetThreadFault([] { return true; });
        Select(frame, 10, 20, 29, 34);
        EXPECT_EQ(Encode(frame), 0);
        std::vector<BoxCall> boxes = person.TakeBoxes();
        ASSERT_EQ(boxes.size(), 2u);
        EXPECT_EQ(boxes[1].text, kind.error);
        SetLanguage(1041);
        EXPECT_EQ(Encode(frame), 0);
        boxes = person.TakeBoxes();
        ASSERT_EQ(boxes.size(), 2u);
        EXPECT_EQ(boxes[1].text, kind.japaneseError);
        EXPECT_EQ(frame.workImage, nullptr);
        EXPECT_FALSE(frame.outputPlugins->IsLoaded());
    });
}

// The whole picture is what both encode where the selection is not wanted. Where it is, the virtual
// save encodes the picture and unlocks the copy.
TEST_P(Encoding, WhatThePluginLeftLockedIsUnlockedInTheRasterThatWasChosen)
{
    Run([&](MainFrame& frame) {
        ASSERT_EQ(frame.image->Create(8, 6, 24, TEXT("\\Temp\\"), nullptr), Done);
        frame.imagePresent = 0; // the view would release the lines that it shows
        ASSERT_TRUE(CanPage(*frame.image));
        Ask(frame, TEXT("WriteLocks"), 1);
        EXPECT_EQ(Encode(frame), 1);
        EXPECT_TRUE(CanPage(*frame.image));
        Select(frame, 1, 1, 4, 4);
        person.answers[question] = IDNO;
        EXPECT_EQ(Encode(frame), 1);
        EXPECT_TRUE(CanPage(*frame.image));
        person.answers[question] = IDYES;
        EXPECT_EQ(Encode(frame), 1);
        EXPECT_EQ(CanPage(*frame.image), kind.toFile);
        frame.image->UnlockAll();
    });
}

TEST_P(Encoding, AFileHandedOverDuringTheSettingsOrTheQuestionWaitsForTheEnd)
{
    InstallReader("Reader.raw");
    MakeSource("handed.raw", 'h');
    Run([&](MainFrame& frame) {
        Ask(frame, TEXT("WriteAsks"), 1);
        Select(frame, 10, 20, 29, 34);
        int handed = 0;
        person.onBox = [&](const std::u16string& text) {
            if (text != question && text != u"Settings?")
                return;
            ++handed;
            HandOver(frame, u"\\handed.raw");
            ExpectPicture(*frame.image);
        };
        person.headlines.clear();
        EXPECT_EQ(Encode(frame), 1);
        EXPECT_EQ(handed, 2);
        EXPECT_EQ(person.headlines,
                  (std::vector<std::u16string>{kind.headline, u"Loading an image...",
                                               u"Loading an image..."}));
        ExpectRead(frame, 'h');
        EXPECT_EQ(FileBytes("out.aaa"), kind.toFile ? PictureBytes(10, 20, 29, 34) : "");
    });
}

TEST_P(Encoding, AnAbsentPictureIsSurvivedWithAndWithoutASelection)
{
    InstallWriter("Painter.aaa");
    RunProgram(u"", [&](MainFrame& frame) {
        EXPECT_EQ(Encode(frame), 1);
        EXPECT_EQ(Stored(frame, TEXT("WriteWidth")), 0u);
        Send(frame, 40056);
        EXPECT_EQ(frame.selectionActive, 1u);
        EXPECT_EQ(Encode(frame), 1);
        EXPECT_EQ(Stored(frame, TEXT("WriteRuns")), 2u);
        EXPECT_EQ(frame.workImage, nullptr);
        EXPECT_EQ(frame.imagePresent, 0u);
    });
}

INSTANTIATE_TEST_SUITE_P(Of, Encoding, ::testing::ValuesIn(kinds),
                         [](const ::testing::TestParamInfo<Kind>& row) {
                             return std::string(row.param.name);
                         });

class EncodingToFile : public Encoding
{
};

TEST_P(EncodingToFile, AFullDiskIsToldAndThePictureIsNotTouched)
{
    Run([&](MainFrame& frame) {
        SetDiskSpace(1000);
        EXPECT_EQ(Encode(frame), 1);
        EXPECT_LT(FileBytes("out.aaa").size(), PictureBytes().size());
        SetDiskSpace(0);
        EXPECT_EQ(Encode(frame, 1, 0, u"\\other.aaa"), 1);
        EXPECT_EQ(StatusTexts(), std::vector<std::u16string>{kind.error});
        EXPECT_GE(Beeps(), 2u);
        ExpectPicture(*frame.image);
        EXPECT_FALSE(frame.outputPlugins->IsLoaded());
    });
}

TEST_P(EncodingToFile, AFolderThatVanishedOrTakesNoFileIsTold)
{
    Run([&](MainFrame& frame) {
        std::filesystem::create_directory(TestHome() + "/folder");
        Ask(frame, TEXT("WriteAsks"), 1);
        person.onBox = [](const std::u16string&) {
            std::filesystem::remove(TestHome() + "/folder");
        };
        EXPECT_EQ(Encode(frame, 1, 0, u"\\folder\\out.aaa"), 1);
        EXPECT_EQ(StatusTexts(), std::vector<std::u16string>{kind.error});
        EXPECT_FALSE(FileIsThere("folder"));
        SetFileFault([](tavrix::platform::FileOperation operation, const WCHAR*, DWORD*) {
            return operation == tavrix::platform::FileOperation::Create;
        });
        SetLanguage(1041);
        EXPECT_EQ(Encode(frame), 1);
        EXPECT_EQ(StatusTexts().back(), kind.japaneseError);
        EXPECT_FALSE(FileIsThere("out.aaa"));
        ExpectPicture(*frame.image);
    });
}

INSTANTIATE_TEST_SUITE_P(Of, EncodingToFile, ::testing::Values(kinds[0]),
                         [](const ::testing::TestParamInfo<Kind>& row) {
                             return std::string(row.param.name);
                         });

class EncodingToNowhere : public Encoding
{
};

TEST_P(EncodingToNowhere, TheFileOfTheNameIsComparedAndNotTouched)
{
    Run([&](MainFrame& frame) {
        std::ofstream(TestHome() + "/out.aaa") << std::string(2048, 'x');
        Select(frame, 0, 0, 9, 9);
        EXPECT_EQ(Encode(frame), 1);
        std::vector<BoxCall> boxes = person.TakeBoxes();
        ASSERT_EQ(boxes.size(), 2u);
        EXPECT_EQ(boxes[1].text, u"Original : 2.0KB\r\n  Output : 8.8KB") << "of the whole picture";
        EXPECT_EQ(FileBytes("out.aaa"), std::string(2048, 'x'));
        EXPECT_EQ(Encode(frame, 1, 0, u"\\none.aaa"), 1);
        boxes = person.TakeBoxes();
        ASSERT_EQ(boxes.size(), 2u);
        EXPECT_EQ(boxes[1].text, wholeReport);
        EXPECT_FALSE(FileIsThere("none.aaa"));
    });
}

TEST_P(EncodingToNowhere, APluginThatReadsBackWhatItWroteIsTold)
{
    Run([&](MainFrame& frame) {
        Ask(frame, TEXT("WriteReadsBack"), 1);
        EXPECT_EQ(Encode(frame), 1);
        EXPECT_TRUE(person.TakeBoxes().empty());
        EXPECT_EQ(StatusTexts(), std::vector<std::u16string>{kind.error});
    });
}

INSTANTIATE_TEST_SUITE_P(Of, EncodingToNowhere, ::testing::Values(kinds[1]),
                         [](const ::testing::TestParamInfo<Kind>& row) {
                             return std::string(row.param.name);
                         });

} // namespace
