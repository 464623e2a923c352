// Size, from the command to the pixels: the nine anchors, undo, and canvases that cannot be made.

#include "shell/tests/SizingTesting.h"

using namespace sizingtest;

namespace
{

struct Place {
    u32 anchor;
    int x; // where a picture of 5 by 4 lies in a canvas of 10 by 9
    int y;
    int cutX; // and in one of 2 by 1
    int cutY;
};

// Typed by hand: half the difference, 2 and -1 (towards 0), and one short of the last edge, 4 and
// -4.
const Place places[] = {
    {1061, 0, 0, 0, 0},  {1025, 2, 0, -1, 0},  {1062, 4, 0, -4, 0},
    {1059, 0, 2, 0, -1}, {1058, 2, 2, -1, -1}, {1060, 4, 2, -4, -1},
    {1063, 0, 4, 0, -4}, {1057, 2, 4, -1, -4}, {1064, 4, 4, -4, -4},
};

/// A picture of that size whose top left lies at (x, y), on blank ground.
std::function<u32(int, int)> Placed(int x, int y, int width, int height)
{
    return [=](int column, int row) {
        const bool inside = column >= x && row >= y && column < x + width && row < y + height;
        return inside ? TestColor(column - x, row - y) : 0u;
    };
}

} // namespace

TEST(ResizeCanvas, EachAnchorKeepsThePictureAtItsPlaceInALargerAndInASmallerCanvas)
{
    Sizer sizer;
    HideToolWindows();
    RunOnPicture([&](MainFrame& frame) {
        for (const Place& place : places) {
            SCOPED_TRACE(place.anchor);
            Paint(frame, 5, 4);
            sizer.Enter(10, 9, place.anchor);
            Send(frame, SizeCommand);
            ExpectPixels(frame, 10, 9, Placed(place.x, place.y, 5, 4));
            ExpectOnScreen(frame, 10, 9);
            Paint(frame, 5, 4);
            sizer.Enter(2, 1, place.anchor);
            Send(frame, SizeCommand);
            ExpectPixels(frame, 2, 1, Placed(place.cutX, place.cutY, 5, 4));
        }
        EXPECT_TRUE(sizer.TakeBoxes().empty());
        EXPECT_EQ(sizer.offered.back().width, u"5");
        EXPECT_EQ(sizer.offered.back().height, u"4");
    });
}

TEST(ResizeCanvas, TheCentreIsWhatItBeginsWithAndTheLowerRightIsOneShort)
{
    Sizer sizer;
    RunOnPicture(
        [&](MainFrame& frame) {
            sizer.Enter(100, 100, 1064);
            Send(frame, SizeCommand);
            ExpectPixels(frame, 100, 100, Placed(49, 49, 50, 50));
            EXPECT_EQ(PixelOf(*frame.image, 99, 99), 0u);
            Paint(frame, 50, 50);
            sizer.Enter(30, 40);
            Send(frame, SizeCommand);
            ExpectPixels(frame, 30, 40, Placed(-10, -5, 50, 50));
        },
        50, 50);
}

TEST(ResizeCanvas, PicturesOfOnePixelALineAndAColumnKeepWhatTheyHave)
{
    Sizer sizer;
    RunOnPicture([&](MainFrame& frame) {
        const struct {
            int width;
            int height;
        } sizes[] = {{1, 1}, {7, 1}, {1, 7}};
        for (const auto& size : sizes) {
            Paint(frame, size.width, size.height);
            sizer.Enter(9, 9, 1058);
            Send(frame, SizeCommand);
            ExpectPixels(
                frame, 9, 9,
                Placed((9 - size.width) / 2, (9 - size.height) / 2, size.width, size.height));
            Paint(frame, size.width, size.height);
            sizer.Enter(1, 1, 1061);
            Send(frame, SizeCommand);
            ExpectPixels(frame, 1, 1, Placed(0, 0, size.width, size.height));
        }
    });
}

TEST(ResizeCanvas, UndoBringsTheOldPictureBackWithItsSizeAndItsView)
{
    UndoAndNoToolWindows();
    Sizer sizer;
    RunOnPicture([&](MainFrame& frame) {
        sizer.Enter(20, 30, 1061);
        EXPECT_FALSE(CanUndo(frame));
        Send(frame, SizeCommand);
        EXPECT_TRUE(CanUndo(frame));
        EXPECT_EQ(frame.undoX, -1);
        EXPECT_EQ(frame.undoY, -1);
        ExpectPicture(frame.undoImage);
        ASSERT_EQ(frame.image->SetPixel(3, 3, 0x123456FF), Done);
        Send(frame, UndoCommand);
        ExpectPicture(*frame.image);
        ExpectOnScreen(frame, PictureWidth, PictureHeight);
        EXPECT_FALSE(CanUndo(frame));
    });
}

TEST(ResizeCanvas, WithUndoSwitchedOffNothingIsKept)
{
    Sizer sizer;
    RunOnPicture([&](MainFrame& frame) {
        sizer.Enter(20, 30);
        Send(frame, SizeCommand);
        EXPECT_FALSE(CanUndo(frame));
        EXPECT_FALSE(HasSnapshot(frame));
        Send(frame, UndoCommand);
        EXPECT_EQ(InfoOf(*frame.image).width, 20u);
    });
}

