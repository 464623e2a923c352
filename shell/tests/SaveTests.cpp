// Save and Virtual Save by their commands and keys. What both have in common runs for both.

#include "shell/tests/RoadTesting.h"

using namespace roadtest;

namespace
{

/// What differs between the two, typed by hand.
struct Kind {
    const char* name;
    u32 command;
    int keys;
    bool toFile;
    const char16_t* title;
    const char16_t* japaneseTitle;
    const char16_t* error;
};

const Kind kinds[] = {
    {"Save", 40004, MK_CONTROL, true, u"Save", u"ファイルに保存",
     u"Failed to write an image on file. System doesn't have enough work memory or storage."},
    {"VirtualSave", 40184, MK_CONTROL | MK_SHIFT, false, u"Save Virtual", u"仮想保存",
     u"Processing was terminated by the plug-in. The plug-in doesn't support stream I/O, or system "
     u"doesn't have enough work memory."},
};

std::ostream& operator<<(std::ostream& out, const Kind& kind)
{
    return out << kind.name;
}

const std::u16string overwrite = u"This file already exists. Are you sure to overwrite it?";

/// Entry 0 is "Pa aaa" of plugin 0, 1 is "Pb jpg" with two patterns of plugin 1, 2 "Pb ccc".
class Saving : public ::testing::TestWithParam<Kind>
{
protected:
    Saving() { SetLanguage(1033); }

    void Run(const std::vector<Step>& steps)
    {
        InstallPlugin(tavrix::testing::InBuild("/bin/PLUGINS/INPUT/PNG.dll"));
        InstallWriter("Pa.aaa");
        InstallWriter("Pb.jpg+jpeg_ccc");
        EXPECT_EQ(RunProgramOn(WriteTestPng(PictureWidth, PictureHeight), steps), 0);
    }
    void Run(const Step& step) { Run(std::vector<Step>{step}); }

    void Save(MainFrame& frame, const std::vector<Choice>& choices)
    {
        person.choices.assign(choices.begin(), choices.end());
        Send(frame, kind.command);
        EXPECT_TRUE(person.choices.empty()) << person.choices.size() << " dialogs did not come";
        person.choices.clear();
    }
    /// The name that went on to the job, as far as it can be seen from outside.
    std::u16string NameOf(MainFrame& frame)
    {
        return kind.toFile ? StoredText(frame, TEXT("WritePath")) : u"";
    }
    std::u16string IfToFile(const std::u16string& name) const { return kind.toFile ? name : u""; }

    const Kind& kind = GetParam();
    Scope scope;
    Person person;
};

} // namespace

TEST_P(Saving, TheFiltersPluginEncodesUnderTheChosenName)
{
    Run([&](MainFrame& frame) {
        const std::u16string source = Opened(frame);
        Save(frame, {Choose(u"out.ccc", 2)});
        const Seen first = person.seen.back();
        EXPECT_EQ(first.title, kind.title);
        EXPECT_EQ(first.filters, (std::vector<std::u16string>{u"Pa aaa", u"Pb jpg", u"Pb ccc",
                                                              u"All image files"}));
        EXPECT_EQ(first.filter, -1);
        EXPECT_EQ(first.owner, frame.window);
        EXPECT_EQ(StoredText(frame, TEXT("WritePlugin")), u"Pb");
        EXPECT_EQ(Stored(frame, TEXT("WriteConfigures")), 1u);
        EXPECT_EQ(NameOf(frame), IfToFile(u"\\out.ccc"));
        EXPECT_EQ(FileBytes("out.ccc"), kind.toFile ? PictureBytes() : "");
        EXPECT_EQ(Saved(frame), IfToFile(u"\\out.ccc"));
        EXPECT_EQ(Opened(frame), source);
        EXPECT_EQ(Setting(frame, TEXT("DefSavePlugin")), 2u);
        EXPECT_EQ(Setting(frame, TEXT("DefOpenPlugin")), 4294967295u) << "the open's";
        ExpectPicture(*frame.image);

        SetLanguage(1041);
        Save(frame, {Cancel()});
        EXPECT_EQ(person.seen.back().title, kind.japaneseTitle);
        EXPECT_EQ(person.seen.back().name, u"picture.ccc")
            << "the source's as the filter makes it, and not the saved one's";
        EXPECT_EQ(person.seen.back().filter, 2);
        EXPECT_EQ(Stored(frame, TEXT("WriteRuns")), 1u);
        EXPECT_EQ(Saved(frame), IfToFile(u"\\out.ccc"));
    });
}

