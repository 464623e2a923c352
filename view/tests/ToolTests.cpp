// The pen on a real main window: what press, drag and lift do with each tool, at every zoom.

#include "view/tests/PenTesting.h"

using namespace pentest;

namespace
{

bool Grayed(HMENU menu, UINT item)
{
    return (GetMenuState(menu, item, MF_BYCOMMAND) & MF_GRAYED) != 0;
}

/// What the person's pen could change.
struct State {
    f64 numbers[10];
    u32 words[6];
    std::vector<u32> picture;
    std::vector<u32> view;
};

State StateOf(PenFrame& frame)
{
    return {{frame.scrollX, frame.scrollY, frame.toolPoint.x, frame.toolPoint.y,
             frame.toolPreviousPoint.x, frame.toolPreviousPoint.y, frame.selectionLeft,
             frame.selectionTop, frame.selectionRight, frame.selectionBottom},
            {frame.tool, frame.toolPhase, frame.selecting, frame.selectionActive, frame.faceColor,
             frame.backgroundColor},
            PixelsOf(*frame.image),
            PixelsOf(frame.viewRaster)};
}

void ExpectUnchanged(PenFrame& frame, const State& before)
{
    const State now = StateOf(frame);
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(now.numbers[i], before.numbers[i]) << i;
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(now.words[i], before.words[i]) << i;
    EXPECT_EQ(now.picture, before.picture);
    EXPECT_EQ(now.view, before.view);
}

void ExpectPoints(const PenFrame& frame, f64 x, f64 y, f64 previousX, f64 previousY)
{
    EXPECT_EQ(frame.toolPoint.x, x);
    EXPECT_EQ(frame.toolPoint.y, y);
    EXPECT_EQ(frame.toolPreviousPoint.x, previousX);
    EXPECT_EQ(frame.toolPreviousPoint.y, previousY);
}

struct Choice {
    u32 command;
    u32 tool;
    WPARAM column;
};

const Choice choices[] = {{40125, 1, 4},  {40105, 18, 2}, {40119, 32, 5},
                          {40126, 48, 8}, {40129, 49, 6}, {40161, 64, 7}};

} // namespace

TEST(Tools, EachCommandTakesItsToolAndShowsItsCell)
{
    PenFrame frame;
    frame.toolbox = MakeListener();
    for (const Choice& choice : choices) {
        frame.toolPhase = 17;
        tellings.clear();
        frame.ChooseTool(choice.command);
        EXPECT_EQ(frame.tool, choice.tool);
        // Scrolling alone leaves the phase.
        EXPECT_EQ(frame.toolPhase, choice.tool == 1 ? 17U : 0U) << choice.command;
        EXPECT_TRUE(tellings.empty()) << "it is posted, not sent";
        EXPECT_TRUE(AwaitTelling());
        EXPECT_EQ(tellings, std::vector<Telling>({{choice.column, 0}})) << choice.command;
    }
}

TEST(Tools, AnyOtherToolShowsNoCell)
{
    PenFrame frame;
    frame.toolbox = MakeListener();
    for (u32 tool : {0U, 2U, 17U, 33U, 65U}) {
        frame.tool = tool;
        tellings.clear();
        frame.TellToolbox();
        EXPECT_TRUE(AwaitTelling());
        EXPECT_EQ(tellings, std::vector<Telling>({{static_cast<WPARAM>(-1), -1}})) << tool;
    }
}

TEST(Tools, ACommandOfNoToolChangesNothing)
{
    PenFrame frame;
    frame.toolbox = MakeListener();
    frame.tool = 32;
    frame.toolPhase = 17;
    for (u32 command : {40120U, 40124U, 40122U, 40123U, 40130U, 40160U, 40095U, 40030U, 0U})
        frame.ChooseTool(command);
    Pump(50);
    EXPECT_EQ(frame.tool, 32U);
    EXPECT_EQ(frame.toolPhase, 17U);
    EXPECT_TRUE(tellings.empty());
}

