#include "RandomStretches.h"

#include <limits>

namespace
{

using Stretch = PagingTest;

u32 Round(f64 value)
{
    const f64 whole = std::trunc(value);
    return static_cast<u32>(static_cast<u64>(whole)) + (value - whole >= 0.5 ? 1 : 0);
}

/// The stretch, step by step as it is told, for rectangles within reach of small rasters.
/// Rectangles of one size are copied from truncated positions.
void Stretched(const Plain& source, Plain& target, Sides s, Sides d)
{
    for (Sides* sides : {&s, &d}) {
        if (sides->left > sides->right)
            std::swap(sides->left, sides->right);
        if (sides->top > sides->bottom)
            std::swap(sides->top, sides->bottom);
    }
    if (!(s.left < source.width && s.top < source.height && d.left < target.width &&
          d.top < target.height))
        return;
    const f64 sw = s.right - s.left + 1.0;
    const f64 sh = s.bottom - s.top + 1.0;
    const f64 dw = d.right - d.left + 1.0;
    const f64 dh = d.bottom - d.top + 1.0;
    if (sw == dw && sh == dh) {
        i32 x = static_cast<i32>(s.left);
        i32 y = static_cast<i32>(s.top);
        i32 width = static_cast<i32>(sw);
        i32 height = static_cast<i32>(sh);
        i32 dx = static_cast<i32>(d.left);
        i32 dy = static_cast<i32>(d.top);
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
        for (i32 j = 0; j < height; ++j)
            for (i32 i = 0; i < width; ++i) {
                const i32 fromX = x + i, fromY = y + j, toX = dx + i, toY = dy + j;
                if (fromX < static_cast<i32>(source.width) &&
                    fromY < static_cast<i32>(source.height) &&
                    toX < static_cast<i32>(target.width) && toY < static_cast<i32>(target.height))
                    for (i32 k = 0; k < 3; ++k)
                        target.rows[static_cast<size_t>(toY)][static_cast<size_t>(3 * toX + k)] =
                            source.rows[static_cast<size_t>(fromY)]
                                       [static_cast<size_t>(3 * fromX + k)];
            }
        return;
    }
    const u32 xStep = Round(sw * 65536.0 / dw);
    const u32 yStep = Round(sh * 65536.0 / dh);
    if (s.top < 0) {
        d.top -= dh * s.top / sh;
        s.top = 0;
    }
    if (s.left < 0) {
        d.left -= dw * s.left / sw;
        s.left = 0;
    }
    if (d.left < 0)
        d.left = 0;
    if (d.top < 0)
        d.top = 0;
    if (d.right >= target.width)
        d.right = target.width - 1.0;
    if (d.bottom >= target.height)
        d.bottom = target.height - 1.0;
    const i64 cols = static_cast<i64>(std::floor(d.right - d.left + 1.0));
    const i64 rows = static_cast<i64>(std::floor(d.bottom - d.top + 1.0));
    const i64 dx = static_cast<i64>(std::floor(d.left));
    const i64 dy = static_cast<i64>(std::floor(d.top));
    const u64 fx = static_cast<u64>(std::floor(s.left * 65536.0));
    const u64 fy = static_cast<u64>(std::floor(s.top * 65536.0));
    for (i64 j = 0; j < rows; ++j) {
        const u64 fromY = (fy + static_cast<u64>(j) * yStep) >> 16;
        if (fromY >= source.height || dy + j >= target.height)
            break;
        for (i64 i = 0; i < cols; ++i) {
            const u64 fromX = (fx + static_cast<u64>(i) * xStep) >> 16;
            if (fromX >= source.width || dx + i >= target.width)
                break;
            for (u64 k = 0; k < 3; ++k)
                target.rows[static_cast<size_t>(dy + j)][3 * static_cast<size_t>(dx + i) + k] =
                    source.rows[fromY][3 * fromX + k];
        }
    }
}

i32 Draw(Raster& source, Raster& target, const Sides& s, const Sides& d)
{
    return source.StretchRect(&target, s.left, s.top, s.right, s.bottom, d.left, d.top, d.right,
                              d.bottom);
}

std::string Text(const Sides& sides)
{
    char text[200];
    std::snprintf(text, sizeof(text), "(%.17g, %.17g, %.17g, %.17g)", sides.left, sides.top,
                  sides.right, sides.bottom);
    return text;
}

/// A picture whose pixel (x, y) holds x in its blue and y in its green byte.
void MakeMap(Raster& raster, u32 width, u32 height)
{
    ASSERT_EQ(raster.Create(width, height, 24, nullptr, nullptr), 1);
    for (u32 y = 0; y < height; ++y)
        for (u32 x = 0; x < width; ++x)
            ASSERT_EQ(raster.SetPixel(static_cast<i32>(x), static_cast<i32>(y),
                                      (x + 1) << 8 | (y + 1) << 16),
                      1);
}

/// The source column that shows at (x, 0), counted from 1; 0 for none.
u32 ColumnAt(Raster& raster, i32 x)
{
    u32 color = 0;
    EXPECT_EQ(raster.GetPixel(x, 0, &color), 1);
    return (color >> 8) & 255;
}

} // namespace

