// The start of the program from its command line to its loop, and its end: the log, the order of
// the steps, the command line's rules and what is told when a step fails.

#include "platform/testing/core/TestHome.h"
#include "platform/testing/Faults.h"
#include "shell/Application.h"
#include "shell/Logger.h"
#include "tests/support/DeviceCalls.h"
#include "tests/support/Process.h"
#include "tests/support/Program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/testing/core/TestPaths.h"

using namespace tavrix::testing;
namespace fs = std::filesystem;

namespace
{

const std::vector<std::u16string> RunLines = {
    u"Begin logging.",
    u"Create new application object.",
    u"Create new window object.",
    u"Initialize common control.",
    u"Open Tavrix.ini and load configuration.",
    u"Initialize application instance.",
    u"Now, run application.",
    u"Ended.",
};

std::string LogPath()
{
    return TestHome() + "/data/tavrix/Tavrix.log";
}

std::u16string WideFile(const std::string& path)
{
    std::ostringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    const std::string raw = bytes.str();
    std::u16string text;
    for (size_t i = 0; i + 1 < raw.size(); i += 2)
        text.push_back(static_cast<char16_t>(static_cast<unsigned char>(raw[i]) |
                                             static_cast<unsigned char>(raw[i + 1]) << 8));
    return text;
}

struct LogLine {
    std::u16string time; // "YYYY/MM/DD HH:MM:SS"
    std::u16string text;
};

/// The lines of the log; every one must have the time, the separator and its two end characters.
std::vector<LogLine> LogLines()
{
    const std::u16string log = WideFile(LogPath());
    std::vector<LogLine> lines;
    for (size_t at = 0; at < log.size();) {
        const size_t end = log.find(u"\r\n", at);
        if (end == log.npos || end - at < 22) {
            ADD_FAILURE() << "a broken line: " << Utf8(log.substr(at).c_str());
            break;
        }
        EXPECT_EQ(log.substr(at + 19, 3), u" : ");
        lines.push_back({log.substr(at, 19), log.substr(at + 22, end - at - 22)});
        at = end + 2;
    }
    return lines;
}

std::vector<std::u16string> LogTexts()
{
    std::vector<std::u16string> texts;
    for (const LogLine& line : LogLines())
        texts.push_back(line.text);
    return texts;
}

std::u16string UniversalTime(time_t seconds)
{
    char text[32];
    std::strftime(text, sizeof text, "%Y/%m/%d %H:%M:%S", std::gmtime(&seconds));
    return Wide(text);
}

std::u16string SavedSettings()
{
    return WideFile(TestHome() + "/config/tavrix/Configuration Files/Tavrix.ini");
}

void InstallQuick()
{
    InstallPlugin(tavrix::testing::InBuild("/tests/shell-fixtures/quick.dll"));
}

std::string MakeFile(const std::string& name)
{
    const std::string path = TestHome() + "/" + name;
    std::ofstream(path) << "anything";
    return path;
}

/// Answers every box with its OK button.
void AnswerBoxes()
{
    OnModal([](HWND dialog, bool box) {
        if (box)
            EndDialog(dialog, IDOK);
    });
}

/// A start that never gets to its loop.
int RunInVain(const std::u16string& line = u"")
{
    AnswerBoxes();
    return RunProgram(line, std::vector<Step>());
}

std::u16string CommandLineOf(MainFrame& frame)
{
    const WCHAR* text = nullptr;
    (void)frame.settings->GetText(TEXT("Tavrix"), TEXT("LastCommandLine"), &text);
    return text != nullptr ? text : u"(none)";
}

size_t PlaceOf(const std::string& line, size_t from = 0)
{
    const auto& lines = Happenings();
    return static_cast<size_t>(
        std::find(lines.begin() + static_cast<std::ptrdiff_t>(std::min(from, lines.size())),
                  lines.end(), line) -
        lines.begin());
}

std::string AllHappenings()
{
    std::string text;
    for (const std::string& line : Happenings())
        text += line + '\n';
    return text;
}

} // namespace

// The log.

TEST(StartUpLog, ARunWritesItsEightLinesInOrder)
{
    InstallQuick();
    EXPECT_EQ(RunProgram(u"", [](MainFrame&) {}), 0);
    EXPECT_EQ(LogTexts(), RunLines);
}