TEST(Tools, WithoutAToolboxAToolIsTakenAllTheSame)
{
    PenFrame frame;
    frame.toolbox = nullptr;
    frame.ChooseTool(40119);
    EXPECT_EQ(frame.tool, 32U);
    MSG message = {};
    EXPECT_FALSE(PeekMessageW(&message, nullptr, 32768, 32768, PM_REMOVE));
}

TEST(Tools, APressTakesTheCaptureWhateverTheToolAndALiftGivesItBack)
{
    PenFrame frame;
    frame.Show(50, 40);
    for (u32 tool : {1U, 18U, 32U, 48U, 49U, 64U, 7U}) {
        frame.tool = tool;
        frame.Press(100, 100);
        EXPECT_EQ(GetCapture(), frame.window) << tool;
        frame.Drag(110, 105);
        EXPECT_EQ(GetCapture(), frame.window) << tool;
        frame.Lift(110, 105);
        EXPECT_EQ(GetCapture(), nullptr) << tool;
    }
}

TEST(Tools, AMoveWithoutTheButtonChangesNothingWhateverTheTool)
{
    PenFrame frame;
    frame.Show(100, 80);
    ASSERT_EQ(frame.brush->Create(5, 256, 1), Done);
    for (u32 tool : {1U, 18U, 32U, 48U, 49U, 64U}) {
        frame.tool = tool;
        const State before = StateOf(frame);
        frame.Hover(320, 240);
        frame.Hover(330, 250);
        ExpectUnchanged(frame, before);
        // Nor while the main window has the capture.
        SetCapture(frame.window);
        frame.Hover(320, 240);
        ExpectUnchanged(frame, before);
        EXPECT_EQ(GetCapture(), frame.window);
        ReleaseCapture();
    }
}

TEST(Tools, ALiftWithoutTheCaptureChangesNothingWhateverTheTool)
{
    PenFrame frame;
    frame.Show(100, 80);
    ASSERT_EQ(frame.brush->Create(5, 256, 1), Done);
    for (u32 tool : {1U, 18U, 32U, 48U, 49U, 64U}) {
        frame.tool = tool;
        frame.toolPhase = 16;
        frame.selecting = 1;
        const State before = StateOf(frame);
        frame.Lift(320, 240);
        ExpectUnchanged(frame, before);
    }
}

TEST(Tools, TheErasersDoNothingButMoveThePenPointsAtThePress)
{
    PenFrame frame;
    frame.Show(100, 80);
    ASSERT_EQ(frame.brush->Create(5, 256, 1), Done);
    for (u32 tool : {48U, 49U}) {
        frame.tool = tool;
        frame.toolPoint = {1, 2};
        frame.toolPreviousPoint = {320, 240};
        State before = StateOf(frame);
        before.numbers[2] = 320;
        before.numbers[3] = 240;
        before.numbers[4] = 1;
        before.numbers[5] = 2;
        frame.Press(320, 240);
        ExpectUnchanged(frame, before);
        frame.Drag(330, 250);
        frame.Drag(340, 260);
        frame.Lift(350, 270);
        ExpectUnchanged(frame, before);
    }
}

TEST(Tools, CoordinatesLeftOfAndAboveTheWindowAreNegative)
{
    PenFrame frame;
    frame.Show(100, 80);
    frame.tool = 1;
    frame.Press(300, 200);
    frame.Drag(-7, -32768);
    ExpectPoints(frame, -7, -32768, 300, 200);
    frame.Lift(32767, -1);
    ExpectPoints(frame, 32767, -1, -7, -32768);
}

