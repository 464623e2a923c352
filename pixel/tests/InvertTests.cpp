// Inverted rectangles and outlines: the formula written out, which sides a cut takes away, and byte
// 0 of a 32-bit pixel, which stays.

#include "AreaSweep.h"
#include "PlainFrame.h"

namespace
{

using InvertRectTest = PagingTest;
using InvertFrameTest = PagingTest;

i32 Invert(Raster& raster, u32, PixelRect area)
{
    return raster.InvertRect(area);
}

i32 PlainInvert(PlainRaster& plain, u32, PixelRect area)
{
    return PlainInvertRect(plain, area);
}

i32 Outline(Raster& raster, u32, PixelRect area)
{
    return raster.InvertFrame(area);
}

i32 PlainOutline(PlainRaster& plain, u32, PixelRect area)
{
    return PlainInvertFrame(plain, area);
}

Picture Drawn(u32 depth, PixelRect area)
{
    Twin twin(6, 5, depth, 0);
    Flatten(twin, 100);
    EXPECT_EQ(twin.raster.InvertFrame(area), Done);
    return Changed(twin.raster, 100);
}

} // namespace

TEST_F(InvertRectTest, EqualsItsFormulaEverywhere)
{
    SweepAreas(Invert, PlainInvert, 21);
}

TEST_F(InvertRectTest, EqualsItsFormulaAtTheEndsOfTheNumbers)
{
    SweepExtremeAreas(Invert, PlainInvert);
}

TEST_F(InvertRectTest, EqualsItsFormulaWhileLinesGoToFiles)
{
    SweepPagedAreas(Invert, PlainInvert, 22);
}

TEST_F(InvertRectTest, StopsAtALineThatDoesNotCome)
{
    SweepRefusedAreas(Invert, PlainInvert, 23);
    ExpectLostLineEndsTheWork(Invert, PlainInvert);
}

TEST_F(InvertRectTest, EveryByteBecomes255LessItself)
{
    Twin twin(256, 2, 24, 0);
    Rows rows(2, std::vector<u8>(3 * 256));
    for (u32 i = 0; i < 3 * 256; ++i)
        rows[0][i] = static_cast<u8>(i);
    twin.SetRows(rows);
    EXPECT_EQ(twin.raster.InvertRect({0, 0, 255, 1}), Done);
    const Rows now = RowsOf(twin.raster);
    for (u32 i = 0; i < 3 * 256; ++i) {
        EXPECT_EQ(now[0][i], 255 - i % 256);
        EXPECT_EQ(now[1][i], 255);
    }
}

TEST_F(InvertRectTest, At32BitsByte0Stays)
{
    Twin twin(2, 2, 32, 0);
    Flatten(twin, 100);
    EXPECT_EQ(twin.raster.InvertRect({1, 1, 1, 1}), Done);
    EXPECT_EQ(PixelOf(twin.raster, 1, 1), (Bytes{100, 155, 155, 155}));
    EXPECT_EQ(PixelOf(twin.raster, 0, 1), (Bytes{100, 100, 100, 100}));
    EXPECT_EQ(PixelOf(twin.raster, 1, 0), (Bytes{100, 100, 100, 100}));
}

TEST_F(InvertRectTest, ARectangleThatEndsAtColumnOrRow0IsOutside)
{
    for (const u32 depth : {24u, 32u})
        for (const PixelRect& area : {PixelRect{0, 0, 0, 3}, PixelRect{0, 0, 3, 0}}) {
            Twin twin(4, 4, depth, 0);
            Flatten(twin, 100);
            EXPECT_EQ(twin.raster.InvertRect(area), Done);
            EXPECT_EQ(twin.raster.InvertFrame(area), Done);
            EXPECT_EQ(Changed(twin.raster, 100), Picture(4, "...."));
        }
}

TEST_F(InvertRectTest, RefusedDepthsFailAlsoWhereNothingWouldBeInverted)
{
    for (const u32 depth : {8u, 16u}) {
        Twin twin(4, 4, depth, 7);
        EXPECT_EQ(twin.raster.InvertRect({0, 0, 3, 3}), Failed);
        EXPECT_EQ(twin.raster.InvertRect({9, 9, 12, 12}), Failed);
        EXPECT_EQ(twin.raster.InvertFrame({0, 0, 3, 3}), Failed);
        EXPECT_EQ(twin.raster.InvertFrame({9, 9, 12, 12}), Failed);
        ExpectSame({&twin});
    }
    Raster never;
    EXPECT_EQ(never.InvertRect({0, 0, 3, 3}), Failed);
    EXPECT_EQ(never.InvertFrame({0, 0, 3, 3}), Failed);
}

TEST_F(InvertFrameTest, EqualsItsFormulaEverywhere)
{
    SweepAreas(Outline, PlainOutline, 24);
}

