// Copies through a mask: the formula written out, the cut that ends one pixel before the edge,
// masks that are too small, lines that do not come.

#include "CopySweep.h"

namespace
{

using CopyMaskedTest = PagingTest;

constexpr i32 Smallest = static_cast<i32>(0x80000000);
constexpr i32 Largest = 0x7FFFFFFF;

struct Window {
    i32 x;
    i32 y;
};

void Copy(Twin& source, Twin& target, Twin& mask, const CopyRun& run, Window window)
{
    EXPECT_EQ(source.raster.CopyMasked(run.x, run.y, run.width, run.height, &target.raster,
                                       run.targetX, run.targetY, &mask.raster, window.x, window.y),
              PlainCopyMasked(source.plain, run, &target.plain, &mask.plain, window.x, window.y))
        << Tell(source.plain) << " to " << Tell(target.plain) << " through " << Tell(mask.plain)
        << ": " << Tell(run) << " from (" << window.x << ", " << window.y << ")";
}

/// Mostly one where the mask holds what is copied.
Window SomeWindow(Places& places, const PlainRaster& mask)
{
    const auto offset = [&places](u32 size) {
        const u32 draw = places.Below(8);
        return draw < 4    ? 0
               : draw == 4 ? places.Anywhere(size)
                           : static_cast<i32>(places.Below(size / 2 + 4)) - 4;
    };
    return {offset(mask.width), offset(mask.height)};
}

/// The byte that comes out of one pixel.
u32 Copied(u8 old, u8 from, u8 m)
{
    Twin source(2, 2, 24, 0);
    Twin target(2, 2, 24, 0);
    Twin mask(2, 2, 8, 0);
    Flatten(source, from);
    Flatten(target, old);
    Flatten(mask, m);
    EXPECT_EQ(source.raster.CopyMasked(0, 0, 1, 1, &target.raster, 0, 0, &mask.raster, 0, 0), Done);
    return PixelOf(target.raster, 0, 0)[0];
}

/// Which pixels of a 6 x 5 target change; source 6 x 5, mask 20 x 20 and full.
Picture Drawn(const CopyRun& run)
{
    Twin source(6, 5, 24, 0);
    Twin target(6, 5, 24, 0);
    Twin mask(20, 20, 8, 0);
    Flatten(source, 7);
    Flatten(target, 100);
    Flatten(mask, 255);
    EXPECT_EQ(source.raster.CopyMasked(run.x, run.y, run.width, run.height, &target.raster,
                                       run.targetX, run.targetY, &mask.raster, 0, 0),
              Done);
    return Changed(target.raster, 100);
}

} // namespace

TEST_F(CopyMaskedTest, EqualsItsFormulaEverywhere)
{
    Places places(41);
    for (const u32 width : SweptWidths())
        for (int turn = 0; turn < 16; ++turn) {
            const u32 other = places.Below(2) == 0 ? width : 1 + places.Below(40);
            Twin source(width, 1 + places.Below(6), 24, places.Word());
            Twin target(other, 1 + places.Below(6), 24, places.Word());
            Twin mask(std::min(width, other) + places.Below(5), 4 + places.Below(6), 8,
                      places.Word());
            for (int call = 0; call < 3; ++call)
                Copy(source, target, mask, SomeRun(places, source.plain, target.plain),
                     SomeWindow(places, mask.plain));
            ExpectSame({&source, &target, &mask});
            ASSERT_FALSE(HasFailure());
        }
}

TEST_F(CopyMaskedTest, EveryOtherCombinationOfDepthsFailsAndChangesNothing)
{
    for (const u32 depth : AllDepths)
        for (const u32 targetDepth : AllDepths)
            for (const u32 maskDepth : AllDepths) {
                Twin source(4, 3, depth, 1);
                Twin target(4, 3, targetDepth, 2);
                Twin mask(4, 3, maskDepth, 3);
                Copy(source, target, mask, {0, 0, 3, 2, 1, 1}, {0, 0});
                Copy(source, target, mask, {9, 9, 3, 2, 1, 1}, {0, 0});
                ExpectSame({&source, &target, &mask});
                ASSERT_FALSE(HasFailure());
            }
    Raster never;
    Twin twin(4, 3, 24, 1);
    Twin mask(4, 3, 8, 1);
    EXPECT_EQ(never.CopyMasked(0, 0, 1, 1, &twin.raster, 0, 0, &mask.raster, 0, 0), Failed);
    EXPECT_EQ(twin.raster.CopyMasked(0, 0, 1, 1, &never, 0, 0, &mask.raster, 0, 0), Failed);
    EXPECT_EQ(twin.raster.CopyMasked(0, 0, 1, 1, &twin.raster, 0, 0, &never, 0, 0), Failed);
    ExpectSame({&twin, &mask});
}

