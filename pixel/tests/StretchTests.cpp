#include "PlainStretch.h"
#include "RandomRects.h"

#include <cmath>
#include <limits>

namespace
{

using Stretch = PagingTest;

i32 StretchRect(Raster& source, Raster* target, const DoubleRect& from, const DoubleRect& to)
{
    return source.StretchRect(target, from.left, from.top, from.right, from.bottom, to.left, to.top,
                              to.right, to.bottom);
}

void Check(Twin& source, Twin& target, const DoubleRect& from, const DoubleRect& to)
{
    SCOPED_TRACE(::testing::Message() << "from " << from.left << " " << from.top << " "
                                      << from.right << " " << from.bottom << " to " << to.left
                                      << " " << to.top << " " << to.right << " " << to.bottom);
    EXPECT_EQ(StretchRect(source.raster, &target.raster, from, to),
              PlainStretchRect(source.plain, &target.plain, from, to));
    ExpectSame({&source, &target});
}

constexpr u8 Old = 0xEE;

/// One row of `columns` pixels that are all `Old`, as a target.
Rows OldRow(const Twin& twin)
{
    return Rows(1, std::vector<u8>(twin.plain.stride, Old));
}

/// The source column that each pixel of a one-row target shows, -1 for an untouched one. The
/// source's pixel x must be x, x >> 8, 0x55.
std::vector<i32> ColumnsShown(Twin& target)
{
    const std::vector<u8> row = RowOf(target.raster, 0);
    std::vector<i32> columns;
    for (u32 x = 0; x < target.plain.width; ++x)
        columns.push_back(row[x * 3 + 2] == Old ? -1 : row[x * 3] | (row[x * 3 + 1] << 8));
    return columns;
}

struct OneRow {
    Twin source;
    Twin target;
    OneRow(u32 sourceWidth, u32 targetWidth)
        : source(sourceWidth, 1, 24, 1), target(targetWidth, 1, 24, 2)
    {
        Rows rows = source.plain.rows;
        for (u32 x = 0; x < sourceWidth; ++x) {
            rows[0][x * 3] = static_cast<u8>(x);
            rows[0][x * 3 + 1] = static_cast<u8>(x >> 8);
            rows[0][x * 3 + 2] = 0x55;
        }
        source.SetRows(rows);
        target.SetRows(OldRow(target));
    }
    std::vector<i32> Shown(f64 fromLeft, f64 fromRight, f64 toLeft, f64 toRight)
    {
        EXPECT_EQ(source.raster.StretchRect(&target.raster, fromLeft, 0, fromRight, 0, toLeft, 0,
                                            toRight, 0),
                  1);
        return ColumnsShown(target);
    }
};

using List = std::vector<i32>;

} // namespace

TEST_F(Stretch, IsItsFormulaForEveryWidthAndRectanglesOnAllSides)
{
    RandomRects random(11);
    for (u32 width = 1; width <= 33; ++width)
        for (u32 round = 0; round < 24; ++round) {
            const u32 height = 1 + random.Below(6);
            const u32 targetWidth = 1 + random.Below(33);
            const u32 targetHeight = 1 + random.Below(6);
            Twin source(width, height, 24, width + round);
            Twin target(targetWidth, targetHeight, 24, 1000 + round);
            const DoubleRect from = random.Around(width, height);
            Check(source, target, from, random.Around(targetWidth, targetHeight));
            Check(source, target, from, random.Moved(from, targetWidth, targetHeight));
            if (HasFailure())
                return;
        }
}

TEST_F(Stretch, IsItsFormulaForEveryRatioOfWholeRasters)
{
    for (u32 width = 1; width <= 33; ++width) {
        Twin source(width, 2, 24, width);
        for (u32 targetWidth = 1; targetWidth <= 33; ++targetWidth) {
            Twin target(targetWidth, 3, 24, targetWidth);
            Check(source, target, {0, 0, width - 1.0, 1}, {0, 0, targetWidth - 1.0, 2});
        }
    }
    Twin wide(257, 3, 24, 1);
    Twin wider(1000, 5, 24, 2);
    Check(wide, wider, {0, 0, 256, 2}, {0, 0, 999, 4});
    Check(wider, wide, {0, 0, 999, 4}, {0, 0, 256, 2});
    Check(wide, wider, {-3.25, -1, 300.5, 2.5}, {-7.5, -0.5, 1007.125, 4.75});
    Twin widest(70000, 1, 24, 3);
    Check(widest, wider, {0, 0, 139999, 0}, {0, 0, 39, 4});
}

