// Open by its command, with the file dialog; and what opening a file changes before, during and
// after its job.

#include "shell/tests/RoadTesting.h"

using namespace roadtest;

namespace
{

const std::u16string allFiles = u"All image files";

/// Entry 0 is "Alpha aaa" of plugin 0, 1 is "Alpha bbb", 2 is "Beta ccc" of plugin 1, 3 "Beta aaa".
class OpeningByDialog : public ::testing::Test
{
protected:
    OpeningByDialog()
    {
        SetLanguage(1033);
        InstallReader("Alpha.aaa+abcd_bbb");
        InstallReader("Beta.ccc_aaa");
    }

    void Open(MainFrame& frame, const Choice& choice)
    {
        person.choices.push_back(choice);
        Send(frame, OpenCommand);
        EXPECT_TRUE(person.choices.empty()) << "no dialog came";
        person.choices.clear();
    }

    Scope scope;
    Person person;
};

} // namespace

TEST_F(OpeningByDialog, TheFiltersPluginReadsTheFileAndTheFilterIsThereTheNextTime)
{
    MakeSource("one.aaa", '1');
    MakeSource("two.bbb", '2');
    RunProgram(u"", [&](MainFrame& frame) {
        Open(frame, Choose(u"one.aaa", 3));
        const Seen first = person.seen.back();
        EXPECT_EQ(first.title, u"Open");
        EXPECT_EQ(first.name, u"");
        EXPECT_EQ(first.filters, (std::vector<std::u16string>{u"Alpha aaa", u"Alpha bbb",
                                                              u"Beta ccc", u"Beta aaa", allFiles}));
        EXPECT_EQ(first.filter, -1) << "nothing was remembered";
        EXPECT_EQ(first.owner, frame.window);
        ExpectRead(frame, '1');
        EXPECT_EQ(StoredText(frame, TEXT("ReadPlugin")), u"Beta");
        EXPECT_EQ(Opened(frame), u"\\one.aaa");
        EXPECT_EQ(frame.inputPlugin, 1);
        EXPECT_EQ(Setting(frame, TEXT("DefOpenPlugin")), 3u);
        EXPECT_EQ(Stored(frame, TEXT("ReadConfigures")), 1u);
        EXPECT_EQ(frame.imagePresent, 1u);

        SetLanguage(1041);
        Open(frame, Choose(u"two.bbb", 1));
        const Seen second = person.seen.back();
        EXPECT_EQ(second.title, u"ファイルを開く");
        EXPECT_EQ(second.name, u"one.aaa");
        EXPECT_EQ(second.filter, 3);
        ExpectRead(frame, '2');
        EXPECT_EQ(frame.inputPlugin, 0);
        EXPECT_EQ(Setting(frame, TEXT("DefOpenPlugin")), 1u);
        EXPECT_TRUE(person.TakeBoxes().empty());
    });
}

TEST_F(OpeningByDialog, UnderAllFilesTheExtensionChoosesTheFirstEntryThatHoldsIt)
{
    for (const char* name : {"a.aaa", "B.BBB", "c.ccc", "short.abc", "d.AbCd"})
        MakeSource(name, name[0]);
    RunProgram(u"", [&](MainFrame& frame) {
        const struct {
            std::u16string name;
            char byte;
            i32 plugin;
        } rows[] = {{u"c.ccc", 'c', 1}, {u"a.aaa", 'a', 0},     {u"B.BBB", 'B', 0},
                    {u"c.ccc", 'c', 1}, {u"short.abc", 's', 0}, {u"d.AbCd", 'd', 0}};
        for (const auto& row : rows) {
            Open(frame, Choose(row.name, -1));
            ExpectRead(frame, row.byte);
            EXPECT_EQ(frame.inputPlugin, row.plugin) << Utf8(row.name.c_str());
            EXPECT_EQ(Opened(frame), u"\\" + row.name);
            EXPECT_EQ(Setting(frame, TEXT("DefOpenPlugin")), 4294967295u);
        }
        Open(frame, Cancel());
        EXPECT_EQ(person.seen.back().filter, -1);
    });
}

TEST_F(OpeningByDialog, UnderAllFilesANameOfNoFormatEndsInSilenceThoughThePathHasChanged)
{
    MakeSource("one.ccc", '1');
    MakeSource("plain", 'p');
    MakeSource("x.zzz", 'x');
    RunProgram(u"", [&](MainFrame& frame) {
        Open(frame, Choose(u"one.ccc", 2));
        for (const std::u16string name : {u"plain", u"x.zzz"}) {
            Open(frame, Choose(name, -1));
            EXPECT_EQ(Opened(frame), u"\\" + name);
            EXPECT_EQ(Setting(frame, TEXT("DefOpenPlugin")), 4294967295u);
            EXPECT_EQ(frame.inputPlugin, 1) << "as it was";
            ExpectRead(frame, '1');
        }
        EXPECT_EQ(Stored(frame, TEXT("ReadRuns")), 1u);
        EXPECT_TRUE(person.TakeBoxes().empty());
        // The way back now leads to the new name.
        Send(frame, ReloadOpenedCommand);
        ExpectRead(frame, 'x');
    });
}