TEST_F(Stretch, FollowsItsStepsForRandomRectanglesOnEverySide)
{
    ExpectSameForRandomStretches(
        7,
        [](Raster& source, Raster& target, const StretchCase& drawn) {
            return Draw(source, target, drawn.source, drawn.target);
        },
        [](const Plain& source, Plain& target, const StretchCase& drawn) {
            Stretched(source, target, drawn.source, drawn.target);
        });
}

TEST_F(Stretch, WholePicturesOfAllSizesFollowItsSteps)
{
    for (u32 width = 1; width <= 33; ++width)
        for (u32 targetWidth = 1; targetWidth <= 33; ++targetWidth) {
            Raster source;
            Raster target;
            ASSERT_NO_FATAL_FAILURE(MakeRaster(source, width, 3, 24, width, Paging::None));
            ASSERT_NO_FATAL_FAILURE(MakeRaster(target, targetWidth, 5, 24, 99, Paging::None));
            const Sides s = {0, 0, width - 1.0, 2};
            const Sides d = {0, 0, targetWidth - 1.0, 4};
            Plain expected = PlainOf(target);
            Stretched(PlainOf(source), expected, s, d);
            ASSERT_EQ(Draw(source, target, s, d), 1);
            ASSERT_EQ(PlainOf(target).rows, expected.rows) << width << " to " << targetWidth;
        }
}

TEST_F(Stretch, EqualSizesGiveWhatAStretchByOneGives)
{
    Raster source;
    Raster copied;
    Raster stretched;
    ASSERT_NO_FATAL_FAILURE(MakeRaster(source, 9, 7, 24, 1, Paging::None));
    ASSERT_NO_FATAL_FAILURE(MakeRaster(copied, 9, 7, 24, 2, Paging::None));
    ASSERT_NO_FATAL_FAILURE(MakeRaster(stretched, 9, 7, 24, 2, Paging::None));
    ASSERT_EQ(Draw(source, copied, {1, 1, 6, 5}, {2, 2, 7, 6}), 1);
    // A hair's breadth of difference takes the other way and steps by exactly 1 all the same.
    ASSERT_EQ(Draw(source, stretched, {1, 1, 6, 5}, {2, 2, 7.0000001, 6.0000001}), 1);
    EXPECT_EQ(PlainOf(copied).rows, PlainOf(stretched).rows);
}

TEST_F(Stretch, ASourceThatStartsBeforeThePictureMovesTheTarget)
{
    Raster source;
    Raster target;
    ASSERT_NO_FATAL_FAILURE(MakeMap(source, 20, 1));
    ASSERT_EQ(target.Create(60, 1, 24, nullptr, nullptr), 1);
    // Scale 2: thirty columns from -10 fill sixty; the first twenty belong to no pixel.
    ASSERT_EQ(Draw(source, target, {-10, 0, 19, 0}, {0, 0, 59, 0}), 1);
    for (i32 x = 0; x < 60; ++x)
        EXPECT_EQ(ColumnAt(target, x), x < 20 ? 0u : static_cast<u32>(x - 20) / 2 + 1) << x;
}

