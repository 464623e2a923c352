// A whole raster filled: the formula written out, the scratch line of opaque colours, byte orders.

#include "AreaSweep.h"
#include "PlainFill.h"
#include "platform/testing/Faults.h"

namespace
{

using Fill = PagingTest;

i32 All(Raster& raster, u32 color, PixelRect)
{
    return raster.FillAll(color);
}

i32 PlainAll(PlainRaster& plain, u32 color, PixelRect)
{
    return PlainFillAll(plain, color);
}

} // namespace

TEST_F(Fill, EqualsItsFormulaEverywhere)
{
    SweepAreas(All, PlainAll, 71);
}

TEST_F(Fill, EqualsItsFormulaWhileLinesGoToFiles)
{
    SweepPagedAreas(All, PlainAll, 72);
}

TEST_F(Fill, StopsAtALineThatDoesNotCome)
{
    SweepRefusedAreas(All, PlainAll, 73);
}

TEST_F(Fill, ALostLineEndsTheWorkWith0AndGivesTheScratchLineBack)
{
    for (const u32 depth : {24u, 32u})
        for (const u32 color : {0x102030FFu, 0x10203080u}) {
            Twin twin(4, 3, depth, 5);
            AddLostLines(twin, 1);
            EXPECT_EQ(twin.raster.FillAll(color), NothingDone);
            EXPECT_EQ(PlainFillAll(twin.plain, color), Done);
            for (u32 y = 0; y < 3; ++y)
                EXPECT_EQ(RowOf(twin.raster, static_cast<i32>(y)), twin.plain.rows[y]) << y;
        }
}

TEST_F(Fill, EqualsItsFormulaForEveryAlphaAndEveryOldByte)
{
    Rows olds(1, std::vector<u8>(3 * 256));
    for (u32 i = 0; i < 3 * 256; ++i)
        olds[0][i] = static_cast<u8>(i / 3);
    Places places(74);
    for (u32 alpha = 0; alpha < 256; ++alpha)
        for (const u32 color : {0x00FF7F00u, places.Word() & ~255u}) {
            Twin twin(256, 1, 24, 0);
            twin.SetRows(olds);
            RunArea(twin, All, PlainAll, color | alpha, {});
            ExpectSame({&twin});
        }
}

TEST_F(Fill, AlphaZeroStillMovesTheImageByOnePartIn256)
{
    Raster raster;
    ASSERT_EQ(raster.Create(1, 1, 24, nullptr, nullptr), 1);
    ASSERT_EQ(raster.FillAll(0xFFFFFF00), 1);
    EXPECT_EQ(RowOf(raster, 0), (std::vector<u8>{0, 0, 0, 0})); // (1 * 255 + 255 * 0) >> 8
    raster.UnlockAll();
    ASSERT_EQ(raster.FillAll(0xFFFFFFFF), 1);
    ASSERT_EQ(raster.FillAll(0x00000000), 1);
    EXPECT_EQ(RowOf(raster, 0), (std::vector<u8>{254, 254, 254, 0})); // (255 * 255) >> 8
}

TEST_F(Fill, AtDepth32ThePixelComesBackEndForEnd)
{
    Raster raster;
    ASSERT_EQ(raster.Create(2, 2, 32, nullptr, nullptr), 1);
    ASSERT_EQ(raster.FillAll(0x11223344), 1);
    // Alpha, red, green, blue in memory.
    EXPECT_EQ(RowOf(raster, 0), (std::vector<u8>{0x44, 0x11, 0x22, 0x33, 0x44, 0x11, 0x22, 0x33}));
    u32 color = 0;
    ASSERT_EQ(raster.GetPixel(1, 1, &color), 1);
    EXPECT_EQ(color, 0x22114433u);
}

TEST_F(Fill, OtherDepthsAreRefused)
{
    for (u32 depth : {8u, 16u}) {
        Twin twin(5, 2, depth, 1);
        EXPECT_EQ(twin.raster.FillAll(0x102030FF), Failed);
        EXPECT_EQ(twin.raster.FillAll(0x10203080), Failed);
        ExpectSame({&twin});
    }
    Raster empty;
    EXPECT_EQ(empty.FillAll(0x102030FF), Failed);
}

TEST_F(Fill, WithoutAScratchLineNothingIsDoneAndThatIsNoFailure)
{
    for (const u32 color : {0x102030FFu, 0x102030FEu})
        for (const u32 depth : {24u, 32u}) {
            Twin twin(5, 3, depth, 1);
            twin.allocator.fails = [](int, u32) { return true; };
            EXPECT_EQ(twin.raster.FillAll(color), Done);
            EXPECT_EQ(PlainFillAll(twin.plain, color, false), Done);
            ExpectSame({&twin});
        }
}

