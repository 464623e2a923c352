#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/TestWindow.h"

#include "platform/qt/Window.h"

#include <gtest/gtest.h>

#include <QTest>
#include <QWidget>

namespace hand = tavrix::testing;
namespace platform = tavrix::platform;
namespace test = tavrix::test;
using tavrix::test::TestWindow;

namespace
{

QWindow* Host()
{
    return platform::ScreenWidget()->window()->windowHandle();
}

void Press(int x, int y, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QTest::mousePress(Host(), Qt::LeftButton, modifiers, {x, y});
}
void Move(int x, int y)
{
    QTest::mouseMove(Host(), {x, y});
}
void Release(int x, int y)
{
    QTest::mouseRelease(Host(), Qt::LeftButton, Qt::NoModifier, {x, y});
}

class InputTest : public ::testing::Test
{
protected:
    void SetUp() override { hand::Pump(30); }
    void TearDown() override { ReleaseCapture(); }
};

} // namespace

TEST_F(InputTest, ThePointerGivesQueuedMessagesInClientCoordinates)
{
    const TestWindow window;
    const TestWindow tool({}, WS_POPUP | WS_VISIBLE, 100, 50, 80, 60, window.handle);
    hand::Pump(30);
    Press(110, 75, Qt::ShiftModifier);
    EXPECT_EQ(tool.Count(WM_LBUTTONDOWN), 0u) << "queued, not called at once";
    hand::Pump(20);
    ASSERT_EQ(tool.Count(WM_LBUTTONDOWN), 1u);
    EXPECT_EQ(tool.Last(WM_LBUTTONDOWN).lParam, MAKELPARAM(10, 25));
    EXPECT_EQ(tool.Last(WM_LBUTTONDOWN).wParam, static_cast<WPARAM>(MK_LBUTTON | MK_SHIFT));
    Release(111, 76);
    hand::Pump(20);
    EXPECT_EQ(tool.Last(WM_LBUTTONUP).lParam, MAKELPARAM(11, 26));
    EXPECT_EQ(tool.Last(WM_LBUTTONUP).wParam, 0u);
    EXPECT_EQ(window.Count(WM_LBUTTONDOWN), 0u);
}

TEST_F(InputTest, TheSecondPressOfADoubleClickIsMessage515)
{
    const TestWindow window;
    hand::Pump(30);
    QTest::mouseDClick(Host(), Qt::LeftButton, Qt::NoModifier, {50, 60});
    hand::Pump(30);
    EXPECT_EQ(window.Count(WM_LBUTTONDOWN), 1u);
    EXPECT_EQ(window.Count(515), 1u);
    EXPECT_EQ(window.Count(WM_LBUTTONUP), 2u);
}

TEST_F(InputTest, ADragGoesOnOutsideItsWindowAndCaptureLeadsEverythingToOne)
{
    const TestWindow window;
    const TestWindow tool({}, WS_POPUP | WS_VISIBLE, 100, 50, 80, 60, window.handle);
    hand::Pump(30);
    Press(300, 300);
    SetCapture(window.handle);
    Move(120, 70);  // over the tool window
    Move(-20, 500); // outside the screen
    hand::Pump(20);
    EXPECT_EQ(tool.Count(WM_MOUSEMOVE), 0u);
    EXPECT_EQ(window.Last(WM_MOUSEMOVE).lParam, MAKELPARAM(-20, 500));
    Release(120, 70);
    hand::Pump(20);
    EXPECT_EQ(window.Count(WM_LBUTTONUP), 1u);
    EXPECT_EQ(GetCapture(), window.handle);
    ReleaseCapture();
    Move(121, 71);
    hand::Pump(20);
    EXPECT_EQ(tool.Count(WM_MOUSEMOVE), 1u);
}