TEST(StartUpLog, TheBuiltProgramWritesTheSameInUniversalTime)
{
    const time_t before = std::time(nullptr);
    const ProcessResult result =
        RunTavrix({}, {{"TAVRIX_SHOT", TestHome() + "/shot.png"}, {"TZ", "JST-9"}});
    const time_t after = std::time(nullptr);
    EXPECT_EQ(result.exitCode, 0) << result.output;
    EXPECT_EQ(LogTexts(), RunLines);
    for (const LogLine& line : LogLines()) {
        EXPECT_GE(line.time, UniversalTime(before));
        EXPECT_LE(line.time, UniversalTime(after));
    }
}

TEST(StartUpLog, ARunReplacesTheLogOfTheOneBefore)
{
    fs::create_directories(TestHome() + "/data/tavrix");
    std::ofstream(LogPath()) << std::string(100000, 'x');
    InstallQuick();
    RunProgram(u"", [](MainFrame&) {});
    EXPECT_EQ(LogTexts(), RunLines);
}

TEST(StartUpLog, TheLinesAreThereWhileTheProgramRuns)
{
    InstallQuick();
    RunProgram(u"", [](MainFrame&) {
        std::vector<std::u16string> soFar = RunLines;
        soFar.pop_back();
        EXPECT_EQ(LogTexts(), soFar);
    });
}

TEST(StartUpLog, AFileThatCannotBeMadeMeansASilentRun)
{
    InstallQuick();
    fs::create_directories(LogPath()); // a folder of its name
    int shown = 0;
    EXPECT_EQ(RunProgram(u"", [&](MainFrame&) { ++shown; }), 0);
    EXPECT_EQ(shown, 1);
    EXPECT_TRUE(BoxCalls().empty());
}

TEST(StartUpLog, AFileThatCannotBeMadeMeansASilentRunOfTheBuiltProgram)
{
    fs::create_directories(LogPath());
    const ProcessResult result = RunTavrix({}, {{"TAVRIX_SHOT", TestHome() + "/shot.png"}});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output, "");
    EXPECT_TRUE(fs::is_empty(LogPath()));
}

TEST(StartUpLog, AFileThatCannotBeOpenedMeansASilentRun)
{
    Scope scope;
    InstallQuick();
    SetFileFault([](tavrix::platform::FileOperation operation, const WCHAR* path, DWORD*) {
        return operation == tavrix::platform::FileOperation::Open &&
               Utf8(path).find("Tavrix.log") != std::string::npos;
    });
    int shown = 0;
    EXPECT_EQ(RunProgram(u"", [&](MainFrame&) { ++shown; }), 0);
    EXPECT_EQ(shown, 1);
    EXPECT_TRUE(BoxCalls().empty());
    EXPECT_TRUE(fs::exists(LogPath()));
    EXPECT_EQ(LogTexts(), std::vector<std::u16string>()) << "made and left empty";
}

TEST(StartUpLog, AStartThatFindsTheNameTakenAndNoWindowRunsInFull)
{
    // The other instance is still coming up, or going down.
    const HANDLE other = CreateMutexW(nullptr, TRUE, TEXT("Tavrix_Mutex"));
    ASSERT_NE(other, nullptr);
    InstallQuick();
    const std::string file = MakeFile("a.quick");
    EXPECT_EQ(RunProgramOn(file, [](MainFrame& frame) { EXPECT_EQ(frame.imagePresent, 1U); }), 0);
    EXPECT_EQ(LogTexts(), RunLines);
    EXPECT_LT(PlaceOf("find Tavrix"), PlaceOf("class Tavrix")) << AllHappenings();
    CloseHandle(other);
}

// The order of the steps.

