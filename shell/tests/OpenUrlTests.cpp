// Pictures from a web server, by the command, its dialog and the reload, over real connections.

#include "platform/host/Resources.h"
#include "platform/testing/Faults.h"
#include "shell/tests/WireTesting.h"

using namespace wiretest;

namespace
{

constexpr u32 NewCommand = 40017;

// Plugin 0 is Alpha with "*.aaa", 1 is Beta with "*.bbb".
class OpeningUrl : public ::testing::Test
{
protected:
    OpeningUrl()
    {
        SetLanguage(1033);
        InstallReader("Alpha.aaa");
        InstallReader("Beta.bbb");
        MakeSource("file.aaa", 'f');
        site.Set("/one.aaa", Answer("1"));
        site.Set("/two.bbb", Answer("2"));
    }

    void Visit(MainFrame& frame, const std::u16string& address)
    {
        person.visits.push_back(address);
        Send(frame, UrlCommand);
    }
    /// Every change makes them grow a little, and what there was no memory for is lost in them.
    static void ReadSettingsAnew(MainFrame& frame)
    {
        EXPECT_EQ(frame.settings->Close(0), Done);
        EXPECT_EQ(frame.settings->Load(
                      TEXT("\\Application Data\\Tavrix\\Configuration Files\\Tavrix.ini")),
                  Done);
    }
    static std::u16string LastUrl(MainFrame& frame)
    {
        const WCHAR* text = nullptr;
        return frame.settings->GetText(TEXT("Tavrix"), TEXT("LastURL"), &text) == Done ? text
                                                                                       : u"(none)";
    }

    Scope scope;
    Surfer person;
    Site site;
};

std::string RequestFor(const std::string& page, const std::string& referer)
{
    return "GET http://" + OwnAddress() + page + " HTTP/1.0\nHost: " + OwnAddress() +
           "\nRange: bytes=0-\nReferer: " + referer + "\n\n";
}

using Requests = std::vector<std::string>;

} // namespace

TEST_F(OpeningUrl, ThePictureOfTheTypedAddressIsReadFromTheConnectionItself)
{
    RunProgram(u"", [&](MainFrame& frame) {
        WatchFiles();
        const size_t before = Happenings().size();
        Visit(frame, AddressOf("/one.aaa"));
        SetFileFault(nullptr);
        for (size_t i = before; i < Happenings().size(); ++i)
            EXPECT_NE(Happenings()[i].rfind("create", 0), 0u) << Happenings()[i];
        ExpectRead(frame, '1');
        EXPECT_EQ(person.shown, std::vector<std::u16string>{u"http://"});
        EXPECT_EQ(person.headlines, std::vector<std::u16string>{u"Loading an image..."});
        EXPECT_TRUE(person.TakeBoxes().empty());
        EXPECT_EQ(site.TakeRequests(),
                  (Requests{RequestFor("/one.aaa", "http://" + OwnAddress() + "/")}));
        EXPECT_EQ(LastUrl(frame), AddressOf("/one.aaa"));
        EXPECT_EQ(Opened(frame), u"");
        EXPECT_EQ(frame.inputPlugin, 0);
        EXPECT_EQ(frame.imagePresent, 1u);
        EXPECT_FALSE(frame.inputPlugins->IsLoaded());
        EXPECT_EQ(Stored(frame, TEXT("ReadConfigures")), 1u);
        EXPECT_EQ(Stored(frame, TEXT("ReadRuns")), 1u);
        EXPECT_EQ(StoredText(frame, TEXT("ReadPlugin")), u"Alpha");
        EXPECT_EQ(Setting(frame, TEXT("DefOpenPlugin")), 12345u) << "was not written";
    });
}

