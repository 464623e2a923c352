// The second start of the program hands its command line to the first and ends. The second is
// always a process of its own; the first is this test program where one has to look into it, and a
// process of its own elsewhere.

#include "platform/testing/core/TestHome.h"
#include "platform/testing/Testing.h"
#include "tests/support/Process.h"
#include "tests/support/Program.h"
#include "tests/support/TestPicture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <unistd.h>

#include "platform/testing/core/TestPaths.h"

using namespace tavrix::testing;
namespace fs = std::filesystem;

namespace
{

constexpr const WCHAR* ClassName = TEXT("Tavrix");

/// The device path that the program makes of a file below the test's home.
std::u16string HomePath(const std::string& hostPath)
{
    std::u16string path = Wide(hostPath.substr(TestHome().size()));
    std::replace(path.begin(), path.end(), u'/', u'\\');
    return path;
}

/// Serves the program's loop until the other process has ended.
ProcessResult ServeUntilEnd(BackgroundProcess& second)
{
    EXPECT_TRUE(PumpUntil([&] { return second.HasEnded(); }, 60000));
    return second.Wait(0);
}

/// Starts the program once more while the first serves its windows.
ProcessResult StartSecond(const std::vector<std::string>& arguments)
{
    BackgroundProcess second(arguments);
    return ServeUntilEnd(second);
}

bool WaitFor(const std::function<bool()>& reached, int milliseconds = 30000)
{
    for (; milliseconds > 0; milliseconds -= 10) {
        if (reached())
            return true;
        usleep(10000);
    }
    return false;
}

/// Waits until another process shows the main window.
bool WindowIsUp()
{
    return WaitFor([] { return FindWindowW(ClassName, nullptr) != nullptr; });
}

/// The log's lines without their times.
std::vector<std::string> LogTexts()
{
    std::ostringstream bytes;
    bytes << std::ifstream(TestHome() + "/data/tavrix/Tavrix.log", std::ios::binary).rdbuf();
    std::vector<std::string> texts;
    std::string line;
    for (size_t i = 0; i + 1 < bytes.str().size(); i += 2) {
        const char unit = bytes.str()[i];
        if (unit == '\n') {
            texts.push_back(line.substr(std::min(line.find(" : ") + 3, line.size())));
            line.clear();
        } else if (unit != '\r') {
            line.push_back(unit);
        }
    }
    return texts;
}

/// Whether the device screen shows the test picture of that size in the middle of the view.
bool Shows(MainFrame& frame, int width, int height)
{
    const Picture screen = ScreenPixels();
    const int bar = static_cast<int>(frame.clientOriginY);
    const int left = (640 - width) / 2;
    const int top = bar + (480 - bar - 1 - height) / 2;
    for (int y = bar; y < screen.height; ++y)
        for (int x = 0; x < screen.width; ++x) {
            const bool inside = x >= left && x < left + width && y >= top && y < top + height;
            if (screen.At(x, y) != (inside ? TestColor(x - left, y - top) : 0))
                return false;
        }
    return true;
}

void InstallFixture(const std::string& name)
{
    InstallPlugin(tavrix::testing::InBuild("/tests/shell-fixtures/") + name + ".dll");
}

std::string MakeFile(const std::string& name)
{
    const std::string path = TestHome() + "/" + name;
    std::ofstream(path) << "anything";
    return path;
}

} // namespace

TEST(HandOver, TheFirstShowsTheSecondsPictureAndTheSecondEndsWithZero)
{
    InstallBundledPlugins();
    HideToolWindows();
    const std::string one = WriteTestPng(100, 80, "one.png");
    const std::string two = WriteTestPng(60, 50, "two.png");
    RunProgramOn(one, [&](MainFrame& frame) {
        ASSERT_TRUE(Shows(frame, 100, 80));
        const ProcessResult second = StartSecond({two});
        EXPECT_EQ(second.exitCode, 0);
        EXPECT_EQ(second.output, "");
        EXPECT_TRUE(Shows(frame, 60, 50));
        EXPECT_EQ(std::u16string(frame.openedPath), HomePath(two));
        // It emptied the log and wrote its beginning alone: no end, and nothing of a run.
        EXPECT_EQ(LogTexts(), std::vector<std::string>{"Begin logging."});
    });
}

TEST(HandOver, NamesWithSpacesQuotesAndJapaneseSignsArrive)
{
    InstallBundledPlugins();
    HideToolWindows();
    RunProgram(u"", [](MainFrame& frame) {
        int width = 20;
        for (const char* name : {"with some spaces .png", "画像 その 1.png", "\"quoted\" name.png",
                                 "'single'.png", "-dash.png"}) {
            const std::string file = WriteTestPng(++width, 30, name);
            EXPECT_EQ(StartSecond({file}).exitCode, 0);
            EXPECT_TRUE(Shows(frame, width, 30)) << name;
            EXPECT_EQ(std::u16string(frame.openedPath), HomePath(file));
        }
    });
}