TEST(ResizeCanvas, TheSelectionAndTheFittedZoomStayAsTheyAre)
{
    Sizer sizer;
    RunOnPicture([&](MainFrame& frame) {
        Send(frame, FitCommand);
        const f64 zoom = frame.zoom;
        Select(frame, 10, 20, 59, 49);
        sizer.Enter(6, 5, 1061);
        Send(frame, SizeCommand);
        ExpectPixels(frame, 6, 5, Placed(0, 0, 60, 50));
        EXPECT_EQ(frame.zoom, zoom);
        EXPECT_EQ(frame.zoomCommand, FitCommand);
        EXPECT_EQ(frame.selectionActive, 1u);
        EXPECT_EQ(frame.selectionRight, 59);
    });
}

TEST(ResizeCanvas, GivenUpItChangesNothing)
{
    SwitchUndoOn();
    Sizer sizer;
    RunOnPicture([&](MainFrame& frame) {
        sizer.Enter(20, 30, 1061);
        sizer.end = IDCANCEL;
        Send(frame, SizeCommand);
        EXPECT_EQ(sizer.offered.size(), 1u);
        ExpectPicture(*frame.image);
        EXPECT_FALSE(CanUndo(frame));
    });
}

TEST(ResizeCanvas, AnEmptyDocumentBecomesABlankOneAndStaysUnseen)
{
    UndoAndNoToolWindows();
    Sizer sizer;
    InstallFixture("quick");
    EXPECT_EQ(RunProgram(u"",
                         [&](MainFrame& frame) {
                             sizer.Enter(20, 30, 1064);
                             Send(frame, SizeCommand);
                             EXPECT_EQ(sizer.offered.back().width, u"0");
                             EXPECT_EQ(sizer.offered.back().height, u"0");
                             ExpectPixels(frame, 20, 30, [](int, int) { return 0u; });
                             EXPECT_EQ(frame.imagePresent, 0u);
                             Send(frame, UndoCommand);
                             sizer.Enter(0, 0);
                             Send(frame, SizeCommand);
                             Send(frame, UndoCommand);
                             EXPECT_EQ(frame.imagePresent, 0u);
                         }),
              0);
}

TEST(ResizeCanvas, WithoutARasterItBeepsAndChangesNothing)
{
    SwitchUndoOn();
    Sizer sizer;
    RunOnPicture([&](MainFrame& frame) {
        sizer.Enter(20, 30);
        const unsigned beeps = Beeps();
        SetAllocationFault([](SIZE_T size) { return size == sizeof(Raster); });
        Send(frame, SizeCommand);
        SetAllocationFault(nullptr);
        EXPECT_EQ(Beeps(), beeps + 1);
        ExpectPicture(*frame.image);
        EXPECT_FALSE(CanUndo(frame));
    });
}

// What could not be made takes the picture's place all the same. Undo has the old one.
TEST(ResizeCanvas, ACanvasThatCannotBeMadeIsSurvivedAndUndone)
{
    UndoAndNoToolWindows();
    Sizer sizer;
    RunOnPicture([&](MainFrame& frame) {
        const struct {
            u32 width;
            u32 height;
        } sizes[] = {{4000000000u, 10},
                     {10, 4000000000u},
                     {4294967295u, 4294967295u},
                     {0, 0},
                     {0, 30},
                     {30, 0}};
        for (const auto& size : sizes)
            for (const Place& place : places) {
                SCOPED_TRACE(place.anchor);
                sizer.Enter(size.width, size.height, place.anchor);
                Send(frame, SizeCommand);
                frame.RedrawView();
                Send(frame, FitCommand);
                EXPECT_TRUE(CanUndo(frame));
                Send(frame, UndoCommand);
                ExpectPicture(*frame.image);
                Send(frame, 40018);
            }
        EXPECT_TRUE(sizer.TakeBoxes().empty());
        ExpectOnScreen(frame, PictureWidth, PictureHeight);
    });
}

TEST(ResizeCanvas, ACanvasThatRunsOutOfMemoryPartWayIsSurvived)
{
    SwitchUndoOn();
    Sizer sizer;
    RunOnPicture([&](MainFrame& frame) {
        for (const int allowed : {0, 1, 2, 5, 20, 40, 100, 200, 400}) {
            Paint(frame, PictureWidth, PictureHeight);
            int left = allowed;
            sizer.before = [&](HWND) {
                // From the end of the dialog on; not the record itself, for which there is a beep.
                SetAllocationFault(
                    [&](SIZE_T size) { return size != sizeof(Raster) && left-- <= 0; });
            };
            sizer.Enter(80, 90, 1058);
            Send(frame, SizeCommand);
            SetAllocationFault(nullptr);
            Send(frame, FitCommand);
            Send(frame, UndoCommand);
            Send(frame, UndoCommand);
        }
        sizer.before = nullptr;
        Paint(frame, 5, 4);
        sizer.Enter(10, 9, 1061);
        Send(frame, SizeCommand);
        ExpectPixels(frame, 10, 9, Placed(0, 0, 5, 4));
    });
}
