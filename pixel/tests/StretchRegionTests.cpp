#include "PlainStretch.h"
#include "RandomRects.h"

#include <limits>

namespace
{

using StretchedRegion = PagingTest;

i32 StretchRegion(Raster& source, Raster* target, const DoubleRect& from, const DoubleRect& to,
                  const DoubleRect& clip)
{
    return source.StretchRegion(target, from.left, from.top, from.right, from.bottom, to.left,
                                to.top, to.right, to.bottom, clip.left, clip.top, clip.right,
                                clip.bottom);
}

i32 StretchRect(Raster& source, Raster* target, const DoubleRect& from, const DoubleRect& to)
{
    return source.StretchRect(target, from.left, from.top, from.right, from.bottom, to.left, to.top,
                              to.right, to.bottom);
}

void Check(Twin& source, Twin& target, const DoubleRect& from, const DoubleRect& to,
           const DoubleRect& clip)
{
    SCOPED_TRACE(::testing::Message()
                 << "from " << from.left << " " << from.top << " " << from.right << " "
                 << from.bottom << " to " << to.left << " " << to.top << " " << to.right << " "
                 << to.bottom << " clip " << clip.left << " " << clip.top << " " << clip.right
                 << " " << clip.bottom);
    EXPECT_EQ(StretchRegion(source.raster, &target.raster, from, to, clip),
              PlainStretchRegion(source.plain, &target.plain, from, to, clip));
    ExpectSame({&source, &target});
}

/// The source column that each pixel of a one-row target shows, -1 for an untouched one.
std::vector<i32> Shown(u32 sourceWidth, u32 targetWidth, f64 fromLeft, f64 fromRight, f64 toLeft,
                       f64 toRight, f64 clipLeft, f64 clipRight)
{
    constexpr u8 Old = 0xEE;
    Twin source(sourceWidth, 1, 24, 1);
    Twin target(targetWidth, 1, 24, 2);
    Rows rows = source.plain.rows;
    for (u32 x = 0; x < sourceWidth; ++x) {
        rows[0][x * 3] = static_cast<u8>(x);
        rows[0][x * 3 + 1] = static_cast<u8>(x >> 8);
        rows[0][x * 3 + 2] = 0x55;
    }
    source.SetRows(rows);
    target.SetRows(Rows(1, std::vector<u8>(target.plain.stride, Old)));
    EXPECT_EQ(StretchRegion(source.raster, &target.raster, {fromLeft, 0, fromRight, 0},
                            {toLeft, 0, toRight, 0}, {clipLeft, 0, clipRight, 0}),
              1);
    const std::vector<u8> row = RowOf(target.raster, 0);
    std::vector<i32> columns;
    for (u32 x = 0; x < targetWidth; ++x)
        columns.push_back(row[x * 3 + 2] == Old ? -1 : row[x * 3] | (row[x * 3 + 1] << 8));
    return columns;
}

using List = std::vector<i32>;

bool SamePixel(const Rows& a, const Rows& b, u32 x, u32 y)
{
    return std::equal(a[y].begin() + x * 3, a[y].begin() + x * 3 + 3, b[y].begin() + x * 3);
}

} // namespace

TEST_F(StretchedRegion, IsItsFormulaForEveryWidthAndRectanglesOnAllSides)
{
    RandomRects random(21);
    for (u32 width = 1; width <= 33; ++width)
        for (u32 round = 0; round < 30; ++round) {
            const u32 height = 1 + random.Below(6);
            const u32 targetWidth = 1 + random.Below(33);
            const u32 targetHeight = 1 + random.Below(6);
            Twin source(width, height, 24, width + round);
            Twin target(targetWidth, targetHeight, 24, 1000 + round);
            const DoubleRect from = random.Around(width, height);
            const DoubleRect to = round % 5 == 0 ? random.Moved(from, targetWidth, targetHeight)
                                                 : random.Around(targetWidth, targetHeight);
            Check(source, target, from, to, random.Around(targetWidth, targetHeight));
            Check(source, target, {0, 0, width - 1.0, height - 1.0}, to,
                  random.Around(targetWidth, targetHeight));
            if (HasFailure())
                return;
        }
}

