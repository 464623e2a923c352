// Fingers on dialogs: what lies beside a control within reach is the control's.
#include "platform/testing/Controls.h"
#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/ControlResources.h"

#include "platform/qt/FingerReach.h"
#include "platform/qt/Window.h"

#include <commctrl.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QGuiApplication>
#include <QPointingDevice>
#include <QScreen>
#include <QTabletEvent>
#include <QTest>
#include <QWidget>
#include <QWindow>

#include <cmath>
#include <limits>
#include <vector>

namespace platform = tavrix::platform;
using namespace tavrix::testing;

namespace
{

constexpr int ButtonA = 1401;
constexpr int ButtonB = 1402;
constexpr int ShutButton = 1403;
constexpr int HiddenButton = 1404;
constexpr int Text = 1405;
constexpr int Group = 1406;
constexpr int Progress = 1407;
constexpr int Bitmap = 1408;
constexpr int DrawnPlace = 1409;
constexpr int Swatch = 1410;
constexpr int Bar = 1411;
constexpr int Check = 1412;
constexpr int Radio = 1413;
constexpr int Field = 1414;
constexpr int List = 1415;

std::vector<int> commands;   // in the order in which they came
std::vector<POINT> onDialog; // left presses that the dialog got, first or second ones
std::vector<POINT> onBar;    // and the bar
WNDPROC barProcedure = nullptr;

POINT PointOf(LPARAM packed)
{
    return {static_cast<short>(LOWORD(packed)), static_cast<short>(HIWORD(packed))};
}

INT_PTR CALLBACK Procedure(HWND, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_COMMAND && HIWORD(wParam) == BN_CLICKED)
        commands.push_back(LOWORD(wParam));
    if (message == WM_LBUTTONDOWN || message == WM_LBUTTONDBLCLK)
        onDialog.push_back(PointOf(lParam));
    return FALSE;
}

LRESULT CALLBACK WatchBar(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_LBUTTONDOWN)
        onBar.push_back(PointOf(lParam));
    return CallWindowProcW(barProcedure, window, message, wParam, lParam);
}

QWindow* Host()
{
    return platform::ScreenWidget()->window()->windowHandle();
}

// Known to the toolkit for good.
QPointingDevice* TouchScreen()
{
    static QPointingDevice* const screen = QTest::createTouchDevice();
    return screen;
}

int Reach()
{
    return platform::FingerReach(QGuiApplication::primaryScreen()->physicalDotsPerInch());
}

void PenTap(QPoint at)
{
    static const QPointingDevice device(QStringLiteral("pen"), 78, QInputDevice::DeviceType::Stylus,
                                        QPointingDevice::PointerType::Pen,
                                        QInputDevice::Capability::Position, 1, 1);
    for (const QEvent::Type type : {QEvent::TabletPress, QEvent::TabletRelease}) {
        const bool down = type == QEvent::TabletPress;
        QTabletEvent event(type, &device, at, Host()->mapToGlobal(at), down ? 0.5 : 0.0, 0, 0, 0, 0,
                           0, Qt::NoModifier, Qt::LeftButton, down ? Qt::LeftButton : Qt::NoButton);
        QCoreApplication::sendEvent(Host(), &event);
    }
    Pump(20);
}

/// The dialog without a frame at the corner of the screen, whose points are those of the screen.
/// Everything in it but A lies where no test looks until the test puts it somewhere.
class Fingers : public ::testing::Test
{
protected:
    Fingers()
    {
        commands.clear();
        onDialog.clear();
        onBar.clear();
        dialog = CreateDialogIndirectParamW(ControlResources(), DialogResource(240), nullptr,
                                            Procedure, 0);
        SetWindowPos(dialog, nullptr, 0, 0, 500, 400, SWP_NOZORDER | SWP_NOACTIVATE);
        for (int id = ButtonA; id <= List; ++id)
            Put(id, 450, 350, 1, 1);
        Put(ButtonA, 100, 100, 60, 24);
        barProcedure = reinterpret_cast<WNDPROC>(SetWindowLongPtrW(
            GetDlgItem(dialog, Bar), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(WatchBar)));
        ShowWindow(dialog, SW_SHOW);
        Pump(30);
        screen = TouchScreen();
    }
    ~Fingers() override { DestroyWindow(dialog); }

    void Put(int id, int x, int y, int width, int height)
    {
        SetWindowPos(GetDlgItem(dialog, id), nullptr, x, y, width, height,
                     SWP_NOZORDER | SWP_NOACTIVATE);
    }

    /// What a finger that comes down at one point and goes up at another brings about.
    std::vector<int> Slide(QPoint from, QPoint to)
    {
        commands.clear();
        onDialog.clear();
        onBar.clear();
        QTest::QTouchEventSequence touch = QTest::touchEvent(Host(), screen, false);
        touch.press(0, from).commit();
        if (to != from)
            touch.move(0, to).commit();
        touch.release(0, to).commit();
        Pump(20);
        return commands;
    }
    std::vector<int> Tap(int x, int y) { return Slide({x, y}, {x, y}); }