TEST_F(OpeningUrl, TheDialogIsOfTheLanguageAndBeginsWithTheLastAddress)
{
    WriteSettings(u"[Tavrix]\r\nLastURL=http://last/日本.aaa?x=1\r\n");
    RunProgram(u"", [&](MainFrame& frame) {
        SetLanguage(1041);
        Visit(frame, AddressOf("/one.aaa"));
        SetLanguage(1033);
        Visit(frame, u"");
        (void)person.TakeBoxes();
        Visit(frame, u"no address");
        EXPECT_EQ(person.shown, (std::vector<std::u16string>{u"http://last/日本.aaa?x=1",
                                                             AddressOf("/one.aaa"), u""}));
        EXPECT_EQ(person.captions,
                  (std::vector<std::u16string>{u"URLを開く", u"Open URL", u"Open URL"}));
        EXPECT_EQ(LastUrl(frame), u"no address");
    });
}

// An emptied address is stored as a key without a value.
TEST_F(OpeningUrl, AnAddressThatWasEmptiedBeforeTheStartCountsAsNone)
{
    WriteSettings(u"[Tavrix]\r\nLastURL=\r\n");
    RunProgram(u"", [&](MainFrame& frame) {
        Visit(frame, AddressOf("/two.bbb"));
        EXPECT_EQ(person.shown, std::vector<std::u16string>{u"http://"});
        ExpectRead(frame, '2');
    });
}

TEST_F(OpeningUrl, AnEmptiedAddressReachesNobody)
{
    RunProgram(u"", [&](MainFrame& frame) {
        Visit(frame, u"");
        ExpectBox(frame, person, u"Connection Failure", u"ERROR", 0x40010);
        EXPECT_EQ(LastUrl(frame), u"");
        EXPECT_EQ(frame.inputPlugin, -1);
        EXPECT_EQ(frame.imagePresent, 0u);
        EXPECT_TRUE(site.TakeRequests().empty());
    });
}

TEST_F(OpeningUrl, TheServerHearsWhereTheAddressBegins)
{
    const std::string own = "http://" + OwnAddress();
    const struct {
        std::string page;
        std::string referer;
    } rows[] = {
        {"/one.aaa", own + "/"},  {"/a/b/one.aaa", own + "/a/b/"},
        {"/a/b/", own + "/a/b/"}, {"/one.aaa?from=/c/d.aaa", own + "/one.aaa?from=/c/"},
        {"", "http://"},
    };
    RunProgram(u"", [&](MainFrame& frame) {
        for (const auto& row : rows) {
            Visit(frame, AddressOf(row.page));
            EXPECT_EQ(site.TakeRequests(), (Requests{RequestFor(row.page, row.referer)}));
        }
    });
}

// Only the job tells, once the plugin finds nothing to read.
TEST_F(OpeningUrl, AMissingPageIsAPictureThatCannotBeRead)
{
    RunProgramOn(TestHome() + "/file.aaa", [&](MainFrame& frame) {
        for (const LANGID language : {LANGID{1033}, LANGID{1041}}) {
            SetLanguage(language);
            Visit(frame, AddressOf("/missing.bbb"));
        }
        EXPECT_EQ(
            StatusTexts(),
            (std::vector<std::u16string>{
                u"Failed to load an image file, might be broken or unknown-format.",
                u"画像ファイルがロードできません。ファイルが壊れているか未対応の画像形式です。"}));
        EXPECT_TRUE(person.TakeBoxes().empty());
        ExpectRead(frame, 'f');
        EXPECT_EQ(frame.inputPlugin, 1);
        EXPECT_EQ(LastUrl(frame), AddressOf("/missing.bbb"));
        EXPECT_EQ(site.TakeRequests().size(), 2u);
    });
}

TEST_F(OpeningUrl, AnAnswerThatIsNoneIsAFailureOfTheConnectionOrOfThePicture)
{
    site.Set("/silent.aaa", "");
    site.Set("/other.aaa", "some words\n\n");
    RunProgram(u"", [&](MainFrame& frame) {
        Visit(frame, AddressOf("/silent.aaa"));
        ExpectBox(frame, person, u"Connection Failure", u"ERROR", 0x40010);
        EXPECT_EQ(frame.inputPlugin, -1);
        // Words that are no status are no failure yet.
        Visit(frame, AddressOf("/other.aaa"));
        EXPECT_TRUE(person.TakeBoxes().empty());
        EXPECT_EQ(StatusTexts().size(), 1u);
        EXPECT_EQ(frame.inputPlugin, 0);
    });
}

