// Open As, by the commands of its entries.

#include "shell/tests/RoadTesting.h"

using namespace roadtest;

namespace
{

/// Entry 0 is plugin 0, "Alpha", with the formats 0 and 1 of the list; entry 1 is "Beta" with 2
/// and 3.
class OpeningAs : public ::testing::Test
{
protected:
    OpeningAs()
    {
        SetLanguage(1033);
        InstallReader("Alpha.aaa_bbb");
        InstallReader("Beta.ccc_ddd");
        MakeSource("one.aaa", '1');
        MakeSource("two.ccc", '2');
    }

    void OpenAs(MainFrame& frame, u32 entry, const Choice& choice)
    {
        person.choices.push_back(choice);
        Send(frame, FirstOpenAs + entry);
        EXPECT_TRUE(person.choices.empty()) << "no dialog came";
        person.choices.clear();
    }

    Scope scope;
    Person person;
};

} // namespace

TEST_F(OpeningAs, TheEntrysPluginReadsTheFileWhateverItsName)
{
    RunProgramOn(TestHome() + "/one.aaa", [&](MainFrame& frame) {
        SetPaths(frame, u"\\one.aaa", u"");
        OpenAs(frame, 1, Choose(u"one.aaa", -1));
        const Seen first = person.seen.back();
        EXPECT_EQ(first.title, u"Open As");
        EXPECT_EQ(first.name, u"one.ccc") << "that of the opened file, as the filter makes it";
        EXPECT_EQ(first.filters,
                  (std::vector<std::u16string>{u"Beta ccc", u"Beta ddd", u"All image files"}));
        EXPECT_EQ(first.filter, 0) << "not the remembered one";
        EXPECT_EQ(first.owner, frame.window);
        EXPECT_EQ(StoredText(frame, TEXT("ReadPlugin")), u"Beta");
        EXPECT_EQ(Stored(frame, TEXT("ReadConfigures")), 2u);
        EXPECT_EQ(frame.inputPlugin, 0) << "that of the Open before";
        EXPECT_EQ(Setting(frame, TEXT("DefOpenPlugin")), 4294967295u);
        EXPECT_FALSE(frame.inputPlugins->IsLoaded());

        SetLanguage(1041);
        OpenAs(frame, 0, Choose(u"two.ccc", -1));
        EXPECT_EQ(person.seen.back().title, u"指定形式で開く");
        EXPECT_EQ(person.seen.back().filters[1], u"Alpha bbb");
        ExpectRead(frame, '2');
        EXPECT_EQ(StoredText(frame, TEXT("ReadPlugin")), u"Alpha");
        EXPECT_TRUE(person.TakeBoxes().empty());
    });
}

TEST_F(OpeningAs, ThePathIsTakenBehindTheJobAndAReloadReadsItWithTheEarlierPlugin)
{
    RunProgramOn(TestHome() + "/one.aaa", [&](MainFrame& frame) {
        const std::u16string before = Opened(frame);
        Ask(frame, TEXT("ReadAsks"), 1);
        int looks = 0;
        const auto look = [&] {
            ++looks;
            EXPECT_EQ(Opened(frame), before);
        };
        person.onBox = [&](const std::u16string&) { look(); };
        person.onProgress = look;
        OpenAs(frame, 1, Choose(u"two.ccc"));
        EXPECT_EQ(looks, 2);
        person.onProgress = nullptr;
        EXPECT_EQ(Opened(frame), u"\\two.ccc");
        EXPECT_EQ(StoredText(frame, TEXT("ReadPlugin")), u"Beta");
        Send(frame, ReloadOpenedCommand);
        EXPECT_EQ(StoredText(frame, TEXT("ReadPlugin")), u"Alpha");
        ExpectRead(frame, '2');
    });
}

TEST_F(OpeningAs, WithoutAnEarlierOpenAReloadHasNoPlugin)
{
    RunProgram(u"", [&](MainFrame& frame) {
        OpenAs(frame, 1, Choose(u"two.ccc"));
        ExpectRead(frame, '2');
        EXPECT_EQ(frame.inputPlugin, -1);
        Send(frame, ReloadOpenedCommand);
        ExpectBox(frame, person, u"Failed to load selected INPUT plugin.", u"ERROR", 16);
        ExpectRead(frame, '2');
    });
}

TEST_F(OpeningAs, APluginThatDoesNotLoadIsToldAndTheDialogComesAllTheSame)
{
    RunProgramOn(TestHome() + "/one.aaa", [&](MainFrame& frame) {
        const std::u16string before = Opened(frame);
        RemovePlugin("INPUT", "Beta.ccc_ddd");
        OpenAs(frame, 1, Choose(u"two.ccc"));
        std::vector<BoxCall> boxes = person.TakeBoxes();
        ASSERT_EQ(boxes.size(), 2u);
        EXPECT_EQ(boxes[0].text, u"Filed to load the plugin.");
        EXPECT_EQ(boxes[1].text, u"Failed to load selected INPUT plugin.");
        EXPECT_EQ(person.seen.size(), 1u);
        SetLanguage(1041);
        OpenAs(frame, 1, Choose(u"two.ccc"));
        for (const BoxCall& box : person.TakeBoxes())
            boxes.push_back(box);
        ASSERT_EQ(boxes.size(), 4u);
        EXPECT_EQ(boxes[2].text, u"指定のプラグインがロードできません。");
        EXPECT_EQ(boxes[3].text, u"指定の読み込みプラグインがロードできませんでした。");
        for (size_t i = 0; i < boxes.size(); ++i) {
            EXPECT_EQ(boxes[i].caption, i < 2 ? u"ERROR" : u"エラー");
            EXPECT_EQ(boxes[i].flags, 16u);
            EXPECT_EQ(boxes[i].owner, frame.window);
        }
        EXPECT_EQ(person.seen.size(), 2u);
        // The first box alone, where the user gives up.
        OpenAs(frame, 1, Cancel());
        EXPECT_EQ(person.TakeBoxes().size(), 1u);
        EXPECT_EQ(Opened(frame), before) << "a load that stopped is no result";
        ExpectRead(frame, '1');
    });
}

