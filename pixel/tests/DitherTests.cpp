// Showing a raster on a surface of depth 24: the straight copy and the ordered dither.

#include "pixel/tests/PlainDither.h"
#include "platform/testing/Faults.h"

using namespace tavrix::testing;

namespace
{

using Dither = PagingTest;

void ExpectAsFormula(SurfaceTwin& shown, Twin& picture, u32 method)
{
    EXPECT_EQ(shown.surface.Present(&picture.raster, method),
              PlainPresentColor(shown.plain, picture.plain, method));
    shown.ExpectSame();
    ExpectSame({&picture});
}

/// A picture of one colour, shown dithered on a surface of its size.
void ExpectDithered(u8 value, const u8 (&expected)[4][4])
{
    Twin picture(4, 4, 24, 1);
    picture.SetRows(Rows(4, std::vector<u8>(picture.plain.stride, value)));
    SurfaceTwin shown(4, 4, 24, 1);
    ASSERT_EQ(shown.surface.Present(&picture.raster, 1), 1);
    const std::vector<u8> bits = BitsOf(shown.surface);
    for (u32 y = 0; y < 4; ++y)
        for (u32 x = 0; x < 4; ++x)
            for (u32 channel = 0; channel < 3; ++channel)
                EXPECT_EQ(bits[(3 - y) * 12 + x * 3 + channel], expected[y][x])
                    << "value " << u32{value} << " at " << x << ", " << y;
}

} // namespace

TEST_F(Dither, BlackStaysBlackAtEveryThreshold)
{
    ExpectDithered(0, {{0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}});
}

TEST_F(Dither, WhiteLosesItsLowBitsOnlyWhereTheThresholdIsZero)
{
    ExpectDithered(
        255,
        {{255, 255, 255, 255}, {255, 255, 248, 255}, {255, 255, 255, 255}, {248, 255, 255, 255}});
}

TEST_F(Dither, AValueRisesWhereItReachesTheNextOfThirtyTwoSteps)
{
    // Thresholds 7 3 6 2, 1 5 0 4, 6 2 7 3, 0 4 1 5 from the top.
    ExpectDithered(1, {{8, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 8, 0}, {0, 0, 0, 0}});
    ExpectDithered(
        100, {{104, 96, 104, 96}, {96, 104, 96, 104}, {104, 96, 104, 96}, {96, 104, 96, 104}});
    ExpectDithered(
        103,
        {{104, 104, 104, 104}, {104, 104, 96, 104}, {104, 104, 104, 104}, {96, 104, 104, 104}});
    ExpectDithered(
        104,
        {{104, 104, 104, 104}, {104, 104, 104, 104}, {104, 104, 104, 104}, {104, 104, 104, 104}});
    // 249 + 7 comes to 256, which no byte holds.
    ExpectDithered(
        249,
        {{255, 248, 248, 248}, {248, 248, 248, 248}, {248, 248, 255, 248}, {248, 248, 248, 248}});
}

TEST_F(Dither, EveryValueInEveryCellAndChannelIsAsTheFormulaSays)
{
    // Each value stands four columns wide, in every row of the matrix and in each channel.
    Twin picture(1024, 4, 24, 1);
    Rows rows(4, std::vector<u8>(picture.plain.stride));
    for (std::vector<u8>& row : rows)
        for (u32 x = 0; x < 1024; ++x) {
            row[x * 3] = static_cast<u8>(x / 4);
            row[x * 3 + 1] = static_cast<u8>(255 - x / 4);
            row[x * 3 + 2] = static_cast<u8>(x / 4 + 85);
        }
    picture.SetRows(rows);
    SurfaceTwin shown(1024, 4, 24, 2);
    ExpectAsFormula(shown, picture, 1);
}

TEST_F(Dither, EveryWidthIsAsTheFormulaSaysAndPaddingKeepsItsBytes)
{
    for (u32 width = 1; width <= 33; ++width)
        for (const u32 method : {0u, 1u}) {
            Twin picture(width, 6, 24, width);
            picture.SetRows(RandomRows(width, 6, picture.plain.stride));
            SurfaceTwin shown(width, 6, 24, width + method);
            ExpectAsFormula(shown, picture, method);
        }
}

