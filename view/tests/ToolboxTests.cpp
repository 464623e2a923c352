// The toolbox over the real platform: its place, its picture, the drag and the click.

#include "view/Toolbox.h"

#include "platform/testing/Faults.h"
#include "view/tests/ToolWindowTesting.h"

using namespace toolwindowtest;

namespace
{

int clicks = 0;

void CountClick()
{
    ++clicks;
}

class ToolboxTest : public Windows
{
protected:
    ToolboxTest()
    {
        clicks = 0;
        toolbox = CreateToolbox(owner, instance, {0, 24.9, CountClick});
    }

    /// Asks for a cell and gives what the window then shows.
    Picture Showing(WPARAM column, LPARAM row)
    {
        SendMessageW(toolbox, WM_APP, column, row);
        Pump(40);
        return WindowPixels(toolbox);
    }

    void Show()
    {
        ShowWindow(toolbox, SW_SHOW);
        Pump(40);
    }

    HWND toolbox = nullptr;
};

} // namespace

TEST_F(ToolboxTest, ItStandsHiddenAtTheRightEdgeBelowTheCommandBar)
{
    const RECT place = PlaceOf(toolbox);
    EXPECT_EQ(place.right, GetSystemMetrics(SM_CXSCREEN));
    EXPECT_EQ(place.top, 24) << "truncated";
    EXPECT_EQ(place.right - place.left, 44);
    EXPECT_EQ(place.bottom - place.top, 31);
    EXPECT_FALSE(IsWindowVisible(toolbox));
    EXPECT_EQ(GetParent(toolbox), owner);
    EXPECT_EQ(FindWindowW(nullptr, TEXT("Tavrix Toolbox")), toolbox);
}

TEST_F(ToolboxTest, TheClientAreaIsTheWindow)
{
    POINT corner = {0, 0};
    RECT area = {};
    ClientToScreen(toolbox, &corner);
    GetClientRect(toolbox, &area);
    EXPECT_EQ(corner.x, PlaceOf(toolbox).left);
    EXPECT_EQ(corner.y, PlaceOf(toolbox).top);
    EXPECT_EQ(area.right, 44);
    EXPECT_EQ(area.bottom, 31);
}

TEST_F(ToolboxTest, TheTitleLiesInTheFirstElevenRowsAndTheSymbolRightOfTheCell)
{
    const POINT corner = CornerOf(toolbox);
    const RECT title = PlaceOf(GetDlgItem(toolbox, 1048));
    EXPECT_EQ(title.left - corner.x, 0);
    EXPECT_EQ(title.top - corner.y, 0);
    EXPECT_EQ(title.right - title.left, 44);
    EXPECT_EQ(title.bottom - title.top, 11);
    const RECT symbol = PlaceOf(GetDlgItem(toolbox, 1049));
    EXPECT_EQ(symbol.left - corner.x, 22);
    EXPECT_EQ(symbol.top - corner.y, 11);
    EXPECT_EQ(symbol.bottom - symbol.top, 20);
}

TEST_F(ToolboxTest, EachOfTheNineColumnsShowsItsCellBelowTheTitle)
{
    Show();
    for (int column = 0; column < 9; ++column) {
        const Picture picture = Showing(static_cast<WPARAM>(column), 0);
        for (int y = 0; y < 20; ++y)
            for (int x = 0; x < 20; ++x)
                ASSERT_EQ(picture.At(x, 11 + y), StripColor(20 * column + x, y))
                    << "column " << column << " at " << x << ", " << y;
        EXPECT_EQ(picture.At(20, 15), FaceColor);
        EXPECT_EQ(picture.At(21, 30), FaceColor);
    }
}

TEST_F(ToolboxTest, NoOtherColumnOrRowShowsACell)
{
    Show();
    const struct {
        WPARAM column;
        LPARAM row;
    } cells[] = {{static_cast<WPARAM>(-1), -1},
                 {9, 0},
                 {0, 1},
                 {4, 1},
                 {0x7FFFFFFF, 0x7FFFFFFF},
                 {0x80000000, static_cast<LPARAM>(0x80000000)},
                 {1000000, -1000000},
                 {static_cast<WPARAM>(-9), 0}};
    for (const auto& cell : cells) {
        (void)Showing(5, 0); // something to be taken away
        const Picture picture = Showing(cell.column, cell.row);
        for (int y = 11; y < 31; ++y)
            for (int x = 0; x < 22; ++x)
                ASSERT_EQ(picture.At(x, y), FaceColor)
                    << cell.column << ", " << cell.row << " at " << x << ", " << y;
    }
}

