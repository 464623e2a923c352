// The selection's corners: all of the picture, none of it, and putting them in order.

#include "view/tests/PenTesting.h"

using namespace pentest;

namespace
{

bool Grayed(HMENU menu, UINT item)
{
    return (GetMenuState(menu, item, MF_BYCOMMAND) & MF_GRAYED) != 0;
}

} // namespace

TEST(Selection, AllOfThePictureIsSelectedAndShown)
{
    PenFrame frame;
    frame.Show(100, 80);
    frame.selectionLeft = 33;
    frame.selectionTop = 44;
    const std::vector<u32> plain = PixelsOf(frame.viewRaster);
    frame.SelectAll();
    EXPECT_EQ(frame.selectionLeft, 0);
    EXPECT_EQ(frame.selectionTop, 0);
    EXPECT_EQ(frame.selectionRight, 99);
    EXPECT_EQ(frame.selectionBottom, 79);
    EXPECT_EQ(frame.selectionActive, 1U);
    EXPECT_FALSE(Grayed(frame.editMenu, 40074));
    EXPECT_NE(PixelsOf(frame.viewRaster), plain);
    ExpectOnWindow(frame, PixelsOf(frame.viewRaster));
}

TEST(Selection, DroppingItLeavesItsCornersAndShowsThePictureAlone)
{
    PenFrame frame;
    frame.Show(100, 80);
    const std::vector<u32> plain = PixelsOf(frame.viewRaster);
    frame.SelectAll();
    frame.Deselect();
    EXPECT_EQ(frame.selectionActive, 0U);
    EXPECT_EQ(frame.selectionRight, 99);
    EXPECT_EQ(frame.selectionBottom, 79);
    EXPECT_TRUE(Grayed(frame.editMenu, 40074));
    ExpectSame(PixelsOf(frame.viewRaster), plain, 640);
    ExpectOnWindow(frame, plain);
}

TEST(Selection, WithoutAPictureBothCommandsSurvive)
{
    PenFrame frame;
    frame.Deselect();
    EXPECT_EQ(frame.selectionActive, 0U);
    ExpectOnWindow(frame, std::vector<u32>(640 * 480, 0));
    // The key comes through though the entry is gray.
    frame.SelectAll();
    EXPECT_EQ(frame.selectionRight, -1);
    EXPECT_EQ(frame.selectionBottom, -1);
    frame.FitToWindow(1);
    frame.SelectAll();
    frame.Deselect();
    EXPECT_EQ(frame.selectionActive, 0U);
    ExpectOnWindow(frame, std::vector<u32>(640 * 480, 0));
}

TEST(Selection, TheCornersAreOrderedAndCutToThePicture)
{
    PenFrame frame;
    frame.Show(100, 80);
    const struct {
        f64 before[4]; // left, top, right, bottom
        f64 after[4];
    } rows[] = {
        {{1.5, 2.5, 3.5, 4.5}, {1.5, 2.5, 3.5, 4.5}},
        {{5.5, 5.5, 2.5, 2.5}, {2, 2, 5.5, 5.5}}, // only what moves to the low end is truncated
        {{5.5, 2.5, 2.5, 5.5}, {2, 2.5, 5.5, 5.5}},
        {{-3, -4, 500, 600}, {0, 0, 99, 79}},
        {{500, 600, -3.5, -4.5}, {0, 0, 99, 79}},
        {{99.5, 79.5, 99.9, 79.9}, {99.5, 79.5, 99.9, 79.9}}, // still inside the last pixel
        {{100, 80, 100, 80}, {99, 79, 99, 79}},
        {{-20, -20, -10, -10}, {0, 0, 0, 0}},
        {{-1, -1, -1, -1}, {-1, -1, -1, -1}}, // no corners
        {{-1, -1, -1, 5}, {0, 0, 0, 5}},
    };
    for (const auto& row : rows) {
        frame.selectionLeft = row.before[0];
        frame.selectionTop = row.before[1];
        frame.selectionRight = row.before[2];
        frame.selectionBottom = row.before[3];
        frame.NormalizeSelection();
        EXPECT_EQ(frame.selectionLeft, row.after[0]) << row.before[0];
        EXPECT_EQ(frame.selectionTop, row.after[1]) << row.before[1];
        EXPECT_EQ(frame.selectionRight, row.after[2]) << row.before[2];
        EXPECT_EQ(frame.selectionBottom, row.after[3]) << row.before[3];
    }
}

TEST(Selection, ItSurvivesAZoomInPictureCoordinates)
{
    PenFrame frame;
    frame.Show(457, 333);
    frame.tool = 18;
    frame.Press(300, 200);
    frame.Lift(350, 260);
    const f64 left = frame.selectionLeft;
    const f64 right = frame.selectionRight;
    for (u32 zoom : zooms) {
        frame.Zoom(zoom);
        EXPECT_EQ(frame.selectionLeft, left);
        EXPECT_EQ(frame.selectionRight, right);
        EXPECT_EQ(frame.selectionActive, 1U);
    }
}
