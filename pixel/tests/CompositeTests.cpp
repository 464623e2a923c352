// Pictures laid over others by their own alpha: the formula written out, the walk one pixel ahead
// onto 32 bits, lines that do not come.

#include "CopySweep.h"

namespace
{

using CompositeToTest = PagingTest;

const Copying Composite = {[](Raster& source, const CopyRun& run, Raster& target, u32) {
                               return source.CompositeTo(run.x, run.y, run.width, run.height,
                                                         &target, run.targetX, run.targetY);
                           },
                           [](PlainRaster& source, const CopyRun& run, PlainRaster& target, u32) {
                               return PlainCompositeTo(source, run, &target);
                           }};

/// The byte that comes out of one pixel.
u32 Laid(u8 old, u8 from, u8 alpha)
{
    Twin source(1, 1, 32, 0);
    Twin target(1, 1, 24, 0);
    source.SetRows({{from, from, from, alpha}});
    Flatten(target, old);
    EXPECT_EQ(source.raster.CompositeTo(0, 0, 1, 1, &target.raster, 0, 0), Done);
    return PixelOf(target.raster, 0, 0)[0];
}

/// Which pixels of a 6 x 3 target change under an opaque source of 6 x 3.
Picture Drawn(u32 targetDepth, const CopyRun& run)
{
    Twin source(6, 3, 32, 0);
    Twin target(6, 3, targetDepth, 0);
    Flatten(source, 255);
    Flatten(target, 100);
    EXPECT_EQ(source.raster.CompositeTo(run.x, run.y, run.width, run.height, &target.raster,
                                        run.targetX, run.targetY),
              Done);
    return Changed(target.raster, 100);
}

} // namespace

TEST_F(CompositeToTest, EqualsItsFormulaEverywhere)
{
    SweepCopies(Composite, 51);
}

TEST_F(CompositeToTest, EqualsItsFormulaUnderItself)
{
    SweepCopiesUnderItself(Composite, 52);
}

TEST_F(CompositeToTest, EqualsItsFormulaAtTheEndsOfTheNumbers)
{
    SweepExtremeCopies(Composite, 32, 24);
    SweepExtremeCopies(Composite, 32, 32);
}

TEST_F(CompositeToTest, EqualsItsFormulaWhileLinesGoToFiles)
{
    SweepPagedCopies(Composite, 53);
}

TEST_F(CompositeToTest, StopsAtALineThatDoesNotCome)
{
    SweepRefusedCopies(Composite);
}

TEST_F(CompositeToTest, EqualsItsFormulaForEveryAlphaAndEverySourceByte)
{
    // A column is an alpha, a row a byte of the source.
    Rows rows(256, std::vector<u8>(4 * 257));
    for (u32 y = 0; y < 256; ++y)
        for (u32 x = 0; x < 257; ++x) {
            u8* const pixel = rows[y].data() + 4 * static_cast<size_t>(x);
            pixel[0] = pixel[1] = pixel[2] = static_cast<u8>(y);
            pixel[3] = static_cast<u8>(x);
        }
    for (const u32 depth : {24u, 32u})
        for (const int old : {-1, 0, 255}) {
            Twin source(257, 256, 32, 0);
            Twin target(257, 256, depth, 99);
            source.SetRows(rows);
            if (old >= 0)
                Flatten(target, static_cast<u8>(old));
            RunCopy(source, target, Composite, {0, 0, 257, 256, 0, 0});
            ExpectSame({&source, &target});
        }
}

TEST_F(CompositeToTest, Alpha255CopiesExactlyAndAlpha0IsNotQuiteTheOldByte)
{
    EXPECT_EQ(Laid(0, 200, 255), 200u);
    EXPECT_EQ(Laid(255, 1, 255), 1u);
    // (source + 255 * old) >> 8
    EXPECT_EQ(Laid(100, 0, 0), 99u);
    EXPECT_EQ(Laid(100, 100, 0), 100u);
    EXPECT_EQ(Laid(255, 0, 0), 254u);
    EXPECT_EQ(Laid(1, 255, 0), 1u);
    // (128 * 200 + 128 * 100) >> 8
    EXPECT_EQ(Laid(100, 200, 127), 150u);
}

