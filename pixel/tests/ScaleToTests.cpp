#include "PlainScale.h"
#include "Rasters.h"

namespace
{

using ScaleTo = PagingTest;

constexpr u32 Background = 0x11223344;

void Check(Twin& source, Twin& target, u32 background, u32 fit, u32 box)
{
    SCOPED_TRACE(::testing::Message()
                 << source.plain.width << " x " << source.plain.height << " to "
                 << target.plain.width << " x " << target.plain.height << " background "
                 << background << " fit " << fit << " box " << box);
    EXPECT_EQ(source.raster.ScaleTo(&target.raster, background, fit, box),
              PlainScaleTo(source.plain, &target.plain, background, fit, box));
    ExpectSame({&source, &target});
}

/// Where the picture lies: the rectangle of all pixels that are not background.
struct Extent {
    u32 left, top, right, bottom;
    bool operator==(const Extent&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const Extent& extent)
    {
        return out << extent.left << " " << extent.top << " " << extent.right << " "
                   << extent.bottom;
    }
};

Extent Centred(u32 width, u32 height, u32 targetWidth, u32 targetHeight, u32 fit, u32 box)
{
    Twin source(width, height, 24, 1);
    Twin target(targetWidth, targetHeight, 24, 2);
    source.SetRows(Rows(height, std::vector<u8>(source.plain.stride, 0xC3)));
    EXPECT_EQ(source.raster.ScaleTo(&target.raster, 0x000000FF, fit, box), 1);
    const Rows rows = RowsOf(target.raster);
    Extent extent = {targetWidth, targetHeight, 0, 0};
    for (u32 y = 0; y < targetHeight; ++y)
        for (u32 x = 0; x < targetWidth; ++x)
            if (rows[y][x * 3] != 0) {
                EXPECT_EQ(rows[y][x * 3], 0xC3);
                extent = {std::min(extent.left, x), std::min(extent.top, y),
                          std::max(extent.right, x), std::max(extent.bottom, y)};
            }
    return extent;
}

} // namespace

TEST_F(ScaleTo, IsItsFormulaForEveryWidthWithAndWithoutFitAndBox)
{
    for (u32 width = 1; width <= 33; ++width)
        for (const u32 targetWidth : {1u, 2u, 5u, 16u, 33u})
            for (const u32 targetHeight : {1u, 7u}) {
                const u32 height = 1 + (width * 7 + targetWidth) % 9;
                for (u32 flags = 0; flags < 4; ++flags) {
                    Twin source(width, height, 24, width);
                    Twin target(targetWidth, targetHeight, 24, flags);
                    Check(source, target, Background + flags, flags & 1, flags >> 1);
                    if (HasFailure())
                        return;
                }
            }
}

TEST_F(ScaleTo, IsItsFormulaForLargeRasters)
{
    for (u32 flags = 0; flags < 4; ++flags) {
        Twin source(257, 65, 24, 1);
        Twin narrower(100, 33, 24, 2);
        Twin wider(1000, 90, 24, 3);
        Check(source, narrower, 0xFF, flags & 1, flags >> 1);
        Check(source, wider, 0x102030FF, flags & 1, flags >> 1);
    }
}

TEST_F(ScaleTo, IsItsFormulaAtAllDepthsThoseRefusedIncluded)
{
    for (const u32 depth : {8u, 16u, 24u, 32u})
        for (const u32 targetDepth : {8u, 16u, 24u, 32u})
            for (const u32 background : {0x11223344u, 0x112233FFu})
                for (u32 flags = 0; flags < 4; ++flags) {
                    Twin source(5, 4, depth, 1, Storage::Paging);
                    Twin target(7, 3, targetDepth, 2, Storage::Paging);
                    for (u32 line = 0; line < 3; ++line) {
                        source.PageOut(line);
                        target.PageOut(line);
                    }
                    Check(source, target, background, flags & 1, flags >> 1);
                }
}

TEST_F(ScaleTo, RefusedDepthsHaveTheBackgroundDrawnFirst)
{
    Twin grey(5, 4, 8, 1);
    Twin target(3, 2, 24, 2);
    Twin deep(3, 2, 32, 2);
    Twin source(5, 4, 24, 1);
    for (const u32 box : {0u, 1u}) {
        EXPECT_EQ(grey.raster.ScaleTo(&target.raster, 0x102030FF, 0, box), -1);
        EXPECT_EQ(RowOf(target.raster, 1),
                  (std::vector<u8>{0x30, 0x20, 0x10, 0x30, 0x20, 0x10, 0x30, 0x20, 0x10, 0, 0, 0}));
        EXPECT_EQ(source.raster.ScaleTo(&deep.raster, 0x102030FF, 0, box), -1);
        EXPECT_EQ(RowOf(deep.raster, 1), (std::vector<u8>{0xFF, 0x10, 0x20, 0x30, 0xFF, 0x10, 0x20,
                                                          0x30, 0xFF, 0x10, 0x20, 0x30}));
    }
}

