// The host window as a window and as the whole screen, its title and its icons. The headless
// desktop has 1280x1024, the device screen 640x480.
#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/SolidIcons.h"
#include "platform/tests/qt/TestWindow.h"

#include "platform/qt/Window.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QIcon>
#include <QImage>
#include <QPixmap>
#include <QTest>
#include <QWidget>
#include <QWindow>

#include <cstdlib>
#include <sys/wait.h>
#include <unistd.h>

namespace hand = tavrix::testing;
namespace platform = tavrix::platform;
namespace test = tavrix::test;
using tavrix::test::TestWindow;

namespace
{

QWidget* Host()
{
    return platform::ScreenWidget()->window();
}

void PressF11()
{
    QTest::keyClick(Host()->windowHandle(), Qt::Key_F11);
    hand::Pump(30);
}

RECT PlaceOf(HWND window)
{
    RECT place{};
    GetWindowRect(window, &place);
    return place;
}

void Fill(HWND window, int stock)
{
    RECT all{};
    GetClientRect(window, &all);
    const HDC dc = GetDC(window);
    FillRect(dc, &all, static_cast<HBRUSH>(GetStockObject(stock)));
    ReleaseDC(window, dc);
}

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

} // namespace

TEST(FullScreen, F11ChangesToTheWholeDesktopWithTheDeviceScreenInTheMiddleOfBlackAndBack)
{
    TestWindow window;
    hand::Pump(30);
    Fill(window.handle, WHITE_BRUSH);
    const QRect before = Host()->geometry();
    PressF11();
    EXPECT_TRUE(Host()->isFullScreen());
    EXPECT_EQ(Host()->size(), QSize(1280, 1024));
    EXPECT_EQ(platform::ScreenWidget()->geometry(), QRect(320, 272, 640, 480));
    const QImage seen = Host()->grab().toImage();
    EXPECT_EQ(seen.pixelColor(319, 500), QColor(Qt::black));
    EXPECT_EQ(seen.pixelColor(320, 272), QColor(Qt::white));
    EXPECT_EQ(seen.pixelColor(959, 751), QColor(Qt::white));
    EXPECT_EQ(seen.pixelColor(959, 752), QColor(Qt::black));
    EXPECT_EQ(GetSystemMetrics(SM_CXSCREEN), 640);
    EXPECT_EQ(hand::ScreenPixels().width, 640);
    const RECT place = PlaceOf(window.handle);
    EXPECT_EQ(place.left, 0);
    EXPECT_EQ(place.right, 640);
    PressF11();
    EXPECT_FALSE(Host()->isFullScreen());
    EXPECT_EQ(Host()->geometry(), before);
    EXPECT_EQ(platform::ScreenWidget()->geometry(), QRect(0, 0, 640, 480));
    EXPECT_EQ(Host()->minimumSize(), Host()->maximumSize());
    EXPECT_EQ(window.Count(WM_KEYDOWN), 0u);
    EXPECT_EQ(window.Count(WM_KEYUP), 0u);
    EXPECT_EQ(window.Count(WM_SIZE), 1u) << "at its creation alone";
}