TEST_F(CopyMaskedTest, EqualsItsFormulaForEveryMaskValueAndEverySourceByte)
{
    // A column is a value of the mask, a row a byte of the source.
    Rows values(256, std::vector<u8>(256));
    Rows bytes(256, std::vector<u8>(3 * 256));
    for (u32 y = 0; y < 256; ++y) {
        for (u32 x = 0; x < 256; ++x)
            values[y][x] = static_cast<u8>(x);
        bytes[y].assign(3 * 256, static_cast<u8>(y));
    }
    for (const int old : {-1, 0, 255}) {
        // The run must not be cut: it would lose its last column and row.
        Twin source(256, 256, 24, 0);
        Twin target(256, 256, 24, 99);
        Twin mask(256, 256, 8, 0);
        source.SetRows(bytes);
        mask.SetRows(values);
        if (old >= 0)
            Flatten(target, static_cast<u8>(old));
        Copy(source, target, mask, {0, 0, 256, 256, 0, 0}, {0, 0});
        ExpectSame({&source, &target, &mask});
    }
}

TEST_F(CopyMaskedTest, EqualsItsFormulaAtTheEndsOfTheNumbers)
{
    constexpr i32 Numbers[] = {Smallest, -1, 1, Largest};
    Places places(42);
    Twin mask(3, 3, 8, 7);
    for (const i32 x : Numbers)
        for (const i32 targetX : Numbers) {
            Twin source(4, 3, 24, 5);
            Twin target(3, 3, 24, 6);
            for (const i32 y : Numbers)
                for (const i32 targetY : Numbers)
                    for (const i32 width : Numbers)
                        for (const i32 height : Numbers) {
                            const CopyRun run = {x, y, width, height, targetX, targetY};
                            Copy(source, target, mask, run, {0, 0});
                            Copy(source, target, mask, run,
                                 {Numbers[places.Below(4)], Numbers[places.Below(4)]});
                        }
            ExpectSame({&source, &target, &mask});
            ASSERT_FALSE(HasFailure()) << x << ' ' << targetX;
        }
}

TEST_F(CopyMaskedTest, EqualsItsFormulaWhileLinesGoToFiles)
{
    Places places(43);
    for (const u32 width : {2u, 5u, 12u})
        for (unsigned pages = 1; pages < 8; ++pages)
            for (int turn = 0; turn < 4; ++turn) {
                const auto storage = [pages](unsigned bit) {
                    return (pages & bit) != 0 ? Storage::Paging : Storage::Resident;
                };
                Twin source(width, 1 + places.Below(6), 24, places.Word(), storage(1));
                Twin target(width, 1 + places.Below(6), 24, places.Word(), storage(2));
                Twin mask(width, 1 + places.Below(6), 8, places.Word(), storage(4));
                {
                    const WithShortMemory memory;
                    Copy(source, target, mask, {0, 0, 99, 99, 0, 0}, {0, 0});
                    Copy(source, target, mask,
                         {0, 0, static_cast<i32>(width),
                          static_cast<i32>(std::min(
                              {source.plain.height, target.plain.height, mask.plain.height})),
                          0, 0},
                         {0, -1});
                    Copy(source, target, mask, SomeRun(places, source.plain, target.plain),
                         SomeWindow(places, mask.plain));
                }
                ExpectSame({&source, &target, &mask});
                ASSERT_FALSE(HasFailure());
            }
}

TEST_F(CopyMaskedTest, StopsAtALineThatDoesNotComeAndLeavesTheOtherRowsLocked)
{
    // Line 0 of each takes no part: it sits in its file and shows what was left locked.
    for (unsigned which = 1; which < 8; ++which)
        for (u32 line = 1; line < 6; ++line)
            for (const CopyRun& run : {CopyRun{0, 1, 14, 5, 0, 1}, CopyRun{1, 2, 3, 3, 4, 1}}) {
                Twin source(14, 6, 24, line + 1, Storage::Paging);
                Twin target(14, 6, 24, line + 2, Storage::Paging);
                Twin mask(14, 6, 8, line + 3, Storage::Paging);
                for (Twin* twin : {&source, &target, &mask})
                    twin->PageOut(0);
                if ((which & 1) != 0)
                    RefuseBesideLine0(source, line);
                if ((which & 2) != 0)
                    RefuseBesideLine0(target, line);
                if ((which & 4) != 0)
                    RefuseBesideLine0(mask, line);
                Copy(source, target, mask, run, {0, 1});
                ExpectSame({&source, &target, &mask});
                ASSERT_FALSE(HasFailure()) << Tell(run) << " line " << line << " of " << which;
            }
}

