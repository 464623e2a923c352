// Painting by the pen on a real main window: one stamp an event, at every zoom, against the stamp's
// formula written out.

#include "view/tests/PenTesting.h"

using namespace pentest;

namespace
{

/// A stamp of `radius` centred on (centreX, centreY), in a picture of 24 bits as its pixels.
void PaintStamp(std::vector<u32>& picture, int width, int height, int centreX, int centreY,
                int radius, u32 color)
{
    for (int dy = -radius; dy < radius; ++dy)
        for (int dx = -radius; dx < radius; ++dx) {
            const int x = centreX + dx;
            const int y = centreY + dy;
            if (x < 0 || y < 0 || x >= width || y >= height)
                continue;
            const f64 distance = dx * dx + dy * dy;
            const u32 cover = static_cast<u32>(255.0 * std::exp(-9.0 * distance / radius / radius));
            const u32 weight = cover * 256; // the colour is opaque
            u32& pixel = picture[static_cast<size_t>(y * width + x)];
            u32 painted = 0;
            for (int shift : {0, 8, 16}) {
                const u32 old = pixel >> shift & 255;
                const u32 ink = color >> 8 >> shift & 255;
                painted |= ((0x10000 - weight) * old + weight * ink) >> 16 << shift;
            }
            pixel = painted;
        }
}

class BrushTool : public testing::Test
{
protected:
    static constexpr int Width = 457; // no whole zoom when fitted
    static constexpr int Height = 333;

    void SetUp() override
    {
        frame.Show(Width, Height);
        ASSERT_EQ(frame.brush->Create(9, 256, 1), Done);
        frame.tool = 32;
        frame.faceColor = 0xC0108000;
        expected = PixelsOf(*frame.image);
    }
    void ExpectStamp(int x, int y)
    {
        PaintStamp(expected, Width, Height, static_cast<int>(frame.PictureX(x)),
                   static_cast<int>(frame.PictureY(y)), 9, frame.faceColor);
        ExpectSame(PixelsOf(*frame.image), expected, Width);
    }

    PenFrame frame;
    std::vector<u32> expected;
};

} // namespace

TEST_F(BrushTool, EachEventMakesOneStampAndWhatLiesBetweenStays)
{
    for (u32 zoom : zooms) {
        frame.Zoom(zoom);
        frame.toolPhase = 17;
        frame.Press(300, 200);
        EXPECT_EQ(frame.toolPhase, 0U);
        ExpectStamp(300, 200);
        frame.toolPhase = 17;
        frame.Drag(340, 260);
        EXPECT_EQ(frame.toolPhase, 0U);
        ExpectStamp(340, 260);
        EXPECT_EQ(frame.toolPoint.x, 340);
        EXPECT_EQ(frame.toolPreviousPoint.x, 300);
        frame.Lift(290, 270);
        ExpectStamp(290, 270);
        EXPECT_EQ(frame.toolPoint.y, 270);
        EXPECT_EQ(frame.toolPreviousPoint.y, 260);
    }
}

TEST_F(BrushTool, WhatIsShownAfterAStampIsWhatAWholeRedrawShows)
{
    // The smallest stamp is strongest in its last column and row.
    for (u32 radius : {9U, 1U})
        for (u32 zoom : zooms) {
            ASSERT_EQ(frame.brush->Create(radius, 256, 1), Done);
            frame.faceColor += 0x33557700; // shows also where the one before has painted
            frame.Zoom(zoom);
            frame.scrollX += 0.37;
            frame.scrollY -= 0.21;
            frame.RedrawView();
            const std::vector<u32> before = PixelsOf(frame.viewRaster);
            frame.Press(310, 240);
            frame.Lift(325, 244);
            const std::vector<u32> shown = PixelsOf(frame.viewRaster);
            ExpectOnWindow(frame, shown);
            EXPECT_TRUE(shown != before || (radius == 1 && frame.zoom > 1)) << zoom;
            frame.RedrawView();
            ExpectSame(shown, PixelsOf(frame.viewRaster), 640);
        }
}

TEST_F(BrushTool, OnlyTheStampedPartOfTheViewIsDrawn)
{
    frame.viewRaster.FillAll(0x55AA11FF);
    frame.Press(320, 240);
    const int bar = static_cast<int>(frame.clientOriginY);
    // The picture lies centred. The stamp reaches from 9 left of the pen to 8 right of it, and the
    // part drawn one pixel further.
    const std::vector<u32> view = PixelsOf(frame.viewRaster);
    const f64 left = (640 - Width) / 2.0;
    const f64 top = bar + (480 - bar - 1 - Height) / 2.0;
    const int x0 = static_cast<int>(320 - left);
    const int y0 = static_cast<int>(240 - top);
    for (int y = 0; y < 480; ++y)
        for (int x = 0; x < 640; ++x) {
            const f64 px = x - left - x0;
            const f64 py = y - top - y0;
            const u32 pixel = view[static_cast<size_t>(y * 640 + x)];
            const bool beside = px < -11 || px > 10 || py < -11 || py > 10;
            const bool inside = px >= -8 && px <= 7 && py >= -8 && py <= 7;
            EXPECT_TRUE(!beside || pixel == 0x55AA11) << x << ", " << y;
            EXPECT_TRUE(!inside || pixel != 0x55AA11) << x << ", " << y;
        }
    frame.Lift(320, 240);
}