TEST_F(ScaleTo, RefusesNoTargetItselfAndASourceThatWasNotCreated)
{
    Twin source(5, 4, 24, 1);
    Twin empty;
    for (const u32 box : {0u, 1u}) {
        EXPECT_EQ(source.raster.ScaleTo(nullptr, 0xFF, 0, box), -4);
        EXPECT_EQ(source.raster.ScaleTo(&source.raster, 0xFF, 0, box), -4);
        EXPECT_EQ(empty.raster.ScaleTo(nullptr, 0xFF, 0, box), -4);
        EXPECT_EQ(empty.raster.ScaleTo(&empty.raster, 0xFF, 0, box), -4);
        EXPECT_EQ(empty.raster.ScaleTo(&source.raster, 0xFF, 0, box), -1);
        EXPECT_EQ(source.raster.ScaleTo(&empty.raster, 0xFF, 0, box), -1);
        ExpectSame({&source});
    }
}

TEST_F(ScaleTo, APictureWithoutPixelsIsTheBackgroundAlone)
{
    for (u32 flags = 0; flags < 4; ++flags)
        for (const u32 depth : {8u, 24u}) {
            Twin flat(5, 0, depth, 1);
            Twin thin(0, 4, depth, 1);
            Twin target(7, 3, 24, 2);
            Check(flat, target, Background, flags & 1, flags >> 1);
            Check(thin, target, Background + 1, flags & 1, flags >> 1);
        }
}

TEST_F(ScaleTo, ATargetWithoutPixelsTakesNothing)
{
    for (u32 flags = 0; flags < 4; ++flags) {
        Twin source(5, 4, 24, 1);
        Twin flat(5, 0, 24, 1);
        Twin thin(0, 4, 24, 1);
        Check(source, flat, Background, flags & 1, flags >> 1);
        Check(source, thin, Background, flags & 1, flags >> 1);
    }
}

TEST_F(ScaleTo, AnAspectThatLeavesNoRowIsTheBackgroundAlone)
{
    for (u32 flags = 0; flags < 4; ++flags)
        for (const u32 depth : {16u, 24u}) {
            Twin wide(100, 1, depth, 1); // 10 columns leave 10 / 100 of a row
            Twin tall(1, 100, depth, 1);
            Twin target(10, 9, 24, 2);
            EXPECT_EQ(wide.raster.ScaleTo(&target.raster, 0x0A, flags & 1, flags >> 1), 1);
            EXPECT_EQ(PlainScaleTo(wide.plain, &target.plain, 0x0A, flags & 1, flags >> 1), 1);
            ExpectSame({&wide, &target});
            Check(tall, target, 0x0B, flags & 1, flags >> 1);
        }
}

TEST_F(ScaleTo, NeverEnlargesWithoutTheFitFlag)
{
    for (const u32 box : {0u, 1u}) {
        EXPECT_EQ(Centred(4, 2, 12, 12, 0, box), (Extent{4, 5, 7, 6}));
        EXPECT_EQ(Centred(4, 2, 12, 12, 1, box), (Extent{0, 3, 11, 8}));
        EXPECT_EQ(Centred(2, 4, 12, 12, 1, box), (Extent{3, 0, 8, 11}));
        EXPECT_EQ(Centred(12, 12, 12, 12, 0, box), (Extent{0, 0, 11, 11}));
    }
}

TEST_F(ScaleTo, ASourceThatIsLargerInOneDirectionIsMadeSmallerInBoth)
{
    for (const u32 fit : {0u, 1u})
        for (const u32 box : {0u, 1u}) {
            EXPECT_EQ(Centred(24, 4, 12, 12, fit, box), (Extent{0, 5, 11, 6}));
            EXPECT_EQ(Centred(4, 24, 12, 12, fit, box), (Extent{5, 0, 6, 11}));
            EXPECT_EQ(Centred(24, 24, 12, 6, fit, box), (Extent{3, 0, 8, 5}));
        }
}

TEST_F(ScaleTo, AnOddRemainderLeavesTheLargerMarginOnTheRightAndBelow)
{
    for (const u32 box : {0u, 1u})
        EXPECT_EQ(Centred(2, 2, 7, 5, 0, box), (Extent{2, 1, 3, 2}));
}

TEST_F(ScaleTo, SizesWhoseProductPassesThirtyTwoBitsKeepTheirAspect)
{
    // 6,700,417 * 641 is 2^32 + 1; a wrapped product would be a width of 1, which fits, and the
    // source's depth would then be refused.
    Raster wide;
    ASSERT_EQ(wide.Create(6700417, 1, 8, nullptr, nullptr), 1);
    Twin target(5, 641, 24, 2);
    for (const u32 box : {0u, 1u})
        EXPECT_EQ(wide.ScaleTo(&target.raster, 0x10203040, 0, box), 1);
}

