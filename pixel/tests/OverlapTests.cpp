// A raster as its own source, target or mask.

#include "Rasters.h"

#include <algorithm>

namespace
{

using Overlap = PagingTest;

constexpr u32 Copy = 0xCC0020;

using Bytes = std::vector<u8>;

void SetRow(Raster& raster, i32 line, const Bytes& bytes)
{
    u8* row = nullptr;
    ASSERT_EQ(raster.LockLines(line, &row, nullptr), 1);
    std::memcpy(row, bytes.data(), bytes.size());
    ASSERT_EQ(raster.UnlockAll(), 1);
}

/// A mask of one value.
void MakeMask(Raster& mask, u32 width, u32 height, u8 value)
{
    ASSERT_EQ(mask.Create(width, height, 8, nullptr, nullptr), 1);
    for (u32 y = 0; y < height; ++y)
        ASSERT_NO_FATAL_FAILURE(SetRow(mask, static_cast<i32>(y), Bytes(width, value)));
}

} // namespace

TEST_F(Overlap, CopyingDownRepeatsTheFirstRowAndCopyingUpDoesNot)
{
    Raster raster;
    ASSERT_NO_FATAL_FAILURE(MakeRaster(raster, 7, 5, 24, 3, Paging::None));
    const Rows before = PlainOf(raster).rows;
    ASSERT_EQ(raster.CopyTo(0, 1, 8, 4, &raster, 0, 0, Copy), 1);
    Rows after = PlainOf(raster).rows;
    for (u32 y = 0; y < 5; ++y)
        EXPECT_TRUE(
            std::equal(after[y].begin(), after[y].begin() + 21, before[y < 4 ? y + 1 : 4].begin()))
            << "row " << y;
    ASSERT_EQ(raster.CopyTo(0, 0, 8, 4, &raster, 0, 1, Copy), 1);
    after = PlainOf(raster).rows;
    for (u32 y = 0; y < 5; ++y)
        EXPECT_TRUE(std::equal(after[y].begin(), after[y].begin() + 21, before[1].begin()))
            << "row " << y;
}

TEST_F(Overlap, TheBytesOfARowOf32BitsArriveAsTheyWere)
{
    Raster raster;
    ASSERT_NO_FATAL_FAILURE(MakeRaster(raster, 30, 1, 32, 3, Paging::None));
    Bytes expected = RowOf(raster, 0);
    std::copy_backward(expected.begin(), expected.begin() + 28, expected.begin() + 30);
    ASSERT_EQ(raster.CopyTo(0, 0, 28, 1, &raster, 2, 0, Copy), 1);
    EXPECT_EQ(RowOf(raster, 0), expected);
}

TEST_F(Overlap, AMaskedCopyToTheRightRepeatsTheFirstPixelAndOneToTheLeftDoesNot)
{
    Raster mask;
    ASSERT_NO_FATAL_FAILURE(MakeMask(mask, 20, 1, 255));
    Raster raster;
    ASSERT_EQ(raster.Create(5, 1, 24, nullptr, nullptr), 1);
    const Bytes start = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 0};
    ASSERT_NO_FATAL_FAILURE(SetRow(raster, 0, start));
    ASSERT_EQ(raster.CopyMasked(0, 0, 4, 1, &raster, 1, 0, &mask, 0, 0), 1);
    EXPECT_EQ(RowOf(raster, 0), (Bytes{1, 2, 3, 1, 2, 3, 1, 2, 3, 1, 2, 3, 1, 2, 3, 0}));
    ASSERT_NO_FATAL_FAILURE(SetRow(raster, 0, start));
    ASSERT_EQ(raster.CopyMasked(1, 0, 4, 1, &raster, 0, 0, &mask, 0, 0), 1);
    EXPECT_EQ(RowOf(raster, 0), (Bytes{4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 13, 14, 15, 0}));
}