TEST_F(InputTest, APointerMessageIsToldInTheWindowAsItLiesWhenItsTurnComes)
{
    const TestWindow window;
    std::vector<LPARAM> places;
    const TestWindow tool(
        [&places](HWND handle, UINT message, WPARAM wParam,
                  LPARAM lParam) -> std::optional<LRESULT> {
            if ((message == WM_MOUSEMOVE && wParam == MK_LBUTTON) || message == WM_LBUTTONUP) {
                places.push_back(lParam);
                SetWindowPos(handle, nullptr, 130, 70, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
            }
            return std::nullopt;
        },
        WS_POPUP | WS_VISIBLE, 100, 50, 80, 60, window.handle);
    hand::Pump(30);
    Press(110, 60);
    // Both are queued while the window still lies at its first place.
    Move(145, 90);
    Release(145, 90);
    hand::Pump(30);
    EXPECT_EQ(places, (std::vector<LPARAM>{MAKELPARAM(45, 40), MAKELPARAM(15, 20)}));
}

TEST_F(InputTest, KeysGoToTheFocusWindowWithTheirCharacters)
{
    const TestWindow window;
    hand::Pump(30);
    EXPECT_EQ(GetFocus(), window.handle);
    hand::TypeKey('A', MK_SHIFT);
    hand::Pump(30);
    EXPECT_EQ(window.Count(WM_CHAR), 1u);
    EXPECT_EQ(window.Last(WM_CHAR).wParam, static_cast<WPARAM>('A'));
    bool sawKey = false;
    for (const test::Kept& entry : window.messages)
        sawKey = sawKey || (entry.message == WM_KEYDOWN && entry.wParam == 'A');
    EXPECT_TRUE(sawKey);
    hand::TypeKey(VK_F1 + 8);
    hand::Pump(30);
    EXPECT_EQ(window.Last(WM_KEYDOWN).wParam, static_cast<WPARAM>(VK_F1 + 8));
    EXPECT_EQ(window.Last(WM_KEYUP).wParam, static_cast<WPARAM>(VK_F1 + 8));
}

TEST_F(InputTest, WithAltAKeyIsASystemKey)
{
    const TestWindow window;
    hand::Pump(30);
    hand::TypeKey('X', 0x20);
    hand::Pump(30);
    bool sawKey = false;
    for (const test::Kept& entry : window.messages)
        sawKey = sawKey || (entry.message == WM_SYSKEYDOWN && entry.wParam == 'X');
    EXPECT_TRUE(sawKey);
}

TEST_F(InputTest, GetKeyStateTellsTheModifiersOfTheMessageAndNotOfNow)
{
    bool controlInMessage = false;
    bool controlNow = true;
    const TestWindow window(
        [&](HWND, UINT message, WPARAM wParam, LPARAM) -> std::optional<LRESULT> {
            if (message == WM_KEYDOWN && wParam == 'O') {
                controlInMessage = GetKeyState(VK_CONTROL) < 0;
                controlNow = GetAsyncKeyState(VK_CONTROL) < 0;
            }
            return std::nullopt;
        });
    hand::Pump(30);
    hand::TypeKey('O', MK_CONTROL); // all of it, key-up included, before the loop runs
    hand::Pump(30);
    EXPECT_TRUE(controlInMessage);
    EXPECT_FALSE(controlNow);
}

TEST_F(InputTest, GetAsyncKeyStateFollowsTheKeyWithoutTheMessageLoop)
{
    const TestWindow window;
    hand::Pump(30);
    QTest::keyPress(Host(), Qt::Key_Right);
    EXPECT_LT(GetAsyncKeyState(VK_RIGHT), 0);
    QTest::keyRelease(Host(), Qt::Key_Right);
    EXPECT_GE(GetAsyncKeyState(VK_RIGHT), 0);
}

TEST_F(InputTest, ADisabledWindowGetsNoInputNotEvenWhatWasQueuedBefore)
{
    const TestWindow window;
    hand::Pump(30);
    hand::ClickScreen(200, 200);
    EnableWindow(window.handle, FALSE);
    hand::ClickScreen(210, 210);
    hand::TypeKey('B');
    hand::Pump(30);
    EXPECT_EQ(window.Count(WM_LBUTTONDOWN), 0u);
    EXPECT_EQ(window.Count(WM_KEYDOWN), 0u);
    EnableWindow(window.handle, TRUE);
    hand::ClickScreen(220, 220);
    hand::Pump(30);
    EXPECT_EQ(window.Count(WM_LBUTTONDOWN), 1u);
}

TEST_F(InputTest, DisablingAWindowTakesItsCapture)
{
    const TestWindow window;
    SetCapture(window.handle);
    EXPECT_EQ(GetCapture(), window.handle);
    EnableWindow(window.handle, FALSE);
    EXPECT_EQ(GetCapture(), nullptr);
}

TEST_F(InputTest, FocusMovesWithItsTwoMessages)
{
    const TestWindow window;
    const TestWindow child({}, WS_CHILD | WS_VISIBLE, 0, 0, 50, 50, window.handle);
    hand::Pump(30);
    EXPECT_EQ(SetFocus(child.handle), window.handle);
    EXPECT_EQ(GetFocus(), child.handle);
    EXPECT_EQ(window.Count(WM_KILLFOCUS), 1u);
    EXPECT_EQ(child.Count(WM_SETFOCUS), 1u);
    hand::TypeKey('Q');
    hand::Pump(30);
    EXPECT_EQ(child.Count(WM_KEYDOWN), 1u);
}