TEST_F(Stretch, ATargetThatStartsOutsideIsMovedInWithoutSkippingTheSource)
{
    Raster source;
    Raster target;
    ASSERT_NO_FATAL_FAILURE(MakeMap(source, 10, 1));
    ASSERT_EQ(target.Create(20, 1, 24, nullptr, nullptr), 1);
    ASSERT_EQ(Draw(source, target, {0, 0, 9, 0}, {-10, 0, 9, 0}), 1);
    for (i32 x = 0; x < 20; ++x)
        EXPECT_EQ(ColumnAt(target, x), x < 10 ? static_cast<u32>(x) / 2 + 1 : 0u) << x;
}

TEST_F(Stretch, ARowThatRunsPastTheSourceIsCutThere)
{
    Raster source;
    Raster target;
    ASSERT_NO_FATAL_FAILURE(MakeMap(source, 4, 1));
    ASSERT_EQ(target.Create(16, 1, 24, nullptr, nullptr), 1);
    // Eight columns to sixteen, of which the source has four.
    ASSERT_EQ(Draw(source, target, {0, 0, 7, 0}, {0, 0, 15, 0}), 1);
    for (i32 x = 0; x < 16; ++x)
        EXPECT_EQ(ColumnAt(target, x), x < 8 ? static_cast<u32>(x) / 2 + 1 : 0u) << x;
}

TEST_F(Stretch, OtherDepthsAreRefused)
{
    Raster plain;
    ASSERT_EQ(plain.Create(4, 4, 24, nullptr, nullptr), 1);
    for (u32 depth : {8u, 16u, 32u}) {
        Raster other;
        ASSERT_EQ(other.Create(4, 4, depth, nullptr, nullptr), 1);
        EXPECT_EQ(Draw(plain, other, {0, 0, 3, 3}, {0, 0, 3, 3}), -1);
        EXPECT_EQ(Draw(other, plain, {0, 0, 3, 3}, {0, 0, 3, 3}), -1);
        EXPECT_EQ(Draw(other, plain, {9, 9, 9, 9}, {9, 9, 9, 9}), -1);
    }
    Raster empty;
    EXPECT_EQ(Draw(empty, plain, {0, 0, 3, 3}, {0, 0, 3, 3}), -1);
    EXPECT_EQ(Draw(plain, empty, {0, 0, 3, 3}, {0, 0, 3, 3}), -1);
    EXPECT_EQ(plain.StretchRect(nullptr, 0, 0, 1, 1, 0, 0, 1, 1), -4);
}

TEST_F(Stretch, WhatLiesOutsideDrawsNothing)
{
    Raster source;
    Raster target;
    ASSERT_NO_FATAL_FAILURE(MakeMap(source, 4, 4));
    ASSERT_EQ(target.Create(4, 4, 24, nullptr, nullptr), 1);
    const Sides whole = {0, 0, 3, 3};
    const Sides beyond[] = {{4, 0, 9, 9}, {0, 4, 9, 9}, {-9, 0, -5, 9}, {0, -9, 9, -5}};
    for (const Sides& sides : beyond) {
        EXPECT_EQ(Draw(source, target, sides, whole), 1);
        EXPECT_EQ(Draw(source, target, whole, sides), 1);
        EXPECT_EQ(RowsOf(target), Rows(4, std::vector<u8>(12))) << Text(sides);
    }
}

TEST_F(Stretch, NumbersOutOfReachStayInsideTheLines)
{
    Raster source;
    Raster target;
    ASSERT_NO_FATAL_FAILURE(MakeRaster(source, 5, 4, 24, 1, Paging::None));
    ASSERT_NO_FATAL_FAILURE(MakeRaster(target, 6, 3, 24, 2, Paging::None));
    const f64 infinity = std::numeric_limits<f64>::infinity();
    const f64 nothing = std::numeric_limits<f64>::quiet_NaN();
    const f64 values[] = {-infinity, -1e300, -4294967296.0, -1.5, 0,        0.5,    1e-300,
                          2,         65536,  4294967296.0,  1e18, infinity, nothing};
    for (f64 a : values)
        for (f64 b : values)
            for (f64 c : values)
                for (f64 e : values)
                    ASSERT_EQ(Draw(source, target, {a, a, b, b}, {c, c, e, e}), 1);
}

