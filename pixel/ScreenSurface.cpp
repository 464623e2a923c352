// The surface's life, and the frames that are shown of a raster.

#include "pixel/ScreenSurface.h"

#include "pixel/GreyDiffusion.h"
#include "pixel/OrderedDither.h"
#include "pixel/RowWalk.h"

#include <algorithm>
#include <stdlib.h>
#include <string.h>

namespace
{

// A header with room for the table of greys, laid out as a BITMAPINFO of four colours.
struct SurfaceFormat {
    BITMAPINFOHEADER header;
    RGBQUAD greys[4];
};

constexpr BYTE GreyLevels[4] = {0, 128, 192, 255};

} // namespace

ScreenSurface::ScreenSurface()
    : bitmap(nullptr), bits(nullptr), width(0), height(0), depth(0), ditherTable(nullptr)
{
}

ScreenSurface::~ScreenSurface()
{
    Destroy();
}

i32 ScreenSurface::Create(u32 newWidth, u32 newHeight, u32 newDepth)
{
    SurfaceFormat format = {};
    format.header.biSize = sizeof(BITMAPINFOHEADER);
    format.header.biWidth = static_cast<i32>(newWidth);
    format.header.biHeight = static_cast<i32>(newHeight);
    format.header.biPlanes = 1;
    format.header.biBitCount = static_cast<WORD>(newDepth);
    DrawingContext screen;
    if (newDepth == 2) {
        (void)screen.AttachWindow(nullptr);
        for (u32 i = 0; i < 4; ++i)
            format.greys[i] = {GreyLevels[i], GreyLevels[i], GreyLevels[i], 0};
    } else if (newDepth != 24) {
        return BadArgument;
    }
    // The platform would take a height below 0 for a bitmap with the top row first.
    if (newWidth > INT32_MAX || newHeight > INT32_MAX)
        return Failed;
    void* pixels = nullptr;
    const HBITMAP section =
        ::CreateDIBSection(screen.Handle(), reinterpret_cast<const BITMAPINFO*>(&format),
                           DIB_RGB_COLORS, &pixels, nullptr, 0);
    if (section == nullptr)
        return Failed;
    Destroy();
    bitmap = section;
    if (context.CreateMemory(nullptr) < 1 || context.SelectBitmap(bitmap) < 1) {
        Destroy();
        return Failed;
    }
    bits = static_cast<u8*>(pixels);
    width = newWidth;
    height = newHeight;
    depth = newDepth;
    return Done;
}

i32 ScreenSurface::CreateFromBitmap(HBITMAP source)
{
    if (source == nullptr)
        return BadArgument;
    BITMAP record = {};
    if (::GetObjectW(source, sizeof(record), &record) < static_cast<int>(sizeof(record)))
        return Failed;
    const i32 status =
        Create(static_cast<u32>(record.bmWidth), static_cast<u32>(record.bmHeight), 24);
    if (status < 0)
        return status;
    // Meant: with the surface made the result is Done. A bitmap that cannot be selected, as while
    // another context holds it, leaves the surface black.
    DrawingContext memory;
    if (memory.CreateMemory(nullptr) > 0 && memory.SelectBitmap(source) > 0)
        ::BitBlt(context.Handle(), 0, 0, record.bmWidth, record.bmHeight, memory.Handle(), 0, 0,
                 SRCCOPY);
    return Done;
}

void ScreenSurface::Destroy()
{
    EndColor();
    (void)context.DeleteMemory();
    if (bitmap != nullptr)
        ::DeleteObject(bitmap);
    bitmap = nullptr;
    bits = nullptr;
}

size_t ScreenSurface::Stride() const
{
    return depth == 24 ? (3 * (size_t{width} + 1)) & ~size_t{3}
                       : ((size_t{width} * 2 + 31) >> 3) & ~size_t{3};
}

u8* ScreenSurface::BitmapRow(u32 y) const
{
    return bits + (height - y - 1) * Stride();
}

i32 ScreenSurface::Present(Raster* raster, u32 method)
{
    if (raster == nullptr)
        return BadArgument;
    if (bits == nullptr)
        return WrongState;
    RasterInfo info = {};
    info.size = sizeof(info);
    (void)raster->GetInfo(&info);
    if (info.depth != 24)
        return Failed;
    const u32 rows = std::min(height, info.height);
    const u32 columns = std::min(width, info.width);
    return depth == 2 ? PresentGrey(raster, rows, columns)
                      : PresentColor(raster, method, rows, columns);
}

i32 ScreenSurface::PresentColor(Raster* raster, u32 method, u32 rows, u32 columns)
{
    i32 status = BeginColor(method);
    if (status < 1)
        return status;
    u32 y = 0;
    status = DrawRows(raster, 0, i64{rows} - 1,
                      [&](const u8* row) { ShowColorRow(row, y++, columns, method); });
    // The dither table stays until the next frame or the surface's end when a row did not come.
    if (status < 1)
        return status;
    EndColor();
    return Done;
}

i32 ScreenSurface::BeginColor(u32 method)
{
    return method == 0 ? Done : BuildDitherTable(method);
}

void ScreenSurface::ShowColorRow(const u8* row, u32 y, u32 columns, u32 method)
{
    u8* const target = BitmapRow(y);
    if (method == 0)
        memcpy(target, row, size_t{columns} * 3);
    else
        DitherRow(target, row, columns, ditherTable, y);
}

void ScreenSurface::EndColor()
{
    free(ditherTable);
    ditherTable = nullptr;
}

i32 ScreenSurface::BuildDitherTable(u32 method)
{
    if (method != 1)
        return Failed;
    EndColor();
    // Made for each frame: what is idle holds no table.
    ditherTable = static_cast<u8*>(malloc(DitherTableSize));
    if (ditherTable == nullptr)
        return NoMemory;
    FillDitherTable(ditherTable);
    return Done;
}

i32 ScreenSurface::PresentGrey(Raster* raster, u32 rows, u32 columns)
{
    MallocAllocator memory;
    GreyErrors errors(&memory);
    const i32 status = errors.Create(columns);
    if (status < 1)
        return status;
    u32 y = 0;
    return DrawRows(raster, 0, i64{rows} - 1, [&](const u8* row) {
        u8* const target = BitmapRow(y++);
        // The whole row: beside a narrower picture the surface turns black.
        memset(target, 0, Stride());
        DiffuseGreyRow(target, row, columns, errors.Current(), errors.Next());
        errors.Advance();
    });
}
