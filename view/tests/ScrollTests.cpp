// Scrolling by keys, fitting at the ends of the numbers, and the conversions where the zoom is 0.

#include "view/tests/PenTesting.h"

using namespace pentest;

TEST(ScrollKeys, AStepIsTenScreenPixelsAtEveryZoomAndHasNoLimit)
{
    PenFrame frame;
    frame.Show(457, 333);
    for (u32 zoom : zooms) {
        frame.Zoom(zoom);
        const f64 x = frame.scrollX;
        const f64 y = frame.scrollY;
        const f64 step = frame.zoom * 10;
        frame.ScrollByKeys(40165);
        EXPECT_NEAR(frame.scrollX, x + step, 1e-9);
        frame.ScrollByKeys(40166);
        frame.ScrollByKeys(40166);
        EXPECT_NEAR(frame.scrollX, x - step, 1e-9);
        EXPECT_EQ(frame.scrollY, y);
        for (int i = 0; i < 200; ++i)
            frame.ScrollByKeys(40168);
        EXPECT_NEAR(frame.scrollY, y - 200 * step, 1e-6);
        frame.ScrollByKeys(40167);
        EXPECT_NEAR(frame.scrollY, y - 199 * step, 1e-6);
        ExpectSame(PixelsOf(frame.viewRaster), std::vector<u32>(640 * 480, 0), 640);
    }
}

TEST(ScrollKeys, ASecondKeyThatIsHeldAddsItsOwnMovement)
{
    PenFrame frame;
    frame.Show(900, 700);
    frame.Zoom(CommandZoom200);
    SetForegroundWindow(frame.window);
    const struct {
        u32 command;
        int held;
        f64 x;
        f64 y;
    } rows[] = {
        {40165, VK_UP, 5, 5},
        {40165, VK_DOWN, 5, -5},
        {40166, VK_UP, -5, 5},
        {40166, VK_DOWN, -5, -5},
        {40167, VK_LEFT, 5, 5},
        {40167, VK_RIGHT, -5, 5},
        {40168, VK_LEFT, 5, -5},
        {40168, VK_RIGHT, -5, -5},
        // A key of the same direction, and the command's own, add nothing.
        {40165, VK_RIGHT, 5, 0},
        {40166, VK_LEFT, -5, 0},
        {40168, VK_UP, 0, -5},
        {40165, VK_LEFT, 5, 0},
        {40167, VK_DOWN, 0, 5},
        {40167, VK_UP, 0, 5},
        {40166, VK_SHIFT, -5, 0},
    };
    for (const auto& row : rows) {
        HoldKey(row.held, true);
        ASSERT_TRUE(PumpUntil([&] { return GetAsyncKeyState(row.held) < 0; }));
        frame.scrollX = 0;
        frame.scrollY = 0;
        frame.ScrollByKeys(row.command);
        EXPECT_EQ(frame.scrollX, row.x) << row.command << " with " << row.held;
        EXPECT_EQ(frame.scrollY, row.y) << row.command << " with " << row.held;
        HoldKey(row.held, false);
        ASSERT_TRUE(PumpUntil([&] { return GetAsyncKeyState(row.held) >= 0; }));
    }
}

TEST(ScrollKeys, BothKeysOfTheOtherDirectionCancelEachOther)
{
    PenFrame frame;
    frame.Show(900, 700);
    SetForegroundWindow(frame.window);
    for (int key : {VK_UP, VK_DOWN})
        HoldKey(key, true);
    ASSERT_TRUE(
        PumpUntil([] { return GetAsyncKeyState(VK_UP) < 0 && GetAsyncKeyState(VK_DOWN) < 0; }));
    frame.ScrollByKeys(40165);
    EXPECT_EQ(frame.scrollX, 10);
    EXPECT_EQ(frame.scrollY, 0);
    for (int key : {VK_UP, VK_DOWN})
        HoldKey(key, false);
    Pump(5);
}

