// The two commands that read a file again, by their commands and keys.

#include "shell/tests/RoadTesting.h"

using namespace roadtest;

namespace
{

class Reloading : public ::testing::Test
{
protected:
    Reloading()
    {
        SetLanguage(1033);
        InstallReader("Alpha.aaa");
        InstallReader("Beta.bbb");
        MakeSource("one.aaa", '1');
        MakeSource("two.bbb", '2');
    }

    Scope scope;
    Person person;
};

} // namespace

TEST_F(Reloading, TheOpenedFileIsReadAgainWithoutThePluginsSettings)
{
    RunProgramOn(TestHome() + "/one.aaa", {[&](MainFrame& frame) {
                                               ExpectRead(frame, '1');
                                               EXPECT_EQ(Stored(frame, TEXT("ReadConfigures")), 1u);
                                               MakeSource("one.aaa", 'n');
                                               Select(frame, 1, 1, 4, 4);
                                               Send(frame, ReloadOpenedCommand);
                                               ExpectRead(frame, 'n');
                                               EXPECT_EQ(frame.selectionActive, 0u);
                                               EXPECT_EQ(Stored(frame, TEXT("ReadConfigures")), 1u);
                                               EXPECT_EQ(Stored(frame, TEXT("ReadRuns")), 2u);
                                               EXPECT_FALSE(frame.inputPlugins->IsLoaded());
                                               EXPECT_TRUE(person.TakeBoxes().empty());
                                               frame.inputPlugin = -1;
                                               TypeKey('L', MK_CONTROL);
                                           },
                                           [&](MainFrame& frame) {
                                               ExpectBox(frame, person,
                                                         u"Failed to load selected INPUT plugin.",
                                                         u"ERROR", 16);
                                           }});
}

// Neither the file's name nor its format decides.
TEST_F(Reloading, TheOpenedFileIsReadByThePluginThatWasRememberedLast)
{
    RunProgramOn(TestHome() + "/one.aaa", [&](MainFrame& frame) {
        SetPaths(frame, u"\\one.aaa", u"");
        frame.inputPlugin = 1;
        Send(frame, ReloadOpenedCommand);
        EXPECT_EQ(StoredText(frame, TEXT("ReadPlugin")), u"Beta");
        // Where none was remembered, as before the first Open, the load tells it.
        frame.inputPlugin = -1;
        Send(frame, ReloadOpenedCommand);
        ExpectBox(frame, person, u"Failed to load selected INPUT plugin.", u"ERROR", 16);
        SetLanguage(1041);
        Send(frame, ReloadOpenedCommand);
        ExpectBox(frame, person, u"指定の読み込みプラグインがロードできませんでした。", u"エラー",
                  16);
        ExpectRead(frame, '1');
        EXPECT_EQ(frame.inputPlugin, -1);
    });
}

TEST_F(Reloading, AnOpenedFileThatIsGoneEndsInSilenceWithThePictureKept)
{
    RunProgramOn(TestHome() + "/one.aaa", [&](MainFrame& frame) {
        std::filesystem::remove(TestHome() + "/one.aaa");
        const unsigned beeps = Beeps();
        Send(frame, ReloadOpenedCommand);
        ExpectRead(frame, '1');
        EXPECT_EQ(Opened(frame), DevicePath(TestHome() + "/one.aaa"));
        EXPECT_TRUE(person.TakeBoxes().empty());
        EXPECT_EQ(Beeps(), beeps);
    });
}

TEST_F(Reloading, AFileThatCannotBeReadAnyMoreIsToldInTheDialogAndThePictureStaysAsItWas)
{
    RunProgramOn(TestHome() + "/one.aaa", [&](MainFrame& frame) {
        Ask(frame, TEXT("ReadBreaks"), 1);
        Send(frame, ReloadOpenedCommand);
        SetLanguage(1041);
        Send(frame, ReloadOpenedCommand);
        ExpectRead(frame, '1');
        EXPECT_EQ(
            StatusTexts(),
            (std::vector<std::u16string>{
                u"Failed to load an image file, might be broken or unknown-format.",
                u"画像ファイルがロードできません。ファイルが壊れているか未対応の画像形式です。"}));
        EXPECT_EQ(frame.imagePresent, 1u);
    });
}