TEST_F(ToolboxTest, ACellShowsAgainAfterTheWindowWasHidden)
{
    Show();
    (void)Showing(4, 0);
    ShowWindow(toolbox, SW_HIDE);
    (void)Showing(6, 0);
    Show();
    const Picture picture = WindowPixels(toolbox);
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 20; ++x)
            ASSERT_EQ(picture.At(x, 11 + y), StripColor(120 + x, y));
}

TEST_F(ToolboxTest, TheLastRowOfTheTitleDragsAndTheRowBelowClicks)
{
    Show();
    ClickIn(toolbox, 5, 11);
    EXPECT_EQ(clicks, 0);
    PressIn(toolbox, 5, 11);
    EXPECT_EQ(GetCapture(), toolbox);
    const POINT corner = CornerOf(toolbox);
    ReleaseScreen(corner.x + 5, corner.y + 11);
    Pump(20);
    EXPECT_EQ(GetCapture(), nullptr);

    PressIn(toolbox, 5, 12);
    EXPECT_EQ(clicks, 1);
    EXPECT_EQ(GetCapture(), nullptr);
    ReleaseScreen(corner.x + 5, corner.y + 12);
    Pump(20);
    ClickIn(toolbox, 30, 20); // on the symbol
    EXPECT_EQ(clicks, 2);
}

TEST_F(ToolboxTest, TheWindowFollowsThePointerAndTheLift)
{
    Show();
    const POINT corner = CornerOf(toolbox);
    PressIn(toolbox, 10, 4);
    MoveScreen(corner.x + 10 - 100, corner.y + 4 + 50);
    Pump(20);
    ExpectCorner(toolbox, corner.x - 100, corner.y + 50);
    ReleaseScreen(corner.x + 10 - 130, corner.y + 4 + 70);
    Pump(20);
    ExpectCorner(toolbox, corner.x - 130, corner.y + 70);
    EXPECT_EQ(GetCapture(), nullptr);
    MoveScreen(50, 50);
    Pump(20);
    ExpectCorner(toolbox, corner.x - 130, corner.y + 70);
}

TEST_F(ToolboxTest, TheLiftTakesTheWindowAlongWithoutAMoveBefore)
{
    Show();
    const POINT corner = CornerOf(toolbox);
    SendMessageW(toolbox, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(10, 4));
    SendMessageW(toolbox, WM_LBUTTONUP, 0, MAKELPARAM(-7, 34));
    ExpectCorner(toolbox, corner.x - 17, corner.y + 30);
    SendMessageW(toolbox, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(60, 60));
    ExpectCorner(toolbox, corner.x - 17, corner.y + 30);
}

TEST_F(ToolboxTest, AFastDragWhoseStepsWaitInTheQueueEndsAtThePointer)
{
    Show();
    const POINT corner = CornerOf(toolbox);
    DragScreen(corner.x + 10, corner.y + 4, corner.x + 10 - 200, corner.y + 4 + 90);
    Pump(30);
    ExpectCorner(toolbox, corner.x - 200, corner.y + 90);
}