TEST(HandOver, APathOfTheGreatestLengthArrivesAndALongerOneIsRefusedByTheSecondAlone)
{
    InstallFixture("quick");
    // On the device: "\", 200 letters, "\", 51 letters, ".quick".
    const std::string folder(200, 'd');
    fs::create_directories(TestHome() + "/" + folder);
    const std::string longest = MakeFile(folder + "/" + std::string(51, 'n') + ".quick");
    const std::string tooLong = MakeFile(folder + "/" + std::string(52, 'n') + ".quick");
    ASSERT_EQ(HomePath(longest).size(), 259U);
    RunProgram(u"", [&](MainFrame& frame) {
        EXPECT_EQ(StartSecond({longest}).exitCode, 0);
        EXPECT_EQ(std::u16string(frame.openedPath).size(), 259U);
        EXPECT_EQ(frame.imagePresent, 1U);
        EXPECT_EQ(StartSecond({tooLong}).exitCode, 2);
        EXPECT_EQ(std::u16string(frame.openedPath).size(), 259U);
    });
}

TEST(HandOver, WithoutAnArgumentTheFirstKeepsItsPictureAndNotesThePointer)
{
    InstallBundledPlugins();
    HideToolWindows();
    RunProgramOn(WriteTestPng(100, 80), [](MainFrame& frame) {
        const std::u16string before = frame.openedPath;
        const ProcessResult second = StartSecond({});
        EXPECT_EQ(second.exitCode, 0);
        EXPECT_EQ(second.output, "");
        EXPECT_TRUE(Shows(frame, 100, 80));
        EXPECT_EQ(std::u16string(frame.openedPath), before);
        const WCHAR* text = nullptr;
        EXPECT_GE(frame.settings->GetText(TEXT("Tavrix"), TEXT("LastCommandLine"), &text), 1);
        // Bytes of a pointer, and no name: at most one character for each two of them.
        EXPECT_LE(wcslen(text), sizeof(void*) / 2);
    });
}

TEST(HandOver, AFileThatIsNotThereChangesNothing)
{
    InstallBundledPlugins();
    HideToolWindows();
    RunProgramOn(WriteTestPng(100, 80), [](MainFrame& frame) {
        EXPECT_EQ(StartSecond({TestHome() + "/none.png"}).exitCode, 0);
        EXPECT_TRUE(Shows(frame, 100, 80));
    });
}

TEST(HandOver, ABusyFirstAnswersAtOnceAndOpensInOrderWhenItIsDone)
{
    InstallFixture("quick");
    InstallFixture("progress");
    const std::string slow = MakeFile("slow.progress");
    const std::string one = MakeFile("one.quick");
    const std::string two = MakeFile("two.quick");
    std::vector<std::u16string> opened;
    int within = 0;
    OnModal([&](HWND dialog, bool) {
        opened.emplace_back(mainFrame->openedPath);
        if (opened.size() != 1)
            return;
        for (const std::string& file : {one, two}) {
            BackgroundProcess second({file});
            EXPECT_EQ(ServeUntilEnd(second).exitCode, 0);
            within += IsWindow(dialog) && opened.size() == 1 ? 1 : 0;
        }
    });
    RunProgramOn(slow, [&](MainFrame& frame) {
        EXPECT_EQ(within, 2);
        EXPECT_EQ(opened, (std::vector{DevicePath(slow), HomePath(one), HomePath(two)}));
        EXPECT_EQ(std::u16string(frame.openedPath), HomePath(two));
    });
}

TEST(HandOver, TwoSecondsAtOnceAreBothOpened)
{
    InstallFixture("quick");
    const std::string one = MakeFile("one.quick");
    const std::string two = MakeFile("two.quick");
    std::vector<std::u16string> opened;
    OnModal([&](HWND, bool) { opened.emplace_back(mainFrame->openedPath); });
    RunProgram(u"", [&](MainFrame&) {
        BackgroundProcess first({one});
        BackgroundProcess second({two});
        EXPECT_EQ(ServeUntilEnd(first).exitCode, 0);
        EXPECT_EQ(ServeUntilEnd(second).exitCode, 0);
        std::sort(opened.begin(), opened.end());
        EXPECT_EQ(opened, (std::vector{HomePath(one), HomePath(two)}));
    });
}

