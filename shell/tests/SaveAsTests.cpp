// Save As, by the commands of its entries.

#include "shell/tests/RoadTesting.h"

using namespace roadtest;

namespace
{

/// Entry 0 is "Pa" with format 0 of the list, entry 1 "Pb" with 1 and 2.
class SavingAs : public ::testing::Test
{
protected:
    SavingAs()
    {
        SetLanguage(1033);
        InstallPlugin(tavrix::testing::InBuild("/bin/PLUGINS/INPUT/PNG.dll"));
        InstallWriter("Pa.aaa");
        InstallWriter("Pb.bbb_ccc");
    }

    void Run(const Step& step)
    {
        EXPECT_EQ(RunProgramOn(WriteTestPng(PictureWidth, PictureHeight), step), 0);
    }
    void SaveAs(MainFrame& frame, u32 entry, const Choice& choice)
    {
        person.choices.push_back(choice);
        Send(frame, FirstSaveAs + entry);
        EXPECT_TRUE(person.choices.empty()) << "no dialog came";
        person.choices.clear();
    }

    Scope scope;
    Person person;
};

} // namespace

TEST_F(SavingAs, TheEntrysPluginWritesUnderTheNameAsItIsGiven)
{
    Run([&](MainFrame& frame) {
        const std::u16string source = Opened(frame);
        for (const std::u16string name : {u"plain", u"out.aaa", u"out.zzz"}) {
            SaveAs(frame, 1, Choose(name, -1));
            EXPECT_EQ(StoredText(frame, TEXT("WritePlugin")), u"Pb");
            EXPECT_EQ(StoredText(frame, TEXT("WritePath")), u"\\" + name);
            EXPECT_EQ(FileBytes(Utf8(name.c_str())), PictureBytes());
            EXPECT_EQ(Saved(frame), u"\\" + name);
        }
        const Seen last = person.seen.back();
        EXPECT_EQ(last.title, u"Save As");
        EXPECT_EQ(last.name, u"picture.bbb") << "the source's, as the filter makes it";
        EXPECT_EQ(last.filters,
                  (std::vector<std::u16string>{u"Pb bbb", u"Pb ccc", u"All image files"}));
        EXPECT_EQ(last.filter, 0);
        EXPECT_EQ(last.owner, frame.window);
        EXPECT_EQ(Stored(frame, TEXT("WriteConfigures")), 3u);
        EXPECT_EQ(Setting(frame, TEXT("DefSavePlugin")), 12345u) << "not remembered";
        EXPECT_EQ(Opened(frame), source);
        EXPECT_FALSE(frame.outputPlugins->IsLoaded());
        SetLanguage(1041);
        SaveAs(frame, 0, Cancel());
        EXPECT_EQ(person.seen.back().title, u"指定形式で保存");
        EXPECT_TRUE(person.TakeBoxes().empty());
    });
}

TEST_F(SavingAs, AFileThatIsThereIsAskedAboutAndNoKeepsIt)
{
    std::ofstream(TestHome() + "/out.bbb") << "old";
    Run([&](MainFrame& frame) {
        person.answers[u"This file already exists. Are you sure to overwrite it?"] = IDNO;
        SaveAs(frame, 1, Try(u"out.bbb"));
        EXPECT_EQ(person.TakeBoxes().size(), 1u);
        EXPECT_EQ(FileBytes("out.bbb"), "old");
        EXPECT_EQ(Saved(frame), u"");
    });
}