TEST(ScrollTool, ThePictureFollowsThePenAtEveryZoom)
{
    PenFrame frame;
    frame.Show(457, 333); // no whole zoom when fitted
    for (u32 zoom : zooms) {
        frame.ChooseTool(40125);
        frame.Zoom(zoom);
        const f64 startX = frame.scrollX;
        const f64 startY = frame.scrollY;
        const f64 factor = frame.zoom;

        frame.Press(200, 150);
        EXPECT_EQ(frame.toolPhase, 16U);
        EXPECT_EQ(frame.scrollX, startX);

        // Each drag moves the picture by what the pen moved since the event before.
        const int way[][2] = {{230, 140}, {90, 300}, {91, 301}, {-500, 900}};
        int lastX = 200;
        int lastY = 150;
        for (const auto& to : way) {
            frame.Drag(to[0], to[1]);
            EXPECT_EQ(frame.toolPhase, 17U);
            EXPECT_NEAR(frame.scrollX, startX + factor * (200 - to[0]), 1e-9) << zoom;
            EXPECT_NEAR(frame.scrollY, startY + factor * (150 - to[1]), 1e-9) << zoom;
            ExpectPoints(frame, to[0], to[1], lastX, lastY);
            lastX = to[0];
            lastY = to[1];
        }
        frame.Lift(210, 155);
        EXPECT_EQ(frame.toolPhase, 0U);
        EXPECT_NEAR(frame.scrollX, startX - factor * 10, 1e-9) << zoom;
        EXPECT_NEAR(frame.scrollY, startY - factor * 5, 1e-9) << zoom;
        ExpectPoints(frame, 210, 155, -500, 900);
    }
}

TEST(ScrollTool, ThePictureMayLeaveTheView)
{
    PenFrame frame;
    frame.Show(100, 80);
    frame.tool = 1;
    frame.Press(320, 240);
    frame.Lift(320 + 400, 240);
    ExpectSame(PixelsOf(frame.viewRaster), std::vector<u32>(640 * 480, 0), 640);
    ExpectOnWindow(frame, std::vector<u32>(640 * 480, 0));
}

TEST(ScrollTool, EveryEventShowsWhatItDid)
{
    PenFrame frame;
    frame.Show(900, 700);
    frame.tool = 1;
    frame.sprites->Reset();
    const int bar = static_cast<int>(frame.clientOriginY);
    const auto expectAt = [&](int right, int down) {
        const Picture shown = WindowPixels(frame.window);
        for (int y = bar; y < 480; y += 3)
            for (int x = 0; x < 640; ++x)
                ASSERT_EQ(shown.At(x, y), TestColor(x + right, y - bar + down)) << x << ", " << y;
    };
    frame.Press(300, 300);
    expectAt(0, 0);
    frame.Drag(260, 290);
    expectAt(40, 10);
    frame.Lift(250, 288);
    expectAt(50, 12);
}

TEST(SelectTool, ADragSelectsWhatLiesUnderItAtEveryZoom)
{
    PenFrame frame;
    frame.Show(457, 333);
    frame.tool = 18;
    for (u32 zoom : zooms) {
        frame.Zoom(zoom);
        // In the picture's middle, which is on the screen at every zoom but the largest ones.
        frame.scrollX = 457 / 2.0 - 320 * frame.zoom;
        frame.scrollY = 333 / 2.0 - 240 * frame.zoom;
        frame.selectionActive = 0;
        const f64 left = frame.PictureX(300);
        const f64 top = frame.PictureY(235);

        frame.toolPhase = 17;
        frame.Press(300, 235);
        EXPECT_EQ(frame.toolPhase, 0U);
        EXPECT_EQ(frame.selecting, 1U);
        EXPECT_EQ(frame.selectionActive, 0U);
        EXPECT_EQ(frame.selectionLeft, left);
        EXPECT_EQ(frame.selectionTop, top);
        EXPECT_EQ(frame.selectionRight, left);
        EXPECT_EQ(frame.selectionBottom, top);

        for (int x : {301, 333, 345}) {
            frame.Drag(x, x - 60);
            EXPECT_EQ(frame.selecting, 1U);
            EXPECT_EQ(frame.selectionActive, 0U);
            EXPECT_EQ(frame.selectionLeft, left) << zoom;
            EXPECT_EQ(frame.selectionTop, top) << zoom;
            EXPECT_EQ(frame.selectionRight, frame.PictureX(x)) << zoom;
            EXPECT_EQ(frame.selectionBottom, frame.PictureY(x - 60)) << zoom;
            // The latest point stays that of the press.
            EXPECT_EQ(frame.toolPoint.x, 300);
            EXPECT_EQ(frame.toolPoint.y, 235);
        }
        frame.toolPhase = 17;
        frame.Lift(340, 270);
        EXPECT_EQ(frame.toolPhase, 0U);
        EXPECT_EQ(frame.selecting, 0U);
        EXPECT_EQ(frame.selectionActive, 1U);
        EXPECT_EQ(frame.selectionRight, frame.PictureX(340)) << zoom;
        EXPECT_EQ(frame.selectionBottom, frame.PictureY(270)) << zoom;
        ExpectPoints(frame, 340, 270, 300, 235);
    }
}

