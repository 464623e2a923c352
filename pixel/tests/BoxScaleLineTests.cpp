#include "PlainScale.h"

#include "platform/testing/Faults.h"

using tavrix::testing::ArmedFault;
using tavrix::testing::FaultKind;
using tavrix::testing::FaultReach;
using tavrix::testing::ForEveryFault;

namespace
{

using BoxScaleLine = PagingTest;

constexpr u8 Old = 0xEE;

/// Makes row `row` of both sides and compares results, the row and what lies behind it.
void Check(Twin& source, u32 row, u32 height, u32 width)
{
    std::vector<u8> got(width * 3 + 2, Old);
    std::vector<u8> expected = got;
    ASSERT_EQ(source.raster.BoxScaleLine(got.data(), row, height, width),
              PlainBoxScaleLine(source.plain, expected.data(), row, height, width));
    ASSERT_EQ(got, expected) << source.plain.width << " x " << source.plain.height << ", row "
                             << row << " of " << height << ", width " << width;
}

void CheckAll(Twin& source, u32 height, u32 width)
{
    for (u32 row = 0; row < height; ++row)
        Check(source, row, height, width);
}

/// Makes the only row of a source of one row of grey pixels.
std::vector<u8> Averaged(const std::vector<u8>& greys, u32 width)
{
    Twin source(static_cast<u32>(greys.size()), 1, 24, 1);
    Rows rows = source.plain.rows;
    for (size_t x = 0; x < greys.size(); ++x)
        std::fill_n(rows[0].begin() + static_cast<std::ptrdiff_t>(x * 3), 3, greys[x]);
    source.SetRows(rows);
    std::vector<u8> out(width * 3, Old);
    EXPECT_EQ(source.raster.BoxScaleLine(out.data(), 0, 1, width), 1);
    std::vector<u8> shown;
    for (u32 x = 0; x < width; ++x) {
        EXPECT_EQ(out[x * 3], out[x * 3 + 1]);
        EXPECT_EQ(out[x * 3], out[x * 3 + 2]);
        shown.push_back(out[x * 3]);
    }
    return shown;
}

using Greys = std::vector<u8>;

} // namespace

TEST_F(BoxScaleLine, IsItsFormulaForEveryRatioFromOneToThirtyThreeBothWays)
{
    for (u32 width = 1; width <= 33; ++width) {
        Twin source(width, 1 + (width * 5) % 11, 24, width);
        for (u32 outWidth = 1; outWidth <= 33; ++outWidth)
            CheckAll(source, 1 + (outWidth * 7 + width) % 13, outWidth);
        ExpectSame({&source});
    }
    for (u32 height = 1; height <= 33; ++height) {
        Twin source(1 + (height * 5) % 11, height, 24, height);
        for (u32 outHeight = 1; outHeight <= 33; ++outHeight)
            CheckAll(source, outHeight, 1 + (outHeight * 7 + height) % 13);
    }
}

TEST_F(BoxScaleLine, IsItsFormulaForLargeRasters)
{
    Twin wide(1000, 7, 24, 1);
    for (const u32 width : {1u, 2u, 3u, 33u, 257u, 999u, 1000u, 1001u, 2000u})
        CheckAll(wide, 3, width);
    Twin tall(5, 257, 24, 2);
    for (const u32 height : {1u, 2u, 7u, 100u, 256u, 257u, 258u})
        CheckAll(tall, height, 2);
    Twin square(257, 257, 24, 3);
    CheckAll(square, 1, 1);
}

TEST_F(BoxScaleLine, TheBrightestPixelsThereAreAreItsFormulaForAnyNumberOfThem)
{
    constexpr u32 sizes[][2] = {{520, 1},  {900, 3}, {1400, 2}, {40, 259},
                                {30, 270}, {2, 600}, {257, 4},  {64, 64}};
    for (const auto& [width, height] : sizes) {
        Twin source(width, height, 24, 1);
        source.SetRows(Rows(height, std::vector<u8>(source.plain.stride, 255)));
        for (const u32 outWidth : {1u, 2u, 3u})
            for (const u32 outHeight : {1u, 2u})
                CheckAll(source, outHeight, outWidth);
    }
}

TEST_F(BoxScaleLine, HalvesAndWhatIsNearlyHalfAreTheirFormula)
{
    constexpr u32 sizes[][2] = {{2, 2}, {18, 4}, {34, 6}, {66, 8}, {100, 10}, {258, 4}, {1300, 2}};
    for (const auto& [width, height] : sizes)
        for (const u32 more : {0u, 1u}) {
            Twin source(width + more, height, 24, width);
            CheckAll(source, height / 2, width / 2);
            CheckAll(source, height, width / 2);
            CheckAll(source, height / 2, width);
            CheckAll(source, height / 2, width / 2 + 1);
            Twin tall(width, height + more, 24, height);
            CheckAll(tall, height / 2, width / 2);
        }
}