// The same words in both languages.
TEST(OpeningUrlOfNobody, IsToldInEnglishAboveAllAndChangesNothingButTheAddress)
{
    Scope scope;
    InstallReader("Alpha.aaa");
    MakeSource("file.aaa", 'f');
    Surfer person;
    RunProgramOn(TestHome() + "/file.aaa", [&](MainFrame& frame) {
        frame.inputPlugin = 7;
        for (const LANGID language : {LANGID{1033}, LANGID{1041}}) {
            SetLanguage(language);
            for (const std::u16string& address :
                 {AddressOf("/one.aaa"), std::u16string(u"one.aaa"),
                  std::u16string(u"HTTP://") + Wide(OwnAddress()) + u"/one.aaa"}) {
                person.visits.push_back(address);
                Send(frame, UrlCommand);
                ExpectBox(frame, person, u"Connection Failure", u"ERROR", 0x40010);
            }
        }
        ExpectRead(frame, 'f');
        EXPECT_EQ(frame.inputPlugin, 7);
        EXPECT_EQ(person.headlines.size(), 1u) << "the file's";
        EXPECT_EQ(Opened(frame), DevicePath(TestHome() + "/file.aaa"));
    });
}

TEST_F(OpeningUrl, TheLastPointOfTheWholeAddressTellsThePlugin)
{
    site.Set("/one.AAA", Answer("u"));
    site.Set("/show?file=two.bbb", Answer("q"));
    site.Set("/one.aaa?name=x.bb", Answer("s"));
    const struct {
        std::string page;
        i32 plugin;
        char byte;
    } rows[] = {
        {"/one.AAA", 0, 'u'}, {"/show?file=two.bbb", 1, 'q'}, {"/one.aaa?name=x.bb", 1, 's'}};
    RunProgram(u"", [&](MainFrame& frame) {
        for (const auto& row : rows) {
            Visit(frame, AddressOf(row.page));
            EXPECT_EQ(frame.inputPlugin, row.plugin) << row.page;
            ExpectRead(frame, row.byte);
            EXPECT_TRUE(person.TakeBoxes().empty());
        }
    });
}

// Also where a person would see a picture's name in it. The server was asked by then.
TEST_F(OpeningUrl, AnAddressThatFitsNoPluginIsToldInEnglish)
{
    RunProgram(u"", [&](MainFrame& frame) {
        for (const LANGID language : {LANGID{1033}, LANGID{1041}}) {
            SetLanguage(language);
            for (const char* page :
                 {"/one.zzz", "/one", "", "/one.aaa?v=1.5", "/one.aaa?", "/one.aaa/"}) {
                Visit(frame, AddressOf(page));
                ExpectBox(frame, person, u"Unknown File Format", u"ERROR", 16);
                EXPECT_EQ(site.TakeRequests().size(), 1u);
                EXPECT_EQ(LastUrl(frame), AddressOf(page));
            }
        }
        EXPECT_EQ(frame.inputPlugin, -1);
        EXPECT_EQ(frame.imagePresent, 0u);
        EXPECT_TRUE(person.headlines.empty());
    });
}

TEST_F(OpeningUrl, ARedirectIsFollowedAndTheTypedAddressCounts)
{
    site.Set("/moved.aaa",
             "HTTP/1.0 302 Found\r\nLocation: http://" + OwnAddress() + "/two.bbb\r\n\r\n");
    RunProgram(u"", [&](MainFrame& frame) {
        Visit(frame, AddressOf("/moved.aaa"));
        ExpectRead(frame, '2');
        EXPECT_EQ(frame.inputPlugin, 0) << "that of the typed address";
        EXPECT_EQ(LastUrl(frame), AddressOf("/moved.aaa"));
        const std::string base = "http://" + OwnAddress() + "/";
        EXPECT_EQ(site.TakeRequests(),
                  (Requests{RequestFor("/moved.aaa", base), RequestFor("/two.bbb", base)}));
    });
}