TEST_F(Stretch, IsItsFormulaForRectanglesFarBeyondTheRasters)
{
    const f64 far[] = {-1e300, -5e9, -1e6, 1e6, 5e9, 1e300};
    for (const f64 low : far)
        for (const f64 high : far) {
            Twin source(9, 4, 24, 1);
            Twin target(7, 5, 24, 2);
            Check(source, target, {low, low, high, high}, {0, 0, 6, 4});
            Check(source, target, {0, 0, 8, 3}, {low, low, high, high});
            Check(source, target, {2, 1, high, 2}, {1, low, 5, 4});
        }
}

TEST_F(Stretch, TakesOnlyTwentyFourBitsAndChangesNothingElse)
{
    for (const u32 depth : {8u, 16u, 24u, 32u})
        for (const u32 targetDepth : {8u, 16u, 24u, 32u}) {
            Twin source(5, 4, depth, 1, Storage::Paging);
            Twin target(7, 3, targetDepth, 2, Storage::Paging);
            source.PageOut(1);
            target.PageOut(1);
            EXPECT_EQ(StretchRect(source.raster, &target.raster, {0, 0, 4, 3}, {0, 0, 6, 2}),
                      depth == 24 && targetDepth == 24 ? 1 : -1);
            (void)PlainStretchRect(source.plain, &target.plain, {0, 0, 4, 3}, {0, 0, 6, 2});
            // Depth is looked at before whether anything is left to draw.
            EXPECT_EQ(StretchRect(source.raster, &target.raster, {5, 4, 9, 9}, {0, 0, 6, 2}),
                      depth == 24 && targetDepth == 24 ? 1 : -1);
            ExpectSame({&source, &target});
        }
}

TEST_F(Stretch, RefusesNoTargetAndRastersThatWereNotCreated)
{
    Twin source(5, 4, 24, 1);
    Twin empty;
    EXPECT_EQ(StretchRect(source.raster, nullptr, {0, 0, 4, 3}, {0, 0, 4, 3}), -4);
    EXPECT_EQ(StretchRect(empty.raster, nullptr, {0, 0, 4, 3}, {0, 0, 4, 3}), -4);
    EXPECT_EQ(StretchRect(source.raster, &empty.raster, {0, 0, 4, 3}, {0, 0, 4, 3}), -1);
    EXPECT_EQ(StretchRect(empty.raster, &source.raster, {0, 0, 4, 3}, {0, 0, 4, 3}), -1);
    ExpectSame({&source});
}

TEST_F(Stretch, DrawsNothingOfRastersWithoutPixels)
{
    for (const u32 width : {0u, 3u}) {
        Twin empty(width, width == 0 ? 3 : 0, 24, 1);
        Twin full(5, 4, 24, 2);
        Check(empty, full, {-2, -2, 4, 4}, {0, 0, 4, 3});
        Check(full, empty, {0, 0, 4, 3}, {-2, -2, 8, 8});
        Check(empty, full, {-2, -2, 2, 1}, {0, 0, 4, 3});
        Check(full, empty, {0, 0, 4, 3}, {-2, -2, 2, 1});
    }
}

TEST_F(Stretch, AStretchWithinOneRasterReadsWhatItHasJustWritten)
{
    RandomRects random(12);
    for (u32 round = 0; round < 60; ++round) {
        Twin twin(17, 6, 24, round);
        const DoubleRect from = random.Around(17, 6);
        const DoubleRect to = random.Around(17, 6);
        if (from.right - from.left == to.right - to.left)
            continue; // one size may copy, and a copy over itself is another matter
        EXPECT_EQ(StretchRect(twin.raster, &twin.raster, from, to),
                  PlainStretchRect(twin.plain, &twin.plain, from, to));
        ExpectSame({&twin});
    }
}

