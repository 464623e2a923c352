// What is drawn over the picture: the selection's frame and tint, the scroll tool's markers; by
// both ways of redrawing, against plain loops.

#include "view/tests/PenTesting.h"

using namespace pentest;

namespace
{

struct Rect {
    int left;
    int top;
    int right;
    int bottom;
};

constexpr int ScreenWidth = 640;
constexpr int ScreenHeight = 480;

u32& At(std::vector<u32>& view, int x, int y)
{
    return view[static_cast<size_t>(y * ScreenWidth + x)];
}

/// The outline inverted: a side that lies outside is left out, but for the bottom one, which is
/// then drawn on the last row. Left and right begin below the first row of what is on the screen.
/// Once round, so that a pixel of two sides is inverted once.
void InvertOutline(std::vector<u32>& view, Rect r)
{
    if (r.left >= ScreenWidth || r.top >= ScreenHeight || r.right < 1 || r.bottom < 1)
        return;
    const int last = std::min(r.bottom, ScreenHeight - 1);
    for (int y = 0; y < ScreenHeight; ++y)
        for (int x = 0; x < ScreenWidth; ++x) {
            const bool inColumns = x >= r.left && x <= r.right;
            const bool inRows = y >= r.top && y <= r.bottom;
            const bool edge = inColumns && inRows &&
                              (y == r.top || y == last || (y > 0 && (x == r.left || x == r.right)));
            if (edge)
                At(view, x, y) ^= 0xFFFFFF;
        }
}

/// 0x90FF70: red 0, green 0x90, blue 0xFF with alpha 0x70, 113 of 256.
void Tint(std::vector<u32>& view, Rect r)
{
    for (int y = std::max(r.top, 0); y <= std::min(r.bottom, ScreenHeight - 1); ++y)
        for (int x = std::max(r.left, 0); x <= std::min(r.right, ScreenWidth - 1); ++x) {
            u32& pixel = At(view, x, y);
            const u32 red = (143 * (pixel >> 16 & 255)) >> 8;
            const u32 green = (113 * 0x90 + 143 * (pixel >> 8 & 255)) >> 8;
            const u32 blue = (113 * 0xFF + 143 * (pixel & 255)) >> 8;
            pixel = red << 16 | green << 8 | blue;
        }
}

/// A pixel of the markers' picture, 0xAARRGGBB.
u32 MarkerColor(int x, int y)
{
    const u32 alpha = static_cast<u32>(x * 13 + y * 5) % 256;
    return alpha << 24 | static_cast<u32>(x * 11 % 256) << 16 | static_cast<u32>(y * 5) << 8 |
           static_cast<u32>(255 - x - y);
}

void LoadMarkers(PenFrame& frame)
{
    ASSERT_EQ(frame.sprites->Create(21, 48, 32, nullptr, nullptr), Done);
    for (int y = 0; y < 48; ++y)
        for (int x = 0; x < 21; ++x) {
            const u32 color = MarkerColor(x, y);
            ASSERT_EQ(frame.sprites->SetPixel(x, y, color << 8 | color >> 24), Done);
        }
}

/// `rows` rows of the markers' picture from `first` on over the view, with (11, 12) at the point.
void DrawMarker(std::vector<u32>& view, int pointX, int pointY, int first, int rows)
{
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < 21; ++column) {
            const int x = pointX - 11 + column;
            const int y = pointY - 12 + row;
            if (x < 0 || y < 0 || x >= ScreenWidth || y >= ScreenHeight)
                continue;
            const u32 color = MarkerColor(column, first + row);
            const u32 alpha = color >> 24;
            u32& pixel = At(view, x, y);
            u32 mixed = 0;
            for (int shift : {0, 8, 16})
                mixed |= ((alpha + 1) * (color >> shift & 255) +
                          (255 - alpha) * (pixel >> shift & 255)) >>
                         8 << shift;
            pixel = mixed;
        }
}

void Select(PenFrame& frame, f64 left, f64 top, f64 right, f64 bottom)
{
    frame.selectionLeft = left;
    frame.selectionTop = top;
    frame.selectionRight = right;
    frame.selectionBottom = bottom;
}

int Floor(f64 value)
{
    return static_cast<int>(std::floor(value));
}

