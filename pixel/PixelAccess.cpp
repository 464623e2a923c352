// Single pixels.

#include "image/Raster.h"

i32 Raster::GetPixel(i32 x, i32 y, u32* color)
{
    if (color == nullptr)
        return NoMemory;
    if (info.depth != 24 && info.depth != 32)
        return Failed;
    if (x < 0 || y < 0 || static_cast<u32>(x) >= info.width || static_cast<u32>(y) >= info.height)
        return Failed;
    u8* row = nullptr;
    const i32 status = LockLines(y, &row, nullptr);
    if (status < 1)
        return status;
    const u8* const pixel = row + size_t{info.depth / 8} * static_cast<u32>(x);
    const u32 alpha = info.depth == 32 ? pixel[3] : 255;
    *color = u32{pixel[0]} << 8 | u32{pixel[1]} << 16 | u32{pixel[2]} << 24 | alpha;
    (void)ReleaseLines(y, 1, 0);
    return Done;
}

i32 Raster::SetPixel(i32 x, i32 y, u32 color)
{
    if (info.depth != 24 && info.depth != 32)
        return Failed;
    if (x < 0 || y < 0 || static_cast<u32>(x) >= info.width || static_cast<u32>(y) >= info.height)
        return Failed;
    u8* row = nullptr;
    const i32 status = LockLines(y, &row, nullptr);
    if (status < 1)
        return status;
    u8* const pixel = row + size_t{info.depth / 8} * static_cast<u32>(x);
    pixel[0] = static_cast<u8>(color >> 8);
    pixel[1] = static_cast<u8>(color >> 16);
    pixel[2] = static_cast<u8>(color >> 24);
    if (info.depth == 32)
        pixel[3] = static_cast<u8>(color);
    (void)ReleaseLines(y, 1, 0);
    return Done;
}