TEST(StartUpOrder, EachStepIsDoneBehindItsLineInTheLog)
{
    Scope scope;
    InstallQuick();
    const std::string file = MakeFile("a.quick");
    // The name of the last line so far stands in the record wherever the log grows.
    SetFileFault([](tavrix::platform::FileOperation operation, const WCHAR* path, DWORD*) {
        using tavrix::platform::FileOperation;
        const std::string name = Utf8(path);
        static int logWrites = 0;
        if (name == "\\Program Files\\Tavrix\\Tavrix.log")
            AddHappening(operation == FileOperation::Create ? "log made"
                         : operation == FileOperation::Open ? "log opened"
                                                            : "log " + std::to_string(++logWrites));
        else if (name.find("Tavrix.ini") != name.npos)
            AddHappening(operation == FileOperation::Read    ? "settings read"
                         : operation == FileOperation::Write ? "settings written"
                                                             : "settings opened or made");
        else if (name.find("a.quick") != name.npos)
            AddHappening("picture opened");
        return false;
    });
    RunProgramOn(file, [](MainFrame&) { AddHappening("shown"); });

    const std::vector<std::string> expected = {
        "log made",
        "log opened",
        "log 1", // begun
        "mutex Tavrix_Mutex",
        "log 2", // the application
        "log 3", // the frame
        "log 4", // common controls
        "common controls 8 3",
        "log 5", // settings
        "settings opened or made",
        "settings read",
        "log 6", // Init
        "class Tavrix",
        "accelerators 3",
        "window Tavrix",
        "picture opened",
        "log 7", // Run
        "shown",
        "settings opened or made",
        "settings written",
        "log 8", // ended
    };
    size_t at = 0;
    for (const std::string& line : expected) {
        const size_t found = PlaceOf(line, at);
        ASSERT_LT(found, Happenings().size()) << line << " is not there or too early in\n"
                                              << AllHappenings();
        at = found + 1;
    }
    // Nothing of a step comes before its line.
    EXPECT_GT(PlaceOf("settings opened or made"), PlaceOf("log 5")) << AllHappenings();
    EXPECT_GT(PlaceOf("picture opened"), PlaceOf("window Tavrix")) << AllHappenings();
    EXPECT_GT(PlaceOf("settings written"), PlaceOf("shown")) << AllHappenings();
    EXPECT_EQ(PlaceOf("find Tavrix"), Happenings().size()) << "the name was free";
    EXPECT_EQ(PlaceOf("log 9"), Happenings().size());
}

TEST(StartUpOrder, TheWindowClassHasItsRecord)
{
    InstallQuick();
    RunProgram(u"", [](MainFrame& frame) {
        const WNDCLASSW& record = LastClass();
        EXPECT_EQ(record.style, 8U);
        EXPECT_EQ(record.lpfnWndProc, MainWindowProcedure);
        EXPECT_EQ(record.cbClsExtra, 0);
        EXPECT_EQ(record.cbWndExtra, 0);
        EXPECT_EQ(record.hInstance, frame.instance);
        EXPECT_EQ(record.hIcon, nullptr);
        EXPECT_EQ(record.hCursor, LoadCursorW(nullptr, MAKEINTRESOURCEW(32512)));
        EXPECT_EQ(record.hbrBackground, GetStockObject(4));
        EXPECT_EQ(record.lpszMenuName, nullptr);
        EXPECT_EQ(frame.instance, GetModuleHandleW(nullptr));
    });
}

// The command line, through the whole program.

TEST(StartUpCommandLine, AQuotedNameIsOpenedAndAFurtherWordDropped)
{
    InstallQuick();
    const std::u16string path = DevicePath(MakeFile("with spaces.quick"));
    RunProgram(u"\"" + path + u"\" further.quick", [&](MainFrame& frame) {
        EXPECT_EQ(frame.imagePresent, 1U);
        EXPECT_EQ(std::u16string(frame.openedPath), path);
        EXPECT_EQ(CommandLineOf(frame), path);
    });
}

TEST(StartUpCommandLine, AFurtherQuotedWordBelongsToTheNameUpToTheLastQuote)
{
    InstallQuick();
    // The host allows such a name.
    const std::u16string path = DevicePath(MakeFile("a\" \"b.quick"));
    RunProgram(u"\"" + path + u"\" c", [&](MainFrame& frame) {
        EXPECT_EQ(CommandLineOf(frame), path);
        EXPECT_EQ(frame.imagePresent, 1U);
        EXPECT_EQ(std::u16string(frame.openedPath), path);
    });
}

TEST(StartUpCommandLine, WithoutAClosingQuoteEverythingBehindTheOpeningOneIsTheName)
{
    InstallQuick();
    const std::u16string path = DevicePath(MakeFile("open ended.quick"));
    RunProgram(u"\"" + path, [&](MainFrame& frame) {
        EXPECT_EQ(frame.imagePresent, 1U);
        EXPECT_EQ(CommandLineOf(frame), path);
    });
}

