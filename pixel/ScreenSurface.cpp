#include "pixel/ScreenSurface.h"

#include <algorithm>
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

ScreenSurface::ScreenSurface() : bitmap(nullptr), bits(nullptr), width(0), height(0), depth(0) {}

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

void ScreenSurface::Destroy()
{
    (void)context.DeleteMemory();
    if (bitmap != nullptr)
        ::DeleteObject(bitmap);
    bitmap = nullptr;
    bits = nullptr;
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
    if (info.depth != 24 || depth != 24)
        return Failed;
    return PresentColor(raster, method, std::min(height, info.height), std::min(width, info.width));
}

i32 ScreenSurface::PresentColor(Raster* raster, u32 method, u32 rows, u32 columns)
{
    if (method != 0)
        return Failed;
    const size_t stride = (3 * (size_t{width} + 1)) & ~size_t{3};
    for (u32 y = 0; y < rows; ++y) {
        const i32 line = static_cast<i32>(y);
        u8* row = nullptr;
        const i32 status = raster->LockLines(line, &row, nullptr);
        if (status < 1)
            return status;
        memcpy(bits + (height - y - 1) * stride, row, size_t{columns} * 3);
        (void)raster->ReleaseLines(line, 1, 0);
    }
    return Done;
}
