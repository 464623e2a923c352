// Copies between rasters: the formula written out, the paths of different depths, runs that
// overlap, lines that do not come.

#include "CopySweep.h"

namespace
{

using CopyTo = PagingTest;

constexpr u32 Copy = 0xCC0020;

const Copying Copies = {[](Raster& source, const CopyRun& run, Raster& target, u32 draw) {
                            return source.CopyTo(run.x, run.y, run.width, run.height, &target,
                                                 run.targetX, run.targetY,
                                                 draw % 16 == 1 ? 0x42u : Copy);
                        },
                        [](PlainRaster& source, const CopyRun& run, PlainRaster& target, u32 draw) {
                            return PlainCopyTo(source, run, &target, draw % 16 == 1 ? 0x42u : Copy);
                        }};

} // namespace

TEST_F(CopyTo, EqualsItsFormulaEverywhere)
{
    SweepCopies(Copies, 61);
}

TEST_F(CopyTo, EqualsItsFormulaUnderItself)
{
    SweepCopiesUnderItself(Copies, 62);
}

TEST_F(CopyTo, EqualsItsFormulaAtTheEndsOfTheNumbers)
{
    SweepExtremeCopies(Copies, 24, 24);
    SweepExtremeCopies(Copies, 32, 32);
    SweepExtremeCopies(Copies, 16, 24);
    SweepExtremeCopies(Copies, 32, 8);
}

TEST_F(CopyTo, EqualsItsFormulaWhileLinesGoToFiles)
{
    SweepPagedCopies(Copies, 63);
}