TEST_F(Overlap, APictureLaidOverItselfFurtherRightRepeatsThePixelItBeganWith)
{
    Raster raster;
    ASSERT_EQ(raster.Create(5, 1, 32, nullptr, nullptr), 1);
    // Opaque, so that bytes 0 to 2 are copied as they are. The walk is from pixel 1 to pixel 2 on.
    ASSERT_NO_FATAL_FAILURE(SetRow(
        raster, 0, {1, 2, 3, 255, 4, 5, 6, 255, 7, 8, 9, 255, 10, 11, 12, 255, 13, 14, 15, 255}));
    ASSERT_EQ(raster.CompositeTo(0, 0, 5, 1, &raster, 1, 0), 1);
    EXPECT_EQ(RowOf(raster, 0),
              (Bytes{1, 2, 3, 255, 4, 5, 6, 255, 4, 5, 6, 255, 4, 5, 6, 255, 4, 5, 6, 255}));
    ASSERT_NO_FATAL_FAILURE(SetRow(
        raster, 0, {1, 2, 3, 255, 4, 5, 6, 255, 7, 8, 9, 255, 10, 11, 12, 255, 13, 14, 15, 255}));
    ASSERT_EQ(raster.CompositeTo(1, 0, 5, 1, &raster, 0, 0), 1);
    EXPECT_EQ(RowOf(raster, 0), (Bytes{1,  2,   3,  255, 7,  8,   9,  255, 10, 11,
                                       12, 255, 13, 14,  15, 255, 13, 14,  15, 255}));
}

TEST_F(Overlap, ARowThatIsItsOwnMaskIsReadAsItIsPainted)
{
    Raster raster;
    ASSERT_EQ(raster.Create(4, 1, 24, nullptr, nullptr), 1);
    ASSERT_NO_FATAL_FAILURE(SetRow(raster, 0, {255, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    PixelRect rectangle = {0, -3, 3, 1};
    // Byte 0 weighs the first pixel, and bytes 1 to 3, which are painted by then, the others.
    ASSERT_EQ(raster.BlendMask(0xFFFFFFFF, &rectangle, &raster, 0, -3), 1);
    EXPECT_EQ(RowOf(raster, 0),
              (Bytes{255, 254, 254, 253, 253, 253, 253, 253, 253, 252, 252, 252}));
}

TEST_F(Overlap, ARasterThatPagesUnderItselfComesOutAlike)
{
    Raster mask;
    ASSERT_NO_FATAL_FAILURE(MakeMask(mask, 20, 20, 77));
    using Work = i32 (*)(Raster&, Raster&);
    const Work works24[] = {
        [](Raster& raster, Raster&) { return raster.CopyTo(0, 0, 9, 9, &raster, 1, 0, Copy); },
        [](Raster& raster, Raster&) { return raster.CopyTo(0, 0, 9, 9, &raster, 1, 2, Copy); },
        [](Raster& raster, Raster& through) {
            return raster.CopyMasked(0, 0, 8, 8, &raster, 1, 0, &through, 0, 0);
        },
        [](Raster& raster, Raster& through) {
            return raster.CopyMasked(0, 3, 8, 5, &raster, 1, 1, &through, 0, 0);
        },
        [](Raster& raster, Raster&) {
            return raster.BlendMaskRect(0xC8643280, {0, 0, 8, 8}, &raster, 0, 0);
        },
        [](Raster& raster, Raster&) {
            return raster.BlendMaskRect(0xC8643280, {0, 2, 8, 8}, &raster, 0, -3);
        },
    };
    const Work works32[] = {
        [](Raster& raster, Raster&) { return raster.CompositeTo(0, 0, 9, 9, &raster, 1, 0); },
        [](Raster& raster, Raster&) { return raster.CompositeTo(0, 1, 9, 9, &raster, 1, 0); },
    };
    const auto compare = [&](Work work, u32 depth) {
        Raster whole;
        Raster paged;
        ASSERT_NO_FATAL_FAILURE(MakeRaster(whole, 9, 9, depth, 5, Paging::None));
        ASSERT_NO_FATAL_FAILURE(MakeRaster(paged, 9, 9, depth, 5, Paging::Under));
        const Rows before = PlainOf(whole).rows;
        ASSERT_EQ(work(whole, mask), 1);
        EXPECT_NE(PlainOf(whole).rows, before);
        ShortMemory();
        ASSERT_EQ(work(paged, mask), 1);
        EXPECT_GE(FilesIn(FirstFolder).size(), 4u);
        PlentyOfMemory();
        EXPECT_EQ(PlainOf(paged).rows, PlainOf(whole).rows);
    };
    for (Work work : works24)
        compare(work, 24);
    for (Work work : works32)
        compare(work, 32);
}