TEST_F(ScaleTo, WithoutTheScratchLineOfAnOpaqueBackgroundThePictureIsDrawnAllTheSame)
{
    for (const u32 box : {0u, 1u}) {
        Twin source(4, 2, 24, 1);
        Twin target(9, 6, 24, 2);
        target.allocator.fails = [](int, u32) { return true; };
        EXPECT_EQ(source.raster.ScaleTo(&target.raster, 0x102030FF, 0, box), 1);
        target.allocator.fails = nullptr;
        EXPECT_EQ(PlainScaleTo(source.plain, &target.plain, 0x102030FF, 0, box, false), 1);
        ExpectSame({&source, &target});
    }
}

TEST_F(ScaleTo, WithBoxARowsReleaseNamesTheRowOfThePictureAndNotOfTheTarget)
{
    Twin source(4, 2, 24, 1);
    Twin target(4, 8, 24, 2, Storage::Paging);
    {
        const WithShortMemory memory;
        EXPECT_EQ(source.raster.ScaleTo(&target.raster, 0x10203040, 0, 1), 1);
        // All lines but the last were released by the fill; rows 3 and 4 were then locked for the
        // picture, and rows 0 and 1 released.
        EXPECT_EQ(FilesIn(FirstFolder).size(), 5u);
        u8* row = nullptr;
        EXPECT_EQ(target.raster.LockLines(0, &row, nullptr), 1);
        EXPECT_EQ(FilesIn(FirstFolder).size(), 4u) << "rows 3, 4 and 7 are still locked";
    }
    target.raster.UnlockAll();
}

TEST_F(ScaleTo, LocksAndReleasesOnPagingRastersAreThoseOfItsFormula)
{
    for (const u32 background : {0x11223344u, 0x112233FFu})
        for (u32 flags = 0; flags < 4; ++flags)
            for (const u32 height : {3u, 6u, 9u}) {
                Twin source(7, height, 24, 1, Storage::Paging);
                Twin target(6, 7, 24, 2, Storage::Paging);
                {
                    const WithShortMemory memory;
                    EXPECT_EQ(
                        source.raster.ScaleTo(&target.raster, background, flags & 1, flags >> 1),
                        PlainScaleTo(source.plain, &target.plain, background, flags & 1,
                                     flags >> 1));
                }
                ExpectSame({&source, &target});
            }
}

TEST_F(ScaleTo, ALineThatDoesNotLockLeavesWhatItsFormulaLeaves)
{
    for (const bool ofSource : {true, false})
        for (u32 flags = 0; flags < 4; ++flags)
            for (const u32 height : {5u, 11u})
                for (u32 line = 0; line < (ofSource ? height : 7); ++line) {
                    Twin source(10, height, 24, 1, Storage::Paging); // a stride of 32
                    Twin target(10, 7, 24, 2, Storage::Paging);
                    (ofSource ? source : target).Refuse(line);
                    EXPECT_EQ(
                        source.raster.ScaleTo(&target.raster, Background, flags & 1, flags >> 1),
                        PlainScaleTo(source.plain, &target.plain, Background, flags & 1,
                                     flags >> 1));
                    if (ofSource)
                        target.PageOut(0); // shows what else is locked
                    ExpectSame({&source, &target});
                }
}

TEST_F(ScaleTo, StatusesOfTheFillAndOfABoxLineAreReturnedAndThoseOfAStretchAreNot)
{
    for (const u32 box : {0u, 1u}) {
        Twin source(10, 11, 24, 1, Storage::Paging);
        Twin target(10, 7, 24, 2, Storage::Paging);
        target.Refuse(3);
        EXPECT_EQ(source.raster.ScaleTo(&target.raster, Background, 0, box), -2);
        target.allocator.fails = nullptr;
        source.Refuse(0);
        EXPECT_EQ(source.raster.ScaleTo(&target.raster, Background, 0, box), box == 0 ? 1 : -2);
    }
}

TEST_F(ScaleTo, ALostLineThatEndsTheBackgroundLeavesThePictureOut)
{
    for (const u32 box : {0u, 1u}) {
        Raster source;
        Raster target;
        MakeRaster(source, 5, 4, 24, 1, Paging::None);
        MakeRaster(target, 5, 4, 24, 2, Paging::Under);
        // Line 2 finds no name that is free.
        tavrix::testing::SetRandom({7});
        ASSERT_EQ(target.ReleaseLines(0, 1, 1), 1);
        tavrix::testing::SetRandom(std::vector<LONG>(101, 7));
        ASSERT_EQ(target.ReleaseLines(2, 1, 1), 0);
        EXPECT_EQ(source.ScaleTo(&target, 0xFFFFFFFF, 0, box), 0);
        for (const i32 line : {0, 1}) {
            const std::vector<u8> row = RowOf(target, line);
            EXPECT_EQ(std::vector<u8>(row.begin(), row.begin() + 15), std::vector<u8>(15, 255));
        }
    }
}