TEST(SelectTool, ADragTowardsTheUpperLeftTruncatesTheCornerThatMovedToTheLowEnd)
{
    PenFrame frame;
    frame.Show(457, 333);
    frame.tool = 18;
    for (u32 zoom : zooms) {
        frame.Zoom(zoom);
        frame.scrollX = 457 / 2.0 - 320 * frame.zoom + 0.3;
        frame.scrollY = 333 / 2.0 - 240 * frame.zoom + 0.4;
        const f64 right = frame.PictureX(345);
        const f64 bottom = frame.PictureY(270);
        frame.Press(345, 270);
        // Each drag begins anew at the press, though the corners were put in order before.
        frame.Drag(320, 250);
        frame.Drag(301, 231);
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(frame.selectionLeft, std::trunc(frame.PictureX(301))) << zoom;
            EXPECT_EQ(frame.selectionTop, std::trunc(frame.PictureY(231))) << zoom;
            EXPECT_EQ(frame.selectionRight, right) << zoom;
            EXPECT_EQ(frame.selectionBottom, bottom) << zoom;
            frame.Lift(301, 231);
        }
        EXPECT_EQ(frame.selectionActive, 1U);
    }
}

TEST(SelectTool, FromFiveAndAHalfToTwoAndAHalfGoesFromTwoToFiveAndAHalf)
{
    PenFrame frame;
    frame.Show(100, 80);
    frame.Zoom(CommandZoom200); // a screen pixel is half a picture pixel
    frame.tool = 18;
    const int bar = static_cast<int>(frame.clientOriginY);
    frame.scrollX = 0;
    frame.scrollY = 0;
    frame.Press(11, bar + 11);
    frame.Lift(5, bar + 5);
    EXPECT_EQ(frame.selectionLeft, 2);
    EXPECT_EQ(frame.selectionTop, 2);
    EXPECT_EQ(frame.selectionRight, 5.5);
    EXPECT_EQ(frame.selectionBottom, 5.5);
}

TEST(SelectTool, ADragBeyondThePictureEndsAtItsEdges)
{
    PenFrame frame;
    frame.Show(100, 80);
    frame.tool = 18;
    frame.Press(320, 240);
    frame.Lift(5000, 4000);
    EXPECT_EQ(frame.selectionRight, 99);
    EXPECT_EQ(frame.selectionBottom, 79);
    EXPECT_EQ(frame.selectionActive, 1U);
    frame.Press(320, 240);
    frame.Lift(-5000, -4000);
    EXPECT_EQ(frame.selectionLeft, 0);
    EXPECT_EQ(frame.selectionTop, 0);
    EXPECT_EQ(frame.selectionActive, 1U);
    // Beside the picture there is nothing to select.
    frame.Press(-300, 100);
    frame.Lift(-200, 400);
    EXPECT_EQ(frame.selectionLeft, 0);
    EXPECT_EQ(frame.selectionRight, 0);
    EXPECT_EQ(frame.selectionActive, 0U);
}

