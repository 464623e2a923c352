#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/ControlResources.h"
#include "platform/tests/qt/TestWindow.h"

#include "platform/qt/Window.h"

#include <commctrl.h>
#include <gtest/gtest.h>

#include <QImage>
#include <QPixmap>
#include <QScreen>
#include <QWidget>

#include <algorithm>
#include <utility>
#include <vector>

using namespace tavrix::testing;
using tavrix::test::TestWindow;

namespace
{

constexpr int Left = 20;
constexpr int Top = 30;
constexpr int Length = 200;
constexpr int Thickness = 24;

using Told = std::vector<std::pair<int, int>>; // code, position word

class Trackbar : public ::testing::Test
{
protected:
    Trackbar()
        : parent(
              [this](HWND, UINT message, WPARAM wParam, LPARAM lParam) -> std::optional<LRESULT> {
                  if (message != WM_HSCROLL && message != WM_VSCROLL)
                      return std::nullopt;
                  EXPECT_EQ(message == WM_VSCROLL, upright);
                  EXPECT_EQ(reinterpret_cast<HWND>(lParam), bar);
                  told.emplace_back(LOWORD(wParam), HIWORD(wParam));
                  if (handler)
                      handler();
                  return 0;
              })
    {
    }

    void Make(DWORD style = 0, int lowest = 0, int highest = 100, int position = 50)
    {
        upright = (style & TBS_VERT) != 0;
        bar = CreateWindowExW(0, TRACKBAR_CLASSW, TEXT(""), WS_CHILD | WS_VISIBLE | style, Left,
                              Top, upright ? Thickness : Length, upright ? Length : Thickness,
                              parent.handle, nullptr, nullptr, nullptr);
        ASSERT_NE(bar, nullptr);
        Send(TBM_SETRANGE, TRUE, MAKELPARAM(lowest, highest));
        Send(TBM_SETPOS, TRUE, position);
        Pump(20);
    }

    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0)
    {
        return SendMessageW(bar, message, wParam, lParam);
    }
    int Position() { return static_cast<int>(Send(TBM_GETPOS)); }

    bool upright = false;
    HWND bar = nullptr;
    Told told;
    std::function<void()> handler;
    TestWindow parent;
};

} // namespace

TEST_F(Trackbar, APositionStaysInsideTheRangeAndNothingThatIsSetIsTold)
{
    Make();
    Send(TBM_SETRANGE, TRUE, 0x640001);
    EXPECT_EQ(Send(TBM_GETRANGEMIN), 1);
    EXPECT_EQ(Send(TBM_GETRANGEMAX), 100);
    const std::pair<int, int> wanted[] = {{0, 1},     {1, 1},       {57, 57},
                                          {100, 100}, {30000, 100}, {-5, 1}};
    for (const auto& [set, got] : wanted) {
        Send(TBM_SETPOS, TRUE, set);
        EXPECT_EQ(Position(), got);
    }
    Send(TBM_SETRANGE, TRUE, 0x1000001);
    Send(TBM_SETPOS, TRUE, 256);
    EXPECT_EQ(Position(), 256);
    Send(TBM_SETRANGEMAX, TRUE, 40);
    EXPECT_EQ(Position(), 40);
    Send(TBM_SETPOS, TRUE, 2);
    Send(TBM_SETRANGEMIN, TRUE, 12);
    EXPECT_EQ(Position(), 12);
    Send(TBM_SETRANGE, TRUE, MAKELPARAM(9, 3));
    EXPECT_EQ(Send(TBM_GETRANGEMAX), 9) << "a range that runs backwards is one position";
    EXPECT_EQ(Position(), 9);
    Pump(20);
    EXPECT_TRUE(told.empty());
}