    HWND dialog = nullptr;
    QPointingDevice* screen = nullptr;
};

using Ids = std::vector<int>;

bool operator==(POINT a, POINT b)
{
    return a.x == b.x && a.y == b.y;
}

} // namespace

TEST(FingerReach, IsSevenMillimetresBetweenItsBounds)
{
    EXPECT_EQ(platform::FingerReach(96), 26);
    EXPECT_EQ(platform::FingerReach(133), 37);
    EXPECT_EQ(platform::FingerReach(40), 16);
    EXPECT_EQ(platform::FingerReach(400), 40);
    EXPECT_EQ(platform::FingerReach(0), 16);
    EXPECT_EQ(platform::FingerReach(std::numeric_limits<double>::infinity()), 16);
    EXPECT_EQ(platform::FingerReach(std::nan("")), 16);
}

TEST(FingerReach, TheNearestRectangleIsTheOneAStraightWayLeadsTo)
{
    const std::vector<QRect> all = {QRect(0, 0, 10, 10), QRect(30, 0, 10, 10), QRect(5, 5, 0, 0),
                                    QRect(0, 30, 10, 10)};
    using platform::NearestRectangle;
    EXPECT_EQ(NearestRectangle(all, {5, 5}, 16), 0u);
    EXPECT_EQ(NearestRectangle(all, {20, 5}, 16), 1u) << "11 from the first, 10 from this";
    EXPECT_EQ(NearestRectangle(all, {19, 19}, 16), 0u) << "slantwise as far as the last";
    EXPECT_EQ(NearestRectangle(all, {12, 13}, 5), 0u) << "3 across and 4 down are 5";
    EXPECT_EQ(NearestRectangle(all, {13, 13}, 5), std::nullopt);
    EXPECT_EQ(NearestRectangle(all, {9, 15}, 6), 0u);
    EXPECT_EQ(NearestRectangle(all, {9, 15}, 5), std::nullopt);
    EXPECT_EQ(NearestRectangle({}, {0, 0}, 40), std::nullopt);
}

TEST(FingerReach, TheNearestPointLiesInsideTheFrame)
{
    EXPECT_EQ(platform::NearestPoint(QRect(10, 10, 20, 20), {0, 15}), QPoint(12, 15));
    EXPECT_EQ(platform::NearestPoint(QRect(10, 10, 20, 20), {90, 90}), QPoint(27, 27));
    EXPECT_EQ(platform::NearestPoint(QRect(10, 10, 1, 2), {90, 90}), QPoint(10, 11));
}

TEST_F(Fingers, BesideAButtonPressItOnEverySide)
{
    for (const QPoint at : {QPoint(130, 92), QPoint(130, 130), QPoint(90, 110), QPoint(170, 110),
                            QPoint(92, 92), QPoint(168, 130)})
        EXPECT_EQ(Tap(at.x(), at.y()), Ids{ButtonA}) << at.x() << "," << at.y();
}

TEST_F(Fingers, ReachSoFarAndNoFarther)
{
    const int reach = Reach();
    ASSERT_GE(reach, 16);
    EXPECT_EQ(Tap(130, 100 - reach), Ids{ButtonA});
    EXPECT_EQ(Tap(130, 99 - reach), Ids{});
    EXPECT_EQ(Tap(159 + reach, 110), Ids{ButtonA});
    EXPECT_EQ(Tap(160 + reach, 110), Ids{});
    EXPECT_EQ(Tap(100 - reach, 100 - reach), Ids{}) << "slantwise it is farther";
    ASSERT_EQ(onDialog.size(), 1u) << "what meets nothing is the dialog's";
    EXPECT_TRUE((onDialog[0] == POINT{100 - reach, 100 - reach}));
}

TEST_F(Fingers, BetweenTwoTheNearerWinsAndOfEquallyNearTheFirst)
{
    Put(ButtonB, 180, 100, 60, 24); // 20 pixels lie between them, 160 to 179
    EXPECT_EQ(Tap(165, 110), Ids{ButtonA});
    EXPECT_EQ(Tap(175, 110), Ids{ButtonB});
    Put(ButtonB, 181, 100, 60, 24);
    EXPECT_EQ(Tap(170, 110), Ids{ButtonA}) << "11 from both";
    Put(ButtonA, 181, 100, 60, 24);
    Put(ButtonB, 100, 100, 60, 24);
    EXPECT_EQ(Tap(170, 110), Ids{ButtonA}) << "11 from both";
}

TEST_F(Fingers, PassOverWhatIsDisabledOrHidden)
{
    Put(ShutButton, 100, 130, 60, 24);
    EXPECT_EQ(Tap(130, 128), Ids{ButtonA}) << "2 from the disabled one, 5 from this";
    EXPECT_EQ(Tap(130, 135), Ids{ButtonA}) << "on the disabled one";
    EnableWindow(GetDlgItem(dialog, ShutButton), TRUE);
    EXPECT_EQ(Tap(130, 128), Ids{ShutButton});
    Put(HiddenButton, 100, 70, 60, 24);
    EXPECT_EQ(Tap(130, 97), Ids{ButtonA});
    EXPECT_EQ(Tap(130, 95), Ids{ButtonA});
    EnableWindow(dialog, FALSE);
    EXPECT_EQ(Tap(130, 97), Ids{});
    EXPECT_EQ(Tap(130, 110), Ids{});
}