TEST_F(ToolboxTest, ItCanBeDraggedOutOfTheScreenOnEverySide)
{
    Show();
    SetWindowPos(toolbox, nullptr, 100, 100, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    const int width = GetSystemMetrics(SM_CXSCREEN);
    const int height = GetSystemMetrics(SM_CYSCREEN);
    const POINT ends[] = {{-300, 200}, {200, -250}, {width + 60, 200}, {200, height + 70}};
    for (const POINT& end : ends) {
        SetWindowPos(toolbox, nullptr, 100, 100, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
        Pump(20);
        PressScreen(110, 105);
        MoveScreen(end.x, end.y);
        Pump(20);
        ExpectCorner(toolbox, end.x - 10, end.y - 5);
        ReleaseScreen(end.x, end.y);
        Pump(20);
        ExpectCorner(toolbox, end.x - 10, end.y - 5);
        EXPECT_EQ(GetCapture(), nullptr);
    }
}

TEST_F(ToolboxTest, AnotherWindowsCaptureEndsTheDrag)
{
    Show();
    const POINT corner = CornerOf(toolbox);
    PressIn(toolbox, 10, 4);
    SetCapture(owner);
    SendMessageW(toolbox, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(60, 60));
    SendMessageW(toolbox, WM_LBUTTONUP, 0, MAKELPARAM(60, 60));
    ExpectCorner(toolbox, corner.x, corner.y);
    EXPECT_EQ(GetCapture(), owner);
    ReleaseCapture();
    ReleaseScreen(corner.x + 10, corner.y + 4);
    Pump(20);
}

TEST_F(ToolboxTest, AToolAndTheBackgroundsQuestionEachPostAPaint)
{
    Show();
    MSG message = {};
    ASSERT_FALSE(PeekMessageW(&message, toolbox, WM_PAINT, WM_PAINT, PM_REMOVE));
    SendMessageW(toolbox, WM_APP, 4, 0);
    EXPECT_TRUE(PeekMessageW(&message, toolbox, WM_PAINT, WM_PAINT, PM_REMOVE));
    EXPECT_FALSE(PeekMessageW(&message, toolbox, WM_PAINT, WM_PAINT, PM_REMOVE));
    EXPECT_EQ(SendMessageW(toolbox, WM_CTLCOLORDLG, 0, reinterpret_cast<LPARAM>(toolbox)),
              reinterpret_cast<LRESULT>(GetStockObject(5)));
    EXPECT_TRUE(PeekMessageW(&message, toolbox, WM_PAINT, WM_PAINT, PM_REMOVE));
    EXPECT_FALSE(PeekMessageW(&message, toolbox, WM_PAINT, WM_PAINT, PM_REMOVE));
}

TEST_F(ToolboxTest, AtRestItPaintsNothing)
{
    Show();
    static int paints;
    static WNDPROC before;
    paints = 0;
    before = reinterpret_cast<WNDPROC>(SetWindowLongPtrW(
        toolbox, GWLP_WNDPROC,
        reinterpret_cast<LONG_PTR>(+[](HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
            paints += message == WM_PAINT;
            return CallWindowProcW(before, window, message, wParam, lParam);
        })));
    SendMessageW(toolbox, WM_APP, 4, 0);
    InvalidateRect(toolbox, nullptr, TRUE);
    Pump(100);
    EXPECT_GE(paints, 2);
    paints = 0;
    Pump(200);
    EXPECT_EQ(paints, 0);
}

TEST_F(ToolboxTest, ItGoesWithItsOwnerAndLeavesNothing)
{
    DestroyWindow(owner);
    EXPECT_FALSE(IsWindow(toolbox));
    EXPECT_EQ(FindWindowW(nullptr, TEXT("Tavrix Toolbox")), nullptr);
}

TEST_F(ToolboxTest, WithoutACallbackAClickDoesNothing)
{
    const HWND mute = CreateToolbox(owner, instance, {0, 100, nullptr});
    ShowWindow(mute, SW_SHOW);
    Pump(20);
    ClickIn(mute, 5, 20);
    EXPECT_TRUE(IsWindow(mute));
    EXPECT_EQ(clicks, 0);
}

TEST_F(ToolboxTest, WithoutItsTemplateThereIsNoWindow)
{
    const HMODULE other = LoadLibraryW(TEXT("ceshell.dll"));
    ASSERT_NE(other, nullptr);
    EXPECT_EQ(CreateToolbox(owner, other, {0, 0, CountClick}), nullptr);
    FreeLibrary(other);
}

TEST_F(ToolboxTest, AnyShortageOfMemoryIsSurvivedAndLeavesNothing)
{
    unsigned made = 0;
    ForEveryFault(FaultKind::Allocation, [&] {
        const HWND window = CreateToolbox(owner, instance, {0, 200, CountClick});
        made += window != nullptr;
        ShowWindow(window, SW_SHOW);
        SendMessageW(window, WM_APP, 4, 0);
        SendMessageW(window, WM_PAINT, 0, 0);
        SendMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 12));
        DestroyWindow(window);
        Pump(5);
    });
    EXPECT_GT(made, 1u) << "most of what can fail leaves the window working";
}