TEST_F(BoxScaleLine, ReductionsByWholeNumbersAreTheirFormulaAcrossTiles)
{
    for (u32 factor = 2; factor <= 20; ++factor) {
        Twin source(1500, 2 * factor, 24, factor);
        CheckAll(source, 2, 1500 / factor);
        CheckAll(source, 3, 1500 / factor + 1);
    }
}

TEST_F(BoxScaleLine, AHalfWhoseSecondLineDoesNotLockTakesTheFirstTwice)
{
    Twin source(40, 6, 24, 3, Storage::Paging);
    source.Refuse(3);
    for (u32 row = 0; row < 3; ++row)
        Check(source, row, 3, 20);
    ExpectSame({&source});
}

TEST_F(BoxScaleLine, ReductionsSoLargeThatWeightsFallToNothingAreItsFormula)
{
    Twin wide(3000, 3, 24, 1);
    for (const u32 width : {1u, 2u, 3u, 7u})
        for (const u32 height : {1u, 2u, 3u, 5u})
            CheckAll(wide, height, width);
    Twin tall(3, 3000, 24, 2);
    for (const u32 height : {1u, 2u, 7u})
        for (const u32 width : {1u, 2u, 3u, 5u})
            CheckAll(tall, height, width);
}

TEST_F(BoxScaleLine, AWidthBeyondSixteenBitsWrapsAsItsFormulaDoes)
{
    for (const u32 width : {65535u, 65536u, 65537u, 70000u}) {
        Twin source(width, 1, 24, 1);
        for (const u32 outWidth : {1u, 3u, 64u})
            Check(source, 0, 1, outWidth);
    }
}

TEST_F(BoxScaleLine, EnlargementsSoLargeThatSumsWrapAreItsFormula)
{
    Twin tiny(2, 2, 24, 1);
    CheckAll(tiny, 66, 66);
    Check(tiny, 150, 300, 5000);
    Check(tiny, 4000, 8000, 3);
    Twin dot(1, 1, 24, 3);
    Check(dot, 39999, 40000, 1);
    Check(dot, 0, 1, 40000);
}

TEST_F(BoxScaleLine, WholeReductionsAverageTheirPixels)
{
    EXPECT_EQ(Averaged({10, 20, 30, 50}, 2), (Greys{15, 40}));
    EXPECT_EQ(Averaged({10, 20, 30, 50}, 1), (Greys{27})); // 27.5, cut
    EXPECT_EQ(Averaged({0, 255}, 2), (Greys{0, 255}));
}

TEST_F(BoxScaleLine, BrokenReductionsWeighThePixelsOnTheEdgeByWhatIsCovered)
{
    // The unit is 2048 / 3 = 682. The left result takes a whole unit of the first pixel and the
    // other 342 of the middle one. The right one takes 2 * 682 of the middle pixel, as the 682
    // before it are no whole 1024 that could be taken off, and a unit of the last.
    const u32 left = (682 * 0 + 342 * 90) / (682 + 342);
    const u32 right = (1364 * 90 + 682 * 180) / (1364 + 682);
    EXPECT_EQ(Averaged({0, 90, 180}, 2), (Greys{static_cast<u8>(left), static_cast<u8>(right)}));
}

TEST_F(BoxScaleLine, EnlargingRepeatsPixels)
{
    EXPECT_EQ(Averaged({7, 200}, 4), (Greys{7, 7, 200, 200}));
}

TEST_F(BoxScaleLine, AnEnlargingStepThatRoundsDownMixesInThePixelBefore)
{
    // 131072 / 6 is cut to 21845, and three of them are 65535: the fourth pixel begins in column 0
    // with a whole unit of 3072 of it and 4 * 1024 - 3072 of column 1.
    const u8 mixed = (7 * 3072 + 200 * 1024) / 4096;
    EXPECT_EQ(Averaged({7, 200}, 6), (Greys{7, 7, 7, mixed, 200, 200}));
}

TEST_F(BoxScaleLine, APixelOfNoWeightIsLeftAsItWas)
{
    // A unit of 1024 / 2000 is 0, and the one column with any cover lies behind the source.
    EXPECT_EQ(Averaged(Greys(2000, 77), 1), (Greys{Old}));
    // In two halves the left one has cover in its last column, which the source has.
    Greys pixels(3000, 77);
    pixels[1500] = 12;
    EXPECT_EQ(Averaged(pixels, 2), (Greys{12, Old}));
}