TEST_F(BrushTool, TheLowByteOfTheFaceColourDoesNotMatter)
{
    frame.Press(300, 200); // alpha 0
    frame.faceColor = 0xC0108055;
    frame.Drag(340, 250);
    frame.faceColor = 0xC01080FF;
    frame.Lift(380, 200);
    for (const auto& at : {std::pair{300, 200}, std::pair{340, 250}, std::pair{380, 200}})
        PaintStamp(expected, Width, Height, static_cast<int>(frame.PictureX(at.first)),
                   static_cast<int>(frame.PictureY(at.second)), 9, 0xC0108000);
    ExpectSame(PixelsOf(*frame.image), expected, Width);
    EXPECT_EQ(frame.faceColor, 0xC01080FFU);
}

TEST_F(BrushTool, AStampIsNotConfinedToTheSelectionAndLeavesNothingForUndo)
{
    frame.undoEnabled = 1;
    frame.selectionActive = 1;
    frame.selectionLeft = 0;
    frame.selectionTop = 0;
    frame.selectionRight = 10;
    frame.selectionBottom = 10;
    frame.Press(320, 240);
    ExpectStamp(320, 240);
    frame.Lift(320, 240);
    ExpectStamp(320, 240);
    RasterInfo info = {};
    info.size = sizeof info;
    frame.undoImage.GetInfo(&info);
    EXPECT_EQ(info.height, 0U);
}

TEST_F(BrushTool, AStampAtTheCornerPaintsTheQuarterInside)
{
    frame.Zoom(CommandZoom400);
    const int bar = static_cast<int>(frame.clientOriginY);
    frame.Press(0, bar);
    ExpectStamp(0, bar);
    frame.Drag(-3, bar - 3); // truncated to the same pixel
    ExpectStamp(0, bar);
    frame.Drag(-200, 240); // wholly outside
    ExpectSame(PixelsOf(*frame.image), expected, Width);
    frame.Lift(-30000, -30000);
    ExpectSame(PixelsOf(*frame.image), expected, Width);
}

TEST_F(BrushTool, WithShiftItPicksTheColourAtPressDragAndLiftAndPaintsNothing)
{
    frame.colorbox = MakeListener();
    SetForegroundWindow(frame.window);
    HoldKey(VK_SHIFT, true);
    ASSERT_TRUE(PumpUntil([] { return GetAsyncKeyState(VK_SHIFT) < 0; }));
    const auto colorAt = [&](int x, int y) {
        return TestColor(static_cast<int>(frame.PictureX(x)), static_cast<int>(frame.PictureY(y)))
                   << 8 |
               255;
    };
    frame.toolPhase = 17;
    tellings.clear();
    frame.Press(300, 200);
    EXPECT_EQ(frame.faceColor, colorAt(300, 200));
    frame.Drag(340, 260);
    EXPECT_EQ(frame.faceColor, colorAt(340, 260));
    EXPECT_EQ(frame.toolPreviousPoint.x, 300);
    frame.Lift(290, 270);
    EXPECT_EQ(frame.faceColor, colorAt(290, 270));
    EXPECT_EQ(frame.toolPreviousPoint.x, 340);
    EXPECT_EQ(frame.toolPoint.x, 290);
    EXPECT_EQ(GetCapture(), nullptr);
    EXPECT_EQ(tellings.size(), 3U);
    EXPECT_EQ(frame.toolPhase, 17U) << "as Pipet, which leaves it";
    ExpectSame(PixelsOf(*frame.image), expected, Width);

    // It is asked anew at each event: let go, the pen paints with what it picked.
    frame.Press(300, 200);
    HoldKey(VK_SHIFT, false);
    ASSERT_TRUE(PumpUntil([] { return GetAsyncKeyState(VK_SHIFT) >= 0; }));
    frame.Drag(340, 260);
    ExpectStamp(340, 260);
    frame.Lift(340, 260);
    ExpectStamp(340, 260);
}

TEST_F(BrushTool, WithoutAMaskOrWithoutABrushThePenPaintsNothing)
{
    frame.brush->Destroy();
    frame.viewRaster.FillAll(0x55AA11FF); // a part drawn anew would show
    const std::vector<u32> view = PixelsOf(frame.viewRaster);
    Brush* const brush = frame.brush;
    for (Brush* without : {brush, static_cast<Brush*>(nullptr)}) {
        frame.brush = without;
        frame.Press(300, 200);
        frame.Drag(310, 210);
        EXPECT_EQ(frame.toolPoint.x, 310);
        frame.Lift(320, 220);
        EXPECT_EQ(GetCapture(), nullptr);
        ExpectSame(PixelsOf(*frame.image), expected, Width);
        ExpectSame(PixelsOf(frame.viewRaster), view, 640);
    }
    frame.brush = brush;
}