TEST_F(Dither, SizesThatDifferMeetAtTheTopLeft)
{
    Places places(71);
    for (int round = 0; round < 60; ++round) {
        Twin picture(1 + places.Below(40), 1 + places.Below(12), 24, places.Below(99));
        picture.SetRows(RandomRows(places.Word(), picture.plain.height, picture.plain.stride));
        SurfaceTwin shown(1 + places.Below(40), 1 + places.Below(12), 24, places.Below(99));
        ExpectAsFormula(shown, picture, places.Below(2));
    }
    for (const u32 method : {0u, 1u}) {
        Twin picture(1000, 9, 24, 3);
        SurfaceTwin shown(257, 20, 24, 4);
        ExpectAsFormula(shown, picture, method);
    }
}

TEST_F(Dither, ASmallerPictureLeavesTheRestOfTheEarlierFrame)
{
    Twin picture(3, 2, 24, 5);
    for (const u32 method : {0u, 1u}) {
        SurfaceTwin shown(6, 4, 24, 6);
        const std::vector<u8> before = BitsOf(shown.surface);
        ASSERT_EQ(shown.surface.Present(&picture.raster, method), 1);
        const std::vector<u8> after = BitsOf(shown.surface);
        // 6 pixels are 18 bytes in a row of 20; the two lower image rows stand first.
        ASSERT_EQ(after.size(), 80u);
        for (size_t at = 0; at < 80; ++at)
            if (at < 40 || at % 20 >= 9) {
                EXPECT_EQ(after[at], before[at]) << at;
            }
        EXPECT_NE(after, before);
    }
}

TEST_F(Dither, TheRowsOfAPagingPictureAreReleasedOneByOne)
{
    for (const u32 method : {0u, 1u})
        for (const u32 height : {2u, 5u, 9u}) {
            Twin picture(13, height, 24, method, Storage::Paging);
            SurfaceTwin shown(11, 6, 24, 3);
            const WithShortMemory memory;
            EXPECT_EQ(shown.surface.Present(&picture.raster, method),
                      PlainPresentColor(shown.plain, picture.plain, method));
            shown.ExpectSame();
            ExpectSame({&picture});
        }
}

TEST_F(Dither, ARefusedLineEndsTheFrameWithItsStatusAndTheRowsBeforeItShow)
{
    for (const u32 method : {0u, 1u})
        for (u32 line = 0; line < 6; ++line) {
            Twin picture(10, 6, 24, line, Storage::Paging);
            SurfaceTwin shown(12, 5, 24, line);
            picture.Refuse(line);
            EXPECT_EQ(shown.surface.Present(&picture.raster, method), line < 5 ? -2 : 1);
            EXPECT_EQ(PlainPresentColor(shown.plain, picture.plain, method), line < 5 ? -2 : 1);
            shown.ExpectSame();
            ExpectSame({&picture});
        }
}

TEST_F(Dither, ALostLineEndsTheFrameWithNothingDone)
{
    for (const u32 method : {0u, 1u}) {
        Raster raster;
        PlentyOfMemory();
        ASSERT_EQ(raster.Create(10, 4, 24, FirstFolder, nullptr), 1);
        FillPattern(raster, 8);
        // No name is left for its file.
        SetRandom({7});
        ASSERT_EQ(raster.ReleaseLines(0, 1, 1), 1);
        SetRandom(std::vector<LONG>(101, 7));
        ASSERT_EQ(raster.ReleaseLines(2, 1, 1), 0);
        SurfaceTwin shown(10, 4, 24, 9);
        EXPECT_EQ(shown.surface.Present(&raster, method), 0);
        const Rows rows = PatternRows(8, 4, 32);
        for (u32 y = 0; y < 2; ++y)
            PlainColorRow(shown.plain, rows[y].data(), y, 10, method);
        shown.ExpectSame();
        SurfaceTwin grey(10, 4, 2, 9);
        const std::vector<u8> before = BitsOf(grey.surface);
        EXPECT_EQ(grey.surface.Present(&raster, method), 0);
        const std::vector<u8> after = BitsOf(grey.surface);
        // Rows of 4 bytes, the lowest first.
        EXPECT_TRUE(std::equal(before.begin(), before.begin() + 8, after.begin()));
        EXPECT_NE(before, after);
    }
}