TEST(StartUpCommandLine, AnUnquotedLineIsOneNameSpacesIncluded)
{
    InstallQuick();
    const std::u16string path = DevicePath(MakeFile("one two three.quick"));
    RunProgram(path, [&](MainFrame& frame) {
        EXPECT_EQ(frame.imagePresent, 1U);
        EXPECT_EQ(std::u16string(frame.openedPath), path);
        EXPECT_EQ(CommandLineOf(frame), path);
    });
}

TEST(StartUpCommandLine, AnUnquotedLineWithAFurtherWordNamesNoFile)
{
    InstallQuick();
    const std::u16string line = DevicePath(MakeFile("one.quick")) + u" further";
    RunProgram(line, [&](MainFrame& frame) {
        EXPECT_EQ(frame.imagePresent, 0U);
        EXPECT_EQ(CommandLineOf(frame), line);
    });
    EXPECT_TRUE(BoxCalls().empty());
}

TEST(StartUpCommandLine, ALongLineIsCutAt1023CharactersBeforeItsClosingQuoteIsLookedFor)
{
    InstallQuick();
    RunProgram(u"\"" + std::u16string(1200, u'x') + u"\" y", [](MainFrame& frame) {
        EXPECT_EQ(CommandLineOf(frame), std::u16string(1023, u'x'));
        EXPECT_EQ(frame.imagePresent, 0U);
    });
    EXPECT_TRUE(BoxCalls().empty());
}

TEST(StartUpCommandLine, AQuoteInsideTheFirst1023CharactersEndsALongLine)
{
    InstallQuick();
    const std::u16string path = DevicePath(MakeFile("inner.quick"));
    RunProgram(u"\"" + path + u"\"" + std::u16string(1200, u'x') + u"\"", [&](MainFrame& frame) {
        EXPECT_EQ(CommandLineOf(frame), path);
        EXPECT_EQ(frame.imagePresent, 1U);
    });
}

TEST(StartUpCommandLine, AnEmptyLineIsStoredAndOpensNothing)
{
    InstallQuick();
    RunProgram(u"", [](MainFrame& frame) {
        EXPECT_EQ(CommandLineOf(frame), u"");
        EXPECT_EQ(frame.imagePresent, 0U);
    });
    EXPECT_TRUE(BoxCalls().empty());
    EXPECT_NE(SavedSettings().find(u"LastCommandLine=\r\n"), std::u16string::npos);
}

TEST(StartUpCommandLine, JapaneseNamesAreOpened)
{
    InstallQuick();
    const std::u16string path = DevicePath(MakeFile("写真 その１.quick"));
    RunProgram(u"\"" + path + u"\"",
               [&](MainFrame& frame) { EXPECT_EQ(std::u16string(frame.openedPath), path); });
}

// What is told when a step fails. The texts are English whatever the language.

class StartUpFailure : public ::testing::TestWithParam<LANGID>
{
protected:
    void SetUp() override
    {
        SetLanguage(GetParam());
        InstallQuick();
    }
    void ExpectOneBox(const std::u16string& text, UINT flags)
    {
        ASSERT_EQ(BoxCalls().size(), 1U);
        EXPECT_EQ(BoxCalls()[0].text, text);
        EXPECT_EQ(BoxCalls()[0].caption, u"ERROR");
        EXPECT_EQ(BoxCalls()[0].flags, flags);
        EXPECT_EQ(BoxCalls()[0].owner, nullptr);
    }
    /// An object of that size finds no memory once the log has so many lines.
    void LetFail(size_t objectSize, int logLines)
    {
        logWrites = 0;
        SetFileFault([this](tavrix::platform::FileOperation operation, const WCHAR*, DWORD*) {
            // Until then nothing else is written.
            logWrites += operation == tavrix::platform::FileOperation::Write ? 1 : 0;
            return false;
        });
        SetAllocationFault([this, objectSize, logLines](SIZE_T size) {
            return size == objectSize && logWrites == logLines;
        });
    }

    int logWrites = 0;
    Scope scope;
};
INSTANTIATE_TEST_SUITE_P(Languages, StartUpFailure, ::testing::Values(1033, 1041),
                         [](const auto& language) {
                             return language.param == 1041 ? "Japanese" : "English";
                         });