TEST_F(OpeningByDialog, ACancelledDialogChangesNothing)
{
    MakeSource("one.ccc", '1');
    MakeSource("two.aaa", '2');
    RunProgram(u"", [&](MainFrame& frame) {
        Open(frame, Choose(u"one.ccc", 2));
        const unsigned beeps = Beeps();
        Open(frame, {u"two.aaa", 0, true, false, {}});
        EXPECT_EQ(Opened(frame), u"\\one.ccc");
        EXPECT_EQ(frame.inputPlugin, 1);
        EXPECT_EQ(Setting(frame, TEXT("DefOpenPlugin")), 2u);
        EXPECT_EQ(Stored(frame, TEXT("ReadRuns")), 1u);
        ExpectRead(frame, '1');
        EXPECT_EQ(Beeps(), beeps);
        EXPECT_TRUE(person.TakeBoxes().empty());
    });
}

TEST_F(OpeningByDialog, AFileThatIsNotThereKeepsTheDialogOpen)
{
    RunProgram(u"", [&](MainFrame& frame) {
        Open(frame, Try(u"none.aaa", 0));
        EXPECT_EQ(Opened(frame), u"");
        EXPECT_EQ(Setting(frame, TEXT("DefOpenPlugin")), 12345u);
    });
}

// The dialog finds it and the stream does not.
TEST_F(OpeningByDialog, AFileThatVanishesBehindTheDialogEndsInSilenceWithTheNewPath)
{
    MakeSource("one.aaa", '1');
    MakeSource("two.bbb", '2');
    RunProgram(u"", [&](MainFrame& frame) {
        Open(frame, Choose(u"one.aaa", 0));
        person.fileDialog = nullptr;
        person.LetVanishBehindTheDialog(u"\\two.bbb");
        Open(frame, Choose(u"two.bbb", 1));
        EXPECT_EQ(Opened(frame), u"\\two.bbb");
        EXPECT_EQ(Setting(frame, TEXT("DefOpenPlugin")), 1u);
        ExpectRead(frame, '1');
        EXPECT_EQ(Stored(frame, TEXT("ReadRuns")), 1u);
        EXPECT_TRUE(person.TakeBoxes().empty());
        EXPECT_TRUE(StatusTexts().empty());
    });
}

TEST_F(OpeningByDialog, ThePathAndTheFilterAreTakenBeforeTheJob)
{
    MakeSource("one.aaa", '1');
    RunProgram(u"", [&](MainFrame& frame) {
        Ask(frame, TEXT("ReadAsks"), 1);
        int seen = 0;
        const auto look = [&] {
            ++seen;
            EXPECT_EQ(Opened(frame), u"\\one.aaa");
            EXPECT_EQ(Setting(frame, TEXT("DefOpenPlugin")), 0u);
            EXPECT_EQ(frame.inputPlugin, 0);
            EXPECT_EQ(frame.imagePresent, 0u);
        };
        person.onBox = [&](const std::u16string&) { look(); };
        person.onProgress = look;
        Open(frame, Choose(u"one.aaa", 0));
        EXPECT_EQ(seen, 2) << "the settings and the job";
        EXPECT_EQ(frame.imagePresent, 1u);
    });
}

TEST_F(OpeningByDialog, CancelledSettingsKeepTheOldPictureUnderTheNewPath)
{
    MakeSource("one.aaa", '1');
    MakeSource("two.bbb", '2');
    RunProgram(u"", [&](MainFrame& frame) {
        Open(frame, Choose(u"one.aaa", 3));
        Ask(frame, TEXT("ReadConfigure"), 100);
        Open(frame, Choose(u"two.bbb", 1));
        ExpectRead(frame, '1');
        EXPECT_EQ(Opened(frame), u"\\two.bbb");
        EXPECT_EQ(frame.inputPlugin, 0);
        EXPECT_EQ(Setting(frame, TEXT("DefOpenPlugin")), 1u);
        EXPECT_EQ(Stored(frame, TEXT("ReadRuns")), 1u);
        EXPECT_FALSE(frame.inputPlugins->IsLoaded());
    });
}

TEST_F(OpeningByDialog, SettingsThatFailAndAPluginThatIsGoneAreToldInBothLanguages)
{
    MakeSource("one.aaa", '1');
    RunProgram(u"", [&](MainFrame& frame) {
        Ask(frame, TEXT("ReadConfigure"), 95);
        Open(frame, Choose(u"one.aaa", 0));
        ExpectBox(frame, person,
                  u"Failed to initialize plugin settings, but enforce next process...", u"WARNING",
                  16);
        SetLanguage(1041);
        Open(frame, Choose(u"one.aaa", 0));
        ExpectBox(frame, person, u"プラグイン設定の初期化に失敗しました。強行します。", u"警告",
                  48);
        EXPECT_EQ(Stored(frame, TEXT("ReadRuns")), 2u);
        RemovePlugin("INPUT", "Alpha.aaa+abcd_bbb");
        Open(frame, Choose(u"one.aaa", 0));
        ExpectBox(frame, person, u"指定の読み込みプラグインがロードできませんでした。", u"エラー",
                  16);
        SetLanguage(1033);
        Open(frame, Choose(u"one.aaa", 0));
        ExpectBox(frame, person, u"Failed to load selected INPUT plugin.", u"ERROR", 16);
        ExpectRead(frame, '1');
    });
}