TEST(SelectTool, AfterADragDeselectCanBeChosen)
{
    PenFrame frame;
    frame.Show(100, 80);
    frame.tool = 18;
    EXPECT_TRUE(Grayed(frame.editMenu, 40074));
    frame.Press(300, 230);
    frame.Drag(320, 240);
    EXPECT_TRUE(Grayed(frame.editMenu, 40074));
    frame.Lift(320, 240);
    EXPECT_FALSE(Grayed(frame.editMenu, 40074));
}

TEST(SelectTool, APressRedrawsNothing)
{
    PenFrame frame;
    frame.Show(100, 80);
    frame.tool = 18;
    frame.viewRaster.FillAll(0x55AA11FF);
    frame.Press(320, 240);
    ExpectSame(PixelsOf(frame.viewRaster), std::vector<u32>(640 * 480, 0x55AA11), 640);
    frame.Drag(330, 250);
    EXPECT_NE(PixelsOf(frame.viewRaster)[0], 0x55AA11U);
    frame.Lift(330, 250);
}

TEST(SelectTool, ABareTapDropsTheSelectionAndLeavesItsMarksUntilTheNextRedraw)
{
    PenFrame frame;
    frame.Show(100, 80);
    const std::vector<u32> plain = PixelsOf(frame.viewRaster);
    frame.tool = 18;
    frame.Press(300, 230);
    frame.Lift(320, 240);
    ASSERT_EQ(frame.selectionActive, 1U);
    const std::vector<u32> marked = PixelsOf(frame.viewRaster);
    ASSERT_NE(marked, plain);

    frame.Press(310, 250);
    frame.Lift(310, 250);
    EXPECT_EQ(frame.selectionActive, 0U);
    EXPECT_EQ(frame.selecting, 0U);
    EXPECT_EQ(PixelsOf(frame.viewRaster), marked);
    ExpectOnWindow(frame, marked);
    EXPECT_FALSE(Grayed(frame.editMenu, 40074)) << "the menu is not refreshed either";
    ExpectPoints(frame, 310, 250, 310, 250);

    frame.RedrawView();
    EXPECT_EQ(PixelsOf(frame.viewRaster), plain);
}

TEST(SelectTool, ALineWithoutWidthOrHeightIsNoSelection)
{
    PenFrame frame;
    frame.Show(100, 80);
    frame.tool = 18;
    for (const auto& to : {std::pair{310, 250}, std::pair{330, 230}}) {
        frame.selectionActive = 1;
        frame.Press(310, 230);
        frame.Lift(to.first, to.second);
        EXPECT_EQ(frame.selectionActive, 0U);
    }
}

TEST(PipetteTool, ItReadsThePixelUnderThePenAtEveryZoomAndTellsTheColorbox)
{
    PenFrame frame;
    frame.Show(457, 333);
    frame.colorbox = MakeListener();
    frame.backgroundColor = 0xFEDCBA98;
    frame.tool = 64;
    for (u32 zoom : zooms) {
        frame.Zoom(zoom);
        tellings.clear();
        const auto colorAt = [&](int x, int y) {
            return TestColor(static_cast<int>(frame.PictureX(x)),
                             static_cast<int>(frame.PictureY(y)))
                       << 8 |
                   255;
        };
        frame.toolPhase = 17;
        frame.Press(311, 222);
        EXPECT_EQ(frame.faceColor, colorAt(311, 222)) << zoom;
        ASSERT_EQ(tellings.size(), 1U) << "it is sent, not posted";
        EXPECT_EQ(tellings[0].wParam, 0xFEDCBA98U);
        EXPECT_EQ(tellings[0].lParam, static_cast<LPARAM>(frame.faceColor));
        frame.Drag(333, 244);
        EXPECT_EQ(frame.faceColor, colorAt(333, 244)) << zoom;
        EXPECT_EQ(tellings.size(), 2U);
        ExpectPoints(frame, 333, 244, 311, 222);
        frame.Lift(320, 233);
        EXPECT_EQ(frame.faceColor, colorAt(320, 233)) << zoom;
        EXPECT_EQ(tellings.size(), 3U);
        ExpectPoints(frame, 320, 233, 333, 244);
        EXPECT_EQ(frame.toolPhase, 17U);
    }
}