TEST_F(OpeningAs, AFileThatIsNotThereKeepsTheDialogOpen)
{
    RunProgramOn(TestHome() + "/one.aaa", [&](MainFrame& frame) {
        const std::u16string before = Opened(frame);
        OpenAs(frame, 1, Try(u"none.ccc"));
        EXPECT_EQ(Opened(frame), before);
        EXPECT_EQ(Stored(frame, TEXT("ReadConfigures")), 1u);
        EXPECT_TRUE(person.TakeBoxes().empty());
    });
}

// What counts is only that the result is not 0.
TEST_F(OpeningAs, AFileThatDoesNotOpenBecomesTheOpenedOneAndOneOfCancelledSettingsDoesNot)
{
    RunProgramOn(TestHome() + "/one.aaa", [&](MainFrame& frame) {
        const std::u16string before = Opened(frame);
        Ask(frame, TEXT("ReadConfigure"), 100);
        OpenAs(frame, 1, Choose(u"two.ccc"));
        EXPECT_EQ(Opened(frame), before);
        EXPECT_FALSE(frame.inputPlugins->IsLoaded());
        Ask(frame, TEXT("ReadConfigure"), 101);
        person.fileDialog = nullptr;
        person.LetVanishBehindTheDialog(u"\\two.ccc");
        OpenAs(frame, 1, Choose(u"two.ccc"));
        EXPECT_EQ(Opened(frame), u"\\two.ccc");
        ExpectRead(frame, '1');
        EXPECT_TRUE(person.TakeBoxes().empty());
        EXPECT_TRUE(StatusTexts().empty());
    });
}

TEST_F(OpeningAs, AFailedJobIsToldInItsDialogAndTheFileBecomesTheOpenedOne)
{
    RunProgramOn(TestHome() + "/one.aaa", [&](MainFrame& frame) {
        Ask(frame, TEXT("ReadBreaks"), 1);
        OpenAs(frame, 1, Choose(u"two.ccc"));
        EXPECT_EQ(Opened(frame), u"\\two.ccc");
        ExpectRead(frame, '1');
        EXPECT_EQ(StatusTexts(),
                  std::vector<std::u16string>{
                      u"Failed to load an image file, might be broken or unknown-format."});
    });
}

TEST_F(OpeningAs, ACancelledDialogChangesNothingAndTheHostGoesOn)
{
    RunProgramOn(TestHome() + "/one.aaa", [&](MainFrame& frame) {
        const std::u16string before = Opened(frame);
        OpenAs(frame, 1, Cancel());
        EXPECT_EQ(Opened(frame), before);
        EXPECT_EQ(Stored(frame, TEXT("ReadRuns")), 1u);
        EXPECT_TRUE(frame.inputPlugins->IsLoaded()) << "until the host's next load";
        Send(frame, ReloadOpenedCommand);
        EXPECT_EQ(StoredText(frame, TEXT("ReadPlugin")), u"Alpha");
        EXPECT_FALSE(frame.inputPlugins->IsLoaded());
    });
}

TEST_F(OpeningAs, AnEntryWithoutAPluginAndShortMemoryBeep)
{
    RunProgram(u"", [&](MainFrame& frame) {
        const unsigned beeps = Beeps();
        Send(frame, FirstOpenAs + 2);
        EXPECT_EQ(Beeps(), beeps + 1);
        for (const SIZE_T size : {SIZE_T{8192}, SIZE_T{4096}}) {
            SetAllocationFault([size](SIZE_T asked) { return asked == size; });
            const unsigned before = Beeps();
            Send(frame, FirstOpenAs);
            EXPECT_EQ(Beeps(), before + 1) << size;
        }
        EXPECT_TRUE(person.seen.empty());
        EXPECT_TRUE(person.TakeBoxes().empty());
        EXPECT_FALSE(frame.inputPlugins->IsLoaded());
    });
}

// The plugin is loaded from before the dialog on.
TEST_F(OpeningAs, AFileHandedOverWhileTheDialogIsOpenWaitsForTheEnd)
{
    RunProgram(u"", [&](MainFrame& frame) {
        person.onFileDialog = [&] {
            HandOver(frame, u"\\one.aaa");
            EXPECT_EQ(frame.imagePresent, 0u);
        };
        OpenAs(frame, 1, Choose(u"two.ccc"));
        EXPECT_EQ(person.headlines.size(), 2u);
        EXPECT_EQ(StoredText(frame, TEXT("ReadPlugin")), u"Alpha");
        ExpectRead(frame, '1');
        EXPECT_EQ(Opened(frame), u"\\one.aaa");
    });
}