TEST(OpeningUrlWithoutPlugins, WarnsInBothLanguagesAndAsksNothing)
{
    Scope scope;
    Surfer person;
    WriteSettings(u"[Tavrix]\r\nLastURL=http://kept/\r\n");
    RunProgram(u"", [&](MainFrame& frame) {
        (void)person.TakeBoxes();
        SetLanguage(1033);
        Send(frame, UrlCommand);
        ExpectBox(frame, person, u"No INPUT plugin is installed", u"WARNING", 48);
        SetLanguage(1041);
        Send(frame, UrlCommand);
        ExpectBox(frame, person, u"読み込みプラグインがインストールされていません。", u"警告", 48);
        EXPECT_TRUE(person.shown.empty());
    });
}

TEST_F(OpeningUrl, GivingTheDialogUpChangesNothing)
{
    WriteSettings(u"[Tavrix]\r\nLastURL=http://kept/\r\n");
    RunProgramOn(TestHome() + "/file.aaa", [&](MainFrame& frame) {
        person.visits.push_back({});
        Send(frame, UrlCommand);
        EXPECT_EQ(person.shown, std::vector<std::u16string>{u"http://kept/"});
        EXPECT_EQ(LastUrl(frame), u"http://kept/");
        EXPECT_TRUE(site.TakeRequests().empty());
        EXPECT_TRUE(person.TakeBoxes().empty());
        ExpectRead(frame, 'f');
    });
}

// Nobody is asked for an address that nobody has seen.
TEST_F(OpeningUrl, ADialogThatCannotBeMadeEndsItLikeOneThatIsGivenUp)
{
    WriteSettings(u"[Tavrix]\r\nLastURL=" + AddressOf("/one.zzz") + u"\r\n");
    RunProgram(u"", [&](MainFrame& frame) {
        const BYTE none = 0;
        TavrixRegisterResources(nullptr, &none, &none);
        Send(frame, UrlCommand);
        RegisterProgramResources();
        EXPECT_TRUE(person.shown.empty());
        EXPECT_TRUE(site.TakeRequests().empty());
        EXPECT_TRUE(person.TakeBoxes().empty());
    });
}

TEST_F(OpeningUrl, TheFileThatWasOpenStaysTheOpenedOneAndIsReloadedWithTheNewPlugin)
{
    RunProgramOn(TestHome() + "/file.aaa", [&](MainFrame& frame) {
        const std::u16string file = Opened(frame);
        Select(frame, 1, 1, 4, 4);
        Visit(frame, AddressOf("/two.bbb"));
        ExpectRead(frame, '2');
        EXPECT_EQ(Opened(frame), file);
        EXPECT_EQ(frame.selectionActive, 0u);
        EXPECT_EQ(Setting(frame, TEXT("DefOpenPlugin")), 4294967295u) << "the command line's";
        Send(frame, ReloadOpenedCommand);
        ExpectRead(frame, 'f');
        EXPECT_EQ(StoredText(frame, TEXT("ReadPlugin")), u"Beta");
        EXPECT_EQ(site.TakeRequests().size(), 1u);
    });
}

TEST_F(OpeningUrl, ReloadFetchesTheLastAddressAgainWithThePluginsSettings)
{
    RunProgram(u"", [&](MainFrame& frame) {
        Visit(frame, AddressOf("/one.aaa"));
        site.Set("/one.aaa", Answer("n"));
        site.TakeRequests();
        Send(frame, ReloadOpenedCommand);
        ExpectRead(frame, 'n');
        EXPECT_EQ(person.shown.size(), 1u) << "asked for the first time alone";
        EXPECT_EQ(Stored(frame, TEXT("ReadConfigures")), 2u);
        EXPECT_EQ(site.TakeRequests(),
                  (Requests{RequestFor("/one.aaa", "http://" + OwnAddress() + "/")}));
        EXPECT_EQ(LastUrl(frame), AddressOf("/one.aaa"));
        EXPECT_EQ(Opened(frame), u"");
        EXPECT_FALSE(frame.inputPlugins->IsLoaded());
        EXPECT_TRUE(person.TakeBoxes().empty());
    });
}

