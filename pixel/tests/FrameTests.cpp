// Outlines: the formula written out, the sides that a cut takes away, rows drawn twice.

#include "AreaSweep.h"
#include "PlainFrame.h"

namespace
{

using FrameRectTest = PagingTest;

constexpr u32 Solid = 0x112233FF;

i32 Frame(Raster& raster, u32 color, PixelRect area)
{
    return raster.FrameRect(color, area);
}

Picture Drawn(u32 depth, PixelRect area)
{
    Twin twin(6, 5, depth, 0);
    Flatten(twin, 100);
    EXPECT_EQ(twin.raster.FrameRect(Solid, area), Done);
    return Changed(twin.raster, 100);
}

} // namespace

TEST_F(FrameRectTest, EqualsItsFormulaEverywhere)
{
    SweepAreas(Frame, PlainFrameRect, 11);
}

TEST_F(FrameRectTest, EqualsItsFormulaAtTheEndsOfTheNumbers)
{
    SweepExtremeAreas(Frame, PlainFrameRect);
}

TEST_F(FrameRectTest, EqualsItsFormulaWhileLinesGoToFiles)
{
    SweepPagedAreas(Frame, PlainFrameRect, 12);
}

TEST_F(FrameRectTest, StopsAtALineThatDoesNotComeAlsoWhereNothingIsDrawnOnIt)
{
    SweepRefusedAreas(Frame, PlainFrameRect, 13);
    ExpectLostLineEndsTheWork(Frame, PlainFrameRect);
    // Both sides are cut off, and the row between top and bottom is asked for all the same.
    Twin twin(10, 5, 24, 1, Storage::Paging);
    twin.Refuse(1);
    EXPECT_EQ(twin.raster.FrameRect(Solid, {-1, 0, 10, 3}), NoMemory);
    EXPECT_EQ(PlainFrameRect(twin.plain, Solid, {-1, 0, 10, 3}), NoMemory);
    ExpectSame({&twin});
}

TEST_F(FrameRectTest, EqualsItsFormulaForEveryAlphaAndEveryOldByte)
{
    Rows olds(258, std::vector<u8>(3 * 256));
    for (std::vector<u8>& row : olds)
        for (u32 i = 0; i < 3 * 256; ++i)
            row[i] = static_cast<u8>(i / 3);
    Places places(14);
    for (const u32 color : {0x00FF7F00u, places.Word() & ~255u}) {
        Twin twin(256, 258, 24, 0);
        twin.SetRows(olds);
        // Top and bottom row of one outline, with the sides cut off.
        for (i32 alpha = 0; alpha < 256; alpha += 2)
            RunArea(twin, Frame, PlainFrameRect, color | static_cast<u32>(alpha),
                    {-1, alpha, 256, alpha + 1});
        for (i32 alpha = 1; alpha < 256; alpha += 2)
            RunArea(twin, Frame, PlainFrameRect, color | static_cast<u32>(alpha),
                    {-1, alpha + 1, 256, alpha + 2});
        // The sides.
        for (i32 alpha = 0; alpha < 256; ++alpha)
            RunArea(twin, Frame, PlainFrameRect, color | static_cast<u32>(alpha),
                    {alpha / 2, -1, 255 - alpha / 3, 258});
        ExpectSame({&twin});
    }
}

TEST_F(FrameRectTest, DrawsAnOutlineOnePixelWide)
{
    EXPECT_EQ(Drawn(24, {1, 1, 4, 3}), (Picture{"......", ".####.", ".#..#.", ".####.", "......"}));
    EXPECT_EQ(Drawn(24, {0, 0, 5, 4}), (Picture{"######", "#....#", "#....#", "#....#", "######"}));
}

TEST_F(FrameRectTest, SidesOutsideTheRasterAreLost)
{
    EXPECT_EQ(Drawn(24, {-1, 1, 4, 3}),
              (Picture{"......", "#####.", "....#.", "#####.", "......"}));
    EXPECT_EQ(Drawn(24, {1, -1, 4, 3}),
              (Picture{"......", ".#..#.", ".#..#.", ".####.", "......"}));
    EXPECT_EQ(Drawn(24, {1, 1, 6, 3}), (Picture{"......", ".#####", ".#....", ".#####", "......"}));
    EXPECT_EQ(Drawn(24, {1, 1, 4, 5}), (Picture{"......", ".####.", ".#..#.", ".#..#.", "......"}));
    EXPECT_EQ(Drawn(24, {-1, -1, 6, 5}), Picture(5, "......"));
}