TEST_F(Trackbar, APageIsAFifthOfTheRangeUntilItIsSet)
{
    Make(0, 0, 255);
    EXPECT_EQ(Send(TBM_GETLINESIZE), 1);
    EXPECT_EQ(Send(TBM_GETPAGESIZE), 51);
    EXPECT_EQ(Send(TBM_SETPAGESIZE, 0, 7), 51);
    Send(TBM_SETRANGE, TRUE, MAKELPARAM(0, 1000));
    EXPECT_EQ(Send(TBM_SETPAGESIZE, 0, -1), 7);
    EXPECT_EQ(Send(TBM_GETPAGESIZE), 200);
    EXPECT_EQ(Send(TBM_SETLINESIZE, 0, 4), 1);
    EXPECT_EQ(Send(TBM_GETLINESIZE), 4);
    Send(TBM_SETRANGE, TRUE, MAKELPARAM(0, 2));
    EXPECT_EQ(Send(TBM_GETPAGESIZE), 1);
}

TEST_F(Trackbar, KeysStepByLinesByPagesAndToTheEnds)
{
    Make();
    SetFocus(bar);
    EXPECT_EQ(GetFocus(), bar);
    const struct {
        int key;
        int code;
        int position;
    } steps[] = {{VK_RIGHT, TB_LINEDOWN, 51}, {VK_DOWN, TB_LINEDOWN, 52}, {VK_LEFT, TB_LINEUP, 51},
                 {VK_UP, TB_LINEUP, 50},      {VK_NEXT, TB_PAGEDOWN, 70}, {VK_PRIOR, TB_PAGEUP, 50},
                 {VK_END, TB_BOTTOM, 100},    {VK_HOME, TB_TOP, 0}};
    for (const auto& step : steps) {
        told.clear();
        TypeKey(step.key);
        Pump(5);
        EXPECT_EQ(Position(), step.position) << "key " << step.key;
        EXPECT_EQ(told, (Told{{step.code, 0}, {TB_ENDTRACK, 0}})) << "key " << step.key;
    }
    told.clear();
    TypeKey(VK_LEFT);
    TypeKey('A');
    Pump(5);
    EXPECT_EQ(told, (Told{{TB_ENDTRACK, 0}})) << "no step leads beyond the end";
}

TEST_F(Trackbar, APressInTheGroovePagesOverTheWholeHeight)
{
    Make();
    ClickScreen(Left + Length - 1, Top);
    EXPECT_EQ(Position(), 70);
    EXPECT_EQ(told, (Told{{TB_PAGEDOWN, 0}, {TB_ENDTRACK, 0}}));
    ClickScreen(Left + Length - 1, Top + Thickness - 1);
    EXPECT_EQ(Position(), 90);
    DoubleClickScreen(Left + 1, Top + Thickness / 2);
    EXPECT_EQ(Position(), 50) << "both presses of a double click page";
    RightClickScreen(Left + 1, Top + 2);
    EXPECT_EQ(Position(), 50);
}

TEST_F(Trackbar, HeldInTheGrooveItPagesUntilTheThumbIsThere)
{
    Make(0, 0, 100, 0);
    PressScreen(Left + Length / 2, Top + 5);
    EXPECT_EQ(Position(), 20);
    ASSERT_TRUE(PumpUntil([this] { return Position() > 20; }, 5000));
    Pump(600);
    // In the middle lies 50; the page after 40 reaches or passes it.
    EXPECT_EQ(Position(), 60);
    ReleaseScreen(Left + Length / 2, Top + 5);
    Pump(300);
    EXPECT_EQ(Position(), 60);
    EXPECT_EQ(told.back(), (std::pair<int, int>{TB_ENDTRACK, 0}));
}