TEST_F(InvertFrameTest, EqualsItsFormulaAtTheEndsOfTheNumbers)
{
    SweepExtremeAreas(Outline, PlainOutline);
}

TEST_F(InvertFrameTest, EqualsItsFormulaWhileLinesGoToFiles)
{
    SweepPagedAreas(Outline, PlainOutline, 25);
}

TEST_F(InvertFrameTest, StopsAtALineThatDoesNotComeAlsoWhereNothingIsDrawnOnIt)
{
    SweepRefusedAreas(Outline, PlainOutline, 26);
    ExpectLostLineEndsTheWork(Outline, PlainOutline);
}

TEST_F(InvertFrameTest, TwiceRestoresThePictureWhereNothingWasCutOff)
{
    for (const u32 depth : {24u, 32u}) {
        Twin twin(9, 7, depth, 3);
        EXPECT_EQ(twin.raster.InvertFrame({1, 1, 7, 5}), Done);
        EXPECT_NE(RowsOf(twin.raster), twin.plain.rows);
        EXPECT_EQ(twin.raster.InvertFrame({1, 1, 7, 5}), Done);
        ExpectSame({&twin});
    }
}

TEST_F(InvertFrameTest, SidesThatAreCutOffAreLostButNeverTheBottomRow)
{
    EXPECT_EQ(Drawn(24, {1, 1, 4, 3}), (Picture{"......", ".####.", ".#..#.", ".####.", "......"}));
    EXPECT_EQ(Drawn(24, {-1, 1, 4, 3}),
              (Picture{"......", "#####.", "....#.", "#####.", "......"}));
    EXPECT_EQ(Drawn(24, {1, -1, 4, 3}),
              (Picture{"......", ".#..#.", ".#..#.", ".####.", "......"}));
    EXPECT_EQ(Drawn(24, {1, 1, 6, 3}), (Picture{"......", ".#####", ".#....", ".#####", "......"}));
    EXPECT_EQ(Drawn(24, {1, 1, 4, 5}), (Picture{"......", ".####.", ".#..#.", ".#..#.", ".####."}));
    EXPECT_EQ(Drawn(24, {-1, -1, 6, 5}),
              (Picture{"......", "......", "......", "......", "######"}));
}

TEST_F(InvertFrameTest, APictureThatASelectionHasLeftStaysAsItIs)
{
    for (const PixelRect& area : {PixelRect{6, 0, 9, 4}, PixelRect{0, 5, 5, 9},
                                  PixelRect{-9, -9, -2, 3}, PixelRect{-9, -9, 5, -1}})
        EXPECT_EQ(Drawn(24, area), Picture(5, "......")) << Tell(area);
}

TEST_F(InvertFrameTest, At32BitsTheLeftSideIsNeverDrawnAndTopAndBottomAlways)
{
    EXPECT_EQ(Drawn(32, {1, 1, 4, 3}), (Picture{"......", ".####.", "....#.", ".####.", "......"}));
    EXPECT_EQ(Drawn(32, {1, -1, 4, 3}),
              (Picture{".####.", "....#.", "....#.", ".####.", "......"}));
    EXPECT_EQ(Drawn(32, {-1, -1, 6, 5}),
              (Picture{"######", "......", "......", "......", "######"}));
    Twin twin(3, 3, 32, 0);
    Flatten(twin, 100);
    EXPECT_EQ(twin.raster.InvertFrame({0, 0, 2, 2}), Done);
    EXPECT_EQ(PixelOf(twin.raster, 2, 1), (Bytes{100, 155, 155, 155}));
}

TEST_F(InvertFrameTest, OneRowIsInvertedAsTopAndAgainAsBottom)
{
    for (const u32 depth : {24u, 32u})
        EXPECT_EQ(Drawn(depth, {1, 2, 4, 2}), Picture(5, "......"));
    // The top was cut off, so that the row is drawn as bottom alone; at 32 bits it is drawn twice.
    Twin flat(4, 1, 24, 0);
    Flatten(flat, 100);
    EXPECT_EQ(flat.raster.InvertFrame({1, -1, 2, 1}), Done);
    EXPECT_EQ(Changed(flat.raster, 100), Picture{".##."});
    Twin deep(4, 1, 32, 0);
    Flatten(deep, 100);
    EXPECT_EQ(deep.raster.InvertFrame({1, -1, 2, 1}), Done);
    EXPECT_EQ(Changed(deep.raster, 100), Picture{"...."});
}

TEST_F(InvertFrameTest, OneColumnIsInvertedTwiceBetweenItsEnds)
{
    EXPECT_EQ(Drawn(24, {2, 1, 2, 4}), (Picture{"......", "..#...", "......", "......", "..#..."}));
    // At 32 bits only the right side is drawn.
    EXPECT_EQ(Drawn(32, {2, 1, 2, 4}), (Picture{"......", "..#...", "..#...", "..#...", "..#..."}));
}