TEST_F(CopyMaskedTest, NullRastersAreBadArgumentsAtEveryDepth)
{
    for (const u32 depth : AllDepths) {
        Twin twin(4, 3, depth, 1);
        EXPECT_EQ(twin.raster.CopyMasked(0, 0, 1, 1, nullptr, 0, 0, &twin.raster, 0, 0),
                  BadArgument);
        EXPECT_EQ(twin.raster.CopyMasked(9, 9, 1, 1, &twin.raster, 0, 0, nullptr, 0, 0),
                  BadArgument);
        ExpectSame({&twin});
    }
}

TEST_F(CopyMaskedTest, MaskValue255CopiesExactlyAndValue0IsNotQuiteTheOldByte)
{
    EXPECT_EQ(Copied(0, 200, 255), 200u);
    EXPECT_EQ(Copied(255, 1, 255), 1u);
    // (255 * old + source) >> 8
    EXPECT_EQ(Copied(100, 0, 0), 99u);
    EXPECT_EQ(Copied(100, 99, 0), 99u);
    EXPECT_EQ(Copied(100, 100, 0), 100u);
    EXPECT_EQ(Copied(255, 0, 0), 254u);
    EXPECT_EQ(Copied(1, 255, 0), 1u);
    // (100 * (127 ^ 255) + 200 * 128) >> 8
    EXPECT_EQ(Copied(100, 200, 127), 150u);
}

TEST_F(CopyMaskedTest, ARunThatIsCutEndsOnePixelBeforeTheEdge)
{
    // It fits, to the last pixel.
    EXPECT_EQ(Drawn({0, 0, 6, 5, 0, 0}), Picture(5, "######"));
    EXPECT_EQ(Drawn({1, 1, 5, 4, 0, 0}),
              (Picture{"#####.", "#####.", "#####.", "#####.", "......"}));
    // One more, at the source and at the target.
    EXPECT_EQ(Drawn({1, 0, 6, 2, 0, 0}),
              (Picture{"####..", "####..", "......", "......", "......"}));
    EXPECT_EQ(Drawn({0, 0, 6, 2, 1, 0}),
              (Picture{".####.", ".####.", "......", "......", "......"}));
    EXPECT_EQ(Drawn({0, 1, 2, 5, 0, 0}),
              (Picture{"##....", "##....", "##....", "......", "......"}));
    EXPECT_EQ(Drawn({0, 0, 2, 5, 0, 1}),
              (Picture{"......", "##....", "##....", "##....", "......"}));
    // The last column alone.
    EXPECT_EQ(Drawn({5, 0, 1, 1, 0, 0})[0], "#.....");
    EXPECT_EQ(Drawn({5, 0, 2, 1, 0, 0})[0], "......");
}

TEST_F(CopyMaskedTest, ANegativeSourcePositionShiftsTheTargetAndANegativeTargetShortensTheRun)
{
    EXPECT_EQ(Drawn({-2, -1, 3, 2, 1, 1}),
              (Picture{"......", "......", "...###", "...###", "......"}));
    EXPECT_EQ(Drawn({1, 1, 4, 3, -2, -1}),
              (Picture{"##....", "##....", "......", "......", "......"}));
}

TEST_F(CopyMaskedTest, AMaskIsNotShiftedAndMustHoldTheWholeRun)
{
    Twin source(6, 5, 24, 1);
    Twin target(6, 5, 24, 2);
    Twin mask(4, 3, 8, 3);
    const auto copy = [&](const CopyRun& run, i32 maskX, i32 maskY) {
        return source.raster.CopyMasked(run.x, run.y, run.width, run.height, &target.raster,
                                        run.targetX, run.targetY, &mask.raster, maskX, maskY);
    };
    EXPECT_EQ(copy({0, 0, 5, 3, 0, 0}, 0, 0), Failed);
    EXPECT_EQ(copy({0, 0, 4, 4, 0, 0}, 0, 0), Failed);
    EXPECT_EQ(copy({0, 0, 4, 3, 0, 0}, 1, 0), Failed);
    EXPECT_EQ(copy({0, 0, 4, 3, 0, 0}, 0, 1), Failed);
    // Nothing is left of the run; the mask is asked about all the same.
    EXPECT_EQ(copy({0, 0, 0, 0, 0, 0}, 5, 0), Failed);
    EXPECT_EQ(copy({0, 0, 0, 0, 0, 0}, 0, 4), Failed);
    EXPECT_EQ(copy({0, 0, 0, 0, 0, 0}, 4, 3), Done);
    EXPECT_EQ(copy({0, 0, -5, 1, 0, 0}, 9, 0), Done);
    // Outside either raster before anything is cut: nobody asks about the mask.
    EXPECT_EQ(copy({6, 0, 9, 9, 0, 0}, 9, 9), Done);
    EXPECT_EQ(copy({0, 5, 9, 9, 0, 0}, 9, 9), Done);
    EXPECT_EQ(copy({0, 0, 9, 9, 6, 0}, 9, 9), Done);
    EXPECT_EQ(copy({0, 0, 9, 9, 0, 5}, 9, 9), Done);
    ExpectSame({&source, &target, &mask});
    // Cut to 4 x 3 first, and then it fits.
    EXPECT_EQ(copy({1, 1, 9, 9, 0, 0}, 0, 0), Done);
    EXPECT_EQ(PlainCopyMasked(source.plain, {1, 1, 4, 3, 0, 0}, &target.plain, &mask.plain, 0, 0),
              Done);
    ExpectSame({&source, &target, &mask});
}