// The address in the settings counts, not the one that the picture came from.
TEST_F(OpeningUrl, ReloadTakesTheAddressOfTheSettingsAndWritesItAnew)
{
    RunProgram(u"", [&](MainFrame& frame) {
        Visit(frame, AddressOf("/one.aaa"));
        frame.settings->SetText(TEXT("Tavrix"), TEXT("LastURL"), AddressOf("/two.bbb").c_str());
        Send(frame, ReloadOpenedCommand);
        ExpectRead(frame, '2');
        EXPECT_EQ(frame.inputPlugin, 1);
    });
}

TEST_F(OpeningUrl, ReloadWithoutAnAddressAsksTheOneThatIsNoneAndWritesIt)
{
    RunProgram(u"", [&](MainFrame& frame) {
        frame.inputPlugin = 0;
        EXPECT_EQ(LastUrl(frame), u"(none)");
        SetSocketFault([](tavrix::platform::SocketOperation operation, int*) {
            return operation == tavrix::platform::SocketOperation::Resolve;
        });
        Send(frame, ReloadOpenedCommand);
        ExpectBox(frame, person, u"Connection Failure", u"ERROR", 0x40010);
        EXPECT_EQ(LastUrl(frame), u"http://");
        EXPECT_TRUE(person.shown.empty());
    });
}

TEST_F(OpeningUrl, ReloadOfANewPictureFetchesTheAddressOfThePictureBeforeIt)
{
    RunProgram(u"", [&](MainFrame& frame) {
        Visit(frame, AddressOf("/one.aaa"));
        person.onDialog = [](HWND dialog) {
            ASSERT_NE(GetDlgItem(dialog, ControlMode), nullptr);
            PostMessageW(dialog, WM_COMMAND, IDOK, 0);
        };
        Send(frame, NewCommand);
        EXPECT_EQ(PixelOf(*frame.image, 7, 7), 0xFFFFFFu);
        site.TakeRequests();
        Send(frame, ReloadOpenedCommand);
        ExpectRead(frame, '1');
        EXPECT_EQ(site.TakeRequests().size(), 1u);
    });
}

// Told once, in English, before the load that would tell it in the system's language.
TEST_F(OpeningUrl, APluginThatDoesNotLoadIsToldInEnglishAndIsRemembered)
{
    RunProgramOn(TestHome() + "/file.aaa", [&](MainFrame& frame) {
        RemovePlugin("INPUT", "Beta.bbb");
        for (const LANGID language : {LANGID{1033}, LANGID{1041}}) {
            SetLanguage(language);
            frame.inputPlugin = 0;
            Visit(frame, AddressOf("/two.bbb"));
            ExpectBox(frame, person, u"Failed to load selected INPUT plugin.", u"ERROR", 16);
            EXPECT_EQ(frame.inputPlugin, 1);
            EXPECT_FALSE(frame.inputPlugins->IsLoaded());
        }
        EXPECT_EQ(site.TakeRequests().size(), 2u);
        ExpectRead(frame, 'f');
        EXPECT_EQ(person.headlines.size(), 1u) << "the file's";
        EXPECT_EQ(Stored(frame, TEXT("ReadConfigures")), 1u);
    });
}

TEST_F(OpeningUrl, CancelledSettingsOfThePluginKeepThePicture)
{
    RunProgramOn(TestHome() + "/file.aaa", [&](MainFrame& frame) {
        Ask(frame, TEXT("ReadConfigure"), 100); // answers 0
        Visit(frame, AddressOf("/two.bbb"));
        ExpectRead(frame, 'f');
        EXPECT_EQ(frame.inputPlugin, 1);
        EXPECT_EQ(LastUrl(frame), AddressOf("/two.bbb"));
        EXPECT_EQ(Stored(frame, TEXT("ReadConfigures")), 2u);
        EXPECT_EQ(Stored(frame, TEXT("ReadRuns")), 1u);
        EXPECT_FALSE(frame.inputPlugins->IsLoaded());
        EXPECT_TRUE(person.TakeBoxes().empty());
    });
}

