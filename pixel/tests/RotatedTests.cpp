#include "PlainTurn.h"

#include "platform/testing/Faults.h"

using tavrix::testing::FaultKind;
using tavrix::testing::ForEveryFault;

namespace
{

using Rotated = PagingTest;

/// Compares result and source, and the target where one was made.
void Check(Twin& source, Twin& target, i32 angle)
{
    SCOPED_TRACE(::testing::Message() << source.plain.width << " x " << source.plain.height << " x "
                                      << source.plain.depth << ", angle " << angle);
    EXPECT_EQ(source.raster.Rotated(&target.raster, angle),
              PlainRotated(source.plain, &target.plain, angle));
    ExpectSame({&source, &target});
}

/// Two rows of three pixels, numbered 1 to 6.
void MakeSix(Twin& source)
{
    Rows rows = source.plain.rows;
    for (u32 y = 0; y < 2; ++y)
        for (u32 x = 0; x < 3; ++x)
            std::fill_n(rows[y].begin() + x * 3, 3, static_cast<u8>(y * 3 + x + 1));
    source.SetRows(rows);
}

std::vector<u32> NumbersOf(Raster& raster)
{
    std::vector<u32> numbers;
    const RasterInfo info = InfoOf(raster);
    for (const std::vector<u8>& row : RowsOf(raster))
        for (u32 x = 0; x < info.width; ++x)
            numbers.push_back(row[x * 3]);
    return numbers;
}

using Numbers = std::vector<u32>;

} // namespace

TEST_F(Rotated, IsItsFormulaForEveryWidthAtAllDepths)
{
    for (const u32 depth : {8u, 16u, 24u, 32u})
        for (u32 width = 1; width <= 33; ++width)
            for (const i32 angle : {0, 90, 180}) {
                Twin source(width, 1 + (width * 5) % 9, depth, width);
                Twin target(3, 3, 8, 1);
                Check(source, target, angle);
            }
}

TEST_F(Rotated, IsItsFormulaForLargeRasters)
{
    for (const i32 angle : {0, 90, 180})
        for (const u32 depth : {24u, 32u}) {
            Twin source(257, 35, depth, 1);
            Twin target;
            Check(source, target, angle);
        }
}

TEST_F(Rotated, NinetyTurnsClockwiseAndSoDoesNought)
{
    for (const i32 angle : {0, 90}) {
        Twin source(3, 2, 24, 1);
        MakeSix(source);
        Twin target;
        EXPECT_EQ(source.raster.Rotated(&target.raster, angle), 1);
        EXPECT_EQ(InfoOf(target.raster).width, 2u);
        EXPECT_EQ(InfoOf(target.raster).height, 3u);
        EXPECT_EQ(NumbersOf(target.raster), (Numbers{4, 1, 5, 2, 6, 3}));
        EXPECT_EQ(NumbersOf(source.raster), (Numbers{1, 2, 3, 4, 5, 6}));
    }
}

TEST_F(Rotated, HalfATurnReversesRowsAndColumns)
{
    Twin source(3, 2, 24, 1);
    MakeSix(source);
    Twin target;
    EXPECT_EQ(source.raster.Rotated(&target.raster, 180), 1);
    EXPECT_EQ(NumbersOf(target.raster), (Numbers{6, 5, 4, 3, 2, 1}));
    EXPECT_EQ(NumbersOf(source.raster), (Numbers{1, 2, 3, 4, 5, 6}));
}

TEST_F(Rotated, FourQuarterTurnsGiveThePictureBack)
{
    Twin source(7, 4, 24, 1);
    Twin turned[4];
    Raster* from = &source.raster;
    for (Twin& target : turned) {
        ASSERT_EQ(from->Rotated(&target.raster, 90), 1);
        from = &target.raster;
    }
    Twin half;
    ASSERT_EQ(source.raster.Rotated(&half.raster, 180), 1);
    const Rows rows = RowsOf(turned[3].raster);
    const Rows twice = RowsOf(turned[1].raster);
    const Rows halfRows = RowsOf(half.raster);
    for (u32 y = 0; y < 4; ++y)
        for (u32 x = 0; x < 21; ++x) {
            EXPECT_EQ(rows[y][x], source.plain.rows[y][x]);
            EXPECT_EQ(twice[y][x], halfRows[y][x]);
        }
}

TEST_F(Rotated, AnyOtherAngleIsDoneAndDoesNothing)
{
    for (const i32 angle : {-90, -1, 1, 45, 91, 179, 181, 270, 360, 0x7FFFFFFF}) {
        Twin source(5, 4, 24, 1, Storage::Paging);
        Twin target(3, 3, 8, 2, Storage::Paging);
        source.PageOut(1);
        target.PageOut(1);
        Check(source, target, angle);
    }
}

TEST_F(Rotated, RefusesNoTargetAndItself)
{
    Twin source(5, 4, 24, 1);
    for (const i32 angle : {0, 45, 90, 180}) {
        EXPECT_EQ(source.raster.Rotated(nullptr, angle), -4);
        EXPECT_EQ(source.raster.Rotated(&source.raster, angle), -4);
    }
    ExpectSame({&source});
}

