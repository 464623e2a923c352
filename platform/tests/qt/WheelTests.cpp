// The wheel over windows of the program's own, and over controls.
#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/TestWindow.h"

#include "platform/qt/Window.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTest>
#include <QWheelEvent>
#include <QWidget>
#include <QWindow>

#include <string>

namespace hand = tavrix::testing;
namespace platform = tavrix::platform;
namespace test = tavrix::test;
using tavrix::test::TestWindow;

namespace
{

void Turn(QPoint at, QPoint angle, Qt::KeyboardModifiers held = Qt::NoModifier)
{
    QWidget* host = platform::ScreenWidget()->window();
    QWheelEvent event(at, host->mapToGlobal(at), {}, angle, Qt::NoButton, held, Qt::NoScrollPhase,
                      false);
    QCoreApplication::sendEvent(host->windowHandle(), &event);
}

// The arrows that a window's messages press and let go: "L+L-" for Left.
std::string Arrows(const TestWindow& window)
{
    std::string keys;
    for (const test::Kept& kept : window.messages) {
        if (kept.message != WM_KEYDOWN && kept.message != WM_KEYUP)
            continue;
        const WPARAM codes[] = {VK_LEFT, VK_UP, VK_RIGHT, VK_DOWN};
        const char* letters = "LURD";
        for (int i = 0; i < 4; ++i)
            if (kept.wParam == codes[i])
                keys += std::string(1, letters[i]) + (kept.message == WM_KEYDOWN ? '+' : '-');
    }
    return keys;
}

std::string ArrowsOf(TestWindow& window, QPoint angle, Qt::KeyboardModifiers held = Qt::NoModifier,
                     QPoint at = {300, 300})
{
    window.messages.clear();
    Turn(at, angle, held);
    hand::Pump(20);
    return Arrows(window);
}

} // namespace

TEST(Wheel, EachNotchTypesTheArrowThatMovesThePictureAsScrolledContentMoves)
{
    TestWindow window;
    hand::Pump(30);
    EXPECT_EQ(ArrowsOf(window, {0, 120}), "D+D-");
    EXPECT_EQ(ArrowsOf(window, {0, -120}), "U+U-");
    EXPECT_EQ(ArrowsOf(window, {120, 0}), "R+R-");
    EXPECT_EQ(ArrowsOf(window, {-120, 0}), "L+L-");
    EXPECT_EQ(ArrowsOf(window, {0, 120}, Qt::ShiftModifier), "R+R-");
    EXPECT_EQ(ArrowsOf(window, {0, -120}, Qt::ShiftModifier), "L+L-");
    EXPECT_EQ(ArrowsOf(window, {0, 360}), "D+D-D+D-D+D-");
    EXPECT_EQ(window.Count(WM_CHAR), 0u);
    // The bits that say "was down, goes up".
    EXPECT_EQ(window.Last(WM_KEYUP).lParam, LPARAM{0xC0000001});
}

TEST(Wheel, PartsOfANotchAddUpAndAnotherDirectionBeginsAnew)
{
    TestWindow window;
    hand::Pump(30);
    EXPECT_EQ(ArrowsOf(window, {0, 50}), "");
    EXPECT_EQ(ArrowsOf(window, {0, 50}), "");
    EXPECT_EQ(ArrowsOf(window, {0, 50}), "D+D-");
    EXPECT_EQ(ArrowsOf(window, {0, 80}), "") << "30 were left";
    EXPECT_EQ(ArrowsOf(window, {0, -119}), "") << "the other way drops them";
    EXPECT_EQ(ArrowsOf(window, {0, -1}), "U+U-");
    EXPECT_EQ(ArrowsOf(window, {60, 60}), "") << "each direction adds up for itself";
    EXPECT_EQ(ArrowsOf(window, {60, 0}), "R+R-");
    EXPECT_EQ(ArrowsOf(window, {0, 60}), "D+D-");
}

TEST(Wheel, ItsMessagesHoldNoModifierAndNoKeyCountsAsHeld)
{
    bool shift = true;
    bool arrow = true;
    const TestWindow window(
        [&](HWND, UINT message, WPARAM wParam, LPARAM) -> std::optional<LRESULT> {
            if (message == WM_KEYDOWN && wParam == VK_RIGHT) {
                shift = GetKeyState(VK_SHIFT) < 0;
                arrow = GetAsyncKeyState(VK_RIGHT) < 0;
            }
            return std::nullopt;
        });
    hand::Pump(30);
    hand::HoldKey(VK_SHIFT, true);
    hand::Pump(20);
    Turn({300, 300}, {0, 120}, Qt::ShiftModifier);
    hand::Pump(20);
    EXPECT_EQ(Arrows(window), "R+R-");
    EXPECT_FALSE(shift);
    EXPECT_FALSE(arrow);
    EXPECT_LT(GetAsyncKeyState(VK_SHIFT), 0) << "the keyboard's own state stays";
    hand::HoldKey(VK_SHIFT, false);
}

TEST(Wheel, OverAToolWindowOfTheProgramsTheMainWindowScrolls)
{
    TestWindow window;
    TestWindow tool({}, WS_POPUP | WS_VISIBLE, 100, 50, 80, 60, window.handle);
    hand::Pump(30);
    EXPECT_EQ(ArrowsOf(window, {0, 120}, Qt::NoModifier, {110, 60}), "D+D-");
    EXPECT_EQ(Arrows(tool), "");
}

TEST(Wheel, AShutWindowDoesNotScroll)
{
    TestWindow window;
    hand::Pump(30);
    EnableWindow(window.handle, FALSE);
    EXPECT_EQ(ArrowsOf(window, {0, 120}), "");
    EnableWindow(window.handle, TRUE);
    hand::Pump(20);
    EXPECT_EQ(Arrows(window), "") << "forgotten, not kept";
    // What was queued before the window was shut does not get past that either.
    Turn({300, 300}, {0, 120});
    EnableWindow(window.handle, FALSE);
    hand::Pump(20);
    EnableWindow(window.handle, TRUE);
    hand::Pump(20);
    EXPECT_EQ(Arrows(window), "");
}

TEST(Wheel, OverAControlItIsTheControls)
{
    TestWindow window;
    const HWND edit = CreateWindowExW(0, TEXT("EDIT"), TEXT(""),
                                      WS_CHILD | WS_VISIBLE | WS_VSCROLL | ES_MULTILINE, 50, 50,
                                      200, 60, window.handle, nullptr, nullptr, nullptr);
    std::u16string lines;
    for (int i = 0; i < 40; ++i)
        lines += u"line\r\n";
    SetWindowTextW(edit, lines.c_str());
    hand::Pump(30);
    const hand::Picture before = hand::WindowPixels(edit);
    EXPECT_EQ(ArrowsOf(window, {0, -120}, Qt::NoModifier, {100, 80}), "");
    EXPECT_TRUE(hand::WindowPixels(edit).pixels != before.pixels) << "it has scrolled";
    // At its beginning it has no use for the wheel, which still does not mean the picture.
    EXPECT_EQ(ArrowsOf(window, {0, 1200}, Qt::NoModifier, {100, 80}), "");
    EXPECT_EQ(ArrowsOf(window, {0, 1200}, Qt::NoModifier, {100, 80}), "");
    EXPECT_EQ(ArrowsOf(window, {0, 120}), "D+D-");
}