TEST_F(CopyTo, StopsAtALineThatDoesNotCome)
{
    SweepRefusedCopies(Copies);
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

TEST_F(CopyTo, OnEveryPathAnotherOperationIsRefusedAlsoForNoRows)
{
    for (const u32 depth : AllDepths)
        for (const u32 targetDepth : AllDepths) {
            if (depth < 24 && targetDepth < 24)
                continue;
            Twin source(4, 4, depth, 1);
            Twin target(4, 4, targetDepth, 2);
            for (const u32 operation : {0u, 0x42u, 0xEE0086u, 0x660046u, 0xCC0021u})
                for (const i32 rows : {0, 2})
                    EXPECT_EQ(source.raster.CopyTo(0, 0, 2, rows, &target.raster, 0, 0, operation),
                              -1);
            EXPECT_EQ(source.raster.CopyTo(0, 0, 2, 0, &target.raster, 0, 0, Copy), 1);
            ExpectSame({&source, &target});
        }
}

TEST_F(CopyTo, WithinOneRowOverlappingPixelsArriveAsTheyWere)
{
    Twin twin(30, 2, 24, 3);
    std::vector<u8> expected = twin.plain.rows[0];
    std::copy_backward(expected.begin(), expected.begin() + 60, expected.begin() + 66);
    ASSERT_EQ(twin.raster.CopyTo(0, 0, 20, 1, &twin.raster, 2, 0, Copy), 1);
    EXPECT_EQ(RowOf(twin.raster, 0), expected);
    expected = twin.plain.rows[1];
    std::copy(expected.begin() + 6, expected.begin() + 66, expected.begin());
    ASSERT_EQ(twin.raster.CopyTo(2, 1, 20, 1, &twin.raster, 0, 1, Copy), 1);
    EXPECT_EQ(RowOf(twin.raster, 1), expected);
}

TEST_F(CopyTo, DownwardOverItselfARasterRepeatsItsFirstRows)
{
    Twin twin(4, 5, 24, 0);
    for (const bool again : {false, true}) {
        Rows rows;
        for (u8 y = 0; y < 5; ++y)
            rows.emplace_back(12, y);
        twin.SetRows(rows);
        ASSERT_EQ(twin.raster.CopyTo(0, again ? 1 : 0, 4, 4, &twin.raster, 0, again ? 0 : 1, Copy),
                  Done);
        for (i32 y = 0; y < 5; ++y)
            EXPECT_EQ(RowOf(twin.raster, y)[0], again ? std::min(y + 1, 4) : 0) << y;
    }
}

TEST_F(CopyTo, OtherDepthsThan24AreWalkedInStepsOf4UpToTheLastWholePixelOfTheLine)
{
    Twin colors(6, 1, 24, 0);
    std::vector<u8> row(20);
    for (u8 i = 0; i < 20; ++i)
        row[i] = i;
    colors.SetRows({row});
    Twin eight(9, 1, 8, 0); // a line of 12 bytes
    Flatten(eight, 100);
    ASSERT_EQ(colors.raster.CopyTo(1, 0, 5, 1, &eight.raster, 0, 0, Copy), Done);
    EXPECT_EQ(RowOf(eight.raster, 0),
              (std::vector<u8>{3, 4, 5, 100, 6, 7, 8, 100, 9, 10, 11, 100}));
    // And back, from its second pixel on.
    ASSERT_EQ(eight.raster.CopyTo(1, 0, 9, 1, &colors.raster, 0, 0, Copy), Done);
    EXPECT_EQ(RowOf(colors.raster, 0), (std::vector<u8>{6,  7,  8,  9,  10, 11, 6,  7,  8,  9,
                                                        10, 11, 12, 13, 14, 15, 16, 17, 18, 19}));
    // From the third pixel of five onward nothing is whole; a 16-bit line of 5 pixels has 12 bytes.
    Twin sixteen(5, 1, 16, 0);
    Flatten(sixteen, 200);
    Flatten(eight, 100);
    Flatten(colors, 50);
    ASSERT_EQ(colors.raster.CopyTo(0, 0, 5, 1, &sixteen.raster, 3, 0, Copy), Done);
    EXPECT_EQ(RowOf(sixteen.raster, 0), std::vector<u8>(12, 200));
    ASSERT_EQ(sixteen.raster.CopyTo(2, 0, 3, 1, &colors.raster, 5, 0, Copy), Done);
    EXPECT_EQ(PixelOf(colors.raster, 5, 0), (Bytes{200, 200, 200}));
    EXPECT_EQ(PixelOf(colors.raster, 4, 0), (Bytes{50, 50, 50}));
}

TEST_F(CopyTo, Byte3Of32BitsIsDroppedOnTheWayOutAndLeftAloneOnTheWayIn)
{
    Twin plain(2, 1, 24, 0);
    Twin deep(2, 1, 32, 0);
    deep.SetRows({{1, 2, 3, 4, 5, 6, 7, 8}});
    Flatten(plain, 100);
    ASSERT_EQ(deep.raster.CopyTo(0, 0, 2, 1, &plain.raster, 0, 0, Copy), Done);
    EXPECT_EQ(PixelOf(plain.raster, 0, 0), (Bytes{1, 2, 3}));
    EXPECT_EQ(PixelOf(plain.raster, 1, 0), (Bytes{5, 6, 7}));
    Flatten(plain, 100);
    ASSERT_EQ(plain.raster.CopyTo(0, 0, 2, 1, &deep.raster, 0, 0, Copy), Done);
    EXPECT_EQ(RowOf(deep.raster, 0), (std::vector<u8>{100, 100, 100, 4, 100, 100, 100, 8}));
}

TEST_F(CopyTo, ALostLineEndsTheWorkWith0)
{
    for (const bool ofSource : {false, true}) {
        Twin source(4, 3, 24, 0);
        Twin target(4, 3, 24, 0);
        Flatten(source, 7);
        Flatten(target, 100);
        AddLostLines(ofSource ? source : target, 1);
        EXPECT_EQ(source.raster.CopyTo(0, ofSource ? 1 : 0, 4, 3, &target.raster, 0,
                                       ofSource ? 0 : 1, Copy),
                  NothingDone);
        for (i32 y = 0; y < 3; ++y)
            EXPECT_EQ(RowOf(target.raster, y)[0], y == (ofSource ? 2 : 0) ? 100 : 7) << y;
    }
}
