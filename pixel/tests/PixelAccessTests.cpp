// One pixel read or written: the formula written out, bounds, bytes, refusals.

#include "AreaSweep.h"
#include "PlainFill.h"

namespace
{

using PixelAccess = PagingTest;

// A read and a write as operations on areas, of which they take the left top corner. What is read
// is part of the result.
i32 Set(Raster& raster, u32 color, PixelRect area)
{
    return raster.SetPixel(area.left, area.top, color);
}

i32 PlainSet(PlainRaster& plain, u32 color, PixelRect area)
{
    return PlainSetPixel(plain, area.left, area.top, color);
}

u32 Told(i32 result, u32 color)
{
    return static_cast<u32>(result) * 0x9E3779B1u ^ color;
}

i32 Get(Raster& raster, u32 color, PixelRect area)
{
    const i32 result = raster.GetPixel(area.left, area.top, &color);
    return static_cast<i32>(Told(result, color));
}

i32 PlainGet(PlainRaster& plain, u32 color, PixelRect area)
{
    const i32 result = PlainGetPixel(plain, area.left, area.top, &color);
    return static_cast<i32>(Told(result, color));
}

} // namespace

TEST_F(PixelAccess, EqualsItsFormulaEverywhere)
{
    SweepAreas(Set, PlainSet, 81);
    SweepAreas(Get, PlainGet, 82);
}

TEST_F(PixelAccess, EqualsItsFormulaAtTheEndsOfTheNumbers)
{
    SweepExtremeAreas(Set, PlainSet);
    SweepExtremeAreas(Get, PlainGet);
}

TEST_F(PixelAccess, EqualsItsFormulaWhileLinesGoToFiles)
{
    SweepPagedAreas(Set, PlainSet, 83);
    SweepPagedAreas(Get, PlainGet, 84);
}

TEST_F(PixelAccess, FailsWhereTheLineDoesNotCome)
{
    SweepRefusedAreas(Set, PlainSet, 85);
    SweepRefusedAreas(Get, PlainGet, 86);
    Twin twin(4, 3, 24, 5);
    AddLostLines(twin, 1);
    u32 color = 7;
    EXPECT_EQ(twin.raster.GetPixel(0, 3, &color), NothingDone);
    EXPECT_EQ(twin.raster.SetPixel(0, 3, color), NothingDone);
}

TEST_F(PixelAccess, SetPixelStoresBlueGreenRedAndAlpha)
{
    Raster deep;
    ASSERT_EQ(deep.Create(3, 2, 32, nullptr, nullptr), 1);
    ASSERT_EQ(deep.SetPixel(1, 0, 0x11223344), 1);
    EXPECT_EQ(RowOf(deep, 0), (std::vector<u8>{0, 0, 0, 0, 0x33, 0x22, 0x11, 0x44, 0, 0, 0, 0}));
    Raster plain;
    ASSERT_EQ(plain.Create(3, 2, 24, nullptr, nullptr), 1);
    ASSERT_EQ(plain.SetPixel(1, 0, 0x11223344), 1);
    EXPECT_EQ(RowOf(plain, 0), (std::vector<u8>{0, 0, 0, 0x33, 0x22, 0x11, 0, 0, 0, 0, 0, 0}));
}

TEST_F(PixelAccess, GetPixelGivesBackWhatWasSet)
{
    for (u32 depth : {24u, 32u}) {
        Raster raster;
        ASSERT_EQ(raster.Create(7, 5, depth, nullptr, nullptr), 1);
        for (i32 y = 0; y < 5; ++y)
            for (i32 x = 0; x < 7; ++x)
                ASSERT_EQ(raster.SetPixel(x, y,
                                          static_cast<u32>(x) * 0x31001503u +
                                              static_cast<u32>(y) * 0x07110023u),
                          1);
        for (i32 y = 0; y < 5; ++y)
            for (i32 x = 0; x < 7; ++x) {
                const u32 set =
                    static_cast<u32>(x) * 0x31001503u + static_cast<u32>(y) * 0x07110023u;
                u32 color = 0;
                ASSERT_EQ(raster.GetPixel(x, y, &color), 1);
                EXPECT_EQ(color, depth == 32 ? set : (set | 255));
            }
    }
}

TEST_F(PixelAccess, OutOfBoundsIsRefusedOnEverySide)
{
    Raster raster;
    ASSERT_EQ(raster.Create(3, 2, 24, nullptr, nullptr), 1);
    const i32 most = 2147483647;
    const i32 places[][2] = {{-1, 0}, {0, -1}, {3, 0}, {0, 2}, {most, 0}, {0, -most - 1}};
    for (const auto& place : places) {
        u32 color = 7;
        EXPECT_EQ(raster.GetPixel(place[0], place[1], &color), -1);
        EXPECT_EQ(color, 7u);
        EXPECT_EQ(raster.SetPixel(place[0], place[1], 0), -1);
    }
}

TEST_F(PixelAccess, OtherDepthsAndANullResultAreRefused)
{
    for (u32 depth : {8u, 16u}) {
        Raster raster;
        ASSERT_EQ(raster.Create(3, 2, depth, nullptr, nullptr), 1);
        u32 color = 7;
        EXPECT_EQ(raster.GetPixel(0, 0, &color), -1);
        EXPECT_EQ(raster.SetPixel(0, 0, 0xFFFFFFFF), -1);
        EXPECT_EQ(raster.GetPixel(0, 0, nullptr), -2);
    }
    Raster empty;
    u32 color = 7;
    EXPECT_EQ(empty.GetPixel(0, 0, nullptr), -2);
    EXPECT_EQ(empty.GetPixel(0, 0, &color), -1);
    EXPECT_EQ(empty.SetPixel(0, 0, 0), -1);
}

TEST_F(PixelAccess, ThePixelsRowIsReleasedAndPages)
{
    Twin twin(5, 3, 24, 1, Storage::Paging);
    Raster& raster = twin.raster;
    ShortMemory();
    ASSERT_EQ(raster.SetPixel(4, 1, 0x01020300), 1);
    EXPECT_EQ(FilesIn(FirstFolder).size(), 1u);
    u32 color = 0;
    ASSERT_EQ(raster.GetPixel(4, 1, &color), 1);
    EXPECT_EQ(color, 0x010203FFu);
    EXPECT_GE(FilesIn(FirstFolder).size(), 1u);
}
