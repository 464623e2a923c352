#include "Rasters.h"

namespace
{

using PixelAccess = PagingTest;

} // namespace

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
    Raster raster;
    ASSERT_NO_FATAL_FAILURE(MakeRaster(raster, 5, 3, 24, 1, Paging::Under));
    ShortMemory();
    ASSERT_EQ(raster.SetPixel(4, 1, 0x01020300), 1);
    EXPECT_EQ(FilesIn(FirstFolder).size(), 1u);
    u32 color = 0;
    ASSERT_EQ(raster.GetPixel(4, 1, &color), 1);
    EXPECT_EQ(color, 0x010203FFu);
    EXPECT_GE(FilesIn(FirstFolder).size(), 1u);
}

TEST_F(PixelAccess, TheStatusOfALockThatFailsIsPassedOn)
{
    CountingAllocator memory;
    Raster raster(&memory);
    ASSERT_NO_FATAL_FAILURE(MakeRaster(raster, 5, 3, 24, 1, Paging::Under));
    ASSERT_EQ(raster.ReleaseLines(1, 1, 1), 1);
    memory.fails = [](int, u32) { return true; };
    u32 color = 0;
    EXPECT_EQ(raster.GetPixel(0, 1, &color), -2);
    EXPECT_EQ(raster.SetPixel(0, 1, 0), -2);
    memory.fails = nullptr;
}