TEST(FullScreen, ThePointerIsWhereTheDeviceScreenIs)
{
    TestWindow window;
    TestWindow tool({}, WS_POPUP | WS_VISIBLE, 100, 50, 80, 60, window.handle);
    hand::Pump(30);
    PressF11();
    QTest::mouseClick(Host()->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                      QPoint(320 + 110, 272 + 75));
    hand::Pump(20);
    EXPECT_EQ(tool.Last(WM_LBUTTONDOWN).lParam, MAKELPARAM(10, 25));
    QTest::mouseClick(Host()->windowHandle(), Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
    hand::Pump(20);
    EXPECT_EQ(window.Count(WM_LBUTTONDOWN), 0u) << "the black around is nobody's";
    // A drag goes on over the black.
    QTest::mousePress(Host()->windowHandle(), Qt::LeftButton, Qt::NoModifier, QPoint(400, 600));
    SetCapture(window.handle);
    QTest::mouseMove(Host()->windowHandle(), QPoint(5, 5));
    hand::Pump(20);
    EXPECT_EQ(window.Last(WM_MOUSEMOVE).lParam, MAKELPARAM(5 - 320, 5 - 272));
    QTest::mouseRelease(Host()->windowHandle(), Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
    ReleaseCapture();
    POINT corner{0, 0};
    ClientToScreen(tool.handle, &corner);
    EXPECT_EQ(corner.x, 100);
    EXPECT_EQ(corner.y, 50);
    PressF11();
}

TEST(FullScreen, F11WorksWhileAMessageBoxIsOpenAndTheKeyboardStaysWhereItWas)
{
    TestWindow window;
    hand::Pump(30);
    bool full = false;
    hand::OnModal([&](HWND, bool) {
        hand::Pump(20);
        PressF11();
        full = Host()->isFullScreen();
        hand::TypeKey(VK_RETURN);
    });
    EXPECT_EQ(MessageBoxW(window.handle, TEXT("Text"), TEXT("Caption"), MB_OK), IDOK);
    EXPECT_TRUE(full);
    EXPECT_EQ(window.Count(WM_KEYDOWN), 0u);
    hand::Pump(20);
    PressF11();
    EXPECT_FALSE(Host()->isFullScreen());
    EXPECT_EQ(GetFocus(), window.handle);
    hand::TypeKey('Q');
    hand::Pump(20);
    EXPECT_EQ(window.Count(WM_KEYDOWN), 1u);
    // With a modifier it is another key.
    hand::TypeKey(VK_F11, MK_CONTROL);
    hand::Pump(20);
    EXPECT_FALSE(Host()->isFullScreen());
    EXPECT_EQ(window.Last(WM_KEYDOWN).wParam, static_cast<WPARAM>(VK_F11));
}

TEST(FullScreenStartDeathTest, StartedFullScreenTheDeviceScreenIsTheDesktopAndF11ShowsItAsAWindow)
{
    EXPECT_EQ(InProcess([] {
                  setenv("TAVRIX_FULLSCREEN", "1", 1);
                  setenv("TAVRIX_SCREEN", "640x480", 1);
                  const TestWindow window;
                  hand::Pump(30);
                  const QSize desktop(1280, 1024);
                  const auto isWhole = [&] {
                      return platform::ScreenWidget()->geometry() == QRect({0, 0}, desktop) &&
                             Host()->size() == desktop && PlaceOf(window.handle).right == 1280;
                  };
                  if (!Host()->isFullScreen() || !isWhole())
                      return 1;
                  PressF11();
                  if (Host()->isFullScreen() || !isWhole())
                      return 2;
                  PressF11();
                  return Host()->isFullScreen() && isWhole() ? 0 : 3;
              }),
              0);
}

TEST(FullScreenStartDeathTest, ADeviceScreenThatTheDesktopCannotHoldShowsItsBeginning)
{
    EXPECT_EQ(InProcess([] {
                  setenv("TAVRIX_SCREEN", "1400x480", 1);
                  const TestWindow window;
                  hand::Pump(30);
                  PressF11();
                  return platform::ScreenWidget()->geometry() == QRect(0, 272, 1400, 480) ? 0 : 1;
              }),
              0);
}

TEST(HostWindow, ItsTitleIsTheOneThatTheProgramGivesItsMainWindow)
{
    const TestWindow window;
    const TestWindow tool({}, WS_POPUP | WS_VISIBLE, 100, 50, 80, 60, window.handle);
    EXPECT_EQ(Host()->windowTitle(), QStringLiteral("Tavrix"));
    SetWindowTextW(window.handle, TEXT("絵 [*] - Tavrix"));
    SetWindowTextW(tool.handle, TEXT("Tool"));
    hand::Pump(20);
    EXPECT_EQ(Host()->windowHandle()->title(), QStringLiteral("絵 [*] - Tavrix"));
    SetWindowTextW(window.handle, TEXT("Tavrix"));
}

TEST(HostWindow, ItsIconsAreBothThatTheProgramGivesItsMainWindow)
{
    const TestWindow window;
    const HICON small = test::SolidIcon(0xFF0000);
    const HICON big = test::LargeSolidIcon(0x0000FF);
    SendMessageW(window.handle, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(small));
    SendMessageW(window.handle, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(big));
    hand::Pump(20); // they are shown when the window has been painted
    const QIcon shown = Host()->windowIcon();
    EXPECT_EQ(shown.availableSizes(), (QList<QSize>{{16, 16}, {32, 32}}));
    EXPECT_EQ(shown.pixmap(16, 16).toImage().pixelColor(8, 8), QColor(0xFF, 0, 0));
    EXPECT_EQ(shown.pixmap(32, 32).toImage().pixelColor(8, 8), QColor(0, 0, 0xFF));
    EXPECT_EQ(QGuiApplication::desktopFileName(), QStringLiteral("org.tavrix.tavrix"));
}
