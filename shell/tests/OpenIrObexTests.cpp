// Pictures that another device sends, by the command, over a link of the host.

#include "platform/host/Resources.h"
#include "shell/tests/WireTesting.h"

using namespace wiretest;

namespace
{

using Texts = std::vector<std::u16string>;

const std::u16string notReceived = u"Failed to receive an object.";

// Plugin 0 is Alpha with "*.aaa", 1 is Beta with "*.bbb".
class OpeningIrObex : public ::testing::Test
{
protected:
    OpeningIrObex() : path(UseInfraredPath())
    {
        SetLanguage(1033);
        InstallReader("Alpha.aaa");
        InstallReader("Beta.bbb");
        MakeSource("file.aaa", 'f');
    }

    void Receive(MainFrame& frame, const std::vector<std::string>& packets)
    {
        const Sender sender(path, packets);
        Send(frame, IrObexCommand);
    }
    /// No link can be listened on.
    static void BreakTheLink()
    {
        SetSocketFault([](tavrix::platform::SocketOperation operation, int*) {
            return operation == tavrix::platform::SocketOperation::Bind;
        });
    }

    Scope scope;
    Surfer person;
    std::string path;
};

} // namespace

TEST_F(OpeningIrObex, TheObjectIsReceivedAndThenReadByThePluginOfItsName)
{
    WriteSettings(u"[Tavrix]\r\nLastURL=http://kept/\r\nDefOpenPlugin=5\r\n");
    RunProgram(u"", [&](MainFrame& frame) {
        Receive(frame, PushOf(u"sent.bbb", "s"));
        ExpectRead(frame, 's');
        EXPECT_EQ(person.headlines,
                  (Texts{u"Loading an object from IrDA...", u"Loading an image..."}));
        EXPECT_TRUE(person.TakeBoxes().empty());
        EXPECT_EQ(Opened(frame), u"");
        EXPECT_EQ(frame.inputPlugin, 1);
        EXPECT_EQ(frame.imagePresent, 1u);
        EXPECT_FALSE(frame.inputPlugins->IsLoaded());
        EXPECT_EQ(Stored(frame, TEXT("ReadConfigures")), 1u);
        EXPECT_EQ(Stored(frame, TEXT("ReadRuns")), 1u);
        EXPECT_EQ(Setting(frame, TEXT("DefOpenPlugin")), 5u);
        const WCHAR* address = nullptr;
        EXPECT_EQ(frame.settings->GetText(TEXT("Tavrix"), TEXT("LastURL"), &address), Done);
        EXPECT_EQ(std::u16string(address), u"http://kept/");
    });
}

TEST_F(OpeningIrObex, TheDialogTellsInTheSystemsLanguage)
{
    RunProgram(u"", [&](MainFrame& frame) {
        SetLanguage(1041);
        Receive(frame, PushOf(u"画像.aaa", "j"));
        ExpectRead(frame, 'j');
        EXPECT_EQ(person.headlines,
                  (Texts{u"赤外線デバイスから読み込んでいます...", u"画像を読み込んでいます..."}));
    });
}

TEST_F(OpeningIrObex, TheOpenedFileStaysTheOneThatItWas)
{
    RunProgramOn(TestHome() + "/file.aaa", [&](MainFrame& frame) {
        const std::u16string file = Opened(frame);
        Select(frame, 1, 1, 4, 4);
        Receive(frame, PushOf(u"sent.bbb", "s"));
        ExpectRead(frame, 's');
        EXPECT_EQ(Opened(frame), file);
        EXPECT_EQ(frame.selectionActive, 0u);
        Send(frame, ReloadOpenedCommand);
        ExpectRead(frame, 'f');
        EXPECT_EQ(StoredText(frame, TEXT("ReadPlugin")), u"Beta") << "that of the object";
    });
}

TEST_F(OpeningIrObex, WithoutAFileAReloadFetchesTheLastAddress)
{
    Site site;
    site.Set("/one.aaa", Answer("1"));
    WriteSettings(u"[Tavrix]\r\nLastURL=" + AddressOf("/one.aaa") + u"\r\n");
    RunProgram(u"", [&](MainFrame& frame) {
        Receive(frame, PushOf(u"sent.bbb", "s"));
        EXPECT_TRUE(site.TakeRequests().empty());
        Send(frame, ReloadOpenedCommand);
        ExpectRead(frame, '1');
        EXPECT_EQ(site.TakeRequests().size(), 1u);
        EXPECT_EQ(frame.inputPlugin, 0);
    });
}

// Both languages have words for it, under the caption of one.
TEST_F(OpeningIrObex, AnObjectThatFitsNoPluginIsToldInTheSystemsLanguage)
{
    RunProgramOn(TestHome() + "/file.aaa", [&](MainFrame& frame) {
        frame.inputPlugin = 7;
        for (const char16_t* name : {u"sent.zzz", u"sent", u"", u"sent.aaa.txt"}) {
            SetLanguage(1033);
            Receive(frame, PushOf(name, "s"));
            ExpectBox(frame, person, u"Unknown File Format", u"ERROR", 16);
            SetLanguage(1041);
            Receive(frame, PushOf(name, "s"));
            ExpectBox(frame, person, u"不明なフォーマットです。", u"ERROR", 16);
        }
        EXPECT_EQ(frame.inputPlugin, 7);
        ExpectRead(frame, 'f');
        EXPECT_EQ(Stored(frame, TEXT("ReadRuns")), 1u);
    });
}

