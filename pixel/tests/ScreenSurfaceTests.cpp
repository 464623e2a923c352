#include "Rasters.h"

#include "pixel/ScreenSurface.h"

namespace
{

using Surface = PagingTest;

/// The bytes of the surface as the platform keeps them: the bitmap that is selected in its context,
/// copied out through a second one. Rows from the top.
Rows Shown(const ScreenSurface& surface, u32 width, u32 height)
{
    BITMAPINFO format = {};
    format.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    format.bmiHeader.biWidth = static_cast<LONG>(width);
    format.bmiHeader.biHeight = static_cast<LONG>(height);
    format.bmiHeader.biPlanes = 1;
    format.bmiHeader.biBitCount = 24;
    void* bits = nullptr;
    const HBITMAP bitmap = ::CreateDIBSection(nullptr, &format, DIB_RGB_COLORS, &bits, nullptr, 0);
    DrawingContext context;
    EXPECT_EQ(context.CreateMemory(nullptr), 1);
    EXPECT_EQ(context.SelectBitmap(bitmap), 1);
    EXPECT_TRUE(::BitBlt(context.Handle(), 0, 0, static_cast<int>(width), static_cast<int>(height),
                         surface.GetDC(), 0, 0, SRCCOPY));
    const size_t stride = (3 * (size_t{width} + 1)) & ~size_t{3};
    Rows rows;
    for (u32 y = 0; y < height; ++y) {
        const u8* const row = static_cast<u8*>(bits) + (height - 1 - y) * stride;
        rows.emplace_back(row, row + size_t{width} * 3);
    }
    EXPECT_EQ(context.DeleteMemory(), 1);
    EXPECT_TRUE(::DeleteObject(bitmap));
    return rows;
}

Rows PixelsOf(Raster& raster)
{
    Rows rows = RowsOf(raster);
    for (auto& row : rows)
        row.resize(size_t{InfoOf(raster).width} * 3);
    return rows;
}

} // namespace

TEST_F(Surface, OnlyDepths2And24AreMade)
{
    ScreenSurface surface;
    for (u32 depth : {0u, 1u, 4u, 8u, 16u, 32u, 0x10018u})
        EXPECT_EQ(surface.Create(8, 8, depth), -4) << depth;
    EXPECT_EQ(surface.GetDC(), nullptr);
    EXPECT_EQ(surface.Create(8, 8, 2), 1);
    EXPECT_EQ(surface.Depth(), 2u);
    EXPECT_NE(surface.GetDC(), nullptr);
    EXPECT_EQ(surface.Create(8, 8, 24), 1);
    EXPECT_EQ(surface.Depth(), 24u);
}

TEST_F(Surface, ADepth2SurfaceHasTheFourGreysFirstPixelInTheTopBits)
{
    ScreenSurface surface;
    ASSERT_EQ(surface.Create(4, 1, 2), 1);
    // The surface's bitmap, taken out of its context for a look at its bits.
    BITMAPINFO format = {};
    format.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    format.bmiHeader.biWidth = 1;
    format.bmiHeader.biHeight = 1;
    format.bmiHeader.biPlanes = 1;
    format.bmiHeader.biBitCount = 24;
    void* bits = nullptr;
    const HGDIOBJ other = ::CreateDIBSection(nullptr, &format, DIB_RGB_COLORS, &bits, nullptr, 0);
    ASSERT_NE(other, nullptr);
    const HGDIOBJ bitmap = ::SelectObject(surface.GetDC(), other);
    ASSERT_NE(bitmap, nullptr);
    BITMAP record = {};
    ASSERT_EQ(::GetObjectW(bitmap, sizeof(record), &record), static_cast<int>(sizeof(record)));
    EXPECT_EQ(record.bmBitsPixel, 2);
    ASSERT_NE(record.bmBits, nullptr);
    *static_cast<u8*>(record.bmBits) = 0x1B; // 0, 1, 2, 3
    ASSERT_EQ(::SelectObject(surface.GetDC(), bitmap), other);
    EXPECT_EQ(Shown(surface, 4, 1), (Rows{{0, 0, 0, 128, 128, 128, 192, 192, 192, 255, 255, 255}}));
    EXPECT_TRUE(::DeleteObject(other));
}

TEST_F(Surface, ARefusedSizeLeavesTheSurfaceAsItWas)
{
    ScreenSurface surface;
    EXPECT_EQ(surface.Create(0, 8, 24), -1);
    Raster raster;
    ASSERT_NO_FATAL_FAILURE(MakeRaster(raster, 4, 4, 24, 1, Paging::None));
    EXPECT_EQ(surface.Present(&raster, 0), -3);
    ASSERT_EQ(surface.Create(4, 4, 24), 1);
    EXPECT_EQ(surface.Create(4, 0, 24), -1);
    EXPECT_EQ(surface.Present(&raster, 0), 1);
    EXPECT_EQ(Shown(surface, 4, 4), PixelsOf(raster));
}