TEST_F(SavingAs, WithoutAPictureItBeepsAndWithoutAPluginToo)
{
    RunProgram(u"", [&](MainFrame& frame) {
        const unsigned beeps = Beeps();
        Send(frame, FirstSaveAs + 1);
        EXPECT_EQ(Beeps(), beeps + 1);
        EXPECT_FALSE(frame.outputPlugins->IsLoaded());
        frame.imagePresent = 1;
        Send(frame, FirstSaveAs + 2);
        EXPECT_EQ(Beeps(), beeps + 2);
        int asked = 0;
        SetAllocationFault([&](SIZE_T size) { return size == 8192 && ++asked == 2; });
        Send(frame, FirstSaveAs + 1);
        EXPECT_EQ(Beeps(), beeps + 3) << "without memory for the second buffer";
        SetAllocationFault([](SIZE_T size) { return size == 8192; });
        Send(frame, FirstSaveAs + 1);
        EXPECT_EQ(Beeps(), beeps + 4) << "without memory for the first one";
        EXPECT_TRUE(person.seen.empty());
        EXPECT_TRUE(person.TakeBoxes().empty());
        EXPECT_FALSE(frame.outputPlugins->IsLoaded());
    });
}

TEST_F(SavingAs, APluginThatDoesNotLoadIsToldAndNoDialogComes)
{
    Run([&](MainFrame& frame) {
        RemovePlugin("OUTPUT", "Pb.bbb_ccc");
        Send(frame, FirstSaveAs + 1);
        ExpectBox(frame, person, u"Filed to load the plugin.", u"ERROR", 16);
        SetLanguage(1041);
        Send(frame, FirstSaveAs + 1);
        ExpectBox(frame, person, u"指定のプラグインがロードできません。", u"エラー", 16);
        EXPECT_TRUE(person.seen.empty());
    });
}

TEST_F(SavingAs, ACancelledDialogOrSettingsLeaveTheSavedName)
{
    Run([&](MainFrame& frame) {
        SetPaths(frame, u"\\picture.png", u"\\before.aaa");
        SaveAs(frame, 1, Cancel());
        EXPECT_FALSE(IsStored(frame, TEXT("WriteConfigures")));
        EXPECT_TRUE(frame.outputPlugins->IsLoaded()) << "until the host's next load";
        Ask(frame, TEXT("WriteConfigure"), 100);
        SaveAs(frame, 0, Choose(u"out.aaa"));
        EXPECT_EQ(Stored(frame, TEXT("WriteConfigures")), 1u);
        EXPECT_EQ(Saved(frame), u"\\before.aaa");
        EXPECT_FALSE(FileIsThere("out.aaa"));
        EXPECT_FALSE(frame.outputPlugins->IsLoaded());
        EXPECT_TRUE(person.TakeBoxes().empty());
    });
}

TEST_F(SavingAs, AFailedJobTakesTheNameAllTheSame)
{
    Run([&](MainFrame& frame) {
        SetDiskSpace(100);
        SaveAs(frame, 1, Choose(u"out.bbb"));
        EXPECT_EQ(StatusTexts(), std::vector<std::u16string>{
                                     u"Failed to write an image on file. System doesn't have "
                                     u"enough work memory or storage."});
        EXPECT_EQ(Saved(frame), u"\\out.bbb");
        ExpectPicture(*frame.image);
    });
}

TEST_F(SavingAs, TheSelectedRegionIsOfferedAndWrittenAlone)
{
    Run([&](MainFrame& frame) {
        Select(frame, 10, 20, 29, 34);
        SaveAs(frame, 0, Choose(u"part.aaa"));
        ExpectBox(frame, person, u"Do you want to save a selected region?", u"Question", 36);
        EXPECT_EQ(FileBytes("part.aaa"), PictureBytes(10, 20, 29, 34));
    });
}

TEST_F(SavingAs, AFileHandedOverWhileTheDialogIsOpenWaitsForTheEnd)
{
    InstallReader("Reader.raw");
    MakeSource("handed.raw", 'h');
    Run([&](MainFrame& frame) {
        person.onFileDialog = [&] {
            HandOver(frame, u"\\handed.raw");
            ExpectPicture(*frame.image);
        };
        SaveAs(frame, 0, Choose(u"out.aaa"));
        EXPECT_EQ(FileBytes("out.aaa"), PictureBytes());
        ExpectRead(frame, 'h');
        EXPECT_EQ(Saved(frame), u"\\out.aaa");
    });
}