TEST_F(OpeningIrObex, AnObjectWithoutANameFitsNoPlugin)
{
    RunProgram(u"", [&](MainFrame& frame) {
        Receive(frame, {Packet(0x82, BodyHeader(0x49, "s"))});
        ExpectBox(frame, person, u"Unknown File Format", u"ERROR", 16);
    });
}

TEST_F(OpeningIrObex, OfTheName63CharactersCount)
{
    RunProgram(u"", [&](MainFrame& frame) {
        Receive(frame, PushOf(std::u16string(59, u'名') + u".aaa", "a"));
        EXPECT_TRUE(person.TakeBoxes().empty());
        ExpectRead(frame, 'a');
        // Of this one ".bb" is left, which the patterns hold, too.
        Receive(frame, PushOf(std::u16string(60, u'名') + u".bbb", "b"));
        EXPECT_TRUE(person.TakeBoxes().empty());
        ExpectRead(frame, 'b');
        Receive(frame, PushOf(std::u16string(63, u'名') + u".aaa", "c"));
        ExpectBox(frame, person, u"Unknown File Format", u"ERROR", 16);
        ExpectRead(frame, 'b');
    });
}

TEST_F(OpeningIrObex, APartOfAnObjectIsReadAsFarAsItGoes)
{
    RunProgram(u"", [&](MainFrame& frame) {
        Receive(frame, {Packet(0x02, NameHeader(u"sent.aaa") + BodyHeader(0x48, "part"))});
        EXPECT_EQ(StatusTexts().back(), notReceived);
        ExpectRead(frame, 'p');
        EXPECT_EQ(frame.inputPlugin, 0);
        EXPECT_TRUE(person.TakeBoxes().empty());
    });
}

TEST_F(OpeningIrObex, WhenNothingCameTheFlowEndsInSilence)
{
    RunProgramOn(TestHome() + "/file.aaa", [&](MainFrame& frame) {
        frame.inputPlugin = 7;
        const unsigned beeps = Beeps();
        Receive(frame, PushOf(u"empty.bbb", ""));
        EXPECT_EQ(Beeps(), beeps);
        EXPECT_EQ(person.headlines.size(), 2u) << "the file's and the object's";
        // Here the job has told of it.
        BreakTheLink();
        Send(frame, IrObexCommand);
        EXPECT_EQ(StatusTexts().back(), notReceived);
        EXPECT_EQ(person.headlines.size(), 3u);
        EXPECT_TRUE(person.TakeBoxes().empty());
        EXPECT_EQ(frame.inputPlugin, 7);
        ExpectRead(frame, 'f');
    });
}

TEST_F(OpeningIrObex, AJobWithoutAThreadIsToldByItsOwnTextAlone)
{
    RunProgram(u"", [&](MainFrame& frame) {
        SetThreadFault([] { return true; });
        Send(frame, IrObexCommand);
        ExpectBox(frame, person, notReceived, u"ERROR", 16);
        EXPECT_EQ(frame.imagePresent, 0u);
    });
}

TEST_F(OpeningIrObex, ADialogThatCannotBeMadeEndsIt)
{
    RunProgram(u"", [&](MainFrame& frame) {
        const BYTE none = 0;
        TavrixRegisterResources(nullptr, &none, &none);
        Send(frame, IrObexCommand);
        RegisterProgramResources();
        EXPECT_TRUE(person.headlines.empty());
        EXPECT_TRUE(person.TakeBoxes().empty());
        EXPECT_EQ(frame.inputPlugin, -1);
    });
}

TEST(OpeningIrObexWithoutPlugins, WarnsInBothLanguagesAndReceivesNothing)
{
    Scope scope;
    Surfer person;
    UseInfraredPath();
    RunProgram(u"", [&](MainFrame& frame) {
        (void)person.TakeBoxes();
        SetLanguage(1033);
        Send(frame, IrObexCommand);
        ExpectBox(frame, person, u"No INPUT plugin is installed", u"WARNING", 48);
        SetLanguage(1041);
        Send(frame, IrObexCommand);
        ExpectBox(frame, person, u"読み込みプラグインがインストールされていません。", u"警告", 48);
        EXPECT_TRUE(person.headlines.empty());
    });
}

TEST_F(OpeningIrObex, APluginThatDoesNotLoadIsToldInEnglishAndIsRemembered)
{
    RunProgramOn(TestHome() + "/file.aaa", [&](MainFrame& frame) {
        RemovePlugin("INPUT", "Beta.bbb");
        for (const LANGID language : {LANGID{1033}, LANGID{1041}}) {
            SetLanguage(language);
            frame.inputPlugin = 0;
            Receive(frame, PushOf(u"sent.bbb", "s"));
            ExpectBox(frame, person, u"Failed to load selected INPUT plugin.", u"ERROR", 16);
            EXPECT_EQ(frame.inputPlugin, 1);
        }
        ExpectRead(frame, 'f');
    });
}

TEST_F(OpeningIrObex, AFileThatIsHandedOverWhileAnObjectComesIsOpenedBehindIt)
{
    RunProgram(u"", [&](MainFrame& frame) {
        int jobs = 0;
        person.onProgress = [&] {
            if (jobs++ == 0) {
                HandOver(frame, u"\\file.aaa");
                EXPECT_EQ(Opened(frame), u"");
            }
        };
        Receive(frame, PushOf(u"sent.bbb", "s"));
        EXPECT_EQ(jobs, 3);
        EXPECT_EQ(person.headlines, (Texts{u"Loading an object from IrDA...",
                                           u"Loading an image...", u"Loading an image..."}));
        ExpectRead(frame, 'f');
        EXPECT_EQ(Opened(frame), u"\\file.aaa");
    });
}
