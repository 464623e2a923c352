#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/TestWindow.h"

#include "platform/qt/Window.h"

#include <gtest/gtest.h>

#include <QWidget>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace hand = tavrix::testing;
namespace platform = tavrix::platform;
namespace test = tavrix::test;
using tavrix::test::TestWindow;

namespace
{

test::Handler CountCloses(int& closes)
{
    return [&closes](HWND, UINT message, WPARAM, LPARAM) -> std::optional<LRESULT> {
        if (message != WM_CLOSE)
            return std::nullopt;
        ++closes;
        return 0;
    };
}

// What the program does: its loop until WM_CLOSE posted the quit message.
int RunLikeTheProgram()
{
    const TestWindow window([](HWND, UINT message, WPARAM, LPARAM) -> std::optional<LRESULT> {
        if (message != WM_CLOSE)
            return std::nullopt;
        PostQuitMessage(0);
        return 0;
    });
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return static_cast<int>(message.wParam);
}

// Runs `body` in a process of its own, whose toolkit starts afresh, and answers how it ended.
template <class Body>
int InProcess(Body body)
{
    const pid_t child = fork();
    if (child == 0) {
        alarm(20);
        _exit(body());
    }
    int status = -1;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string ReadAll(const std::string& path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

} // namespace

TEST(Screen, ItIsOneHostWindowOfFixedSizeWithTheProgramsName)
{
    const TestWindow window;
    hand::Pump(30);
    const QWidget* screen = platform::ScreenWidget()->window();
    EXPECT_TRUE(screen->isVisible());
    EXPECT_EQ(screen->windowTitle(), QStringLiteral("Tavrix"));
    EXPECT_EQ(screen->size(), QSize(640, 480));
    EXPECT_EQ(platform::ScreenWidget()->geometry(), QRect(0, 0, 640, 480));
    EXPECT_EQ(screen->minimumSize(), screen->maximumSize());
    EXPECT_EQ(screen->devicePixelRatio(), 1.0);
}

TEST(Screen, ClosingItAsksTheMainWindowUnlessThatIsDisabled)
{
    int closes = 0;
    const TestWindow window(CountCloses(closes));
    const TestWindow tool({}, WS_POPUP | WS_VISIBLE, 0, 0, 9, 9, window.handle);
    hand::Pump(30);
    EXPECT_FALSE(platform::ScreenWidget()->window()->close()) << "the screen itself stays";
    hand::Pump(30);
    EXPECT_EQ(closes, 1);
    EnableWindow(window.handle, FALSE);
    platform::ScreenWidget()->window()->close();
    hand::Pump(30);
    EnableWindow(window.handle, TRUE);
    hand::Pump(30);
    EXPECT_EQ(closes, 1) << "asked while disabled: forgotten, not kept";
}

TEST(Screen, ATerminationSignalIsKeptUntilTheMainWindowIsEnabledAgain)
{
    int closes = 0;
    const TestWindow window(CountCloses(closes));
    hand::Pump(30);
    EnableWindow(window.handle, FALSE);
    raise(SIGTERM);
    hand::Pump(50);
    EXPECT_EQ(closes, 0);
    EnableWindow(window.handle, TRUE);
    hand::Pump(50);
    EXPECT_EQ(closes, 1);
    raise(SIGINT);
    hand::Pump(50);
    EXPECT_EQ(closes, 2);
}

TEST(Screen, AMainWindowBroughtToTheTopHidesNoToolWindow)
{
    const TestWindow window;
    const TestWindow tool({}, WS_POPUP | WS_VISIBLE, 10, 10, 30, 30, window.handle);
    hand::Pump(30);
    // On a busy machine the first WM_PAINT may still be to come, and would wipe what is drawn.
    hand::PumpUntil([&] { return !GetUpdateRect(tool.handle, nullptr, FALSE); });
    const HDC dc = GetDC(tool.handle);
    const RECT all{0, 0, 30, 30};
    FillRect(dc, &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    ReleaseDC(tool.handle, dc);
    BringWindowToTop(window.handle);
    SetForegroundWindow(window.handle);
    hand::Pump(30);
    EXPECT_EQ(hand::ScreenPixels().At(20, 20), 0xFFFFFFu);
}

// In processes of their own, forked before this one's toolkit is up: the test framework runs suites
// of such a name first.
TEST(ScreenStartDeathTest, WithoutASizeItIsFourFifthsOfTheDesktopAtFourToThree)
{
    EXPECT_EQ(InProcess([] {
                  unsetenv("TAVRIX_SCREEN"); // the headless desktop has 1280x1024
                  return GetSystemMetrics(SM_CXSCREEN) == 1092 &&
                                 GetSystemMetrics(SM_CYSCREEN) == 819
                             ? 0
                             : 1;
              }),
              0);
    EXPECT_EQ(InProcess([] {
                  setenv("TAVRIX_SCREEN", "800x480", 1);
                  return GetSystemMetrics(SM_CXSCREEN) == 800 &&
                                 GetSystemMetrics(SM_CYSCREEN) == 480
                             ? 0
                             : 1;
              }),
              0);
    for (const char* nonsense : {"", "800", "800x", "x480", "0x480", "800x480x", "99999x5"})
        EXPECT_EQ(InProcess([nonsense] {
                      setenv("TAVRIX_SCREEN", nonsense, 1);
                      return GetSystemMetrics(SM_CXSCREEN) == 1092 ? 0 : 1;
                  }),
                  0)
            << nonsense;
    EXPECT_EQ(InProcess([] {
                  setenv("TAVRIX_FULLSCREEN", "1", 1);
                  return GetSystemMetrics(SM_CXSCREEN) == 1280 &&
                                 GetSystemMetrics(SM_CYSCREEN) == 1024
                             ? 0
                             : 1;
              }),
              0);
}

TEST(ScreenStartDeathTest, AShotIsWrittenOnceTheStartIsOverAndTheProgramEnds)
{
    const std::string folder = hand::FreshFolder();
    const std::string path = folder + "/shot.png";
    EXPECT_EQ(InProcess([&] {
                  setenv("TAVRIX_SHOT", path.c_str(), 1);
                  return RunLikeTheProgram();
              }),
              0);
    const std::string bytes = ReadAll(path);
    ASSERT_GT(bytes.size(), 26u);
    EXPECT_EQ(bytes.substr(1, 3), "PNG");
    EXPECT_EQ(bytes.substr(16, 8), std::string("\0\0\x02\x80\0\0\x01\xE0", 8)); // 640x480
    EXPECT_EQ(bytes[24], 8);
    EXPECT_EQ(bytes[25], 2) << "three channels";
}

TEST(ScreenStartDeathTest, AShotThatCannotBeWrittenIsToldAndTheProgramStillEnds)
{
    const std::string folder = hand::FreshFolder();
    const std::string errors = folder + "/errors";
    EXPECT_EQ(InProcess([&] {
                  setenv("TAVRIX_SHOT", (folder + "/none/shot.png").c_str(), 1);
                  if (std::freopen(errors.c_str(), "w", stderr) == nullptr)
                      return 9;
                  const int result = RunLikeTheProgram();
                  std::fflush(stderr);
                  return result;
              }),
              0);
    EXPECT_NE(ReadAll(errors).find("shot.png"), std::string::npos);
}

TEST(ScreenStartDeathTest, TheStartupLogTellsTheTwoMomentsInOrder)
{
    const std::string path = hand::FreshFolder() + "/log";
    EXPECT_EQ(InProcess([&] {
                  setenv("TAVRIX_STARTUP_LOG", path.c_str(), 1);
                  setenv("TAVRIX_SHOT", (path + ".png").c_str(), 1);
                  return RunLikeTheProgram();
              }),
              0);
    std::istringstream lines(ReadAll(path));
    std::string first;
    std::string second;
    long long paint = 0;
    long long over = 0;
    ASSERT_TRUE(lines >> first >> paint >> second >> over);
    EXPECT_EQ(first, "first-paint");
    EXPECT_EQ(second, "start-over");
    EXPECT_GT(paint, 0);
    EXPECT_GE(over, paint);
    EXPECT_FALSE(lines >> first);
}