TEST_F(Fingers, PassOverWhatLiesBelowAnother)
{
    Put(ShutButton, 100, 100, 60, 24);
    Put(ButtonB, 100, 130, 60, 24);
    EXPECT_EQ(Tap(130, 126), Ids{ButtonB}) << "3 from the one below the disabled one, 4 from this";
}

TEST_F(Fingers, OnTextsFramesAndBarsOfProgressMeetNothing)
{
    for (const int id : {Text, Group, Progress}) {
        Put(id, 90, 70, 200, 28);
        EXPECT_EQ(Tap(130, 90), Ids{ButtonA}) << id;
        Put(id, 450, 350, 1, 1);
    }
}

TEST_F(Fingers, OnWhatADialogDrawsItselfStayWhereTheyAre)
{
    for (const int id : {Bitmap, DrawnPlace}) {
        Put(id, 90, 70, 200, 28);
        EXPECT_EQ(Tap(130, 90), Ids{}) << id;
        ASSERT_EQ(onDialog.size(), 1u) << id;
        EXPECT_TRUE((onDialog[0] == POINT{130, 90})) << id;
        Put(id, 450, 350, 1, 1);
    }
}

TEST_F(Fingers, MouseAndPenAreExactToThePixel)
{
    for (const QPoint at : {QPoint(130, 99), QPoint(130, 124), QPoint(99, 110), QPoint(160, 110)}) {
        commands.clear();
        ClickScreen(at.x(), at.y());
        Pump(20);
        EXPECT_EQ(commands, Ids{}) << "mouse " << at.x() << "," << at.y();
        PenTap(at);
        EXPECT_EQ(commands, Ids{}) << "pen " << at.x() << "," << at.y();
    }
    PenTap({130, 110});
    EXPECT_EQ(commands, Ids{ButtonA});
}

TEST_F(Fingers, InsideAControlStayWhereTheyAre)
{
    Put(Bar, 100, 200, 120, 24);
    Put(ButtonB, 100, 224, 60, 24);
    Tap(100, 200);
    ASSERT_EQ(onBar.size(), 1u);
    EXPECT_TRUE((onBar[0] == POINT{0, 0}));
    EXPECT_EQ(Tap(219, 223), Ids{});
    ASSERT_EQ(onBar.size(), 1u);
    EXPECT_TRUE((onBar[0] == POINT{119, 23}));
    Tap(222, 210);
    ASSERT_EQ(onBar.size(), 1u) << "beside it";
    EXPECT_TRUE((onBar[0] == POINT{117, 10}));
}

TEST_F(Fingers, ThatTrembleStillPressAndThatSlideAwayDoNot)
{
    EXPECT_EQ(Slide({130, 90}, {134, 84}), Ids{ButtonA});
    EXPECT_EQ(Slide({130, 90}, {130, 99 - Reach()}), Ids{});
    EXPECT_EQ(Slide({130, 90}, {300, 300}), Ids{});
    EXPECT_EQ(Tap(130, 110), Ids{ButtonA}) << "and the next finger begins anew";
    EXPECT_EQ(Slide({130, 110}, {130, 90}), Ids{}) << "begun inside, it is exact";
}

TEST_F(Fingers, ReachEveryKindOfControl)
{
    Put(ButtonA, 450, 350, 1, 1);
    Put(Swatch, 100, 100, 20, 20);
    EXPECT_EQ(Tap(130, 110), Ids{Swatch});
    Put(Swatch, 450, 350, 1, 1);
    Put(Field, 100, 100, 80, 24);
    Tap(130, 130);
    EXPECT_EQ(GetFocus(), GetDlgItem(dialog, Field));
    Put(Field, 450, 350, 1, 1);
    const HWND list = GetDlgItem(dialog, List);
    Put(List, 100, 100, 80, 100);
    for (const WCHAR* text : {TEXT("one"), TEXT("two")})
        SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
    Tap(130, 94);
    EXPECT_EQ(SendMessageW(list, LB_GETCURSEL, 0, 0), 0) << "its frame is no hindrance";
}

TEST_F(Fingers, PressCheckAndRadioButtonsInAllTheirArea)
{
    for (const int id : {Check, Radio}) {
        Put(id, 100, 200, 150, 20);
        for (const QPoint at : {QPoint(100, 200), QPoint(249, 219), QPoint(249, 200),
                                QPoint(180, 210), QPoint(252, 210)})
            EXPECT_EQ(Tap(at.x(), at.y()), Ids{id}) << at.x() << "," << at.y();
        Put(id, 450, 350, 1, 1);
    }
}