TEST_F(StretchedRegion, IsItsFormulaForEveryRatioOfWholeRasters)
{
    for (u32 width = 1; width <= 33; ++width) {
        Twin source(width, 2, 24, width);
        for (u32 targetWidth = 1; targetWidth <= 33; ++targetWidth) {
            Twin target(targetWidth, 3, 24, targetWidth);
            Check(source, target, {0, 0, width - 1.0, 1}, {0, 0, targetWidth - 1.0, 2},
                  {targetWidth / 3.0, 1, targetWidth * 0.75, 2});
        }
    }
    Twin wide(257, 3, 24, 1);
    Twin wider(1000, 5, 24, 2);
    Check(wide, wider, {0, 0, 256, 2}, {0, 0, 999, 4}, {333, 1, 702.5, 3});
    Check(wider, wide, {0, 0, 999, 4}, {0, 0, 256, 2}, {-7, 0.5, 200, 9});
}

TEST_F(StretchedRegion, IsItsFormulaForRectanglesFarBeyondTheRasters)
{
    const f64 far[] = {-1e300, -5e9, -1e6, 1e6, 5e9, 1e300};
    for (const f64 low : far)
        for (const f64 high : far) {
            Twin source(9, 4, 24, 1);
            Twin target(7, 5, 24, 2);
            Check(source, target, {low, low, high, high}, {0, 0, 6, 4}, {1, 1, 5, 3});
            Check(source, target, {0, 0, 8, 3}, {low, low, high, high}, {1, 1, 5, 3});
            Check(source, target, {0, 0, 8, 3}, {0, 0, 6, 4}, {low, low, high, high});
            Check(source, target, {2, 1, high, 2}, {1, low, 5, 4}, {low, low, high, high});
        }
}

TEST_F(StretchedRegion, LinesUpWithTheWholeStretchToThePixel)
{
    RandomRects random(22);
    u32 drawn = 0;
    u32 kept = 0;
    for (u32 round = 0; round < 600; ++round) {
        Twin source(1 + random.Below(20), 5, 24, round);
        const u32 width = 1 + random.Below(33);
        Twin whole(width, 7, 24, 999);
        Twin part(width, 7, 24, 999);
        const Rows old = part.plain.rows;
        const DoubleRect from = random.Around(source.plain.width, 5);
        const DoubleRect to = random.Around(width, 7);
        if (from.right - from.left == to.right - to.left &&
            from.bottom - from.top == to.bottom - to.top)
            continue;
        const i32 left = static_cast<i32>(random.Below(width));
        const i32 top = static_cast<i32>(random.Below(7));
        const i32 right = left + static_cast<i32>(random.Below(width));
        const i32 bottom = top + static_cast<i32>(random.Below(7));
        ASSERT_EQ(StretchRect(source.raster, &whole.raster, from, to), 1);
        ASSERT_EQ(StretchRegion(source.raster, &part.raster, from, to,
                                {static_cast<f64>(left), static_cast<f64>(top),
                                 static_cast<f64>(right), static_cast<f64>(bottom)}),
                  1);
        const Rows all = RowsOf(whole.raster);
        const Rows some = RowsOf(part.raster);
        for (u32 y = 0; y < 7; ++y)
            for (u32 x = 0; x < width; ++x) {
                // Broken edges of the target move which pixels the clip takes, by less than one.
                const bool inside = static_cast<i32>(x) >= left && static_cast<i32>(x) < right &&
                                    static_cast<i32>(y) >= top && static_cast<i32>(y) < bottom;
                const bool near = static_cast<i32>(x) >= left - 1 && static_cast<i32>(x) <= right &&
                                  static_cast<i32>(y) >= top - 1 && static_cast<i32>(y) <= bottom;
                if (inside) {
                    ASSERT_TRUE(SamePixel(some, all, x, y)) << round << ": " << x << ", " << y;
                } else if (!near) {
                    ASSERT_TRUE(SamePixel(some, old, x, y)) << round << ": " << x << ", " << y;
                }
                (SamePixel(some, old, x, y) ? kept : drawn) += 1;
            }
    }
    EXPECT_GT(drawn, 1000u);
    EXPECT_GT(kept, 1000u);
}