/// Where the whole view's marks lie.
Rect MarksOfView(const PenFrame& frame)
{
    return {Floor(frame.WindowX(frame.selectionLeft)), Floor(frame.WindowY(frame.selectionTop)),
            Floor(frame.WindowX(std::ceil(frame.selectionRight))),
            Floor(frame.WindowY(std::ceil(frame.selectionBottom)))};
}

/// Where those of a part lie: the lower right corner goes up to the next whole pixel.
Rect MarksOfRegion(const PenFrame& frame)
{
    Rect marks = MarksOfView(frame);
    const f64 right = (std::ceil(frame.selectionRight) - frame.scrollX) / frame.zoom;
    const f64 bottom = (std::ceil(frame.selectionBottom) - frame.scrollY) / frame.zoom;
    marks.right = static_cast<int>(std::ceil(right) + frame.clientOriginX);
    marks.bottom = static_cast<int>(std::ceil(bottom) + frame.clientOriginY);
    return marks;
}

/// The view without marks.
std::vector<u32> PlainView(PenFrame& frame)
{
    const u32 active = frame.selectionActive;
    const u32 selecting = frame.selecting;
    const u32 phase = frame.toolPhase;
    frame.selectionActive = 0;
    frame.selecting = 0;
    frame.toolPhase = 0;
    frame.RedrawView();
    frame.selectionActive = active;
    frame.selecting = selecting;
    frame.toolPhase = phase;
    return PixelsOf(frame.viewRaster);
}

} // namespace

TEST(SelectionMarks, ASelectionAtRestHasItsFrameAndItsTintAtEveryZoom)
{
    PenFrame frame;
    frame.Show(457, 333);
    for (u32 zoom : zooms) {
        frame.Zoom(zoom);
        // One of fractions, and one that is larger than the view at some zooms.
        for (const Rect& r : {Rect{40, 30, 101, 77}, Rect{200, 150, 455, 331}}) {
            frame.scrollX += 0.4;
            Select(frame, r.left + 0.3, r.top + 0.4, r.right + 0.6, r.bottom + 0.2);
            frame.selectionActive = 1;
            std::vector<u32> expected = PlainView(frame);
            InvertOutline(expected, MarksOfView(frame));
            Tint(expected, MarksOfView(frame));
            frame.RedrawView();
            ExpectSame(PixelsOf(frame.viewRaster), expected, ScreenWidth);
            ExpectOnWindow(frame, expected);
        }
    }
}

TEST(SelectionMarks, DuringTheDragThereIsTheFrameAlone)
{
    PenFrame frame;
    frame.Show(457, 333);
    Select(frame, 40, 30, 100, 70);
    for (u32 active : {0U, 1U}) {
        frame.selecting = 1;
        frame.selectionActive = active;
        std::vector<u32> expected = PlainView(frame);
        InvertOutline(expected, MarksOfView(frame));
        frame.RedrawView();
        ExpectSame(PixelsOf(frame.viewRaster), expected, ScreenWidth);
    }
}

TEST(SelectionMarks, WithoutTheTintTheFrameStays)
{
    PenFrame frame;
    frame.Show(457, 333);
    Select(frame, 40, 30, 100, 70);
    frame.selectionActive = 1;
    frame.selectionFrame = 0;
    std::vector<u32> expected = PlainView(frame);
    InvertOutline(expected, MarksOfView(frame));
    frame.RedrawView();
    ExpectSame(PixelsOf(frame.viewRaster), expected, ScreenWidth);
}

TEST(SelectionMarks, WithoutASelectionItsCornersDrawNothing)
{
    PenFrame frame;
    frame.Show(457, 333);
    const std::vector<u32> plain = PixelsOf(frame.viewRaster);
    Select(frame, 40, 30, 100, 70);
    frame.RedrawView();
    ExpectSame(PixelsOf(frame.viewRaster), plain, ScreenWidth);
    EXPECT_EQ(frame.RedrawRegion(0, 0, 639, 479), 1);
    ExpectSame(PixelsOf(frame.viewRaster), plain, ScreenWidth);
}