TEST_F(Stretch, ReleasesEachPairOfLinesAsSoonAsItIsDone)
{
    RandomRects random(13);
    for (u32 round = 0; round < 40; ++round) {
        Twin source(6, 5, 24, round, Storage::Paging);
        Twin target(9, 6, 24, 100 + round, Storage::Paging);
        const DoubleRect from = random.Around(6, 5);
        const DoubleRect to = round % 4 == 0 ? random.Moved(from, 9, 6) : random.Around(9, 6);
        {
            const WithShortMemory memory;
            EXPECT_EQ(StretchRect(source.raster, &target.raster, from, to),
                      PlainStretchRect(source.plain, &target.plain, from, to));
        }
        ExpectSame({&source, &target});
    }
}

TEST_F(Stretch, ALineThatDoesNotLockEndsTheWorkQuietlyAndTheOthersStayAsTheyAre)
{
    for (u32 line = 0; line < 5; ++line)
        for (const bool ofSource : {true, false})
            for (const f64 bottom : {2.0, 4.0, 9.0}) {
                Twin source(9, 6, 24, 1, Storage::Paging);
                Twin target(10, 6, 24, 2, Storage::Paging);
                (ofSource ? source : target).Refuse(line);
                EXPECT_EQ(
                    StretchRect(source.raster, &target.raster, {0, 0, 5, bottom}, {1, 0, 6.5, 4}),
                    1);
                EXPECT_EQ(PlainStretchRect(source.plain, &target.plain, {0, 0, 5, bottom},
                                           {1, 0, 6.5, 4}),
                          1);
                (ofSource ? target : source).PageOut(5); // no part of it; shows what is locked
                ExpectSame({&source, &target});
            }
}

TEST_F(Stretch, BetweenEqualSizesALineThatDoesNotLockIsReportedAsByACopy)
{
    for (u32 line = 0; line < 5; ++line)
        for (const bool ofSource : {true, false}) {
            Twin source(9, 6, 24, 1, Storage::Paging);
            Twin target(10, 6, 24, 2, Storage::Paging);
            (ofSource ? source : target).Refuse(line);
            EXPECT_EQ(StretchRect(source.raster, &target.raster, {0, 0, 5, 4}, {1, 0, 6, 4}), -2);
            EXPECT_EQ(PlainStretchRect(source.plain, &target.plain, {0, 0, 5, 4}, {1, 0, 6, 4}),
                      -2);
            (ofSource ? target : source).PageOut(5); // no part of it; shows what is locked
            ExpectSame({&source, &target});
        }
}

TEST_F(Stretch, ShrinkingNeverAsksForTheLinesBetween)
{
    for (const u32 line : {1u, 3u, 5u}) {
        Twin source(6, 6, 24, 1, Storage::Paging);
        Twin target(6, 3, 24, 2);
        source.Refuse(line);
        EXPECT_EQ(StretchRect(source.raster, &target.raster, {0, 0, 5, 5}, {0, 0, 5, 2}), 1);
        for (i32 y = 0; y < 3; ++y)
            EXPECT_EQ(RowOf(target.raster, y)[0], source.plain.rows[static_cast<u32>(y) * 2][0]);
        EXPECT_EQ(FilesIn(FirstFolder).size(), 1u);
    }
}

TEST_F(Stretch, ASourceFromMinusTenAtTwiceTheSizeMovesTheTargetTwentyPixelsRight)
{
    List expected(20, -1);
    for (i32 x = 0; x < 8; ++x)
        expected.insert(expected.end(), {x, x});
    expected.resize(40, -1);
    EXPECT_EQ(OneRow(8, 40).Shown(-10, 7, 0, 35), expected);
}

TEST_F(Stretch, ATargetThatBeginsBeforeTheRasterShowsTheSourceFromItsStart)
{
    EXPECT_EQ(OneRow(4, 8).Shown(0, 3, -4, 3), (List{0, 0, 1, 1, -1, -1, -1, -1}));
}

TEST_F(Stretch, ATargetThatEndsBehindTheRasterIsCut)
{
    EXPECT_EQ(OneRow(4, 5).Shown(0, 3, 2, 9), (List{-1, -1, 0, 0, 1}));
    EXPECT_EQ(OneRow(4, 5).Shown(0, 3, 5, 12), (List(5, -1)));
}