TEST_F(Dither, AfterARefusedLineTheNextFrameOrTheEndTakesTheTable)
{
    const auto held = tavrix::platform::CountHoldings();
    for (int ending = 0; ending < 5; ++ending) {
        Twin picture(9, 3, 24, 1, Storage::Paging);
        Twin good(9, 3, 24, 2);
        SurfaceTwin shown(9, 3, 24, 3);
        picture.Refuse(1);
        for (int frame = 0; frame < 3; ++frame)
            ASSERT_EQ(shown.surface.Present(&picture.raster, 1), -2);
        ASSERT_EQ(PlainPresentColor(shown.plain, picture.plain, 1), -2);
        if (ending == 0) {
            ASSERT_EQ(shown.surface.Present(&good.raster, 1), 1);
            ASSERT_EQ(PlainPresentColor(shown.plain, good.plain, 1), 1);
        } else if (ending == 1) {
            ASSERT_EQ(shown.surface.Create(9, 3, 24), 1);
            shown.plain = PlainSurface(9, 3, 24);
        } else if (ending == 2) {
            shown.surface.Destroy();
            EXPECT_EQ(shown.surface.Present(&good.raster, 1), -3);
        } else if (ending == 3) {
            const ArmedFault fault(FaultKind::Allocation, 1, FaultReach::Onward);
            EXPECT_EQ(shown.surface.Present(&good.raster, 1), -2) << "the old one went first";
        }
        if (ending != 2)
            shown.ExpectSame();
        ExpectSame({&picture});
    }
    EXPECT_TRUE(tavrix::platform::CountHoldings() == held);
}

TEST_F(Dither, AnyOtherMethodIsRefusedAndDrawsNothing)
{
    Twin picture(4, 3, 24, 1, Storage::Paging);
    SurfaceTwin shown(4, 3, 24, 2);
    const WithShortMemory memory;
    for (const u32 method : {2u, 3u, 0x80000000u, 0xFFFFFFFFu}) {
        EXPECT_EQ(shown.surface.Present(&picture.raster, method), -1);
        shown.ExpectSame();
    }
    EXPECT_TRUE(FilesIn(FirstFolder).empty()) << "no line was released";
    ExpectSame({&picture});
}

TEST_F(Dither, WithoutMemoryForTheTableNothingIsDrawn)
{
    Twin picture(7, 3, 24, 1);
    SurfaceTwin shown(7, 3, 24, 2);
    const std::vector<u8> before = shown.plain.bits;
    void* const bits = SectionOf(shown.surface).bmBits;
    i32 result = 0;
    const unsigned fired = ForEveryFault(
        FaultKind::Allocation,
        [&] {
            shown.plain.bits = before;
            std::memcpy(bits, before.data(), before.size());
            result = shown.surface.Present(&picture.raster, 1);
        },
        [&](bool) {
            EXPECT_TRUE(result == 1 || result == -2) << result;
            if (result == 1)
                (void)PlainPresentColor(shown.plain, picture.plain, 1);
            shown.ExpectSame();
            ExpectSame({&picture});
        });
    EXPECT_GE(fired, 1u);
    EXPECT_EQ(shown.surface.Present(&picture.raster, 1), 1);
}

TEST_F(Dither, TheStraightCopyNeedsNoMemory)
{
    Twin picture(7, 3, 24, 1);
    SurfaceTwin shown(7, 3, 24, 2);
    i32 result = 0;
    {
        const ArmedFault fault(FaultKind::Allocation, 1, FaultReach::Onward);
        result = shown.surface.Present(&picture.raster, 0);
    }
    EXPECT_EQ(result, 1);
    EXPECT_EQ(PlainPresentColor(shown.plain, picture.plain, 0), 1);
    shown.ExpectSame();
}