TEST_F(Stretch, ASumThatRoundsUpDoesNotReachPastTheTarget)
{
    // 0.99999999999999989 + 1.0 rounds to 2.0, which would be two columns in a row of one.
    const f64 edge = std::nextafter(1.0, 0.0);
    ASSERT_EQ(edge + 1.0, 2.0);
    Raster source;
    Raster target;
    ASSERT_NO_FATAL_FAILURE(MakeRaster(source, 8, 8, 24, 1, Paging::None));
    ASSERT_EQ(target.Create(1, 1, 24, nullptr, nullptr), 1);
    ASSERT_EQ(Draw(source, target, {0, 0, 4, 4}, {0, 0, edge, edge}), 1);
    EXPECT_EQ(RowOf(target, 0)[0], PatternByte(1, 0, 0));
    EXPECT_EQ(RowOf(target, 0)[3], 0);
}

TEST_F(Stretch, PositionsPast32BitsCountAsPastTheSource)
{
    Raster source;
    ASSERT_EQ(source.Create(60000, 1, 24, nullptr, nullptr), 1);
    for (i32 x = 0; x < 60000; ++x)
        ASSERT_EQ(source.SetPixel(x, 0, 0x10101000u + (static_cast<u32>(x % 7) << 8)), 1);
    Raster target;
    ASSERT_EQ(target.Create(40, 1, 24, nullptr, nullptr), 1);
    // A step of 10,000 columns: six lie in the source; the seventh, at 60,000, is past it, and the
    // eighth's sum passes 2^32.
    ASSERT_EQ(Draw(source, target, {0, 0, 399999, 0}, {0, 0, 39, 0}), 1);
    for (i32 x = 0; x < 40; ++x) {
        u32 color = 0;
        ASSERT_EQ(target.GetPixel(x, 0, &color), 1);
        EXPECT_EQ((color >> 8) & 255, x < 6 ? 0x10u + static_cast<u32>(x * 10000 % 7) : 0u) << x;
    }
    // From the far end on the accumulator needs all 32 bits.
    ASSERT_EQ(target.FillAll(0x000000FF), 1);
    ASSERT_EQ(Draw(source, target, {59990, 0, 60009, 0}, {0, 0, 39, 0}), 1);
    for (i32 x = 0; x < 40; ++x) {
        u32 color = 0;
        ASSERT_EQ(target.GetPixel(x, 0, &color), 1);
        EXPECT_EQ((color >> 8) & 255, x < 20 ? 0x10u + static_cast<u32>((59990 + x / 2) % 7) : 0u)
            << x;
    }
}

TEST_F(Stretch, ASourceOfMoreThan65536ColumnsIsReachedUpToThatMany)
{
    Raster source;
    ASSERT_EQ(source.Create(70000, 1, 24, nullptr, nullptr), 1);
    ASSERT_EQ(source.FillAll(0x808080FF), 1);
    Raster target;
    ASSERT_EQ(target.Create(40, 1, 24, nullptr, nullptr), 1);
    // A step of 3,500 columns: the nineteenth is 63,000, and the next one's sum passes 2^32.
    ASSERT_EQ(Draw(source, target, {0, 0, 139999, 0}, {0, 0, 39, 0}), 1);
    for (i32 x = 0; x < 40; ++x)
        EXPECT_EQ(ColumnAt(target, x), x < 19 ? 0x80u : 0u) << x;
}

TEST_F(Stretch, ALineThatCannotBeLockedEndsTheWorkQuietly)
{
    CountingAllocator memory;
    Raster source(&memory);
    Raster target;
    ASSERT_NO_FATAL_FAILURE(MakeRaster(source, 5, 4, 24, 1, Paging::Under));
    ASSERT_NO_FATAL_FAILURE(MakeRaster(target, 10, 8, 24, 2, Paging::None));
    const Plain from = PlainOf(source);
    Plain expected = PlainOf(target);
    const Rows before = expected.rows;
    Stretched(from, expected, {0, 0, 4, 3}, {0, 0, 9, 7});
    ASSERT_EQ(source.ReleaseLines(2, 1, 1), 1);
    memory.fails = [](int, u32) { return true; };
    EXPECT_EQ(Draw(source, target, {0, 0, 4, 3}, {0, 0, 9, 7}), 1);
    memory.fails = nullptr;
    const Rows after = PlainOf(target).rows;
    for (size_t y = 0; y < 8; ++y)
        EXPECT_EQ(after[y], y < 4 ? expected.rows[y] : before[y]) << y;
}