TEST_F(Stretch, InvertedRectanglesAreThoseBetweenTheSameCorners)
{
    EXPECT_EQ(OneRow(4, 8).Shown(3, 0, 7, 0), (List{0, 0, 1, 1, 2, 2, 3, 3}));
}

TEST_F(Stretch, ABrokenTargetColumnIsDrawnFromThePixelThatHoldsItsLeftEdge)
{
    EXPECT_EQ(OneRow(8, 6).Shown(0, 7, 0.875, 3.875), (List{0, 2, 4, 6, -1, -1}));
    EXPECT_EQ(OneRow(8, 6).Shown(0, 7, 1.5, 4.75), (List{-1, 0, 1, 3, 5, -1}));
}

TEST_F(Stretch, ABrokenSourceColumnCountsFromWhereItLies)
{
    // Step 32768, from 1.75: 1.75, 2.25, 2.75, 3.25.
    EXPECT_EQ(OneRow(8, 4).Shown(1.75, 2.75, 0, 3), (List{1, 2, 2, 3}));
}

TEST_F(Stretch, EqualBrokenSizesCopyFromTruncatedPlaces)
{
    // A stretch by 1.0 would begin at column 3.
    EXPECT_EQ(OneRow(4, 8).Shown(-2.5, 1.5, 0.5, 4.5), (List{-1, -1, 0, 1, 2, 3, -1, -1}));
    EXPECT_EQ(OneRow(4, 8).Shown(0.75, 2.5, 3.75, 5.5), (List{-1, -1, -1, 0, 1, -1, -1, -1}));
}

TEST_F(Stretch, BetweenEqualSizesATargetBeforeTheRasterLosesItsStart)
{
    EXPECT_EQ(OneRow(4, 4).Shown(0, 3, -2, 1), (List{2, 3, -1, -1}));
}

TEST_F(Stretch, ARoundedUpStepRunsOutOfSourceBeforeTheTargetEnds)
{
    // 65536 / 1000 = 65.5 and more, so 66: the 993rd step is past the only pixel.
    List expected(1000, -1);
    std::fill_n(expected.begin(), 993, 0);
    EXPECT_EQ(OneRow(1, 1000).Shown(0, 0, 0, 999), expected);
}

TEST_F(Stretch, ARoundedDownStepReachesTheNextPixelLate)
{
    // 131072 / 2004 = 65.4, so 65: column 1 begins at 1009 and not at 1002.
    List expected(2004, 1);
    std::fill_n(expected.begin(), 1009, 0);
    EXPECT_EQ(OneRow(2, 2004).Shown(0, 1, 0, 2003), expected);
}

TEST_F(Stretch, AStepOfExactlyAHalfRoundsUp)
{
    // 3 * 65536 / 131072 is 1.5: the second pixel comes after 32,768 columns of step 2.
    const List shown = OneRow(3, 33000).Shown(0, 2, 0, 131071);
    EXPECT_EQ(shown[32767], 0);
    EXPECT_EQ(shown[32768], 1);
}

TEST_F(Stretch, ARowThatRunsPastTheSourceIsCutThere)
{
    // Eight columns to sixteen, of which the source has four.
    EXPECT_EQ(OneRow(4, 16).Shown(0, 7, 0, 15),
              (List{0, 0, 1, 1, 2, 2, 3, 3, -1, -1, -1, -1, -1, -1, -1, -1}));
}

TEST_F(Stretch, EqualSizesGiveWhatAStretchByOneGives)
{
    Twin source(9, 7, 24, 1);
    Twin copied(9, 7, 24, 2);
    Twin stretched(9, 7, 24, 2);
    ASSERT_EQ(StretchRect(source.raster, &copied.raster, {1, 1, 6, 5}, {2, 2, 7, 6}), 1);
    // A hair's breadth of difference takes the other way and steps by exactly 1 all the same.
    ASSERT_EQ(
        StretchRect(source.raster, &stretched.raster, {1, 1, 6, 5}, {2, 2, 7.0000001, 6.0000001}),
        1);
    EXPECT_EQ(RowsOf(copied.raster), RowsOf(stretched.raster));
    EXPECT_NE(RowsOf(copied.raster), copied.plain.rows);
}