TEST_F(StretchedRegion, LinesUpExactlyInsideTheClipWhereTheTargetLiesOnWholePixels)
{
    Twin source(31, 23, 24, 3);
    for (const f64 zoom : {0.25, 1.0 / 3.0, 0.7, 1.5, 2.0, 4.0 / 3.0}) {
        Twin whole(40, 30, 24, 5);
        Twin part(40, 30, 24, 5);
        const Rows before = part.plain.rows;
        const DoubleRect from = {1.25, 0.5, 1.25 + 40 * zoom - 1, 0.5 + 30 * zoom - 1};
        ASSERT_EQ(StretchRect(source.raster, &whole.raster, from, {0, 4, 39, 33}), 1);
        ASSERT_EQ(StretchRegion(source.raster, &part.raster, from, {0, 4, 39, 33}, {7, 9, 15, 20}),
                  1);
        const Rows all = RowsOf(whole.raster);
        const Rows some = RowsOf(part.raster);
        for (u32 y = 0; y < 30; ++y)
            for (u32 x = 0; x < 40; ++x) {
                const bool inside = x >= 7 && x <= 15 && y >= 9 && y <= 20;
                ASSERT_TRUE(SamePixel(some, inside ? all : before, x, y))
                    << zoom << " at " << x << ", " << y;
            }
    }
}

TEST_F(StretchedRegion, TilesMakeUpTheWholeStretch)
{
    Twin source(23, 9, 24, 1);
    Twin whole(31, 14, 24, 2);
    Twin tiled(31, 14, 24, 2);
    const DoubleRect from = {-2.5, -1.25, 20.75, 11};
    const DoubleRect to = {-3, 1, 34, 12};
    ASSERT_EQ(StretchRect(source.raster, &whole.raster, from, to), 1);
    for (i32 y = 0; y < 14; y += 3)
        for (i32 x = 0; x < 31; x += 5)
            ASSERT_EQ(StretchRegion(source.raster, &tiled.raster, from, to,
                                    {x + 0.0, y + 0.0, x + 5.0, y + 3.0}),
                      1);
    EXPECT_EQ(RowsOf(tiled.raster), RowsOf(whole.raster));
    EXPECT_NE(RowsOf(whole.raster), whole.plain.rows);
}

TEST_F(StretchedRegion, TakesOnlyTwentyFourBitsAndChangesNothingElse)
{
    for (const u32 depth : {8u, 16u, 24u, 32u})
        for (const u32 targetDepth : {8u, 16u, 24u, 32u}) {
            Twin source(5, 4, depth, 1, Storage::Paging);
            Twin target(7, 3, targetDepth, 2, Storage::Paging);
            source.PageOut(1);
            target.PageOut(1);
            const i32 expected = depth == 24 && targetDepth == 24 ? 1 : -1;
            EXPECT_EQ(StretchRegion(source.raster, &target.raster, {0, 0, 4, 3}, {0, 0, 6, 2},
                                    {1, 1, 4, 1}),
                      expected);
            (void)PlainStretchRegion(source.plain, &target.plain, {0, 0, 4, 3}, {0, 0, 6, 2},
                                     {1, 1, 4, 1});
            // Depth is looked at before whether anything is left to draw.
            EXPECT_EQ(StretchRegion(source.raster, &target.raster, {0, 0, 4, 3}, {0, 0, 6, 2},
                                    {9, 9, 10, 10}),
                      expected);
            ExpectSame({&source, &target});
        }
}

TEST_F(StretchedRegion, RefusesNoTargetAndRastersThatWereNotCreated)
{
    Twin source(5, 4, 24, 1);
    Twin empty;
    const DoubleRect all = {0, 0, 4, 3};
    EXPECT_EQ(StretchRegion(source.raster, nullptr, all, all, all), -4);
    EXPECT_EQ(StretchRegion(empty.raster, nullptr, all, all, all), -4);
    EXPECT_EQ(StretchRegion(source.raster, &empty.raster, all, all, all), -1);
    EXPECT_EQ(StretchRegion(empty.raster, &source.raster, all, all, all), -1);
    ExpectSame({&source});
}