TEST(PipetteTool, OutsideThePictureTheColourStaysAndNobodyIsTold)
{
    PenFrame frame;
    frame.Show(100, 80); // from 270 to 369 on the screen
    frame.colorbox = MakeListener();
    frame.faceColor = 0x11223344;
    frame.tool = 64;
    frame.Press(370, 240);
    frame.Drag(269, 240);
    frame.Drag(320, -5);
    frame.Lift(320, 479);
    EXPECT_EQ(frame.faceColor, 0x11223344U);
    EXPECT_TRUE(tellings.empty());
    frame.Press(369, 240);
    EXPECT_NE(frame.faceColor, 0x11223344U);
    frame.Lift(369, 240);
}

TEST(PipetteTool, HalfAPixelBeforeThePictureStillReadsItsFirstColumn)
{
    PenFrame frame;
    frame.Show(100, 80);
    frame.Zoom(CommandZoom200);
    frame.tool = 64;
    frame.scrollX = -0.5; // the view's left edge; truncation takes it to column 0
    frame.scrollY = 0;
    frame.Press(0, static_cast<int>(frame.clientOriginY));
    EXPECT_EQ(frame.faceColor, TestColor(0, 0) << 8 | 255);
    frame.Lift(0, 0);
}

TEST(PipetteTool, With32BitsTheAlphaIsReadToo)
{
    PenFrame frame;
    frame.Show(100, 80, 32);
    frame.tool = 64;
    frame.Press(320, 240);
    const int x = static_cast<int>(frame.PictureX(320));
    const int y = static_cast<int>(frame.PictureY(240));
    EXPECT_EQ(frame.faceColor, TestColor(x, y) << 8 | static_cast<u32>(x + y));
    frame.Lift(320, 240);
}

TEST(PipetteTool, OnAPictureOf8BitsTheColourStays)
{
    PenFrame frame;
    frame.Show(100, 80, 8);
    frame.colorbox = MakeListener();
    frame.faceColor = 0x11223344;
    frame.tool = 64;
    frame.Press(320, 240);
    frame.Drag(321, 240);
    frame.Lift(322, 240);
    EXPECT_EQ(frame.faceColor, 0x11223344U);
    EXPECT_TRUE(tellings.empty());
}

TEST(Tools, EveryToolSurvivesWithoutAPicture)
{
    PenFrame frame;
    frame.faceColor = 0x11223344;
    // Created and never loaded; then fitted, at a zoom of 0.
    for (int round = 0; round < 2; ++round) {
        for (u32 tool : {1U, 18U, 32U, 48U, 49U, 64U, 99U}) {
            frame.tool = tool;
            frame.Press(100, 100);
            frame.Drag(200, 150);
            frame.Lift(50, 300);
        }
        EXPECT_EQ(frame.faceColor, 0x11223344U);
        EXPECT_EQ(frame.selectionActive, 0U);
        frame.FitToWindow(1);
        EXPECT_EQ(frame.zoom, 0);
    }
}

TEST(Tools, EveryToolSurvivesOnAPictureOfAnotherDepth)
{
    for (u32 depth : {8U, 16U, 32U}) {
        PenFrame frame;
        frame.Show(100, 80, depth);
        ASSERT_EQ(frame.brush->Create(5, 256, 1), Done);
        for (u32 tool : {1U, 18U, 32U, 64U}) {
            frame.tool = tool;
            frame.Press(320, 240);
            frame.Drag(330, 250);
            frame.Lift(340, 260);
        }
        EXPECT_EQ(frame.selectionActive, 1U);
    }
}