TEST_F(Trackbar, TheThumbFollowsTheHeldPointerAlsoBeyondTheEdges)
{
    Make(0, 0, 255, 128);
    // The whole height takes the thumb.
    const int middle = Left + Length / 2;
    PressScreen(middle, Top + 1);
    Pump(5);
    EXPECT_EQ(Position(), 128) << "a press on the thumb moves nothing";
    EXPECT_TRUE(told.empty());
    int before = 128;
    for (int x = middle + 7; x <= middle + 70; x += 7) {
        MoveScreen(x, Top + 3);
        EXPECT_GT(Position(), before);
        before = Position();
        EXPECT_EQ(told.back(), (std::pair<int, int>{TB_THUMBTRACK, before}));
    }
    MoveScreen(Left + Length + 300, Top + 200);
    EXPECT_EQ(Position(), 255);
    MoveScreen(-40, Top - 100);
    EXPECT_EQ(Position(), 0);
    MoveScreen(middle, 400);
    EXPECT_EQ(Position(), 128) << "where it was taken";
    told.clear();
    ReleaseScreen(middle, 400);
    Pump(5);
    EXPECT_EQ(told, (Told{{TB_THUMBPOSITION, 128}, {TB_ENDTRACK, 0}}));
    told.clear();
    MoveScreen(middle + 30, Top + 3);
    EXPECT_EQ(Position(), 128);
    EXPECT_TRUE(told.empty());
}

TEST_F(Trackbar, AFineRangeIsNotRoundedByTakingTheThumb)
{
    Make(0, 0, 30000, 12345);
    const int thumb = Left + 7 + (Length - 14) * 12345 / 30000;
    PressScreen(thumb, Top + 12);
    MoveScreen(thumb, Top + 20);
    EXPECT_EQ(Position(), 12345);
    ReleaseScreen(thumb, Top + 20);
    EXPECT_EQ(told, (Told{{TB_THUMBPOSITION, 12345}, {TB_ENDTRACK, 0}}));
}

TEST_F(Trackbar, AnUprightOneHasItsLowestPositionAtTheTop)
{
    Make(TBS_VERT);
    ClickScreen(Left + 3, Top + 2);
    EXPECT_EQ(Position(), 30);
    EXPECT_EQ(told.front(), (std::pair<int, int>{TB_PAGEUP, 0}));
    Send(TBM_SETPOS, TRUE, 0);
    DragScreen(Left + 3, Top + 7, Left + 3, Top + Length + 50);
    EXPECT_EQ(Position(), 100);
}

TEST_F(Trackbar, TheThumbStandsWhereThePositionIs)
{
    Make(0, 0, 100, 0);
    const Picture first = WindowPixels(bar);
    for (const int position : {50, 100}) {
        Send(TBM_SETPOS, TRUE, position);
        Pump(20);
        const Picture now = WindowPixels(bar);
        // What differs from the thumb at 0 is that place and the new one.
        const int start = (Length - 14) * position / 100;
        std::vector<bool> differs(Length, false);
        for (int x = 0; x < Length; ++x)
            for (int y = 0; y < Thickness; ++y)
                differs[static_cast<size_t>(x)] =
                    differs[static_cast<size_t>(x)] || first.At(x, y) != now.At(x, y);
        for (int x = 0; x < Length; ++x) {
            const bool inOld = x >= 1 && x < 13;
            const bool inNew = x >= start + 1 && x < start + 13;
            const bool outside = x > 14 && (x < start - 1 || x > start + 14);
            if (inOld || inNew) {
                EXPECT_TRUE(differs[static_cast<size_t>(x)]) << x << " at " << position;
            } else if (outside) {
                EXPECT_FALSE(differs[static_cast<size_t>(x)]) << x << " at " << position;
            }
        }
    }
}

TEST_F(Trackbar, TheScreenItselfFollowsThePositionWithoutBeingAsked)
{
    Make(0, 0, 100, 0);
    const auto shown = [](int x) {
        QWidget* screen = tavrix::platform::ScreenWidget();
        const QImage picture = screen->screen()->grabWindow(screen->winId()).toImage();
        return picture.pixel(Left + x, Top + 5);
    };
    constexpr int First = 7;
    constexpr int Last = Length - 7;
    ASSERT_TRUE(PumpUntil([&] { return shown(First) != shown(Length / 2); }, 3000));
    const auto ground = shown(Length / 2);
    EXPECT_EQ(shown(Last), ground);
    Send(TBM_SETPOS, TRUE, 100);
    EXPECT_TRUE(PumpUntil([&] { return shown(Last) != ground && shown(First) == ground; }, 3000));
}