TEST_F(StretchedRegion, DrawsNothingOfRastersWithoutPixels)
{
    for (const u32 width : {0u, 3u}) {
        Twin empty(width, width == 0 ? 3 : 0, 24, 1);
        Twin full(5, 4, 24, 2);
        Check(empty, full, {-2, -2, 4, 4}, {0, 0, 4, 3}, {0, 0, 4, 3});
        Check(full, empty, {0, 0, 4, 3}, {-2, -2, 8, 8}, {-1, -1, 4, 3});
    }
}

TEST_F(StretchedRegion, ReleasesEachPairOfLinesAsSoonAsItIsDone)
{
    RandomRects random(23);
    for (u32 round = 0; round < 40; ++round) {
        Twin source(6, 5, 24, round, Storage::Paging);
        Twin target(9, 6, 24, 100 + round, Storage::Paging);
        const DoubleRect from = random.Around(6, 5);
        const DoubleRect to = random.Around(9, 6);
        const DoubleRect clip = random.Around(9, 6);
        {
            const WithShortMemory memory;
            EXPECT_EQ(StretchRegion(source.raster, &target.raster, from, to, clip),
                      PlainStretchRegion(source.plain, &target.plain, from, to, clip));
        }
        ExpectSame({&source, &target});
    }
}

TEST_F(StretchedRegion, ALineThatDoesNotLockEndsTheWorkQuietlyAndTheOthersStayAsTheyAre)
{
    const DoubleRect clip = {2, 1, 5, 4};
    for (u32 line = 0; line < 5; ++line)
        for (const bool ofSource : {true, false})
            for (const f64 bottom : {2.0, 4.0, 9.0}) {
                Twin source(9, 6, 24, 1, Storage::Paging);
                Twin target(10, 6, 24, 2, Storage::Paging);
                (ofSource ? source : target).Refuse(line);
                EXPECT_EQ(StretchRegion(source.raster, &target.raster, {0, 0, 5, bottom},
                                        {1, 0, 6, 4}, clip),
                          1);
                EXPECT_EQ(PlainStretchRegion(source.plain, &target.plain, {0, 0, 5, bottom},
                                             {1, 0, 6, 4}, clip),
                          1);
                (ofSource ? target : source).PageOut(5); // no part of it; shows what is locked
                ExpectSame({&source, &target});
            }
}

TEST_F(StretchedRegion, AsksForNoLineOutsideTheClip)
{
    for (const u32 line : {0u, 4u}) {
        Twin source(7, 5, 24, 1, Storage::Paging);
        Twin target(8, 5, 24, 2, Storage::Paging);
        source.Refuse(line);
        target.Refuse(line);
        EXPECT_EQ(
            StretchRegion(source.raster, &target.raster, {0, 0, 6, 4}, {0, 0, 7, 4}, {0, 1, 7, 3}),
            1);
        for (i32 y = 1; y < 4; ++y)
            EXPECT_EQ(RowOf(target.raster, y)[0], source.plain.rows[static_cast<u32>(y)][0]);
        EXPECT_EQ(FilesIn(FirstFolder).size(), 2u);
    }
}

TEST_F(StretchedRegion, AClipThatHoldsNoColumnLocksNoLine)
{
    Twin source(7, 5, 24, 1, Storage::Paging);
    Twin target(9, 5, 24, 2, Storage::Paging);
    for (u32 line = 0; line < 5; ++line) {
        source.PageOut(line);
        target.PageOut(line);
    }
    // Left of where the target begins, and behind the last column that the source reaches.
    EXPECT_EQ(
        StretchRegion(source.raster, &target.raster, {0, 0, 6, 4}, {3, 0, 8, 3}, {0, 0, 2, 4}), 1);
    EXPECT_EQ(
        StretchRegion(source.raster, &target.raster, {0, 0, 99, 4}, {0, 0, 99, 3}, {7, 0, 8, 4}),
        1);
    EXPECT_EQ(FilesIn(FirstFolder).size(), 10u);
    ExpectSame({&source, &target});
}