TEST_P(Saving, TheKeyReachesItAndACancelledDialogChangesNothing)
{
    Run({[&](MainFrame&) {
             person.choices.push_back({u"out.ccc", 2, true, false, {}});
             TypeKey('S', kind.keys);
         },
         [&](MainFrame& frame) {
             ASSERT_EQ(person.seen.size(), 1u);
             EXPECT_EQ(person.seen[0].title, kind.title);
             EXPECT_EQ(Setting(frame, TEXT("DefSavePlugin")), 12345u);
             EXPECT_EQ(Saved(frame), u"");
             EXPECT_FALSE(IsStored(frame, TEXT("WriteConfigures")));
             EXPECT_TRUE(person.TakeBoxes().empty());
         }});
}

TEST_P(Saving, BothShareTheRememberedFilter)
{
    WriteSettings(u"[Tavrix]\r\nDefSavePlugin=1\r\n");
    Run([&](MainFrame& frame) {
        Save(frame, {Cancel()});
        EXPECT_EQ(person.seen.back().filter, 1);
        Save(frame, {Choose(u"out.aaa", 0)});
        person.choices.push_back(Cancel());
        Send(frame, kind.toFile ? VirtualSaveCommand : SaveCommand);
        EXPECT_EQ(person.seen.back().filter, 0);
    });
}

TEST_P(Saving, AFileThatIsThereIsAskedAboutOnlyWhereItWouldBeWritten)
{
    std::ofstream(TestHome() + "/out.aaa") << "old";
    Run([&](MainFrame& frame) {
        person.answers[overwrite] = IDNO;
        Save(frame, {Try(u"out.aaa", 0)});
        EXPECT_EQ(FileBytes("out.aaa"), "old");
        EXPECT_EQ(IsStored(frame, TEXT("WriteRuns")), !kind.toFile);
        person.answers[overwrite] = IDYES;
        (void)person.TakeBoxes();
        Save(frame, {Choose(u"out.aaa", 0)});
        const std::vector<BoxCall> boxes = person.TakeBoxes();
        ASSERT_EQ(boxes.size(), 1u);
        EXPECT_EQ(boxes[0].text, kind.toFile ? overwrite : u"Original : 0.0KB\r\n  Output : 8.8KB");
        EXPECT_EQ(FileBytes("out.aaa"), kind.toFile ? PictureBytes() : "old");
    });
}

TEST_P(Saving, TheNameOfTheFiltersFormatIsCompleted)
{
    Run([&](MainFrame& frame) {
        const struct {
            std::u16string typed;
            std::u16string written;
        } rows[] = {{u"HOLIDAY.JPEG", u"\\HOLIDAY.JPEG"},
                    {u"holiday.jpg", u"\\holiday.jpg"},
                    {u"plain", u"\\plain.jpg"},
                    {u"a.b", u"\\a.b.jpg"}};
        for (const auto& row : rows) {
            Save(frame, {Choose(row.typed, 1)});
            EXPECT_EQ(NameOf(frame), IfToFile(row.written));
            EXPECT_EQ(Saved(frame), IfToFile(row.written));
            EXPECT_EQ(FileIsThere(Utf8(row.written.c_str() + 1)), kind.toFile);
        }
        EXPECT_EQ(Stored(frame, TEXT("WriteRuns")), 4u);
    });
}

TEST_P(Saving, UnderAllFilesTheExtensionChoosesThePlugin)
{
    Run([&](MainFrame& frame) {
        const struct {
            std::u16string name;
            std::u16string plugin;
        } rows[] = {{u"out.AAA", u"Pa"}, {u"out.ccc", u"Pb"}, {u"out.jp", u"Pb"}};
        for (const auto& row : rows) {
            Save(frame, {Choose(row.name, -1)});
            EXPECT_EQ(StoredText(frame, TEXT("WritePlugin")), row.plugin);
            EXPECT_EQ(NameOf(frame), IfToFile(u"\\" + row.name));
            EXPECT_EQ(Setting(frame, TEXT("DefSavePlugin")), 4294967295u);
        }
        Save(frame, {Choose(u"out.zzz", -1)});
        EXPECT_EQ(Stored(frame, TEXT("WriteRuns")), 3u) << "no format fits, and nothing is told";
        for (const BoxCall& box : person.TakeBoxes())
            EXPECT_EQ(box.caption, u"") << "reports alone";
        EXPECT_EQ(Saved(frame), IfToFile(u"\\out.jp"));
    });
}