TEST(SelectionMarks, TheyStayWithThePictureAsItScrolls)
{
    PenFrame frame;
    frame.Show(457, 333);
    frame.Zoom(CommandZoom75);
    Select(frame, 40, 30, 100, 70);
    frame.selectionActive = 1;
    // Off the left, the top, the right and the bottom edge in turn, partly and wholly, and by less
    // than a pixel.
    const f64 bar = frame.clientOriginY;
    const f64 ways[][2] = {
        {60, 0},    {0, 60},    {-800, 0},  {0, -560}, {500, 500},
        {-900, 10}, {10, -700}, {101, -20}, {40.4, 0}, {0, 30.4 + bar * frame.zoom}};
    for (const auto& way : ways) {
        frame.scrollX = way[0];
        frame.scrollY = way[1];
        std::vector<u32> expected = PlainView(frame);
        InvertOutline(expected, MarksOfView(frame));
        Tint(expected, MarksOfView(frame));
        frame.RedrawView();
        ExpectSame(PixelsOf(frame.viewRaster), expected, ScreenWidth);
    }
}

TEST(SelectionMarks, AnythingOfThemIsDrawnWithoutAPictureToo)
{
    PenFrame frame;
    Select(frame, 40, 30, 100, 70);
    frame.selectionActive = 1;
    frame.toolPhase = 16;
    frame.toolPoint = {300, 300};
    LoadMarkers(frame);
    std::vector<u32> expected(ScreenWidth * ScreenHeight, 0);
    InvertOutline(expected, MarksOfView(frame));
    Tint(expected, MarksOfView(frame));
    DrawMarker(expected, 300, 300, 0, 25);
    frame.RedrawView();
    ExpectSame(PixelsOf(frame.viewRaster), expected, ScreenWidth);
    frame.viewRaster.FillAll(0xFF);
    EXPECT_EQ(frame.RedrawRegion(0, 0, 639, 479), 0);
    ExpectSame(PixelsOf(frame.viewRaster), std::vector<u32>(ScreenWidth * ScreenHeight, 0),
               ScreenWidth);
}

TEST(SelectionMarks, APartPutsTheLowerRightCornerOnTheNextWholePixel)
{
    PenFrame frame;
    frame.Show(457, 333);
    int differing = 0;
    for (u32 zoom : zooms) {
        frame.Zoom(zoom);
        frame.scrollX += 0.4;
        frame.scrollY += 0.7;
        Select(frame, 40.3, 30, 101.6, 77.2);
        frame.selectionActive = 1;
        std::vector<u32> expected = PlainView(frame);
        const Rect marks = MarksOfRegion(frame);
        InvertOutline(expected, marks);
        Tint(expected, marks);
        // The part is the whole screen, so that everything is composed anew. What the picture does
        // not cover is not cleared, and the view was plain before.
        EXPECT_EQ(frame.RedrawRegion(0, 0, ScreenWidth - 1, ScreenHeight - 1), 1);
        ExpectSame(PixelsOf(frame.viewRaster), expected, ScreenWidth);
        ExpectOnWindow(frame, expected);
        differing +=
            marks.right != MarksOfView(frame).right || marks.bottom != MarksOfView(frame).bottom;
    }
    EXPECT_GE(differing, 3) << "the ways differ at fractional positions";
}

TEST(SelectionMarks, BesideThePartTheFrameInvertsBackAndTheTintGrows)
{
    PenFrame frame;
    frame.Show(457, 333);
    // Whole numbers, so that the part is drawn to its last column.
    frame.scrollX = -90;
    frame.scrollY = -70;
    Select(frame, 40, 30, 200, 170);
    frame.selectionActive = 1;
    const std::vector<u32> plain = PlainView(frame);
    frame.RedrawView();
    const Rect marks = MarksOfView(frame);
    const Rect part = {marks.left - 5, marks.top - 5, marks.left + 40, marks.top + 30};
    std::vector<u32> expected = PixelsOf(frame.viewRaster);
    const std::vector<u32> shownBefore = expected;
    for (int y = part.top; y <= part.bottom; ++y)
        for (int x = part.left; x <= part.right; ++x)
            At(expected, x, y) = plain[static_cast<size_t>(y * ScreenWidth + x)];
    InvertOutline(expected, marks);
    Tint(expected, marks);
    EXPECT_EQ(frame.RedrawRegion(part.left, part.top, part.right, part.bottom), 1);
    ExpectSame(PixelsOf(frame.viewRaster), expected, ScreenWidth);

    // On the window the part alone has changed.
    std::vector<u32> shown = shownBefore;
    for (int y = part.top; y <= part.bottom; ++y)
        for (int x = part.left; x <= part.right; ++x)
            At(shown, x, y) = At(expected, x, y);
    ExpectOnWindow(frame, shown);
    // All of it has reached the surface, and the next paint shows it.
    InvalidateRect(frame.window, nullptr, FALSE);
    UpdateWindow(frame.window);
    ExpectOnWindow(frame, expected);
}