TEST_F(Surface, PresentShowsTheRasterUpright)
{
    for (u32 width = 1; width <= 33; ++width) {
        ScreenSurface surface;
        ASSERT_EQ(surface.Create(width, 5, 24), 1);
        Raster raster;
        ASSERT_NO_FATAL_FAILURE(MakeRaster(raster, width, 5, 24, width, Paging::None));
        ASSERT_EQ(surface.Present(&raster, 0), 1);
        ASSERT_EQ(Shown(surface, width, 5), PixelsOf(raster)) << width;
    }
}

TEST_F(Surface, ASmallerRasterFillsTheTopLeftAndLeavesTheRest)
{
    ScreenSurface surface;
    ASSERT_EQ(surface.Create(9, 6, 24), 1);
    Raster whole;
    Raster part;
    ASSERT_NO_FATAL_FAILURE(MakeRaster(whole, 12, 8, 24, 1, Paging::None));
    ASSERT_NO_FATAL_FAILURE(MakeRaster(part, 5, 4, 24, 2, Paging::None));
    ASSERT_EQ(surface.Present(&whole, 0), 1);
    ASSERT_EQ(surface.Present(&part, 0), 1);
    Rows expected = PixelsOf(whole);
    expected.resize(6);
    const Rows over = PixelsOf(part);
    for (size_t y = 0; y < 6; ++y) {
        expected[y].resize(27);
        if (y < 4)
            std::copy(over[y].begin(), over[y].end(), expected[y].begin());
    }
    EXPECT_EQ(Shown(surface, 9, 6), expected);
}

TEST_F(Surface, OtherRastersAreRefusedAndLeaveTheSurface)
{
    ScreenSurface surface;
    EXPECT_EQ(surface.Present(nullptr, 0), -4);
    Raster raster;
    ASSERT_NO_FATAL_FAILURE(MakeRaster(raster, 4, 4, 24, 1, Paging::None));
    EXPECT_EQ(surface.Present(&raster, 0), -3);
    ASSERT_EQ(surface.Create(4, 4, 24), 1);
    ASSERT_EQ(surface.Present(&raster, 0), 1);
    for (u32 depth : {8u, 16u, 32u}) {
        Raster other;
        ASSERT_NO_FATAL_FAILURE(MakeRaster(other, 4, 4, depth, 2, Paging::None));
        EXPECT_EQ(surface.Present(&other, 0), -1);
    }
    Raster second;
    ASSERT_NO_FATAL_FAILURE(MakeRaster(second, 4, 4, 24, 5, Paging::None));
    EXPECT_EQ(surface.Present(&second, 2), -1);
    EXPECT_EQ(Shown(surface, 4, 4), PixelsOf(raster));
    surface.Destroy();
    EXPECT_EQ(surface.Present(&second, 0), -3);
    EXPECT_EQ(surface.GetDC(), nullptr);
}

TEST_F(Surface, ALineThatCannotBeLockedLeavesTheRowsBeforeItShown)
{
    CountingAllocator memory;
    ScreenSurface surface;
    ASSERT_EQ(surface.Create(5, 4, 24), 1);
    Raster raster(&memory);
    ASSERT_NO_FATAL_FAILURE(MakeRaster(raster, 5, 4, 24, 3, Paging::Under));
    Rows expected = PixelsOf(raster);
    expected[2].assign(15, 0);
    expected[3].assign(15, 0);
    ASSERT_EQ(raster.ReleaseLines(2, 1, 1), 1);
    memory.fails = [](int, u32) { return true; };
    EXPECT_EQ(surface.Present(&raster, 0), -2);
    memory.fails = nullptr;
    EXPECT_EQ(Shown(surface, 5, 4), expected);
}

TEST_F(Surface, ARasterThatPagesIsShownAlike)
{
    ScreenSurface surface;
    ASSERT_EQ(surface.Create(7, 9, 24), 1);
    Raster raster;
    ASSERT_NO_FATAL_FAILURE(MakeRaster(raster, 7, 9, 24, 3, Paging::Under));
    const Rows expected = PixelsOf(raster);
    ShortMemory();
    ASSERT_EQ(surface.Present(&raster, 0), 1);
    EXPECT_EQ(FilesIn(FirstFolder).size(), 8u);
    EXPECT_EQ(Shown(surface, 7, 9), expected);
}
