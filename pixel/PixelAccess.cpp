// Single pixels.

#include "image/Raster.h"
#include "pixel/Rows.h"

namespace
{

bool HoldsPixel(const RasterInfo& raster, i32 x, i32 y)
{
    return HasColor(raster.depth) && x >= 0 && y >= 0 && static_cast<u32>(x) < raster.width &&
           static_cast<u32>(y) < raster.height;
}

} // namespace

i32 Raster::GetPixel(i32 x, i32 y, u32* color)
{
    if (color == nullptr)
        return NoMemory;
    if (!HoldsPixel(info, x, y))
        return Failed;
    u8* row = nullptr;
    const i32 status = LockLine(y, &row);
    if (status < 1)
        return status;
    const u8* const pixel = row + size_t{StepOf(info.depth)} * static_cast<u32>(x);
    const u32 alpha = info.depth == 32 ? pixel[3] : 255;
    *color = u32{pixel[0]} << 8 | u32{pixel[1]} << 16 | u32{pixel[2]} << 24 | alpha;
    (void)ReleaseLine(y);
    return Done;
}

i32 Raster::SetPixel(i32 x, i32 y, u32 color)
{
    if (!HoldsPixel(info, x, y))
        return Failed;
    u8* row = nullptr;
    const i32 status = LockLine(y, &row);
    if (status < 1)
        return status;
    const ColorBytes bytes = BytesOf(color);
    u8* const pixel = row + size_t{StepOf(info.depth)} * static_cast<u32>(x);
    pixel[0] = bytes.blue;
    pixel[1] = bytes.green;
    pixel[2] = bytes.red;
    if (info.depth == 32)
        pixel[3] = bytes.alpha;
    (void)ReleaseLine(y);
    return Done;
}