TEST_F(Stretch, WhatLiesOutsideDrawsNothing)
{
    Twin source(4, 4, 24, 1);
    Twin target(4, 4, 24, 2);
    const DoubleRect whole = {0, 0, 3, 3};
    const DoubleRect beyond[] = {{4, 0, 9, 9}, {0, 4, 9, 9}, {-9, 0, -5, 9}, {0, -9, 9, -5}};
    for (const DoubleRect& rect : beyond) {
        EXPECT_EQ(StretchRect(source.raster, &target.raster, rect, whole), 1);
        EXPECT_EQ(StretchRect(source.raster, &target.raster, whole, rect), 1);
        ExpectSame({&source, &target});
    }
}

TEST_F(Stretch, NumbersOutOfReachStayInsideTheLines)
{
    Twin source(5, 4, 24, 1);
    Twin target(6, 3, 24, 2);
    const f64 infinity = std::numeric_limits<f64>::infinity();
    const f64 nothing = std::numeric_limits<f64>::quiet_NaN();
    const f64 values[] = {-infinity, -1e300, -4294967296.0, -1.5, 0,        0.5,    1e-300,
                          2,         65536,  4294967296.0,  1e18, infinity, nothing};
    for (f64 a : values)
        for (f64 b : values)
            for (f64 c : values)
                for (f64 d : values)
                    ASSERT_EQ(
                        StretchRect(source.raster, &target.raster, {a, a, b, b}, {c, c, d, d}), 1);
}

TEST_F(Stretch, AWidthThatRoundsUpDoesNotLeaveTheLine)
{
    // The number just below the width is not cut to width - 1, and its run rounds up to width + 1.
    for (const u32 width : {1u, 2u, 4u, 8u, 32u}) {
        const f64 edge = std::nextafter(static_cast<f64>(width), 0.0);
        ASSERT_EQ(edge + 1.0, width + 1.0);
        Twin source(width + 8, width + 8, 24, 1);
        Twin target(width, width, 24, 2);
        Check(source, target, {0, 0, width + 7.0, width + 7.0}, {0, 0, edge, edge});
    }
}

TEST_F(Stretch, PositionsPastThirtyTwoBitsArePastTheSource)
{
    // A step of 10,000 columns: the seventh lies past the source, and the eighth's sum past 2^32.
    List expected(40, -1);
    for (i32 x = 0; x < 6; ++x)
        expected[static_cast<size_t>(x)] = x * 10000;
    EXPECT_EQ(OneRow(60000, 40).Shown(0, 399999, 0, 39), expected);
}

TEST_F(Stretch, ASourceOfMoreThanSixteenBitsOfColumnsIsReachedUpToThere)
{
    // A step of 3,500 columns: the nineteenth is 63,000, and the next one's sum passes 2^32 though
    // the source still has its column.
    List expected(40, -1);
    for (i32 x = 0; x < 19; ++x)
        expected[static_cast<size_t>(x)] = x * 3500;
    EXPECT_EQ(OneRow(70000, 40).Shown(0, 139999, 0, 39), expected);
}

TEST_F(Stretch, ASourceColumnBeyondThirtyOneBitsOfFixedPointIsFound)
{
    EXPECT_EQ(OneRow(40000, 3).Shown(39990, 39995, 0, 2), (List{39990, 39992, 39994}));
}

TEST_F(Stretch, ALineWhoseDataIsLostEndsTheWorkQuietly)
{
    Twin source(6, 3, 24, 1);
    source.allocator.fails = [](int, u32) { return true; };
    EXPECT_EQ(source.raster.InsertLines(3, nullptr), -2); // line 3 has no record
    source.allocator.fails = nullptr;
    Twin target(6, 8, 24, 2);
    EXPECT_EQ(StretchRect(source.raster, &target.raster, {0, 0, 5, 3}, {0, 0, 5, 7}), 1);
    for (u32 y = 0; y < 6; ++y)
        std::copy_n(source.plain.rows[y / 2].begin(), 18, target.plain.rows[y].begin());
    ExpectSame({&target});
}
