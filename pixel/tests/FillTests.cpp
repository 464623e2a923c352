#include "Rasters.h"

namespace
{

using Fill = PagingTest;

/// The fill of a whole raster, straight from its formula. Bytes behind the last pixel become 0
/// where the line is stored whole and stay otherwise.
Plain Filled(Plain picture, u32 color)
{
    const u32 c[3] = {(color >> 8) & 255, (color >> 16) & 255, color >> 24};
    const u32 a = color & 255;
    const u32 a1 = a + 1;
    for (auto& row : picture.rows) {
        if (picture.depth == 24 && a == 255)
            row.assign(row.size(), 0);
        for (u32 x = 0; x < picture.width; ++x) {
            u8* const pixel = &row[x * picture.depth / 8];
            if (picture.depth == 32) {
                const u32 word = a | (c[2] << 8) | (c[1] << 16) | (c[0] << 24);
                for (u32 k = 0; k < 4; ++k)
                    pixel[k] = static_cast<u8>(word >> (8 * k));
            } else {
                for (u32 k = 0; k < 3; ++k)
                    pixel[k] = static_cast<u8>((a1 * c[k] + (256 - a1) * pixel[k]) >> 8);
            }
        }
    }
    return picture;
}

} // namespace

TEST_F(Fill, OpaqueBlendedAndTransparentColoursFollowTheFormula)
{
    for (u32 depth : {24u, 32u})
        for (u32 width = 1; width <= 33; ++width)
            for (u32 color : {0x102030FFu, 0xFFFFFF00u, 0xC8643280u, 0x000000FEu, 0x01020301u}) {
                Raster raster;
                ASSERT_NO_FATAL_FAILURE(MakeRaster(raster, width, 3, depth, width, Paging::None));
                const Plain expected = Filled(PlainOf(raster), color);
                ASSERT_EQ(raster.FillAll(color), 1);
                ASSERT_EQ(PlainOf(raster).rows, expected.rows)
                    << "depth " << depth << " width " << width << " colour " << color;
            }
}

TEST_F(Fill, ARasterThatPagesIsFilledAlike)
{
    for (u32 depth : {24u, 32u})
        for (u32 color : {0x102030FFu, 0xC8643280u}) {
            Raster raster;
            ASSERT_NO_FATAL_FAILURE(MakeRaster(raster, 13, 9, depth, 4, Paging::Under));
            const Plain expected = Filled(PlainOf(raster), color);
            ShortMemory();
            ASSERT_EQ(raster.FillAll(color), 1);
            EXPECT_EQ(FilesIn(FirstFolder).size(), 8u); // all but the last, which stays
            PlentyOfMemory();
            EXPECT_EQ(PlainOf(raster).rows, expected.rows);
        }
}

TEST_F(Fill, AlphaZeroStillMovesTheImageByOnePartIn256)
{
    Raster raster;
    ASSERT_EQ(raster.Create(1, 1, 24, nullptr, nullptr), 1);
    ASSERT_EQ(raster.FillAll(0xFFFFFF00), 1);
    EXPECT_EQ(RowOf(raster, 0), (std::vector<u8>{0, 0, 0, 0})); // (1 * 255 + 255 * 0) >> 8
    raster.UnlockAll();
    ASSERT_EQ(raster.FillAll(0xFFFFFFFF), 1);
    ASSERT_EQ(raster.FillAll(0x00000000), 1);
    EXPECT_EQ(RowOf(raster, 0), (std::vector<u8>{254, 254, 254, 0})); // (255 * 255) >> 8
}

TEST_F(Fill, AtDepth32ThePixelComesBackEndForEnd)
{
    Raster raster;
    ASSERT_EQ(raster.Create(2, 2, 32, nullptr, nullptr), 1);
    ASSERT_EQ(raster.FillAll(0x11223344), 1);
    // Alpha, red, green, blue in memory.
    EXPECT_EQ(RowOf(raster, 0), (std::vector<u8>{0x44, 0x11, 0x22, 0x33, 0x44, 0x11, 0x22, 0x33}));
    u32 color = 0;
    ASSERT_EQ(raster.GetPixel(1, 1, &color), 1);
    EXPECT_EQ(color, 0x22114433u);
}

TEST_F(Fill, OtherDepthsAreRefused)
{
    for (u32 depth : {8u, 16u}) {
        Raster raster;
        ASSERT_NO_FATAL_FAILURE(MakeRaster(raster, 5, 2, depth, 1, Paging::None));
        const Plain before = PlainOf(raster);
        EXPECT_EQ(raster.FillAll(0x102030FF), -1);
        EXPECT_EQ(PlainOf(raster).rows, before.rows);
    }
    Raster empty;
    EXPECT_EQ(empty.FillAll(0x102030FF), -1);
}

TEST_F(Fill, WithoutAScratchLineNothingIsDoneAndThatIsNoFailure)
{
    CountingAllocator memory;
    {
        Raster raster(&memory);
        ASSERT_NO_FATAL_FAILURE(MakeRaster(raster, 5, 2, 24, 1, Paging::None));
        const Plain before = PlainOf(raster);
        memory.fails = [](int, u32) { return true; };
        EXPECT_EQ(raster.FillAll(0x102030FF), 1);
        EXPECT_EQ(PlainOf(raster).rows, before.rows);
        EXPECT_EQ(raster.FillAll(0x102030FE), 1);
        EXPECT_NE(PlainOf(raster).rows, before.rows);
    }
    EXPECT_EQ(memory.outstanding, 0);
}

TEST_F(Fill, ALineThatCannotBeLockedEndsTheFillWithItsStatus)
{
    for (u32 color : {0x102030FFu, 0x10203080u}) {
        CountingAllocator memory;
        {
            Raster raster(&memory);
            // Nine wide: no other block has the size of the table below, on any machine.
            ASSERT_NO_FATAL_FAILURE(MakeRaster(raster, 9, 4, 24, 1, Paging::Under));
            const Plain before = PlainOf(raster);
            Plain expected = Filled(before, color);
            for (u32 y = 2; y < 4; ++y)
                expected.rows[y] = before.rows[y];
            ASSERT_EQ(raster.ReleaseLines(2, 1, 1), 1);
            // A line that comes in takes a table of four entries first.
            memory.fails = [](int, u32 size) { return size == 4 * sizeof(u8*); };
            EXPECT_EQ(raster.FillAll(color), -2);
            memory.fails = nullptr;
            EXPECT_EQ(PlainOf(raster).rows, expected.rows);
        }
        EXPECT_EQ(memory.outstanding, 0);
    }
}