TEST_F(CopyMaskedTest, LeftOfTheMaskPixelsStayAndANegativeMaskRowCountsFromTheEnd)
{
    Twin source(4, 3, 24, 0);
    Twin target(4, 3, 24, 0);
    Twin mask(4, 3, 8, 0);
    Flatten(source, 7);
    Flatten(target, 100);
    mask.SetRows({{255, 255, 0, 0}, {0, 0, 0, 0}, {0, 255, 0, 0}});
    // Weight 0 would not leave 100 as it is: (255 * 100 + 7) >> 8 is 99.
    EXPECT_EQ(source.raster.CopyMasked(0, 0, 3, 1, &target.raster, 0, 0, &mask.raster, -2, 0),
              Done);
    EXPECT_EQ(PixelOf(target.raster, 0, 0), (Bytes{100, 100, 100}));
    EXPECT_EQ(PixelOf(target.raster, 1, 0), (Bytes{100, 100, 100}));
    EXPECT_EQ(PixelOf(target.raster, 2, 0), (Bytes{7, 7, 7}));
    // Rows -1 and 0.
    Flatten(target, 100);
    EXPECT_EQ(source.raster.CopyMasked(0, 0, 2, 2, &target.raster, 0, 0, &mask.raster, 0, -1),
              Done);
    EXPECT_EQ(PixelOf(target.raster, 0, 0), (Bytes{99, 99, 99}));
    EXPECT_EQ(PixelOf(target.raster, 1, 0), (Bytes{7, 7, 7}));
    EXPECT_EQ(PixelOf(target.raster, 0, 1), (Bytes{7, 7, 7}));
    EXPECT_EQ(source.raster.CopyMasked(0, 0, 2, 2, &target.raster, 0, 0, &mask.raster, 0, -4),
              Failed);
}

TEST_F(CopyMaskedTest, SourceAndTargetMayBeOne)
{
    Places places(44);
    for (const u32 width : {2u, 5u, 9u, 17u, 33u, 70u})
        for (int turn = 0; turn < 12; ++turn) {
            Twin twin(width, 1 + places.Below(6), 24, places.Word());
            Twin mask(width, 6, 8, places.Word());
            CopyRun run = SomeRun(places, twin.plain, twin.plain);
            if (turn % 2 == 0)
                run.targetY = run.y;
            Copy(twin, twin, mask, run, {0, 0});
            ExpectSame({&twin, &mask});
            ASSERT_FALSE(HasFailure()) << Tell(twin.plain) << ": " << Tell(run);
        }
}

TEST_F(CopyMaskedTest, ALostLineEndsTheWorkWith0)
{
    for (const int lost : {0, 1, 2}) {
        Twin source(4, 3, 24, 0);
        Twin target(4, 3, 24, 0);
        Twin mask(4, 3, 8, 0);
        Flatten(source, 7);
        Flatten(target, 100);
        Flatten(mask, 255);
        Twin* const twins[] = {&source, &target, &mask};
        AddLostLines(*twins[lost], 1);
        // The lost line meets row 2 of the run.
        EXPECT_EQ(source.raster.CopyMasked(0, lost == 0 ? 1 : 0, 4, 3, &target.raster, 0,
                                           lost == 1 ? 1 : 0, &mask.raster, 0, lost == 2 ? 1 : 0),
                  NothingDone);
        for (i32 y = 0; y < 3; ++y)
            EXPECT_EQ(RowOf(target.raster, y)[0], y == (lost == 1 ? 0 : 2) ? 100 : 7)
                << "row " << y << ", lost of " << lost;
    }
}
