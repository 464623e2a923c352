// The view's arithmetic on a frame without a window: expected numbers are worked out by hand.

#include "resources/Ids.h"
#include "shell/MainFrame.h"

#include <gtest/gtest.h>

#include <vector>

namespace
{

struct FrameOfView : MainFrame {
    FrameOfView(i32 width, i32 height)
    {
        viewWidth = width;
        viewHeight = height;
    }
    void MakeScreen(i32 width, i32 height)
    {
        screenWidth = width;
        screenHeight = height;
        ASSERT_EQ(viewRaster.Create(static_cast<u32>(width), static_cast<u32>(height), 24, nullptr,
                                    nullptr),
                  Done);
    }
    void Show(u32 width, u32 height)
    {
        ASSERT_EQ(image->Create(width, height, 24, nullptr, nullptr), Done);
        imagePresent = 1;
    }
};

} // namespace

TEST(View, APictureSmallerThanTheViewIsCentred)
{
    FrameOfView frame(240, 290);
    frame.Show(100, 100);
    frame.InitializeView();
    EXPECT_EQ(frame.scrollX, -70);
    EXPECT_EQ(frame.scrollY, -95);
}

TEST(View, APictureOfExactlyTheViewsWidthStartsAtItsOwnEdge)
{
    FrameOfView frame(240, 290);
    frame.Show(240, 290);
    frame.scrollX = 17;
    frame.InitializeView();
    EXPECT_EQ(frame.scrollX, 0);
    EXPECT_EQ(frame.scrollY, 0);
}

TEST(View, EachDirectionIsCentredForItself)
{
    FrameOfView frame(240, 290);
    frame.Show(500, 90);
    frame.InitializeView();
    EXPECT_EQ(frame.scrollX, 0);
    EXPECT_EQ(frame.scrollY, -100);
}

TEST(View, CentringCountsInPicturePixels)
{
    FrameOfView frame(240, 290);
    frame.Show(100, 100);
    frame.zoom = 2.0; // shown as 50 by 50
    frame.InitializeView();
    EXPECT_EQ(frame.scrollX, -190);
    EXPECT_EQ(frame.scrollY, -240);
}

TEST(View, AtHalfSizeAViewPointIsTwiceAsFarInThePicture)
{
    FrameOfView frame(240, 290);
    frame.zoom = 2.0;
    MainFrame::Point point = {10, 10};
    EXPECT_EQ(frame.ViewToImage(&point), 1);
    EXPECT_EQ(point.x, 20);
    EXPECT_EQ(point.y, 20);
    EXPECT_EQ(frame.ImageToView(&point), 1);
    EXPECT_EQ(point.x, 10);
    EXPECT_EQ(point.y, 10);
}

TEST(View, TheViewBeginsBelowTheCommandBar)
{
    FrameOfView frame(240, 290);
    frame.clientOriginY = 26;
    MainFrame::Point point = {5.5, 30.25};
    EXPECT_EQ(frame.WindowToView(&point), 1);
    EXPECT_EQ(point.x, 5.5);
    EXPECT_EQ(point.y, 4.25);
    EXPECT_EQ(frame.ViewToWindow(&point), 1);
    EXPECT_EQ(point.y, 30.25);
}

TEST(View, EveryConversionAnswersNothingDoneForNoPoint)
{
    FrameOfView frame(240, 290);
    EXPECT_EQ(frame.WindowToView(nullptr), 0);
    EXPECT_EQ(frame.ViewToWindow(nullptr), 0);
    EXPECT_EQ(frame.ViewToImage(nullptr), 0);
    EXPECT_EQ(frame.ImageToView(nullptr), 0);
    EXPECT_EQ(frame.WindowToScreen(nullptr), 0);
    EXPECT_EQ(frame.ScreenToWindow(nullptr), 0);
}

TEST(View, FittingTakesTheSideThatLimits)
{
    FrameOfView frame(240, 290);
    frame.Show(480, 640); // 290 * 480 / 240 = 580, below 640: the height limits
    frame.FitToWindow(0);
    EXPECT_EQ(frame.zoom, 640.0 / 290.0);
    EXPECT_EQ(frame.zoomCommand, 40020U);

    FrameOfView wide(240, 290);
    wide.Show(480, 580); // equal: the width decides
    wide.FitToWindow(0);
    EXPECT_EQ(wide.zoom, 2.0);
    wide.Show(481, 581); // 290 * 481 / 240 is cut to 581
    wide.FitToWindow(0);
    EXPECT_EQ(wide.zoom, 481.0 / 240.0);
}