TEST_F(CompositeToTest, Onto24BitsARunIsCutAsInACopy)
{
    EXPECT_EQ(Drawn(24, {0, 0, 6, 3, 0, 0}), Picture(3, "######"));
    EXPECT_EQ(Drawn(24, {0, 0, 99, 99, 2, 1}), (Picture{"......", "..####", "..####"}));
    EXPECT_EQ(Drawn(24, {-2, -1, 2, 1, 1, 1}), (Picture{"......", "......", "...##."}));
    EXPECT_EQ(Drawn(24, {0, 0, 4, 3, -1, -2}), (Picture{"###...", "......", "......"}));
    EXPECT_EQ(Drawn(24, {0, 0, 0, 3, 0, 0}), Picture(3, "......"));
    EXPECT_EQ(Drawn(24, {0, 0, 3, -1, 0, 0}), Picture(3, "......"));
}

TEST_F(CompositeToTest, Onto32BitsBothRowsAreWalkedOnePixelAheadUpToTheLastOfEither)
{
    EXPECT_EQ(Drawn(32, {0, 0, 2, 1, 0, 0}), (Picture{".##...", "......", "......"}));
    EXPECT_EQ(Drawn(32, {0, 0, 6, 3, 0, 0}), Picture(3, ".#####"));
    EXPECT_EQ(Drawn(32, {3, 0, 3, 1, 0, 0}), (Picture{".##...", "......", "......"}));
    EXPECT_EQ(Drawn(32, {0, 0, 1, 1, 5, 0}), Picture(3, "......"));
    EXPECT_EQ(Drawn(32, {5, 0, 1, 1, 0, 0}), Picture(3, "......"));
    // Pixel 1 of the source with its own alpha; byte 3 of the target stays.
    Twin source(3, 1, 32, 0);
    Twin target(3, 1, 32, 0);
    source.SetRows({{1, 1, 1, 255, 10, 20, 30, 255, 3, 3, 3, 255}});
    Flatten(target, 100);
    EXPECT_EQ(source.raster.CompositeTo(0, 0, 1, 1, &target.raster, 0, 0), Done);
    EXPECT_EQ(PixelOf(target.raster, 0, 0), (Bytes{100, 100, 100, 100}));
    EXPECT_EQ(PixelOf(target.raster, 1, 0), (Bytes{10, 20, 30, 100}));
    EXPECT_EQ(PixelOf(target.raster, 2, 0), (Bytes{100, 100, 100, 100}));
}

TEST_F(CompositeToTest, ANullTargetIsABadArgumentAndRefusedDepthsFailEvenOutside)
{
    for (const u32 depth : AllDepths) {
        Twin source(4, 3, depth, 1);
        EXPECT_EQ(source.raster.CompositeTo(0, 0, 1, 1, nullptr, 0, 0), BadArgument);
        for (const u32 targetDepth : AllDepths) {
            Twin target(4, 3, targetDepth, 2);
            const bool fits = depth == 32 && targetDepth >= 24;
            EXPECT_EQ(source.raster.CompositeTo(9, 9, 1, 1, &target.raster, 0, 0),
                      fits ? Done : Failed);
            ExpectSame({&source, &target});
        }
    }
    Raster never;
    Twin twin(4, 3, 32, 1);
    EXPECT_EQ(never.CompositeTo(0, 0, 1, 1, &twin.raster, 0, 0), Failed);
    EXPECT_EQ(twin.raster.CompositeTo(0, 0, 1, 1, &never, 0, 0), Failed);
    ExpectSame({&twin});
}

TEST_F(CompositeToTest, ALostLineEndsTheWorkWith0)
{
    for (const bool ofSource : {false, true}) {
        Twin source(4, 3, 32, 0);
        Twin target(4, 3, 24, 0);
        Flatten(source, 255);
        Flatten(target, 100);
        AddLostLines(ofSource ? source : target, 1);
        EXPECT_EQ(source.raster.CompositeTo(0, ofSource ? 1 : 0, 4, 3, &target.raster, 0,
                                            ofSource ? 0 : 1),
                  NothingDone);
        for (i32 y = 0; y < 3; ++y)
            EXPECT_EQ(RowOf(target.raster, y)[0], y == (ofSource ? 2 : 0) ? 100 : 255) << y;
    }
}