TEST_F(Trackbar, ADisabledOneTakesNothingLooksSoAndLetsGoOfTheThumb)
{
    Make();
    const Picture enabled = WindowPixels(bar);
    PressScreen(Left + Length / 2, Top + 8);
    EnableWindow(bar, FALSE);
    EXPECT_EQ(told, (Told{{TB_THUMBPOSITION, 50}, {TB_ENDTRACK, 0}}));
    Pump(20);
    MoveScreen(Left + Length, Top + 8);
    ReleaseScreen(Left + Length, Top + 8);
    ClickScreen(Left + Length - 1, Top + 8);
    Pump(20);
    EXPECT_EQ(Position(), 50);
    EXPECT_NE(enabled.pixels, WindowPixels(bar).pixels);
    EnableWindow(bar, TRUE);
    ClickScreen(Left + Length - 1, Top + 8);
    EXPECT_EQ(Position(), 70);
}

TEST_F(Trackbar, AParentThatDestroysItMidwayDoesNoHarm)
{
    for (const bool groove : {false, true}) {
        Make();
        handler = [this] { DestroyWindow(bar); };
        const int x = Left + Length / 2 + (groove ? 60 : 0);
        PressScreen(x, Top + 8);
        MoveScreen(x + 9, Top + 8);
        EXPECT_FALSE(IsWindow(bar));
        ReleaseScreen(x + 9, Top + 8);
        Pump(20);
        handler = nullptr;
    }
}

// A colour chooser of one part: the procedure that it puts in front of its trackbar has the dialog
// draw, and only then passes the message on, so that the swatch shows the position before it.
namespace
{

struct Chooser {
    WNDPROC before = nullptr;
    std::function<bool(UINT& message, WPARAM& wParam, LPARAM& lParam)> change; // false: swallow
    std::vector<std::pair<UINT, WPARAM>> seen;
    std::vector<int> drawn; // positions
};
Chooser chooser;

bool IsWatched(UINT message, WPARAM wParam)
{
    return message == WM_KEYDOWN || message == WM_KEYUP || message == WM_LBUTTONDOWN ||
           message == WM_LBUTTONUP || (message == WM_MOUSEMOVE && wParam == MK_LBUTTON);
}

LRESULT CALLBACK InFront(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (IsWatched(message, wParam)) {
        chooser.seen.emplace_back(message, wParam);
        SendMessageW(GetParent(window), WM_COMMAND, 1200, 0);
        if (chooser.change && !chooser.change(message, wParam, lParam))
            return 0;
    }
    return CallWindowProcW(chooser.before, window, message, wParam, lParam);
}

INT_PTR CALLBACK ChooserProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM)
{
    if (message != WM_COMMAND || LOWORD(wParam) != 1200)
        return message == WM_INITDIALOG;
    const int position = static_cast<int>(SendDlgItemMessageW(dialog, 1200, TBM_GETPOS, 0, 0));
    chooser.drawn.push_back(position);
    const HWND swatch = GetDlgItem(dialog, 1037);
    const HDC dc = GetDC(swatch);
    const HBRUSH brush = CreateSolidBrush(RGB(position, 0, 0));
    const RECT area{0, 0, 100, 100};
    FillRect(dc, &area, brush);
    DeleteObject(brush);
    ReleaseDC(swatch, dc);
    return TRUE;
}

class Choosing : public ::testing::Test
{
protected:
    Choosing()
    {
        chooser = {};
        dialog = CreateDialogIndirectParamW(ControlResources(), DialogResource(221), nullptr,
                                            ChooserProcedure, 0);
        bar = GetDlgItem(dialog, 1200);
        SendMessageW(bar, TBM_SETRANGE, TRUE, MAKELPARAM(0, 255));
        SendMessageW(bar, TBM_SETPOS, TRUE, 100);
        chooser.before = reinterpret_cast<WNDPROC>(
            SetWindowLongPtrW(bar, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(InFront)));
        ShowWindow(dialog, SW_SHOW);
        SetFocus(bar);
        Pump(30);
        GetWindowRect(bar, &place);
        y = place.top + 5;
        thumb = place.left + 7 + (place.right - place.left - 14) * 100 / 255;
    }
    ~Choosing() override { DestroyWindow(dialog); }