TEST(View, ASmallPictureGrowsToFillTheView)
{
    FrameOfView frame(240, 290);
    frame.Show(24, 10);
    frame.FitToWindow(1);
    EXPECT_EQ(frame.zoom, 0.1);
    EXPECT_EQ(frame.scrollX, 0);
    EXPECT_NEAR(frame.scrollY, -(290 - 100) * 0.5 * 0.1, 1e-9);
}

TEST(View, FittingWithoutAPictureDrawsNothingAndSurvives)
{
    FrameOfView frame(240, 290);
    frame.FitToWindow(1);
    EXPECT_EQ(frame.zoom, 0.0);
    frame.ScrollByKeys(CommandScrollLeft);
    frame.SetZoom(CommandZoom100);
    EXPECT_EQ(frame.zoom, 1.0);
}

TEST(View, EachZoomCommandHasItsNumber)
{
    const struct {
        u32 command;
        f64 zoom;
    } rows[] = {{40025, 4.0}, {40024, 2.0}, {40026, 0x1.5555555555555p+0},
                {40018, 1.0}, {40022, 0.5}, {40115, 0x1.5555555555555p-2},
                {40023, 0.25}};
    FrameOfView frame(240, 290);
    for (const auto& row : rows) {
        frame.OnCommand(0, row.command, nullptr);
        EXPECT_EQ(frame.zoom, row.zoom) << row.command;
        EXPECT_EQ(frame.zoomCommand, row.command);
    }
}

TEST(View, ChangingTheZoomLosesTheScrollPosition)
{
    FrameOfView frame(240, 290);
    frame.Show(1000, 1000);
    frame.scrollX = 300;
    frame.scrollY = 200;
    frame.OnCommand(0, 40022, nullptr);
    EXPECT_EQ(frame.scrollX, 0);
    EXPECT_EQ(frame.scrollY, 0);
}

TEST(View, AnArrowKeyMovesThePictureTenScreenPixelsAway)
{
    FrameOfView frame(240, 290);
    frame.Show(1000, 1000);
    frame.zoom = 0.5;
    frame.OnCommand(1, 40165, nullptr); // left
    EXPECT_EQ(frame.scrollX, 5);
    frame.OnCommand(1, 40166, nullptr); // right
    frame.OnCommand(1, 40166, nullptr);
    EXPECT_EQ(frame.scrollX, -5);
    frame.OnCommand(1, 40167, nullptr); // up
    EXPECT_EQ(frame.scrollY, 5);
    frame.OnCommand(1, 40168, nullptr); // down
    EXPECT_EQ(frame.scrollY, 0);
    EXPECT_EQ(frame.scrollX, -5);
}

TEST(View, InitializeBringsTheStartBack)
{
    FrameOfView frame(240, 290);
    frame.Show(100, 100);
    frame.scrollX = 1234;
    frame.OnCommand(0, 40012, nullptr);
    EXPECT_EQ(frame.scrollX, -70);
}

namespace
{

u32 ViewPixel(MainFrame& frame, i32 x, i32 y)
{
    u32 color = 0;
    EXPECT_EQ(frame.viewRaster.GetPixel(x, y, &color), Done);
    return color;
}

} // namespace

TEST(View, WithNoPictureTheViewIsBlack)
{
    FrameOfView frame(240, 290);
    ASSERT_EQ(frame.viewRaster.Create(240, 320, 24, nullptr, nullptr), Done);
    frame.viewRaster.FillAll(0xFFFFFFFF);
    frame.RedrawView();
    EXPECT_EQ(ViewPixel(frame, 0, 0), 0x000000FFU);
    EXPECT_EQ(ViewPixel(frame, 239, 319), 0x000000FFU);
    // Nor is one shown that does not count yet.
    frame.Show(400, 400);
    frame.image->FillAll(0x102030FF);
    frame.RedrawView();
    EXPECT_EQ(ViewPixel(frame, 120, 160), 0x102030FFU);
    frame.imagePresent = 0;
    frame.RedrawView();
    EXPECT_EQ(ViewPixel(frame, 120, 160), 0x000000FFU);
}

TEST(View, APictureScrolledOutOfTheViewLeavesItBlack)
{
    FrameOfView frame(240, 290);
    frame.MakeScreen(240, 320);
    frame.Show(50, 50);
    frame.image->FillAll(0x102030FF);
    frame.InitializeView();
    EXPECT_EQ(ViewPixel(frame, 120, 145), 0x102030FFU);
    frame.scrollX = 60;
    frame.RedrawView();
    for (i32 x = 0; x < 240; x += 7)
        EXPECT_EQ(ViewPixel(frame, x, 145), 0x000000FFU);
}