// And without a plugin that an earlier address may have left.
TEST_F(Reloading, WithoutAFileThePersonIsAskedForANewPictureAndNothingIsRead)
{
    RunProgram(u"", [&](MainFrame& frame) {
        const unsigned beeps = Beeps();
        int asked = 0;
        person.onDialog = [&](HWND dialog) {
            ++asked;
            EXPECT_NE(GetDlgItem(dialog, ControlMode), nullptr);
            PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
        };
        Send(frame, ReloadOpenedCommand);
        EXPECT_EQ(asked, 1);
        Send(frame, ReloadSavedCommand);
        EXPECT_FALSE(IsStored(frame, TEXT("ReadRuns")));
        EXPECT_FALSE(IsStored(frame, TEXT("ReadConfigures")));
        EXPECT_EQ(frame.imagePresent, 0u);
        EXPECT_EQ(frame.inputPlugin, -1);
        EXPECT_EQ(asked, 1);
        EXPECT_TRUE(person.TakeBoxes().empty());
        EXPECT_TRUE(person.headlines.empty());
        EXPECT_EQ(Beeps(), beeps);
    });
}

TEST_F(Reloading, TheSavedFileIsReadByThePluginOfItsNameWithItsSettings)
{
    RunProgramOn(TestHome() + "/one.aaa",
                 {[&](MainFrame& frame) {
                      SetPaths(frame, u"\\one.aaa", u"\\two.BBB");
                      Send(frame, ReloadSavedCommand);
                      ExpectRead(frame, '2');
                      EXPECT_EQ(StoredText(frame, TEXT("ReadPlugin")), u"Beta");
                      EXPECT_EQ(Stored(frame, TEXT("ReadConfigures")), 2u);
                      EXPECT_EQ(Opened(frame), u"\\two.BBB");
                      EXPECT_EQ(Saved(frame), u"\\two.BBB");
                      EXPECT_EQ(frame.inputPlugin, 1);
                      SetPaths(frame, u"\\one.aaa", u"\\one.aaa");
                      TypeKey('K', MK_CONTROL);
                  },
                  [&](MainFrame& frame) {
                      EXPECT_TRUE(PumpUntil([&] { return Stored(frame, TEXT("ReadRuns")) == 3u; }));
                      Pump(300); // the job's end

                      ExpectRead(frame, '1');
                      EXPECT_EQ(frame.inputPlugin, 0);
                  }});
}

TEST_F(Reloading, ASavedNameOfNoFormatEndsInSilence)
{
    RunProgramOn(TestHome() + "/one.aaa", [&](MainFrame& frame) {
        for (const WCHAR* name : {u"\\two", u"\\two.zzz", u"\\folder.bbb\\two"}) {
            SetPaths(frame, u"\\one.aaa", name);
            Send(frame, ReloadSavedCommand);
        }
        EXPECT_EQ(Stored(frame, TEXT("ReadRuns")), 1u);
        EXPECT_EQ(Opened(frame), u"\\one.aaa");
        EXPECT_EQ(frame.inputPlugin, 0);
        EXPECT_TRUE(person.TakeBoxes().empty());
    });
}

// A file that is not there gives a negative result, which counts; cancelled settings give none.
TEST_F(Reloading, TheSavedNameIsTakenOverUnlessTheSettingsAreCancelled)
{
    RunProgramOn(TestHome() + "/one.aaa", [&](MainFrame& frame) {
        SetPaths(frame, u"\\one.aaa", u"\\none.bbb");
        Send(frame, ReloadSavedCommand);
        EXPECT_EQ(Opened(frame), u"\\none.bbb");
        EXPECT_EQ(frame.inputPlugin, 1);
        ExpectRead(frame, '1');
        Ask(frame, TEXT("ReadConfigure"), 100);
        SetPaths(frame, u"\\one.aaa", u"\\two.bbb");
        frame.inputPlugin = 0;
        Send(frame, ReloadSavedCommand);
        EXPECT_EQ(Opened(frame), u"\\one.aaa");
        EXPECT_EQ(frame.inputPlugin, 1) << "taken before the load";
        ExpectRead(frame, '1');
        Ask(frame, TEXT("ReadConfigure"), 101);
        Ask(frame, TEXT("ReadBreaks"), 1);
        Send(frame, ReloadSavedCommand);
        EXPECT_EQ(Opened(frame), u"\\two.bbb") << "a failed job counts";
        EXPECT_TRUE(person.TakeBoxes().empty());
    });
}

TEST(ReloadingWithoutPlugins, ASavedFileEndsInSilence)
{
    Person person;
    RunProgram(u"", [&](MainFrame& frame) {
        (void)person.TakeBoxes(); // of the start
        SetPaths(frame, u"", u"\\two.bbb");
        Send(frame, ReloadSavedCommand);
        EXPECT_EQ(Opened(frame), u"");
        EXPECT_EQ(frame.inputPlugin, -1);
        EXPECT_TRUE(person.TakeBoxes().empty());
    });
}