TEST_F(BoxScaleLine, RefusesWhatItCannotDoWithoutLockingAnything)
{
    for (const u32 depth : {8u, 16u, 24u, 32u}) {
        Twin source(5, 4, depth, 1, Storage::Paging);
        source.PageOut(0);
        source.PageOut(2);
        std::vector<u8> out(30, Old);
        EXPECT_EQ(source.raster.BoxScaleLine(nullptr, 0, 2, 2), -4);
        EXPECT_EQ(source.raster.BoxScaleLine(nullptr, 0, 2, 0), -4);
        EXPECT_EQ(source.raster.BoxScaleLine(out.data(), 2, 2, 2), -4);
        EXPECT_EQ(source.raster.BoxScaleLine(out.data(), 0xFFFFFFFF, 2, 2), -4);
        EXPECT_EQ(source.raster.BoxScaleLine(out.data(), 0, 0, 2), -4);
        EXPECT_EQ(source.raster.BoxScaleLine(out.data(), 0, 2, 0), depth == 24 ? 1 : -1);
        if (depth != 24) {
            EXPECT_EQ(source.raster.BoxScaleLine(out.data(), 0, 2, 2), -1);
        }
        EXPECT_EQ(out, std::vector<u8>(30, Old));
        EXPECT_EQ(FilesIn(FirstFolder).size(), 2u);
        ExpectSame({&source});
    }
    Raster empty;
    u8 byte[3];
    EXPECT_EQ(empty.BoxScaleLine(byte, 0, 1, 1), -1);
    EXPECT_EQ(empty.BoxScaleLine(nullptr, 0, 1, 1), -4);
    EXPECT_EQ(empty.BoxScaleLine(byte, 1, 1, 1), -4);
}

TEST_F(BoxScaleLine, APictureWithoutColumnsLeavesTheRowAsItWas)
{
    Raster thin;
    ASSERT_EQ(thin.Create(0, 4, 24, nullptr, nullptr), 1);
    std::vector<u8> out(9, Old);
    EXPECT_EQ(thin.BoxScaleLine(out.data(), 1, 2, 3), 1);
    EXPECT_EQ(out, std::vector<u8>(9, Old));
}

TEST_F(BoxScaleLine, ItsLinesStayLocked)
{
    for (u32 row = 0; row < 3; ++row)
        for (const u32 height : {3u, 7u, 14u}) {
            Twin source(5, 7, 24, 1, Storage::Paging);
            for (u32 line = 0; line < 7; ++line)
                source.PageOut(line);
            {
                const WithShortMemory memory;
                Check(source, row, height, 3);
            }
            ExpectSame({&source});
        }
}

TEST_F(BoxScaleLine, LinesThatDoNotLockAreFilledFromTheLastOneThatDid)
{
    for (const u32 height : {1u, 2u, 3u, 7u, 9u})
        for (u32 line = 0; line < 7; ++line)
            for (u32 row = 0; row < height; ++row) {
                Twin source(10, 7, 24, 5, Storage::Paging);
                source.Refuse(line);
                Check(source, row, height, 4);
                ExpectSame({&source});
            }
}

TEST_F(BoxScaleLine, TheFirstLineThatDoesNotLockIsReportedAndNothingIsDrawn)
{
    Twin source(9, 6, 24, 1, Storage::Paging);
    source.Refuse(2);
    std::vector<u8> out(12, Old);
    EXPECT_EQ(source.raster.BoxScaleLine(out.data(), 1, 3, 4), -2);
    EXPECT_EQ(out, std::vector<u8>(12, Old));
}

TEST_F(BoxScaleLine, AFirstLineWhoseDataIsLostGivesNothingDone)
{
    Twin source(7, 3, 24, 1);
    source.allocator.fails = [](int, u32) { return true; };
    EXPECT_EQ(source.raster.InsertLines(3, nullptr), -2); // line 3 has no record
    source.allocator.fails = nullptr;
    std::vector<u8> out(21, Old);
    EXPECT_EQ(source.raster.BoxScaleLine(out.data(), 3, 4, 7), 0);
    EXPECT_EQ(out, std::vector<u8>(21, Old));
    // As a later line it is filled from the one before.
    EXPECT_EQ(source.raster.BoxScaleLine(out.data(), 1, 2, 7), 1);
    const std::vector<u8>& before = source.plain.rows[2];
    EXPECT_EQ(out, std::vector<u8>(before.begin(), before.begin() + 21));
}

TEST_F(BoxScaleLine, WithoutATableOfLinesNothingIsDrawnOrLocked)
{
    Twin source(6, 4, 24, 1, Storage::Paging);
    for (u32 line = 0; line < 4; ++line)
        source.PageOut(line);
    u8 out[9] = {Old, Old, Old, Old, Old, Old, Old, Old, Old};
    {
        const ArmedFault fault(FaultKind::Allocation, 1, FaultReach::Once);
        EXPECT_EQ(source.raster.BoxScaleLine(out, 0, 2, 3), -2);
        EXPECT_TRUE(fault.Fired());
    }
    EXPECT_EQ(std::vector<u8>(out, out + 9), std::vector<u8>(9, Old));
    EXPECT_EQ(FilesIn(FirstFolder).size(), 4u);
    ExpectSame({&source});
}

TEST_F(BoxScaleLine, TheTableIsItsOnlyAllocationAndIsFreed)
{
    Twin source(6, 4, 24, 1);
    const unsigned fired = ForEveryFault(FaultKind::Allocation, [&source] {
        u8 out[9];
        const i32 result = source.raster.BoxScaleLine(out, 0, 2, 3);
        EXPECT_TRUE(result == Done || result == NoMemory) << result;
    });
    EXPECT_EQ(fired, 1u);
}