    int Position() { return static_cast<int>(SendMessageW(bar, TBM_GETPOS, 0, 0)); }
    uint32_t Swatch()
    {
        Pump(10);
        return WindowPixels(GetDlgItem(dialog, 1037)).At(2, 2);
    }

    Scope scope;
    HWND dialog = nullptr;
    HWND bar = nullptr;
    RECT place{};
    int y = 0;
    int thumb = 0;
};

} // namespace

TEST_F(Choosing, APictureThatIsDrawnInFrontShowsThePositionBeforeEachEvent)
{
    HoldKey(VK_RIGHT, true);
    EXPECT_EQ(Swatch(), 100u << 16);
    EXPECT_EQ(Position(), 101);
    HoldKey(VK_RIGHT, false);
    EXPECT_EQ(Swatch(), 101u << 16);
    PressScreen(thumb, y);
    MoveScreen(thumb + 20, y);
    EXPECT_EQ(Swatch(), 101u << 16);
    const int first = Position();
    EXPECT_GT(first, 101);
    MoveScreen(thumb + 40, y + 200);
    EXPECT_EQ(Swatch(), static_cast<uint32_t>(first) << 16);
    const int second = Position();
    EXPECT_GT(second, first);
    ReleaseScreen(thumb + 40, y + 200);
    EXPECT_EQ(Swatch(), static_cast<uint32_t>(second) << 16);
    EXPECT_EQ(chooser.seen, (std::vector<std::pair<UINT, WPARAM>>{{WM_KEYDOWN, VK_RIGHT},
                                                                  {WM_KEYUP, VK_RIGHT},
                                                                  {WM_LBUTTONDOWN, MK_LBUTTON},
                                                                  {WM_MOUSEMOVE, MK_LBUTTON},
                                                                  {WM_MOUSEMOVE, MK_LBUTTON},
                                                                  {WM_LBUTTONUP, 0}}));
    EXPECT_EQ(chooser.drawn, (std::vector<int>{100, 101, 101, 101, first, second}));
}

TEST_F(Choosing, WhatIsKeptOrChangedInFrontIsWhatTheTrackbarSees)
{
    chooser.change = [](UINT& message, WPARAM& wParam, LPARAM&) {
        if (message == WM_KEYDOWN && wParam == VK_LEFT)
            wParam = VK_RIGHT;
        return wParam != VK_END && message != WM_LBUTTONDOWN;
    };
    TypeKey(VK_LEFT);
    EXPECT_EQ(Position(), 101);
    TypeKey(VK_END);
    EXPECT_EQ(Position(), 101);
    DragScreen(thumb, y, thumb + 30, y);
    EXPECT_EQ(Position(), 101);
    // In place of the groove's left end the press comes to its right end.
    chooser.change = [this](UINT&, WPARAM&, LPARAM& lParam) {
        lParam = MAKELPARAM(place.right - place.left - 1, 2);
        return true;
    };
    ClickScreen(place.left + 1, y);
    EXPECT_EQ(Position(), 152);
}

TEST_F(Choosing, TabReachesATrackbarAndPassesADisabledOne)
{
    TypeKey(VK_TAB);
    EXPECT_EQ(GetFocus(), GetDlgItem(dialog, 1));
    const Picture without = WindowPixels(bar);
    TypeKey(VK_TAB);
    EXPECT_EQ(GetFocus(), bar);
    EXPECT_NE(WindowPixels(bar).pixels, without.pixels) << "it shows that it has the keyboard";
    TypeKey(VK_RIGHT);
    EXPECT_EQ(Position(), 101) << "arrows are the trackbar's, not the dialog's";
}
