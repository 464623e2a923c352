// What the main window answers to the messages that bring no command, what stands at its start, its
// menus by themselves, and its way out.

#include "shell/tests/FlowTesting.h"

#include <commctrl.h>
#include <handheld.h>

#include <cstring>

using namespace flowtest;

namespace
{

/// What the device has at the screen's lower edge.
HWND MakeTaskBar(int height)
{
    WNDCLASSW record = {};
    record.lpfnWndProc = DefWindowProcW;
    record.hInstance = GetModuleHandleW(nullptr);
    record.lpszClassName = TEXT("HHTaskBar");
    RegisterClassW(&record);
    return CreateWindowExW(0, TEXT("HHTaskBar"), TEXT(""), WS_VISIBLE, 0, 480 - height, 640, height,
                           nullptr, nullptr, record.hInstance, nullptr);
}

bool IsChecked(HMENU menu, UINT item)
{
    return (GetMenuState(menu, item, MF_BYCOMMAND) & MF_CHECKED) != 0;
}

} // namespace

TEST(FrameMessages, AStaticsColourThePenThePaintTheSizeAndTheTimerAreAnsweredWithZero)
{
    RunOnPicture([](MainFrame& frame) {
        for (const UINT message :
             {UINT{WM_CTLCOLORSTATIC}, UINT{WM_LBUTTONDOWN}, UINT{WM_MOUSEMOVE}, UINT{WM_LBUTTONUP},
              UINT{WM_PAINT}, UINT{WM_SIZE}, UINT{WM_TIMER}})
            EXPECT_EQ(SendMessageW(frame.window, message, 0, MAKELPARAM(5, 60)), 0) << message;
    });
}

TEST(FrameMessages, TheSmallIconIsTheWindowsAndThereIsNoLargeOne)
{
    RunOnPicture([](MainFrame& frame) {
        ASSERT_NE(frame.smallIcon, nullptr);
        EXPECT_EQ(SendMessageW(frame.window, WM_GETICON, ICON_SMALL, 0),
                  reinterpret_cast<LRESULT>(frame.smallIcon));
        EXPECT_EQ(SendMessageW(frame.window, WM_GETICON, ICON_BIG, 0), 0);
    });
}

// Unsaved work is dropped without a question.
TEST(FrameMessages, TheCloseIsAnsweredWithZeroAsksNothingAndLeavesTheWindow)
{
    RunOnPicture([](MainFrame& frame) {
        const Answering answering;
        ASSERT_EQ(frame.image->SetPixel(0, 0, 0x123456FF), Done);
        EXPECT_EQ(SendMessageW(frame.window, WM_CLOSE, 0, 0), 0);
        EXPECT_TRUE(IsWindow(frame.window));
        EXPECT_TRUE(IsWindowVisible(frame.window));
        EXPECT_EQ(frame.handOvers.closed, 1u);
        EXPECT_TRUE(answering.Boxes().empty());
    });
}

TEST(FrameMessages, ExitOnlyPostsTheClose)
{
    RunOnPicture([](MainFrame& frame) {
        Send(frame, 40002);
        EXPECT_EQ(frame.handOvers.closed, 0u);
        MSG message = {};
        EXPECT_TRUE(PeekMessageW(&message, frame.window, WM_CLOSE, WM_CLOSE, PM_NOREMOVE));
    });
}

TEST(FrameMessages, AdjustingTheWindowFitsCentresAndChecks)
{
    RunOnPicture([](MainFrame& frame) {
        frame.scrollX = 12;
        frame.scrollY = 34;
        Send(frame, 40020);
        // 60 by 50 in a view that is wider: the height limits.
        const f64 zoom = 50.0 / frame.viewHeight;
        EXPECT_EQ(frame.zoom, zoom);
        EXPECT_NEAR(frame.scrollX, -(frame.viewWidth - 60 / zoom) / 2 * zoom, 1e-9);
        EXPECT_EQ(frame.scrollY, 0);
        EXPECT_TRUE(IsChecked(frame.zoomMenu, 40020));
    });
}

// Also what another rule grays again behind it, and what the resource does not gray.
TEST(FrameMenus, APictureEnablesEveryEntryOfItsRuleAndGraysNone)
{
    RunOnPicture([](MainFrame& frame) {
        frame.FetchMenus();
        const struct {
            HMENU menu;
            UINT item;
            UINT by;
        } rows[] = {
            {frame.editMenu, 40056, MF_BYCOMMAND}, {frame.editMenu, 40074, MF_BYCOMMAND},
            {frame.copyMenu, 40036, MF_BYCOMMAND}, {frame.copyMenu, 40194, MF_BYCOMMAND},
            {frame.displayMenu, 2, MF_BYPOSITION}, {frame.displayMenu, 3, MF_BYPOSITION},
            {frame.displayMenu, 5, MF_BYPOSITION},
        };
        for (const auto& row : rows)
            EnableMenuItem(row.menu, row.item, row.by | MF_GRAYED);
        EnableMenuItem(frame.editMenu, 40205, MF_BYCOMMAND | MF_ENABLED);
        frame.EnableImageMenus();
        for (const auto& row : rows)
            EXPECT_EQ(GetMenuState(row.menu, row.item, row.by) & MF_GRAYED, 0u) << row.item;
        EXPECT_FALSE(IsGray(frame.editMenu, 40205));
    });
}

TEST(FrameStart, TheWindowIsAskedForByItsRecord)
{
    MainFrame frame;
    CREATESTRUCTW record;
    std::memset(&record, 0x5A, sizeof record);
    frame.GetCreateParams(&record);
    EXPECT_EQ(record.dwExStyle, 0u);
    EXPECT_EQ(std::u16string(record.lpszClass), u"Tavrix");
    EXPECT_EQ(std::u16string(record.lpszName), u"Tavrix");
    EXPECT_EQ(static_cast<u32>(record.style), 0x10000000u);
    for (const int place : {record.x, record.y, record.cx, record.cy})
        EXPECT_EQ(static_cast<u32>(place), 0x80000000u);
    EXPECT_EQ(record.hwndParent, nullptr);
    EXPECT_EQ(record.hMenu, nullptr);
    EXPECT_EQ(record.hInstance, nullptr);
}

TEST(FrameStart, ATaskBarsHeightIsTakenOffTheView)
{
    InstallKinds();
    const HWND bar = MakeTaskBar(26);
    ASSERT_NE(bar, nullptr);
    RunProgram(u"", [](MainFrame& frame) {
        EXPECT_EQ(frame.viewWidth, 640);
        EXPECT_EQ(frame.viewHeight, 480 - CommandBar_Height(frame.commandBar) - 26 - 1);
    });
    DestroyWindow(bar);
}

// Before the settings are read the surface is one of colours, so that it fails and falls back
// whatever they ask for.
TEST(FrameStart, WithFourGreysAskedForTheMarksFollowAndAPoorDisplayMakesNoDifference)
{
    Scope scope;
    InstallKinds();
    WriteSettings(u"[Tavrix]\r\nScreenMode=1\r\n");
    SetAllocationFault([](SIZE_T size) { return size > 500000; });
    RunProgram(u"", [](MainFrame& frame) {
        SetAllocationFault(nullptr);
        EXPECT_EQ(frame.monoScreen, 1u);
        EXPECT_EQ(frame.surface.Depth(), 2u);
        EXPECT_FALSE(IsChecked(frame.screenMenu, 40203));
        EXPECT_TRUE(IsChecked(frame.screenMenu, 40204));
    });
}