TEST_P(Saving, ANameWithoutAnExtensionIsToldAndTheDialogComesBackUntilItHasOne)
{
    WriteSettings(u"[Tavrix]\r\nDefSavePlugin=1\r\n");
    Run([&](MainFrame& frame) {
        person.onBox = [&](const std::u16string&) {
            EXPECT_EQ(Setting(frame, TEXT("DefSavePlugin")), 4294967295u)
                << "remembered before the name is looked at";
        };
        Save(frame, {Choose(u"plain", -1), Choose(u"still plain", -1), Cancel()});
        EXPECT_FALSE(FileIsThere("plain"));
        EXPECT_FALSE(IsStored(frame, TEXT("WriteRuns")));
        EXPECT_EQ(Saved(frame), u"");
        std::vector<BoxCall> boxes = person.TakeBoxes();
        ASSERT_EQ(boxes.size(), 2u);
        ASSERT_EQ(person.seen.size(), 3u);
        EXPECT_EQ(person.seen[1].name, u"plain");
        EXPECT_EQ(person.seen[1].filter, -1);
        EXPECT_EQ(person.seen[2].name, u"still plain");

        person.onBox = nullptr;
        SetLanguage(1041);
        Save(frame, {Choose(u"plain", -1), Choose(u"plain.aaa", -1)});
        for (const BoxCall& box : person.TakeBoxes())
            if (!box.caption.empty())
                boxes.push_back(box);
        ASSERT_EQ(boxes.size(), 3u);
        for (size_t i = 0; i < 3; ++i) {
            EXPECT_EQ(boxes[i].text,
                      i < 2 ? u"Filed to identify file type by the file extension. Input available "
                              u"file extension again."
                            : u"使用するプラグインを判別できません。正しい拡張子を入力してください"
                              u"。");
            EXPECT_EQ(boxes[i].caption, i < 2 ? u"ERROR" : u"エラー");
            EXPECT_EQ(boxes[i].flags, 16u);
            EXPECT_EQ(boxes[i].owner, frame.window);
        }
        EXPECT_EQ(Stored(frame, TEXT("WriteRuns")), 1u);
        EXPECT_EQ(Saved(frame), IfToFile(u"\\plain.aaa"));
    });
}

// A point in a folder's name is one, so that the name is not asked for again; what follows it is no
// extension that any format has.
TEST_P(Saving, APointInAFoldersNameCounts)
{
    std::filesystem::create_directory(TestHome() + "/f.d");
    Run([&](MainFrame& frame) {
        Save(frame, {Choose(u"f.d\\plain", -1)});
        EXPECT_EQ(person.seen.size(), 1u);
        EXPECT_TRUE(person.TakeBoxes().empty());
        EXPECT_FALSE(IsStored(frame, TEXT("WriteRuns")));
    });
}

TEST_P(Saving, AFailedJobTakesTheNameAllTheSame)
{
    Run([&](MainFrame& frame) {
        Ask(frame, TEXT("WriteFails"), 1);
        Save(frame, {Choose(u"out.aaa", 0)});
        EXPECT_EQ(StatusTexts(), std::vector<std::u16string>{kind.error});
        EXPECT_EQ(Saved(frame), IfToFile(u"\\out.aaa"));
        ExpectPicture(*frame.image);
    });
}

TEST_P(Saving, WhatStopsBeforeTheJobLeavesTheSavedName)
{
    Run([&](MainFrame& frame) {
        SetPaths(frame, u"\\picture.png", u"\\before.aaa");
        Ask(frame, TEXT("WriteConfigure"), 100);
        Save(frame, {Choose(u"out.aaa", 0)});
        EXPECT_EQ(Saved(frame), u"\\before.aaa") << "cancelled settings";
        EXPECT_EQ(Setting(frame, TEXT("DefSavePlugin")), 0u);
        EXPECT_TRUE(person.TakeBoxes().empty());
        RemovePlugin("OUTPUT", "Pa.aaa");
        Save(frame, {Choose(u"out.aaa", 0)});
        ExpectBox(frame, person, u"Failed to load selected OUTPUT plugin.", u"ERROR", 16);
        EXPECT_EQ(Saved(frame), u"\\before.aaa") << "a plugin that does not load";
        EXPECT_FALSE(FileIsThere("out.aaa"));
    });
}

TEST_P(Saving, WithoutMemoryForTheNameOrTheFiltersItBeeps)
{
    Run([&](MainFrame& frame) {
        for (const SIZE_T size : {SIZE_T{8192}, SIZE_T{16384}}) {
            SetAllocationFault([size](SIZE_T asked) { return asked == size; });
            const unsigned before = Beeps();
            Send(frame, kind.command);
            EXPECT_EQ(Beeps(), before + 1) << size;
        }
        EXPECT_TRUE(person.seen.empty());
        EXPECT_TRUE(person.TakeBoxes().empty());
    });
}