TEST_P(StartUpFailure, ALogThatFindsNoMemoryEndsTheStart)
{
    LetFail(sizeof(Logger), 0);
    EXPECT_EQ(RunInVain(), -1);
    ExpectOneBox(u"Failed to initialize Logger.", 0x40010);
    EXPECT_FALSE(fs::exists(LogPath()));
}

TEST_P(StartUpFailure, AnApplicationThatFindsNoMemoryEndsTheStart)
{
    LetFail(sizeof(Application), 2);
    EXPECT_EQ(RunInVain(), -1);
    ExpectOneBox(u"Filed to initialize Application Object.", 16);
    const std::vector<std::u16string> texts = LogTexts();
    EXPECT_EQ(texts, (std::vector<std::u16string>{RunLines[0], RunLines[1], RunLines[7]}));
}

TEST_P(StartUpFailure, AFrameThatFindsNoMemoryEndsTheStart)
{
    LetFail(sizeof(MainFrame), 3);
    EXPECT_EQ(RunInVain(), -1);
    ExpectOneBox(u"Filed to initialize Window Object.", 16);
    const std::vector<std::u16string> texts = LogTexts();
    EXPECT_EQ(texts,
              (std::vector<std::u16string>{RunLines[0], RunLines[1], RunLines[2], RunLines[7]}));
    EXPECT_EQ(PlaceOf("common controls 8 3"), Happenings().size());
    EXPECT_FALSE(fs::exists(TestHome() + "/config"));
}

TEST_P(StartUpFailure, AFrameThatLacksOneOfItsObjectsEndsTheStartToo)
{
    LetFail(MainFrame::PathCapacity * sizeof(WCHAR), 3);
    EXPECT_EQ(RunInVain(), -1);
    ExpectOneBox(u"Filed to initialize Window Object.", 16);
}

TEST_P(StartUpFailure, AWindowThatRefusesEndsTheStartAndSavesTheSettings)
{
    // Another class of the name: registering fails unheeded, and its procedure refuses.
    WNDCLASSW other = {};
    other.lpszClassName = TEXT("Tavrix");
    other.lpfnWndProc = [](HWND window, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT {
        return message == WM_CREATE ? -1 : DefWindowProcW(window, message, wParam, lParam);
    };
    ASSERT_NE(RegisterClassW(&other), 0);
    EXPECT_EQ(RunInVain(u"line"), -1);
    EXPECT_TRUE(BoxCalls().empty()) << "nothing is told";
    const std::vector<std::u16string> texts = LogTexts();
    ASSERT_EQ(texts.size(), 7U);
    EXPECT_EQ(texts[5], u"Initialize application instance.");
    EXPECT_EQ(texts[6], u"Ended.") << "the loop never ran";
    const std::string folder = GetParam() == 1041 ? "設定ファイル" : "Configuration Files";
    EXPECT_NE(WideFile(TestHome() + "/config/tavrix/" + folder + "/Tavrix.ini")
                  .find(u"LastCommandLine=line\r\n"),
              std::u16string::npos);
}

TEST_P(StartUpFailure, AViewWithoutMemoryIsToldByTheWindowAndEndsTheStart)
{
    SetAllocationFault([](SIZE_T) {
        // From the window on nothing is had.
        return !Happenings().empty() && Happenings().back() == "window Tavrix";
    });
    EXPECT_EQ(RunInVain(), -1);
    ASSERT_EQ(BoxCalls().size(), 1U);
    EXPECT_EQ(BoxCalls()[0].text, u"failed to create dibitmap for screen.");
    EXPECT_EQ(BoxCalls()[0].caption, u"Fatal Error");
    EXPECT_EQ(BoxCalls()[0].flags, 16U);
    EXPECT_EQ(BoxCalls()[0].owner, nullptr);
    EXPECT_EQ(LogTexts().back(), u"Ended.");
    EXPECT_EQ(LogTexts().size(), 7U);
}

TEST_P(StartUpFailure, ANormalEndTellsNothingAndAnswersZero)
{
    EXPECT_EQ(RunProgram(u"", [](MainFrame&) {}), 0);
    EXPECT_TRUE(BoxCalls().empty());
    EXPECT_EQ(LogTexts(), RunLines);
}