TEST(HandOver, ASecondThatIsKilledWhileItWaitsChangesNothingForTheNext)
{
    InstallBundledPlugins();
    HideToolWindows();
    const std::string one = WriteTestPng(100, 80, "one.png");
    const std::string two = WriteTestPng(60, 50, "two.png");
    RunProgram(u"", [&](MainFrame& frame) {
        {
            BackgroundProcess impatient({one});
            usleep(500000); // nobody serves it
            impatient.Signal(SIGKILL);
            EXPECT_EQ(impatient.Wait().exitCode, -1);
        }
        EXPECT_EQ(StartSecond({two}).exitCode, 0);
        EXPECT_TRUE(Shows(frame, 60, 50));
    });
}

TEST(HandOver, AKilledFirstDoesNotStandInTheWayOfTheNext)
{
    {
        BackgroundProcess first({});
        ASSERT_TRUE(WindowIsUp());
        first.Signal(SIGKILL);
        EXPECT_EQ(first.Wait().exitCode, -1);
    }
    EXPECT_EQ(FindWindowW(ClassName, nullptr), nullptr);
    BackgroundProcess next({});
    ASSERT_TRUE(WindowIsUp());
    EXPECT_FALSE(next.HasEnded());
    EXPECT_EQ(RunTavrix({}, {}).exitCode, 0); // and hands over to the next
    EXPECT_FALSE(next.HasEnded());
    next.Signal(SIGTERM);
    EXPECT_EQ(next.Wait().exitCode, 0);
    EXPECT_EQ(FindWindowW(ClassName, nullptr), nullptr);
    EXPECT_EQ(LogTexts().back(), "Ended.");
}

TEST(HandOver, AStoppedFirstIsWaitedFor)
{
    BackgroundProcess first({});
    ASSERT_TRUE(WindowIsUp());
    first.Signal(SIGSTOP);
    BackgroundProcess second({});
    EXPECT_FALSE(WaitFor([&] { return second.HasEnded(); }, 1000));
    first.Signal(SIGCONT);
    EXPECT_EQ(second.Wait().exitCode, 0);
    EXPECT_FALSE(first.HasEnded());
}

TEST(HandOver, AFirstThatDiesMeanwhileLetsTheSecondEnd)
{
    BackgroundProcess first({});
    ASSERT_TRUE(WindowIsUp());
    first.Signal(SIGSTOP);
    BackgroundProcess second({});
    EXPECT_FALSE(WaitFor([&] { return second.HasEnded(); }, 1000));
    first.Signal(SIGKILL);
    EXPECT_EQ(second.Wait().exitCode, 0);
}

TEST(HandOver, WhereTheMutexExistsAndNoWindowTheStartGoesOn)
{
    // As a first start that has not come to its window yet.
    const HANDLE mutex = CreateMutexW(nullptr, TRUE, TEXT("Tavrix_Mutex"));
    ASSERT_EQ(GetLastError(), 0U);
    BackgroundProcess start({});
    EXPECT_TRUE(WindowIsUp());
    EXPECT_FALSE(start.HasEnded());
    CloseHandle(mutex);
}

TEST(HandOver, AnotherDisplayAndAnotherUsersFolderHaveAFirstOfTheirOwn)
{
    BackgroundProcess first({});
    ASSERT_TRUE(WindowIsUp());
    const std::string folder = TestHome() + "/another";
    fs::create_directories(folder);
    for (const auto& [name, value] :
         {std::pair<std::string, std::string>{"DISPLAY", ":77"}, {"XDG_RUNTIME_DIR", folder}}) {
        BackgroundProcess other({}, {{name, value}, {"XDG_DATA_HOME", TestHome() + "/data2"}});
        EXPECT_FALSE(WaitFor([&] { return other.HasEnded(); }, 1500)) << name;
    }
    // One that only draws its picture neither.
    const std::string shot = TestHome() + "/shot.png";
    EXPECT_EQ(RunTavrix({}, {{"TAVRIX_SHOT", shot}}).exitCode, 0);
    EXPECT_TRUE(fs::exists(shot));
    EXPECT_FALSE(first.HasEnded());
}

TEST(HandOver, GarbageAtTheFirstsDoorDoesNotReachIt)
{
    BackgroundProcess first({});
    ASSERT_TRUE(WindowIsUp());
    // The list of windows is written over; what stands at the door itself is tested where it lies.
    for (const auto& entry : fs::directory_iterator(TestHome() + "/runtime/tavrix-headless"))
        if (entry.path().extension() == ".windows")
            std::ofstream(entry.path()) << std::string(5000, '\xFF');
    EXPECT_EQ(FindWindowW(ClassName, nullptr), nullptr);
    BackgroundProcess second({}); // finds no window and goes on as one of its own
    EXPECT_TRUE(WindowIsUp());
    EXPECT_FALSE(second.HasEnded());
    EXPECT_FALSE(first.HasEnded());
}