TEST(Marker, PressedAndDraggingShowTheirHalvesAtThePen)
{
    PenFrame frame;
    frame.Show(457, 333);
    LoadMarkers(frame);
    const std::vector<u32> plain = PlainView(frame);
    const struct {
        u32 phase;
        int first;
        int rows;
    } rows[] = {
        {16, 0, 25},  // with the first row of the second marker
        {17, 24, 24}, // the picture has no more
    };
    // In the middle, over each edge, and outside.
    const f64 points[][2] = {{320, 240}, {320.9, 240.9}, {3, 200},   {300, 2},    {637, 300},
                             {400, 478}, {0, 0},         {639, 479}, {-50, 100},  {700, 100},
                             {100, 600}, {-9, -12},      {650, 200}, {100, -13.5}};
    for (const auto& row : rows)
        for (const auto& point : points) {
            frame.toolPhase = row.phase;
            frame.toolPoint = {point[0], point[1]};
            std::vector<u32> expected = plain;
            DrawMarker(expected, static_cast<int>(point[0]), static_cast<int>(point[1]), row.first,
                       row.rows);
            frame.RedrawView();
            ExpectSame(PixelsOf(frame.viewRaster), expected, ScreenWidth);
            // And by the other way, whose part is drawn in full here.
            frame.viewRaster.FillAll(0xFF);
            frame.RedrawRegion(0, 0, 639, 479);
            ExpectSame(PixelsOf(frame.viewRaster), expected, ScreenWidth);
        }
}

TEST(Marker, NoOtherPhaseShowsOne)
{
    PenFrame frame;
    frame.Show(457, 333);
    LoadMarkers(frame);
    const std::vector<u32> plain = PlainView(frame);
    frame.toolPoint = {320, 240};
    for (u32 phase : {0U, 1U, 15U, 18U}) {
        frame.toolPhase = phase;
        frame.RedrawView();
        ExpectSame(PixelsOf(frame.viewRaster), plain, ScreenWidth);
    }
}

TEST(Marker, WhileTheScrollToolIsPressedTheFirstShowsThenTheSecondAndNoneAfterTheLift)
{
    PenFrame frame;
    frame.Show(900, 700);
    LoadMarkers(frame);
    frame.tool = 1;
    frame.Press(300, 200);
    const std::vector<u32> pressed = PixelsOf(frame.viewRaster);
    const Picture onWindow = WindowPixels(frame.window);
    std::vector<u32> expected = PlainView(frame);
    DrawMarker(expected, 300, 200, 0, 25);
    ExpectSame(pressed, expected, ScreenWidth);
    for (int y = 188; y <= 212; ++y)
        for (int x = 289; x <= 309; ++x)
            ASSERT_EQ(onWindow.At(x, y), At(expected, x, y)) << x << ", " << y;

    frame.Drag(290, 180);
    const std::vector<u32> shown = PixelsOf(frame.viewRaster);
    expected = PlainView(frame);
    DrawMarker(expected, 290, 180, 24, 24);
    ExpectSame(shown, expected, ScreenWidth);

    frame.Lift(290, 180);
    const std::vector<u32> after = PixelsOf(frame.viewRaster);
    ExpectSame(after, PlainView(frame), ScreenWidth);
    EXPECT_EQ(after, PixelsOf(frame.viewRaster));
}

