// Places and sizes at the ends of what a number holds. Sums of two of them do not come round, and
// nothing outside a line is touched, which the sanitizers watch.

#include "Rasters.h"

namespace
{

using ExtremePlace = PagingTest;

constexpr i32 Most = 2147483647;
constexpr i32 Least = -Most - 1;
constexpr i32 Places[] = {Least, Least + 1, -1, 0, 4, Most - 1, Most};

bool Same(const PixelRect& a, const PixelRect& b)
{
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

/// The bytes of an unclipped fill.
Rows Stored(Raster& like, u32 color)
{
    const RasterInfo info = InfoOf(like);
    Raster raster;
    EXPECT_EQ(raster.Create(info.width, info.height, info.depth, nullptr, nullptr), 1);
    EXPECT_EQ(raster.FillAll(color), 1);
    return PlainOf(raster).rows;
}

} // namespace

TEST_F(ExtremePlace, ARectangleOfEverythingCoversTheRaster)
{
    const PixelRect everything = {Most, Most, Least, Least}; // the wrong way round, besides
    for (u32 depth : {24u, 32u}) {
        Raster raster;
        ASSERT_EQ(raster.Create(5, 4, depth, nullptr, nullptr), 1);
        ASSERT_EQ(raster.FillRect(0x102030FF, everything), 1);
        EXPECT_EQ(PlainOf(raster).rows, Stored(raster, 0x102030FF));
        ASSERT_EQ(raster.InvertRect(everything), 1);
        EXPECT_NE(PlainOf(raster).rows, Stored(raster, 0x102030FF));
        ASSERT_EQ(raster.InvertRect(everything), 1);
        EXPECT_EQ(PlainOf(raster).rows, Stored(raster, 0x102030FF));
    }
}

TEST_F(ExtremePlace, OfAFrameAroundEverythingOnlyAnInvertedBottomRowIsSeen)
{
    const PixelRect everything = {Least, Least, Most, Most};
    Raster raster;
    ASSERT_NO_FATAL_FAILURE(MakeRaster(raster, 5, 4, 24, 3, Paging::None));
    Rows expected = PlainOf(raster).rows;
    ASSERT_EQ(raster.FrameRect(0x102030FF, everything), 1);
    EXPECT_EQ(PlainOf(raster).rows, expected);
    for (u32 i = 0; i < 15; ++i)
        expected[3][i] = static_cast<u8>(255 - expected[3][i]);
    ASSERT_EQ(raster.InvertFrame(everything), 1);
    EXPECT_EQ(PlainOf(raster).rows, expected);
}

TEST_F(ExtremePlace, AMaskThatBeginsAsFarOutAsItsRectangleLiesOnTheRaster)
{
    Raster raster;
    Raster plain;
    Raster mask;
    ASSERT_NO_FATAL_FAILURE(MakeRaster(raster, 6, 5, 24, 3, Paging::None));
    ASSERT_NO_FATAL_FAILURE(MakeRaster(plain, 6, 5, 24, 3, Paging::None));
    ASSERT_NO_FATAL_FAILURE(MakeRaster(mask, 4, 3, 8, 4, Paging::None));
    PixelRect around = {Least, Least, Most, Most};
    ASSERT_EQ(raster.BlendMask(0xC8643280, &around, &mask, Least, Least), 1);
    EXPECT_TRUE(Same(around, {0, 0, 3, 2}));
    PixelRect inside = {0, 0, 3, 2};
    ASSERT_EQ(plain.BlendMask(0xC8643280, &inside, &mask, 0, 0), 1);
    EXPECT_EQ(PlainOf(raster).rows, PlainOf(plain).rows);
}

TEST_F(ExtremePlace, AMaskFarToTheLeftLeavesThePixelsAsTheyAre)
{
    Raster raster;
    Raster mask;
    ASSERT_NO_FATAL_FAILURE(MakeRaster(raster, 6, 5, 24, 3, Paging::None));
    ASSERT_NO_FATAL_FAILURE(MakeRaster(mask, 4, 3, 8, 4, Paging::None));
    const Rows before = PlainOf(raster).rows;
    PixelRect rectangle = {0, 0, Most, 2};
    ASSERT_EQ(raster.BlendMask(0xC8643280, &rectangle, &mask, Least, 0), 1);
    EXPECT_TRUE(Same(rectangle, {0, 0, 5, 2}));
    EXPECT_EQ(PlainOf(raster).rows, before);
    // A row as far up does not exist.
    ASSERT_EQ(raster.BlendMask(0xC8643280, &rectangle, &mask, 0, Least), -1);
    EXPECT_EQ(PlainOf(raster).rows, before);
}

TEST_F(ExtremePlace, AMaskThatEndsFarBeforeTheRectangleIsToldInLow32Bits)
{
    Raster raster;
    Raster mask;
    ASSERT_NO_FATAL_FAILURE(MakeRaster(raster, 6, 5, 24, 3, Paging::None));
    ASSERT_NO_FATAL_FAILURE(MakeRaster(mask, 4, 3, 8, 4, Paging::None));
    const Rows before = PlainOf(raster).rows;
    // The mask's column at the edge is 2^31 - 1 + 2^31, which puts the right end at 4 - 2^32.
    PixelRect rectangle = {Least, 0, Most, 2};
    ASSERT_EQ(raster.BlendMask(0xC8643280, &rectangle, &mask, Most, 0), 1);
    EXPECT_TRUE(Same(rectangle, {0, 0, 4, 2}));
    EXPECT_EQ(PlainOf(raster).rows, before);
}

TEST_F(ExtremePlace, RectanglesOfAnyPlacesAreClipped)
{
    Raster rasters[3];
    Raster mask;
    ASSERT_NO_FATAL_FAILURE(MakeRaster(rasters[0], 6, 5, 24, 3, Paging::None));
    ASSERT_NO_FATAL_FAILURE(MakeRaster(rasters[1], 6, 5, 32, 3, Paging::None));
    ASSERT_EQ(rasters[2].Create(0, 0, 24, nullptr, nullptr), 1);
    ASSERT_NO_FATAL_FAILURE(MakeRaster(mask, 4, 3, 8, 4, Paging::None));
    for (Raster& raster : rasters)
        for (i32 left : Places)
            for (i32 top : Places)
                for (i32 right : Places)
                    for (i32 bottom : Places) {
                        const PixelRect rectangle = {left, top, right, bottom};
                        EXPECT_EQ(raster.FillRect(0xC8643280, rectangle), 1);
                        EXPECT_EQ(raster.FrameRect(0xC8643280, rectangle), 1);
                        EXPECT_EQ(raster.InvertRect(rectangle), 1);
                        EXPECT_EQ(raster.InvertFrame(rectangle), 1);
                        EXPECT_EQ(raster.BlendMaskRect(0xC8643280, rectangle, &mask, right, 0), 1);
                    }
}

TEST_F(ExtremePlace, RunsOfAnyPlacesAndSizesAreCut)
{
    Raster source;
    Raster target;
    Raster over;
    Raster mask;
    ASSERT_NO_FATAL_FAILURE(MakeRaster(source, 5, 5, 24, 1, Paging::None));
    ASSERT_NO_FATAL_FAILURE(MakeRaster(target, 5, 5, 24, 2, Paging::None));
    ASSERT_NO_FATAL_FAILURE(MakeRaster(over, 5, 5, 32, 3, Paging::None));
    ASSERT_NO_FATAL_FAILURE(MakeRaster(mask, 5, 5, 8, 3, Paging::None));
    for (i32 x : Places)
        for (i32 size : Places)
            for (i32 targetX : Places) {
                EXPECT_EQ(over.CompositeTo(x, x, size, size, &target, targetX, targetX), 1);
                EXPECT_EQ(over.CompositeTo(x, x, size, size, &over, targetX, targetX), 1);
                for (i32 maskX : Places) {
                    const i32 status = source.CopyMasked(x, x, size, size, &target, targetX,
                                                         targetX, &mask, maskX, maskX);
                    // A mask too far down or right, or rows of the mask that do not exist.
                    EXPECT_TRUE(status == 1 || status == -1);
                }
            }
    EXPECT_EQ(source.CopyMasked(0, 0, 4, 4, &target, 0, 0, &mask, Most, 0), -1);
    EXPECT_EQ(source.CopyMasked(0, 0, 4, 4, &target, 0, 0, &mask, 0, Most), -1);
}