TEST_F(Fill, TheScratchLineIsOneStrideAndGivenBack)
{
    Twin twin(5, 3, 24, 1);
    const int before = twin.allocator.outstanding;
    twin.allocator.asked = 0;
    std::vector<u32> sizes;
    twin.allocator.fails = [&sizes](int, u32 size) {
        sizes.push_back(size);
        return false;
    };
    EXPECT_EQ(twin.raster.FillAll(0x102030FF), Done);
    EXPECT_EQ(sizes, std::vector<u32>{16});
    EXPECT_EQ(twin.allocator.outstanding, before);
    // Nothing else allocates.
    sizes.clear();
    EXPECT_EQ(twin.raster.FillAll(0x10203080), Done);
    EXPECT_TRUE(sizes.empty());
}

TEST_F(Fill, OpaqueFillsClearThePaddingAndTranslucentOnesLeaveIt)
{
    Twin twin(5, 2, 24, 0); // 15 bytes of pixels and one of padding
    Flatten(twin, 100);
    EXPECT_EQ(twin.raster.FillAll(0x112233FE), Done);
    EXPECT_EQ(RowOf(twin.raster, 0)[15], 100);
    EXPECT_EQ(twin.raster.FillAll(0x112233FF), Done);
    EXPECT_EQ(RowOf(twin.raster, 0)[15], 0);
    EXPECT_EQ(PixelOf(twin.raster, 4, 1), (Bytes{0x33, 0x22, 0x11}));
}

TEST_F(Fill, WithoutMemoryForALineItEndsThereAndGivesTheScratchLineBack)
{
    for (const u32 color : {0x102030FFu, 0x102030FEu}) {
        u32 before = 0;
        for (int failing = 1;; ++failing) {
            Twin twin(9, 5, 24, 1, Storage::Paging);
            const Rows old = twin.plain.rows;
            twin.PageOut(1);
            twin.PageOut(3);
            twin.allocator.asked = 0;
            bool fired = false;
            twin.allocator.fails = [&](int number, u32) {
                fired |= number == failing;
                return number == failing;
            };
            const i32 result = twin.raster.FillAll(color);
            twin.allocator.fails = nullptr;
            EXPECT_EQ(PlainFillAll(twin.plain, color), Done);
            u32 filled = 0;
            for (u32 y = 0; y < 5; ++y)
                if (RowOf(twin.raster, static_cast<i32>(y)) == twin.plain.rows[y]) {
                    EXPECT_EQ(filled, y);
                    ++filled;
                } else {
                    EXPECT_EQ(RowOf(twin.raster, static_cast<i32>(y)), old[y]);
                }
            if (!fired) {
                EXPECT_EQ(result, Done);
                EXPECT_EQ(filled, 5u);
                EXPECT_EQ(before, 3u);
                break;
            }
            if (color == 0x102030FF && failing == 1) { // the scratch line
                EXPECT_EQ(result, Done);
                EXPECT_EQ(filled, 0u);
            } else {
                EXPECT_EQ(result, NoMemory);
                EXPECT_TRUE(filled == 1 || filled == 3) << filled;
            }
            EXPECT_GE(filled, before);
            before = filled;
        }
    }
}

TEST_F(Fill, NoFaultOfMemoryOrFilesBreaksItOrLeavesAnythingBehind)
{
    using tavrix::testing::FaultKind;
    for (const FaultKind kind : {FaultKind::Allocation, FaultKind::Create, FaultKind::Write,
                                 FaultKind::ShortWrite, FaultKind::Read})
        for (const u32 color : {0xFFFFFFFFu, 0xFFFFFF80u}) {
            i32 result = NothingDone;
            ForEveryFault(
                kind,
                [&] {
                    PlentyOfMemory();
                    Raster raster;
                    result = raster.Create(9, 4, 24, FirstFolder, SecondFolder);
                    if (result != Done)
                        return;
                    ShortMemory();
                    for (int turn = 0; turn < 2 && result == Done; ++turn)
                        result = raster.FillAll(color);
                    PlentyOfMemory();
                },
                [&](bool fired) {
                    // 0 is a line whose data an earlier fault has lost.
                    EXPECT_TRUE(result == Done ||
                                (fired && (result == NoMemory || result == NoStorage ||
                                           result == NothingDone)))
                        << result;
                    EXPECT_TRUE(FilesIn(FirstFolder).empty());
                    EXPECT_TRUE(FilesIn(SecondFolder).empty());
                });
        }
}