TEST_F(FrameRectTest, OrderingAnInvertedRectangleIsNoCut)
{
    EXPECT_EQ(Drawn(24, {4, 3, 1, 1}), (Picture{"......", ".####.", ".#..#.", ".####.", "......"}));
}

TEST_F(FrameRectTest, ARightEdgeAtColumn0DrawsNothing)
{
    for (const u32 depth : {24u, 32u}) {
        EXPECT_EQ(Drawn(depth, {0, 0, 0, 4}), Picture(5, "......"));
        EXPECT_EQ(Drawn(depth, {-3, 0, 0, 4}), Picture(5, "......"));
        EXPECT_EQ(Drawn(depth, {0, 0, 5, 0}), Picture(5, "......"));
    }
}

TEST_F(FrameRectTest, OneRowIsDrawnTwice)
{
    Twin twin(4, 4, 24, 0);
    Flatten(twin, 100);
    EXPECT_EQ(twin.raster.FrameRect(0xFFFFFF7F, {0, 1, 2, 1}), Done);
    // (128 * 255 + 128 * old) >> 8: 100 becomes 177 and that 216.
    EXPECT_EQ(PixelOf(twin.raster, 1, 1), (Bytes{216, 216, 216}));
    EXPECT_EQ(PixelOf(twin.raster, 0, 1), (Bytes{216, 216, 216}));
    EXPECT_EQ(Changed(twin.raster, 100), (Picture{"....", "###.", "....", "...."}));
}

TEST_F(FrameRectTest, OneColumnIsDrawnTwiceBetweenItsEnds)
{
    Twin twin(4, 4, 24, 0);
    Flatten(twin, 100);
    EXPECT_EQ(twin.raster.FrameRect(0xFFFFFF7F, {1, 0, 1, 2}), Done);
    EXPECT_EQ(PixelOf(twin.raster, 1, 0), (Bytes{177, 177, 177}));
    EXPECT_EQ(PixelOf(twin.raster, 1, 1), (Bytes{216, 216, 216}));
    EXPECT_EQ(PixelOf(twin.raster, 1, 2), (Bytes{177, 177, 177}));
}

TEST_F(FrameRectTest, OneRowAtTheBottomWithTheBottomCutOffIsDrawnOnce)
{
    Twin twin(4, 4, 24, 0);
    Flatten(twin, 100);
    EXPECT_EQ(twin.raster.FrameRect(0xFFFFFF7F, {0, 3, 2, 7}), Done);
    EXPECT_EQ(PixelOf(twin.raster, 1, 3), (Bytes{177, 177, 177}));
}

TEST_F(FrameRectTest, At32BitsTheWholeRectangleIsFilled)
{
    EXPECT_EQ(Drawn(32, {1, 1, 4, 3}), (Picture{"......", ".####.", ".####.", ".####.", "......"}));
    EXPECT_EQ(Drawn(32, {-1, -1, 6, 5}), Picture(5, "######"));
    Twin twin(3, 3, 32, 9);
    EXPECT_EQ(twin.raster.FrameRect(0x11223344, {0, 0, 2, 2}), Done);
    EXPECT_EQ(PixelOf(twin.raster, 1, 1), (Bytes{0x44, 0x11, 0x22, 0x33}));
}

TEST_F(FrameRectTest, ARefusedDepthFailsAlsoWhereNothingWouldBeDrawn)
{
    for (const u32 depth : {8u, 16u}) {
        Twin twin(4, 4, depth, 7);
        EXPECT_EQ(twin.raster.FrameRect(Solid, {0, 0, 3, 3}), Failed);
        EXPECT_EQ(twin.raster.FrameRect(Solid, {9, 9, 12, 12}), Failed);
        ExpectSame({&twin});
    }
    Raster never;
    EXPECT_EQ(never.FrameRect(Solid, {0, 0, 3, 3}), Failed);
}