TEST_F(OpeningByDialog, ARememberedFilterThatIsNoLongerThereGivesAllFiles)
{
    WriteSettings(u"[Tavrix]\r\nDefOpenPlugin=77\r\n");
    RunProgram(u"", [&](MainFrame& frame) {
        Open(frame, Cancel());
        EXPECT_EQ(person.seen.back().filter, -1);
        EXPECT_EQ(Setting(frame, TEXT("DefOpenPlugin")), 77u);
    });
}

TEST_F(OpeningByDialog, TheKeyOpensIt)
{
    RunProgram(u"", {[&](MainFrame&) {
                         person.choices.push_back(Cancel());
                         TypeKey('O', MK_CONTROL);
                     },
                     [&](MainFrame&) {
                         ASSERT_EQ(person.seen.size(), 1u);
                         EXPECT_EQ(person.seen[0].title, u"Open");
                     }});
}

TEST_F(OpeningByDialog, WithoutMemoryForTheFiltersItBeeps)
{
    MakeSource("one.aaa", '1');
    RunProgram(u"", [&](MainFrame& frame) {
        SetAllocationFault([](SIZE_T size) { return size == 8192 * sizeof(WCHAR); });
        const unsigned beeps = Beeps();
        Send(frame, OpenCommand);
        EXPECT_EQ(Beeps(), beeps + 1);
        frame.OpenFile(u"\\one.aaa");
        EXPECT_EQ(Beeps(), beeps + 2) << "also where no dialog would come";
        EXPECT_EQ(Opened(frame), u"");
        EXPECT_TRUE(person.seen.empty());
    });
}

// No plugin is loaded while the user chooses, so that nothing has to wait.
TEST_F(OpeningByDialog, AFileHandedOverWhileTheDialogIsOpenIsOpenedAtOnce)
{
    MakeSource("one.aaa", '1');
    MakeSource("handed.ccc", 'h');
    RunProgram(u"", [&](MainFrame& frame) {
        person.onFileDialog = [&] {
            HandOver(frame, u"\\handed.ccc");
            ExpectRead(frame, 'h');
            EXPECT_EQ(Opened(frame), u"\\handed.ccc");
            EXPECT_FALSE(IsWindowEnabled(frame.window)) << "the dialog still stands";
        };
        Open(frame, Choose(u"one.aaa", 0));
        ExpectRead(frame, '1');
        EXPECT_EQ(Opened(frame), u"\\one.aaa");
        EXPECT_EQ(frame.inputPlugin, 0);
        EXPECT_TRUE(IsWindowEnabled(frame.window));
        Open(frame, Cancel());
        EXPECT_EQ(Opened(frame), u"\\handed.ccc") << "the dialog leaves its buffer alone";
    });
}

TEST_F(OpeningByDialog, AFileHandedOverDuringTheSettingsWaitsForTheEndOfTheFlow)
{
    MakeSource("one.aaa", '1');
    MakeSource("handed.ccc", 'h');
    RunProgram(u"", [&](MainFrame& frame) {
        Ask(frame, TEXT("ReadAsks"), 1);
        person.onBox = [&](const std::u16string&) {
            if (Opened(frame) == u"\\one.aaa")
                HandOver(frame, u"\\handed.ccc");
            EXPECT_EQ(Opened(frame), frame.imagePresent == 0 ? u"\\one.aaa" : u"\\handed.ccc");
        };
        Open(frame, Choose(u"one.aaa", 0));
        EXPECT_EQ(person.headlines.size(), 2u);
        ExpectRead(frame, 'h');
        EXPECT_EQ(Setting(frame, TEXT("DefOpenPlugin")), 4294967295u);
    });
}

TEST(OpeningWithoutPlugins, TheUserIsToldInBothLanguagesAndNoDialogComes)
{
    Scope scope;
    Person person;
    RunProgram(u"", [&](MainFrame& frame) {
        (void)person.TakeBoxes(); // of the start
        SetLanguage(1033);
        Send(frame, OpenCommand);
        ExpectBox(frame, person, u"No INPUT plugin is installed", u"WARNING", 48);
        SetLanguage(1041);
        Send(frame, OpenCommand);
        ExpectBox(frame, person, u"読み込みプラグインがインストールされていません。", u"警告", 48);
        EXPECT_TRUE(person.seen.empty());
    });
}