TEST_F(StretchedRegion, InvertedRectanglesAreThoseBetweenTheSameCorners)
{
    EXPECT_EQ(Shown(4, 8, 3, 0, 7, 0, 4, 2), (List{-1, -1, 1, 1, 2, -1, -1, -1}));
}

TEST_F(StretchedRegion, OffsetsComeFromTheWholeMapping)
{
    // The mapping begins at column -10 of the source, which puts its column 0 at 20.
    List expected(40, -1);
    expected[23] = 1;
    expected[24] = expected[25] = 2;
    EXPECT_EQ(Shown(8, 40, -10, 7, 0, 35, 23, 25), expected);
    // One that begins before the target is moved to 0.
    EXPECT_EQ(Shown(4, 8, 0, 3, -4, 3, 2, 7), (List{-1, -1, 1, 1, -1, -1, -1, -1}));
}

TEST_F(StretchedRegion, EqualSizesAreMappedLikeAnyOthers)
{
    // A copy would truncate -2.5 and begin at 2.
    EXPECT_EQ(Shown(4, 8, -2.5, 1.5, 0.5, 4.5, 0, 7), (List{-1, -1, -1, 0, 1, -1, -1, -1}));
    // A copy would lose the columns before the target; here the picture is moved.
    EXPECT_EQ(Shown(4, 4, 0, 3, -2, 1, 0, 3), (List{0, 1, -1, -1}));
}

TEST_F(StretchedRegion, AClipThatBeginsBehindTheTargetInItsLastPixelStillDrawsThatPixel)
{
    // Narrowed to the target the clip runs from 5.75 back to 5.25: one column, number 5.
    EXPECT_EQ(Shown(4, 8, 0, 3, 0, 5.25, 5.75, 7), (List{-1, -1, -1, -1, -1, 3, -1, -1}));
}

TEST_F(StretchedRegion, ColumnsOfABrokenTargetAreCountedFromItsLeftEdge)
{
    // From 1.75: the clip's 2.5 lies 0.75 behind it, in the first column, which is drawn at 1.
    EXPECT_EQ(Shown(4, 8, 0, 3, 1.75, 4.75, 2.5, 3.75), (List{-1, 0, 1, 2, -1, -1, -1, -1}));
}

TEST_F(StretchedRegion, ARoundedUpStepRunsOutOfSourceBeforeTheClipEnds)
{
    // Step 66: the 993rd column is past the only pixel.
    List expected(1000, -1);
    expected[991] = expected[992] = 0;
    EXPECT_EQ(Shown(1, 1000, 0, 0, 0, 999, 991, 999), expected);
}

TEST_F(StretchedRegion, PositionsPastThirtyTwoBitsArePastTheSource)
{
    // A step of 10,000 columns: the seventh lies past the source, and the eighth's sum past 2^32.
    List expected(40, -1);
    expected[4] = 40000;
    expected[5] = 50000;
    EXPECT_EQ(Shown(60000, 40, 0, 399999, 0, 39, 4, 39), expected);
    EXPECT_EQ(Shown(60000, 40, 0, 399999, 0, 39, 7, 39), List(40, -1));
    // Here the source still has the column, number 66,500.
    EXPECT_EQ(Shown(70000, 40, 0, 139999, 0, 39, 19, 19), List(40, -1));
}

TEST_F(StretchedRegion, NumbersOutOfReachStayInsideTheLines)
{
    Twin source(5, 4, 24, 1);
    Twin target(6, 3, 24, 2);
    const f64 infinity = std::numeric_limits<f64>::infinity();
    const f64 nothing = std::numeric_limits<f64>::quiet_NaN();
    const f64 values[] = {-infinity, -1e300, -1.5, 0, 1e-300, 2, 65536, 1e18, infinity, nothing};
    for (f64 a : values)
        for (f64 b : values)
            for (f64 c : values)
                for (f64 d : values)
                    ASSERT_EQ(StretchRegion(source.raster, &target.raster, {a, 0, b, 3},
                                            {0, c, 5, d}, {a, c, b, d}),
                              1);
}