TEST(View, WithNoPictureARegionIsNotDrawn)
{
    FrameOfView frame(240, 290);
    EXPECT_EQ(frame.RedrawRegion(0, 0, 10, 10), 0);
}

TEST(View, ARegionChangesItsOwnPartAloneAndAsTheWholeViewWould)
{
    FrameOfView frame(240, 290);
    frame.MakeScreen(240, 320);
    frame.clientOriginY = 30;
    frame.Show(400, 400);
    for (i32 y = 0; y < 400; ++y)
        for (i32 x = 0; x < 400; ++x)
            ASSERT_EQ(frame.image->SetPixel(x, y, static_cast<u32>(x << 20 | y << 8)), Done);
    frame.OnCommand(0, CommandZoom75, nullptr);
    std::vector<u32> whole;
    for (i32 y = 0; y < 320; ++y)
        for (i32 x = 0; x < 240; ++x)
            whole.push_back(ViewPixel(frame, x, y));

    frame.viewRaster.FillAll(0x55AA11FF);
    // Fractions go outward: columns 50 to 61, rows 99 to 121.
    EXPECT_EQ(frame.RedrawRegion(50.9, 99.5, 60.1, 120.2), 1);
    for (i32 y = 0; y < 320; ++y)
        for (i32 x = 0; x < 240; ++x) {
            const bool inside = x >= 50 && x <= 61 && y >= 99 && y <= 121;
            ASSERT_EQ(ViewPixel(frame, x, y),
                      inside ? whole[static_cast<size_t>(y * 240 + x)] : 0x55AA11FFU)
                << x << ", " << y;
        }
}

TEST(View, ARegionOutsideTheScreenIsDoneWithNothingDrawn)
{
    FrameOfView frame(240, 290);
    frame.MakeScreen(240, 320);
    frame.Show(400, 400);
    frame.viewRaster.FillAll(0x55AA11FF);
    EXPECT_EQ(frame.RedrawRegion(240, 0, 250, 10), 1);
    EXPECT_EQ(frame.RedrawRegion(0, 320, 10, 330), 1);
    EXPECT_EQ(frame.RedrawRegion(-20, 0, -1.5, 10), 1);
    EXPECT_EQ(frame.RedrawRegion(0, -20, 10, -1.5), 1);
    EXPECT_EQ(ViewPixel(frame, 0, 0), 0x55AA11FFU);
    EXPECT_EQ(ViewPixel(frame, 239, 319), 0x55AA11FFU);
}

TEST(View, ARegionThatTouchesTheScreensEdgeIsDrawnThere)
{
    FrameOfView frame(240, 290);
    frame.MakeScreen(240, 320);
    frame.Show(400, 400);
    frame.image->FillAll(0x010203FF);
    const struct {
        f64 left, top, right, bottom;
        i32 x, y; // drawn
    } rows[] = {
        {239, 100, 250, 110, 239, 105},
        {100, 319, 110, 330, 105, 319},
        {-5, 100, -0.5, 110, 0, 105},
        {100, -5, 110, -0.5, 105, 0},
    };
    for (const auto& row : rows) {
        frame.viewRaster.FillAll(0x55AA11FF);
        EXPECT_EQ(frame.RedrawRegion(row.left, row.top, row.right, row.bottom), 1);
        EXPECT_EQ(ViewPixel(frame, row.x, row.y), 0x010203FFU) << row.left << ", " << row.top;
        EXPECT_EQ(ViewPixel(frame, row.x != 0 ? row.x - 1 : 1, row.y != 0 ? row.y - 1 : 1),
                  0x55AA11FFU);
    }
}

TEST(View, ARegionIsCutToTheScreenAndOrdered)
{
    FrameOfView frame(240, 290);
    frame.MakeScreen(240, 320);
    frame.Show(400, 400);
    frame.image->FillAll(0x010203FF);
    frame.viewRaster.FillAll(0x55AA11FF);
    EXPECT_EQ(frame.RedrawRegion(20, 310, 10, 5000), 1);
    EXPECT_EQ(ViewPixel(frame, 10, 310), 0x010203FFU);
    EXPECT_EQ(ViewPixel(frame, 20, 319), 0x010203FFU);
    EXPECT_EQ(ViewPixel(frame, 21, 319), 0x55AA11FFU);
    EXPECT_EQ(ViewPixel(frame, 10, 309), 0x55AA11FFU);
}