TEST_F(OpeningUrl, AFileThatIsHandedOverMeanwhileComesBehindThePicture)
{
    RunProgram(u"", [&](MainFrame& frame) {
        int jobs = 0;
        person.onProgress = [&] {
            if (jobs++ == 0) {
                HandOver(frame, u"\\file.aaa");
                EXPECT_EQ(Opened(frame), u"") << "opened in the middle of the job";
            }
        };
        Visit(frame, AddressOf("/two.bbb"));
        EXPECT_EQ(jobs, 2);
        ExpectRead(frame, 'f');
        EXPECT_EQ(Opened(frame), u"\\file.aaa");
        EXPECT_EQ(frame.inputPlugin, 0);
        EXPECT_EQ(Stored(frame, TEXT("ReadRuns")), 2u);
    });
}

// No plugin is loaded then.
TEST_F(OpeningUrl, AFileThatIsHandedOverUnderTheDialogIsOpenedAtOnce)
{
    RunProgram(u"", [&](MainFrame& frame) {
        person.onUrlDialog = [&] {
            HandOver(frame, u"\\file.aaa");
            ExpectRead(frame, 'f');
        };
        Visit(frame, AddressOf("/two.bbb"));
        ExpectRead(frame, '2');
        EXPECT_EQ(Opened(frame), u"\\file.aaa");
    });
}

TEST_F(OpeningUrl, WithoutMemoryForTheAddressItBeeps)
{
    RunProgram(u"", [&](MainFrame& frame) {
        for (const int failing : {1, 2}) {
            int asked = 0;
            SetAllocationFault([&](SIZE_T size) {
                // The two buffers of 4096 characters are the only ones of about this size.
                return size >= 8192 && size < 8192 + 64 && ++asked == failing;
            });
            const unsigned beeps = Beeps();
            Send(frame, UrlCommand);
            SetAllocationFault(nullptr);
            EXPECT_EQ(Beeps(), beeps + 1) << failing;
            EXPECT_EQ(asked, 2);
        }
        EXPECT_TRUE(person.shown.empty());
        EXPECT_TRUE(person.TakeBoxes().empty());
        EXPECT_EQ(LastUrl(frame), u"(none)");
    });
}

// The flow itself, up to a plugin that is not found, so that no job waits for anything.
TEST_F(OpeningUrl, AnyShortageOfMemoryIsSurvivedAndLeavesNothing)
{
    WriteSettings(u"[Tavrix]\r\nLastURL=" + AddressOf("/one.zzz") + u"\r\n");
    RunProgram(u"", [&](MainFrame& frame) {
        const unsigned faults = ForEveryFault(
            FaultKind::Allocation, [&] { frame.OpenUrl(1); },
            [&](bool) {
                EXPECT_EQ(frame.inputPlugin, -1);
                EXPECT_LE(person.TakeBoxes().size(), 1u);
                ReadSettingsAnew(frame);
            });
        EXPECT_GT(faults, 5u);
    });
}

TEST_F(OpeningUrl, AnyFailureOfTheConnectionIsToldAndLeavesNothing)
{
    WriteSettings(u"[Tavrix]\r\nLastURL=" + AddressOf("/one.zzz") + u"\r\n");
    RunProgram(u"", [&](MainFrame& frame) {
        ForEveryFault(
            FaultKind::Socket, [&] { frame.OpenUrl(1); },
            [&](bool) {
                const std::vector<BoxCall> boxes = person.TakeBoxes();
                ASSERT_EQ(boxes.size(), 1u);
                EXPECT_TRUE(boxes[0].text == u"Connection Failure" ||
                            boxes[0].text == u"Unknown File Format");
                EXPECT_EQ(frame.inputPlugin, -1);
                ReadSettingsAnew(frame);
            });
    });
}
