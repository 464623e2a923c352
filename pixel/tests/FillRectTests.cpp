// Filled rectangles: the formula written out, its edges, and what a translucent colour does.

#include "AreaSweep.h"
#include "PlainFill.h"

namespace
{

using FillRectTest = PagingTest;

i32 Fill(Raster& raster, u32 color, PixelRect area)
{
    return raster.FillRect(color, area);
}

} // namespace

TEST_F(FillRectTest, EqualsItsFormulaEverywhere)
{
    SweepAreas(Fill, PlainFillRect, 1);
}

TEST_F(FillRectTest, EqualsItsFormulaAtTheEndsOfTheNumbers)
{
    SweepExtremeAreas(Fill, PlainFillRect);
}

TEST_F(FillRectTest, EqualsItsFormulaWhileLinesGoToFiles)
{
    SweepPagedAreas(Fill, PlainFillRect, 2);
}

TEST_F(FillRectTest, StopsAtALineThatDoesNotCome)
{
    SweepRefusedAreas(Fill, PlainFillRect, 3);
    ExpectLostLineEndsTheWork(Fill, PlainFillRect);
}

TEST_F(FillRectTest, EqualsItsFormulaForEveryAlphaAndEveryOldByte)
{
    // A column is an old byte, a row an alpha.
    Rows olds(256, std::vector<u8>(3 * 256));
    for (std::vector<u8>& row : olds)
        for (u32 i = 0; i < 3 * 256; ++i)
            row[i] = static_cast<u8>(i / 3);
    Places places(4);
    for (const u32 color : {0x00FF0100u, 0x7F80FE00u, 0xFF00FD00u, places.Word() & ~255u}) {
        Twin twin(256, 256, 24, 0);
        twin.SetRows(olds);
        for (i32 alpha = 0; alpha < 256; ++alpha)
            RunArea(twin, Fill, PlainFillRect, color | static_cast<u32>(alpha),
                    {0, alpha, 255, alpha});
        ExpectSame({&twin});
    }
}

TEST_F(FillRectTest, AlphaZeroStillMovesEachByteBy1Of256TowardTheColour)
{
    // (255 * old + c) >> 8 for the bytes 255, 0 and 100 of the colour.
    struct Case {
        u8 old;
        Bytes now;
    };
    const Case cases[] = {{0, {0, 0, 0}},        {1, {1, 0, 1}},         {2, {2, 1, 2}},
                          {100, {100, 99, 100}}, {101, {101, 100, 100}}, {200, {200, 199, 199}},
                          {255, {255, 254, 254}}};
    for (const Case& expected : cases) {
        Twin twin(2, 2, 24, 0);
        Flatten(twin, expected.old);
        EXPECT_EQ(twin.raster.FillRect(0x6400FF00, {0, 0, 1, 1}), Done);
        EXPECT_EQ(PixelOf(twin.raster, 1, 1), expected.now) << "old " << int{expected.old};
    }
}

TEST_F(FillRectTest, TheTintOfASelectionWeighs113Of256)
{
    Twin twin(4, 4, 24, 0);
    Flatten(twin, 100);
    EXPECT_EQ(twin.raster.FillRect(0x0090FF70, {1, 1, 2, 2}), Done);
    // (143 * 100 + 113 * c) >> 8 for 255, 144 and 0.
    EXPECT_EQ(PixelOf(twin.raster, 1, 1), (Bytes{168, 119, 55}));
    EXPECT_EQ(Changed(twin.raster, 100), (Picture{"....", ".##.", ".##.", "...."}));
}

TEST_F(FillRectTest, AnOpaqueColourIsStoredAsBlueGreenRed)
{
    Twin twin(2, 2, 24, 9);
    EXPECT_EQ(twin.raster.FillRect(0x112233FF, {0, 0, 1, 1}), Done);
    EXPECT_EQ(PixelOf(twin.raster, 1, 0), (Bytes{0x33, 0x22, 0x11}));
}

TEST_F(FillRectTest, At32BitsTheBytesAreAlphaRedGreenBlueWhateverTheAlpha)
{
    for (const u32 alpha : {0u, 0x44u, 255u}) {
        Twin twin(2, 2, 32, 9);
        EXPECT_EQ(twin.raster.FillRect(0x11223300 | alpha, {1, 0, 1, 1}), Done);
        EXPECT_EQ(PixelOf(twin.raster, 1, 1), (Bytes{alpha, 0x11, 0x22, 0x33}));
        u32 color = 0;
        EXPECT_EQ(twin.raster.GetPixel(1, 1, &color), Done);
        EXPECT_EQ(color, 0x22110033u | (alpha << 8)); // not what was filled: the orders differ
    }
}

TEST_F(FillRectTest, ARectangleThatEndsAtColumnOrRow0IsOutside)
{
    const PixelRect outside[] = {{0, 0, 0, 3},  {-2, 0, 0, 3}, {0, 0, 3, 0},
                                 {0, -2, 3, 0}, {0, 0, 0, 0},  {-3, -3, -1, -1}};
    for (const u32 depth : {24u, 32u})
        for (const PixelRect& area : outside) {
            Twin twin(4, 4, depth, 0);
            Flatten(twin, 100);
            EXPECT_EQ(twin.raster.FillRect(0x112233FF, area), Done);
            EXPECT_EQ(Changed(twin.raster, 100), Picture(4, "....")) << Tell(area);
        }
}

TEST_F(FillRectTest, ARectangleThatBeginsAtTheWidthOrHeightIsOutside)
{
    for (const PixelRect& area : {PixelRect{4, 0, 5, 3}, PixelRect{0, 4, 3, 9}}) {
        Twin twin(4, 4, 24, 0);
        Flatten(twin, 100);
        EXPECT_EQ(twin.raster.FillRect(0x112233FF, area), Done);
        EXPECT_EQ(Changed(twin.raster, 100), Picture(4, "...."));
    }
}

TEST_F(FillRectTest, AnInvertedRectangleIsOrderedFirst)
{
    Twin twin(4, 4, 24, 0);
    Flatten(twin, 100);
    EXPECT_EQ(twin.raster.FillRect(0x112233FF, {2, 9, -5, 2}), Done);
    EXPECT_EQ(Changed(twin.raster, 100), (Picture{"....", "....", "###.", "###."}));
}

TEST_F(FillRectTest, PaddingBehindTheLastColumnStays)
{
    for (const u32 color : {0x112233FFu, 0x11223380u}) {
        Twin twin(5, 2, 24, 0); // 15 bytes of pixels and one of padding
        Flatten(twin, 100);
        EXPECT_EQ(twin.raster.FillRect(color, {0, 0, 99, 99}), Done);
        for (const std::vector<u8>& row : RowsOf(twin.raster))
            EXPECT_EQ(row[15], 100);
    }
}

TEST_F(FillRectTest, ARefusedDepthFailsAlsoWhereNothingWouldBeFilled)
{
    for (const u32 depth : {8u, 16u}) {
        Twin twin(4, 4, depth, 7);
        EXPECT_EQ(twin.raster.FillRect(0x112233FF, {0, 0, 3, 3}), Failed);
        EXPECT_EQ(twin.raster.FillRect(0x112233FF, {9, 9, 12, 12}), Failed);
        ExpectSame({&twin});
    }
    Raster never;
    EXPECT_EQ(never.FillRect(0x112233FF, {0, 0, 3, 3}), Failed);
}