TEST_F(Rotated, AQuarterTurnOfADepthWithoutColoursMakesABlankTargetAndFails)
{
    for (const u32 depth : {8u, 16u}) {
        Twin source(5, 4, depth, 1);
        Twin target(3, 3, 8, 2);
        EXPECT_EQ(source.raster.Rotated(&target.raster, 90), -1);
        target.plain.Make(4, 5, 24);
        ExpectSame({&source, &target});
    }
}

TEST_F(Rotated, AQuarterTurnDropsTheAlphaByteAndTakesColoursAsTheyStand)
{
    Twin source(1, 1, 32, 1);
    source.SetRows({{1, 2, 3, 4}});
    Twin target;
    EXPECT_EQ(source.raster.Rotated(&target.raster, 90), 1);
    EXPECT_EQ(RowOf(target.raster, 0), (std::vector<u8>{1, 2, 3, 0}));
}

TEST_F(Rotated, HalfATurnOfThirtyTwoBitsExchangesWholePixelsOfTheTwentyFourBitCopy)
{
    Twin source(2, 1, 32, 1);
    source.SetRows({{1, 2, 3, 4, 5, 6, 7, 8}});
    Twin target;
    EXPECT_EQ(source.raster.Rotated(&target.raster, 180), 1);
    // The copy is eight bytes long; only its two pixels of three bytes change places.
    EXPECT_EQ(RowOf(target.raster, 0), (std::vector<u8>{4, 5, 6, 1, 2, 3, 7, 8}));
}

TEST_F(Rotated, PicturesWithoutPixelsTurnIntoSuchPictures)
{
    for (const u32 depth : {8u, 24u})
        for (const i32 angle : {0, 90, 180}) {
            Twin flat(5, 0, depth, 1);
            Twin thin(0, 4, depth, 1);
            Twin target(3, 3, 8, 2);
            Check(flat, target, angle);
            Check(thin, target, angle);
        }
}

TEST_F(Rotated, ATargetThatDoesNotFitIsRefusedWithoutALock)
{
    for (const i32 angle : {0, 90, 180}) {
        Twin source(5, 4, 24, 1, Storage::Paging);
        for (u32 line = 0; line < 4; ++line)
            source.PageOut(line);
        Twin target(3, 3, 8, 2, Storage::Paging);
        {
            const WithShortMemory memory;
            EXPECT_EQ(source.raster.Rotated(&target.raster, angle), -1);
        }
        target.raster.Reset();
        target.plain = PlainRaster();
        ExpectSame({&source, &target});
    }
}

TEST_F(Rotated, AQuarterTurnReleasesTheSourcesRowsAndHalfATurnKeepsThem)
{
    for (const i32 angle : {90, 180}) {
        Twin source(9, 4, 32, 1, Storage::Paging); // lines of 36 bytes, and of 28 or 12 in a target
        Twin target;
        {
            const WithShortMemoryBeyond memory(28);
            EXPECT_EQ(source.raster.Rotated(&target.raster, angle),
                      PlainRotated(source.plain, &target.plain, angle));
            EXPECT_EQ(FilesIn(FirstFolder).size(), angle == 90 ? 3u : 0u);
        }
        ExpectSame({&source, &target});
    }
}

TEST_F(Rotated, ALineThatDoesNotLockEndsItWhereItStands)
{
    for (const i32 angle : {0, 90, 180})
        for (const u32 depth : {24u, 32u})
            for (u32 line = 0; line < 5; ++line) {
                Twin source(7, 5, depth, 1, Storage::Paging);
                source.Refuse(line);
                Twin target;
                EXPECT_EQ(source.raster.Rotated(&target.raster, angle), -2);
                EXPECT_EQ(PlainRotated(source.plain, &target.plain, angle), -2);
                ExpectSame({&source, &target});
            }
}

TEST_F(Rotated, ALostLineEndsAQuarterTurnAndIsPassedOverByHalfATurn)
{
    Twin source(4, 3, 24, 1);
    source.allocator.fails = [](int, u32) { return true; };
    EXPECT_EQ(source.raster.InsertLines(3, nullptr), -2); // line 3 has no record
    source.allocator.fails = nullptr;
    Twin target;
    EXPECT_EQ(source.raster.Rotated(&target.raster, 90), 0);
    EXPECT_EQ(source.raster.Rotated(&target.raster, 180), 1);
    const Rows rows = RowsOf(target.raster);
    ASSERT_EQ(rows.size(), 4u);
    EXPECT_EQ(rows[0], std::vector<u8>(12));
    for (u32 x = 0; x < 4; ++x)
        EXPECT_EQ(rows[1][x * 3], source.plain.rows[2][(3 - x) * 3]);
}

TEST_F(Rotated, ATargetWithoutMemoryIsReportedAndNothingLeaks)
{
    for (const i32 angle : {90, 180}) {
        Twin source(5, 4, 24, 1);
        Twin whole;
        (void)PlainRotated(source.plain, &whole.plain, angle);
        unsigned failed = 0;
        ForEveryFault(FaultKind::Allocation, [&] {
            Raster target; // on a heap of its own
            const i32 result = source.raster.Rotated(&target, angle);
            EXPECT_TRUE(result == Done || result == NoMemory) << result;
            if (result == Done) {
                EXPECT_EQ(RowsOf(target), whole.plain.rows);
            } else {
                ++failed;
            }
        });
        EXPECT_GT(failed, 0u);
        EXPECT_EQ(RowsOf(source.raster), source.plain.rows);
    }
}
