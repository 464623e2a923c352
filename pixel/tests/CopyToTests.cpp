#include "Rasters.h"

#include <algorithm>
#include <random>

namespace
{

using CopyTo = PagingTest;

constexpr u32 Copy = 0xCC0020;

/// Whole steps of 3 or 4 bytes in a row.
i64 Whole(const Plain& picture)
{
    return static_cast<i64>(picture.rows.empty() ? 0 : picture.rows[0].size()) /
           (picture.depth == 24 ? 3 : 4);
}

/// The copy, step by step as it is told.
i32 Copied(const Plain& source, Plain& target, i64 x, i64 y, i64 width, i64 height, i64 dx, i64 dy,
           u32 operation)
{
    const bool color = source.depth == 24 || source.depth == 32;
    const bool targetColor = target.depth == 24 || target.depth == 32;
    if (!color && !targetColor)
        return -1;
    if (x < 0) {
        dx -= x;
        x = 0;
    }
    if (y < 0) {
        dy -= y;
        y = 0;
    }
    if (dx < 0) {
        width += dx;
        x -= dx;
        dx = 0;
    }
    if (dy < 0) {
        height += dy;
        y -= dy;
        dy = 0;
    }
    if (x >= source.width || y >= source.height || dx >= target.width || dy >= target.height)
        return 1;
    if (width > source.width - x)
        width = source.width - x;
    if (width > target.width - dx)
        width = target.width - dx;
    if (height > source.height - y)
        height = source.height - y;
    if (height > target.height - dy)
        height = target.height - dy;
    if (operation != Copy)
        return -1;
    for (i64 j = 0; j < height; ++j) {
        const auto& from = source.rows[static_cast<size_t>(y + j)];
        auto& into = target.rows[static_cast<size_t>(dy + j)];
        for (i64 i = 0; i < width; ++i) {
            if (source.depth == 32 && target.depth == 32) {
                into[static_cast<size_t>(dx + i)] = from[static_cast<size_t>(x + i)];
                continue;
            }
            if (x + i >= Whole(source) || dx + i >= Whole(target))
                break;
            for (i64 k = 0; k < 3; ++k)
                into[static_cast<size_t>((dx + i) * (target.depth == 24 ? 3 : 4) + k)] =
                    from[static_cast<size_t>((x + i) * (source.depth == 24 ? 3 : 4) + k)];
        }
    }
    return 1;
}

} // namespace

TEST_F(CopyTo, FollowsItsStepsAtEveryDepthAndOnEverySide)
{
    std::mt19937 random(1);
    const auto between = [&random](i32 low, i32 high) {
        return low + static_cast<i32>(random() % static_cast<u32>(high - low + 1));
    };
    for (const bool pages : {false, true})
        for (u32 width = 1; width <= 33; ++width)
            for (u32 depth : {8u, 16u, 24u, 32u})
                for (u32 targetDepth : {8u, 16u, 24u, 32u}) {
                    const Paging paging = pages ? Paging::Under : Paging::None;
                    Raster source;
                    Raster target;
                    ASSERT_NO_FATAL_FAILURE(MakeRaster(source, width, 6, depth, width, paging));
                    ASSERT_NO_FATAL_FAILURE(
                        MakeRaster(target, 17, 5, targetDepth, width + 100, paging));
                    const Plain from = PlainOf(source);
                    Plain expected = PlainOf(target);
                    for (int round = 0; round < (pages ? 2 : 12); ++round) {
                        const i32 x = between(-8, 36);
                        const i32 y = between(-4, 8);
                        const i32 across = between(-2, 40);
                        const i32 down = between(-2, 9);
                        const i32 dx = between(-8, 20);
                        const i32 dy = between(-4, 7);
                        const u32 operation = between(0, 19) == 0 ? 0x42 : Copy;
                        const i32 told =
                            Copied(from, expected, x, y, across, down, dx, dy, operation);
                        if (pages)
                            ShortMemory();
                        ASSERT_EQ(source.CopyTo(x, y, across, down, &target, dx, dy, operation),
                                  told);
                        PlentyOfMemory();
                        ASSERT_EQ(PlainOf(target).rows, expected.rows)
                            << depth << " to " << targetDepth << ": " << x << ',' << y << ' '
                            << across << 'x' << down << " to " << dx << ',' << dy << " width "
                            << width;
                    }
                    ASSERT_EQ(PlainOf(source).rows, from.rows);
                }
}

TEST_F(CopyTo, ANegativeSourcePositionShiftsTheTargetAndKeepsTheRun)
{
    Raster source;
    Raster target;
    ASSERT_EQ(source.Create(12, 1, 24, nullptr, nullptr), 1);
    ASSERT_EQ(target.Create(20, 1, 24, nullptr, nullptr), 1);
    for (i32 x = 0; x < 12; ++x)
        ASSERT_EQ(source.SetPixel(x, 0, static_cast<u32>(x + 1) << 8), 1);
    ASSERT_EQ(source.CopyTo(-3, 0, 10, 1, &target, 2, 0, Copy), 1);
    for (i32 x = 0; x < 20; ++x) {
        u32 color = 0;
        ASSERT_EQ(target.GetPixel(x, 0, &color), 1);
        EXPECT_EQ(color >> 8, x >= 5 && x < 15 ? static_cast<u32>(x - 4) : 0u) << x;
    }
}