TEST_P(Saving, AnAbsentPictureIsSavedAsOneOfNoSize)
{
    InstallWriter("Pa.aaa");
    RunProgram(u"", [&](MainFrame& frame) {
        Save(frame, {Choose(u"out.aaa", 0)});
        EXPECT_EQ(Stored(frame, TEXT("WriteWidth")), 0u);
        EXPECT_EQ(FileIsThere("out.aaa"), kind.toFile);
        EXPECT_EQ(Saved(frame), IfToFile(u"\\out.aaa"));
        EXPECT_EQ(frame.imagePresent, 0u);
    });
}

// No plugin is loaded while the user chooses. What comes then is what is saved.
TEST_P(Saving, AFileHandedOverWhileTheDialogIsOpenIsOpenedAtOnce)
{
    InstallReader("Reader.raw");
    MakeSource("handed.raw", 'h');
    Run([&](MainFrame& frame) {
        person.onFileDialog = [&] {
            HandOver(frame, u"\\handed.raw");
            ExpectRead(frame, 'h');
        };
        Save(frame, {Choose(u"out.aaa", 0)});
        EXPECT_EQ(FileBytes("out.aaa"), kind.toFile ? std::string(30 * 20 * 3, 'h') : "");
        EXPECT_EQ(Opened(frame), u"\\handed.raw");
        EXPECT_TRUE(IsWindowEnabled(frame.window));
    });
}

TEST_P(Saving, AFileHandedOverDuringTheJobIsOpenedBehindTheWholeFlow)
{
    InstallReader("Reader.raw");
    MakeSource("handed.raw", 'h');
    Run([&](MainFrame& frame) {
        Ask(frame, TEXT("ReadAsks"), 1);
        Ask(frame, TEXT("WriteAsks"), 1);
        int asked = 0;
        person.onBox = [&](const std::u16string& text) {
            if (text != u"Settings?")
                return;
            if (++asked == 1)
                HandOver(frame, u"\\handed.raw");
            else
                EXPECT_EQ(Saved(frame), IfToFile(u"\\out.aaa")) << "the flow has ended";
        };
        Save(frame, {Choose(u"out.aaa", 0)});
        EXPECT_EQ(asked, 2);
        ExpectRead(frame, 'h');
        EXPECT_EQ(FileBytes("out.aaa"), kind.toFile ? PictureBytes() : "");
    });
}

TEST_P(Saving, WithoutPluginsTheUserIsToldInBothLanguagesAndNoDialogComes)
{
    RunProgram(u"", [&](MainFrame& frame) {
        (void)person.TakeBoxes(); // of the start
        Send(frame, kind.command);
        ExpectBox(frame, person, u"No OUTPUT plugin is installed.", u"WARNING", 48);
        SetLanguage(1041);
        Send(frame, kind.command);
        ExpectBox(frame, person, u"書き込みプラグインがインストールされていません。", u"警告", 48);
        EXPECT_TRUE(person.seen.empty());
    });
}

INSTANTIATE_TEST_SUITE_P(Of, Saving, ::testing::ValuesIn(kinds),
                         [](const ::testing::TestParamInfo<Kind>& row) {
                             return std::string(row.param.name);
                         });

// With the settings' dialog cancelled the virtual save's end gives Done, which changes nothing
// here.
TEST(SavingToFile, ALongNameIsCutWhereTheFrameKeepsIt)
{
    Scope scope;
    SetLanguage(1033);
    Person person;
    InstallPlugin(tavrix::testing::InBuild("/bin/PLUGINS/INPUT/PNG.dll"));
    InstallWriter("Pa.aaa");
    const std::string folder(120, 'f');
    std::filesystem::create_directories(TestHome() + "/" + folder + "/" + folder);
    const std::string name = std::string(40, 'n') + ".aaa";
    RunProgramOn(WriteTestPng(PictureWidth, PictureHeight), [&](MainFrame& frame) {
        person.choices.push_back(ChooseBelow({Wide(folder), Wide(folder)}, Wide(name), 0));
        Send(frame, SaveCommand);
        const std::u16string path =
            u"\\" + Wide(folder) + u"\\" + Wide(folder) + u"\\" + Wide(name);
        ASSERT_GT(path.size(), size_t{259});
        EXPECT_EQ(StoredText(frame, TEXT("WritePath")), path);
        EXPECT_EQ(StatusTexts(), std::vector<std::u16string>{kinds[0].error});
        EXPECT_EQ(Saved(frame), path.substr(0, 259));
    });
}