TEST(Marker, ItLiesOverTheSelectionsMarks)
{
    PenFrame frame;
    frame.Show(457, 333);
    LoadMarkers(frame);
    Select(frame, 100, 100, 200, 200);
    frame.selectionActive = 1;
    frame.toolPhase = 17;
    const int x = static_cast<int>(frame.WindowX(100));
    const int y = static_cast<int>(frame.WindowY(100));
    frame.toolPoint = {static_cast<f64>(x), static_cast<f64>(y)};
    std::vector<u32> expected = PlainView(frame);
    InvertOutline(expected, MarksOfView(frame));
    Tint(expected, MarksOfView(frame));
    DrawMarker(expected, x, y, 24, 24);
    frame.RedrawView();
    ExpectSame(PixelsOf(frame.viewRaster), expected, ScreenWidth);
}

TEST(Marker, WithoutTheMarkersPictureThereIsNone)
{
    PenFrame frame;
    frame.Show(457, 333);
    frame.sprites->Reset();
    const std::vector<u32> plain = PlainView(frame);
    frame.tool = 1;
    frame.Press(320, 240);
    ExpectSame(PixelsOf(frame.viewRaster), plain, ScreenWidth);
    frame.Lift(320, 240);
}

TEST(Redraw, APartReachesTheWindowToItsLastRowAndColumnAndNothingBesideItDoes)
{
    PenFrame frame;
    frame.Show(900, 700);
    std::vector<u32> shown = PixelsOf(frame.viewRaster);
    frame.image->FillAll(0x3366CCFF);
    EXPECT_EQ(frame.RedrawRegion(100.5, 120.5, 180.5, 160.5), 1);
    for (int y = 120; y <= 161; ++y)
        for (int x = 100; x <= 181; ++x)
            At(shown, x, y) = 0x3366CC;
    ExpectOnWindow(frame, shown);
    ExpectSame(PixelsOf(frame.viewRaster), shown, ScreenWidth);
}

TEST(Redraw, BothWaysLeaveNothingToPaint)
{
    PenFrame frame;
    frame.Show(457, 333);
    InvalidateRect(frame.window, nullptr, FALSE);
    ASSERT_TRUE(GetUpdateRect(frame.window, nullptr, FALSE));
    frame.RedrawView();
    EXPECT_FALSE(GetUpdateRect(frame.window, nullptr, FALSE));
    InvalidateRect(frame.window, nullptr, FALSE);
    EXPECT_EQ(frame.RedrawRegion(10, 10, 20, 20), 1);
    EXPECT_FALSE(GetUpdateRect(frame.window, nullptr, FALSE)) << "outside of the part, too";
}

TEST(Redraw, TheWindowsContextIsGivenBack)
{
    PenFrame frame;
    frame.Show(457, 333);
    const size_t before = tavrix::platform::CountHoldings().drawingObjects;
    for (int i = 0; i < 3; ++i) {
        frame.RedrawView();
        frame.RedrawRegion(10, 10, 20, 20);
    }
    EXPECT_EQ(tavrix::platform::CountHoldings().drawingObjects, before);
}

TEST(Redraw, TheSelectionsMarksFollowTheScreenMode)
{
    PenFrame frame;
    frame.Show(900, 700);
    Select(frame, 0, 0, 899, 699);
    frame.selectionActive = 1;
    frame.dither = 2; // the settings may hold any number
    frame.RedrawView();
    // The surface alone is dithered; the composed view keeps its values.
    const std::vector<u32> view = PixelsOf(frame.viewRaster);
    const Picture shown = WindowPixels(frame.window);
    const u32 thresholds[4][4] = {{7, 3, 6, 2}, {1, 5, 0, 4}, {6, 2, 7, 3}, {0, 4, 1, 5}};
    for (int y = static_cast<int>(frame.clientOriginY); y < ScreenHeight; ++y)
        for (int x = 0; x < ScreenWidth; ++x) {
            const u32 pixel = view[static_cast<size_t>(y * ScreenWidth + x)];
            u32 dithered = 0;
            for (int shift : {0, 8, 16})
                dithered |=
                    std::min(255U, ((pixel >> shift & 255) + thresholds[y % 4][x % 4]) & ~7U)
                    << shift;
            ASSERT_EQ(shown.At(x, y), dithered) << x << ", " << y;
        }
}