TEST_F(CopyTo, Between32BitRastersAQuarterMoves)
{
    Raster source;
    Raster target;
    ASSERT_EQ(source.Create(8, 1, 32, nullptr, nullptr), 1);
    ASSERT_EQ(target.Create(8, 1, 32, nullptr, nullptr), 1);
    for (i32 x = 0; x < 8; ++x)
        ASSERT_EQ(source.SetPixel(x, 0, 0x01010101u * static_cast<u32>(x + 1)), 1);
    ASSERT_EQ(source.CopyTo(0, 0, 8, 1, &target, 0, 0, Copy), 1);
    std::vector<u8> expected(32);
    std::fill_n(expected.begin(), 4, u8{1});
    std::fill_n(expected.begin() + 4, 4, u8{2});
    EXPECT_EQ(RowOf(target, 0), expected);
}

TEST_F(CopyTo, RefusalsComeInTheirOrder)
{
    Raster eight;
    Raster sixteen;
    Raster plain;
    ASSERT_EQ(eight.Create(4, 4, 8, nullptr, nullptr), 1);
    ASSERT_EQ(sixteen.Create(4, 4, 16, nullptr, nullptr), 1);
    ASSERT_EQ(plain.Create(4, 4, 24, nullptr, nullptr), 1);
    EXPECT_EQ(plain.CopyTo(0, 0, 1, 1, nullptr, 0, 0, Copy), -4);
    EXPECT_EQ(eight.CopyTo(0, 0, 1, 1, &sixteen, 0, 0, Copy), -1);
    EXPECT_EQ(eight.CopyTo(9, 9, 1, 1, &sixteen, 0, 0, Copy), -1);
    // What lies outside is done before the operation is looked at; an empty size is not.
    EXPECT_EQ(plain.CopyTo(4, 0, 1, 1, &plain, 0, 0, 0x42), 1);
    EXPECT_EQ(plain.CopyTo(0, 0, 1, 1, &plain, 0, 4, 0x42), 1);
    EXPECT_EQ(plain.CopyTo(0, 0, 1, 1, &plain, 0, 0, 0x42), -1);
    EXPECT_EQ(plain.CopyTo(0, 0, 0, 0, &plain, 0, 0, 0x42), -1);
    EXPECT_EQ(plain.CopyTo(0, 0, 0, 0, &plain, 0, 0, Copy), 1);
    EXPECT_EQ(plain.CopyTo(0, 0, -5, 2, &plain, 0, 0, Copy), 1);
    Raster empty;
    EXPECT_EQ(plain.CopyTo(0, 0, 1, 1, &empty, 0, 0, Copy), 1);
    EXPECT_EQ(empty.CopyTo(0, 0, 1, 1, &empty, 0, 0, Copy), -1);
}

TEST_F(CopyTo, ExtremePositionsAndSizesStayInside)
{
    Raster source;
    Raster target;
    ASSERT_NO_FATAL_FAILURE(MakeRaster(source, 5, 5, 24, 1, Paging::None));
    ASSERT_NO_FATAL_FAILURE(MakeRaster(target, 5, 5, 24, 2, Paging::None));
    const i32 most = 2147483647;
    const i32 least = -most - 1;
    for (i32 x : {least, -1, 0, most})
        for (i32 width : {least, 0, 3, most})
            for (i32 dx : {least, -1, 0, most})
                EXPECT_EQ(source.CopyTo(x, x, width, width, &target, dx, dx, Copy), 1);
    ASSERT_EQ(source.CopyTo(0, 0, most, most, &target, 0, 0, Copy), 1);
    EXPECT_EQ(PlainOf(target).rows.size(), 5u);
    u32 from = 0;
    u32 into = 1;
    ASSERT_EQ(source.GetPixel(4, 4, &from), 1);
    ASSERT_EQ(target.GetPixel(4, 4, &into), 1);
    EXPECT_EQ(from, into);
}

TEST_F(CopyTo, WithinOneRowOverlappingPixelsArriveAsTheyWere)
{
    Raster raster;
    ASSERT_NO_FATAL_FAILURE(MakeRaster(raster, 30, 2, 24, 3, Paging::None));
    std::vector<u8> expected = PlainOf(raster).rows[0];
    std::copy_backward(expected.begin(), expected.begin() + 60, expected.begin() + 66);
    ASSERT_EQ(raster.CopyTo(0, 0, 20, 1, &raster, 2, 0, Copy), 1);
    EXPECT_EQ(RowOf(raster, 0), expected);
}

TEST_F(CopyTo, ASourceLineThatCannotBeLockedLeavesTheTargetsLineLocked)
{
    CountingAllocator memory;
    Raster source(&memory);
    Raster target;
    ASSERT_NO_FATAL_FAILURE(MakeRaster(source, 5, 4, 24, 1, Paging::Under));
    ASSERT_NO_FATAL_FAILURE(MakeRaster(target, 5, 4, 24, 2, Paging::Under));
    ASSERT_EQ(source.ReleaseLines(1, 1, 1), 1);
    const Rows before = PlainOf(target).rows;
    memory.fails = [](int, u32) { return true; };
    EXPECT_EQ(source.CopyTo(0, 0, 5, 3, &target, 0, 0, Copy), -2);
    memory.fails = nullptr;
    // Row 0 was copied; row 1 of the target is pinned, so that only rows 0, 2 and 3 page out.
    ASSERT_EQ(target.InsertLines(4, nullptr), 1);
    ASSERT_EQ(target.InsertLines(5, nullptr), 1);
    ASSERT_EQ(target.ReleaseLines(4, 1, 1), 1);
    const size_t files = FilesIn(FirstFolder).size();
    ShortMemory();
    u8* row = nullptr;
    ASSERT_EQ(target.LockLines(4, &row, nullptr), 1);
    EXPECT_EQ(FilesIn(FirstFolder).size(), files - 1 + 4); // lines 0, 2, 3 and 5
    PlentyOfMemory();
    Rows after = PlainOf(target).rows;
    EXPECT_NE(after[0], before[0]);
    EXPECT_EQ(after[1], before[1]);
}