TEST(Fitting, TheHeightForTheWidthIsCountedIn32Bits)
{
    PenFrame frame;
    frame.viewWidth = 240;
    frame.viewHeight = 290;
    // 290 * 14,810,233 = 4,294,967,570 = 2^32 + 274, and 274 / 240 = 1: below the height of 2, so
    // that the height decides, though the picture is far wider than high.
    ASSERT_EQ(frame.image->Create(14810233, 2, 8, nullptr, nullptr), Done);
    frame.FitToWindow(0);
    EXPECT_EQ(frame.zoom, 2.0 / 290);
    // One column less does not come round: 290 * 14,810,232 = 2^32 - 16.
    ASSERT_EQ(frame.image->Create(14810232, 2, 8, nullptr, nullptr), Done);
    frame.FitToWindow(0);
    EXPECT_EQ(frame.zoom, 14810232.0 / 240);
}

TEST(Fitting, WithoutCentringTheScrollStays)
{
    PenFrame frame;
    frame.Show(900, 700);
    frame.scrollX = 12;
    frame.scrollY = 34;
    frame.FitToWindow(0);
    EXPECT_EQ(frame.scrollX, 12);
    EXPECT_EQ(frame.scrollY, 34);
    EXPECT_EQ(frame.zoomCommand, 40020U);
    EXPECT_TRUE(GetMenuState(frame.zoomMenu, 40020, MF_BYCOMMAND) & MF_CHECKED);
    frame.FitToWindow(1);
    // 480 less the command bar and 1 for 700 pixels: the height limits, and the width is centred.
    const f64 zoom = 700.0 / (480 - frame.clientOriginY - 1);
    EXPECT_EQ(frame.zoom, zoom);
    EXPECT_NEAR(frame.scrollX, -(640 * zoom - 900) / 2, 1e-9);
    EXPECT_EQ(frame.scrollY, 0);
}

TEST(Conversions, AZoomOfNothingGivesNumbersAllTheSame)
{
    PenFrame frame;
    frame.FitToWindow(1);
    ASSERT_EQ(frame.zoom, 0);
    EXPECT_EQ(frame.scrollX, 0);
    EXPECT_EQ(frame.scrollY, 0);
    for (f64 value : {0.0, 1.0, -7.5, 1e300}) {
        MainFrame::Point point = {value, -value};
        EXPECT_EQ(frame.ImageToView(&point), 1);
        EXPECT_EQ(point.x, 0);
        EXPECT_EQ(point.y, 0);
        point = {value, -value};
        EXPECT_EQ(frame.ViewToImage(&point), 1);
        EXPECT_EQ(point.x, 0);
        EXPECT_EQ(point.y, 0);
    }
}

TEST(Conversions, APointGoesThereAndBackAtEveryZoom)
{
    PenFrame frame;
    frame.Show(457, 333);
    for (u32 zoom : zooms) {
        frame.Zoom(zoom);
        MainFrame::Point point = {123.25, -45.5};
        frame.ViewToImage(&point);
        EXPECT_NEAR(point.x, frame.zoom * 123.25 + frame.scrollX, 1e-9);
        EXPECT_NEAR(point.y, frame.zoom * -45.5 + frame.scrollY, 1e-9);
        frame.ImageToView(&point);
        EXPECT_NEAR(point.x, 123.25, 1e-9);
        EXPECT_NEAR(point.y, -45.5, 1e-9);
    }
}

TEST(Conversions, TheScreensPointKeepsItsFraction)
{
    PenFrame frame;
    POINT origin = {0, 0};
    ASSERT_TRUE(ClientToScreen(frame.window, &origin));
    MainFrame::Point point = {10.75, -3.25};
    EXPECT_EQ(frame.WindowToScreen(&point), 1);
    EXPECT_EQ(point.x, origin.x + 10.75);
    EXPECT_EQ(point.y, origin.y - 3.25);
    EXPECT_EQ(frame.ScreenToWindow(&point), 1);
    EXPECT_EQ(point.x, 10.75);
    EXPECT_EQ(point.y, -3.25);
}
