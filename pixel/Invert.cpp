// Inverting a rectangle or its outline, which shows on any picture.

#include "image/Raster.h"
#include "pixel/Rows.h"
#include "pixel/RowWalk.h"

namespace
{

void InvertPixels(u8* row, u32 depth, i32 x, i32 count)
{
    u8* const pixels = row + size_t{StepOf(depth)} * static_cast<u32>(x);
    if (depth == 24)
        InvertRow24(pixels, static_cast<u32>(count));
    else
        InvertRow32(pixels, static_cast<u32>(count));
}

} // namespace

i32 Raster::InvertRect(PixelRect rectangle)
{
    if (!HasColor(info.depth))
        return Failed;
    if (!ClipRect(&rectangle, info))
        return Done;
    const i32 left = rectangle.left;
    const i32 count = rectangle.right - left + 1;
    return DrawRows(this, rectangle.top, rectangle.bottom,
                    [&](u8* row) { InvertPixels(row, info.depth, left, count); });
}

i32 Raster::InvertFrame(PixelRect rectangle)
{
    if (!HasColor(info.depth))
        return Failed;
    Outline outline = {};
    if (!ClipOutline(rectangle, info, &outline))
        return Done;
    // Meant, here and below: what is drawn of a frame that sticks out differs from FrameRect and
    // from depth to depth. A selection that is scrolled out at the bottom keeps its bottom row.
    outline.bottom = true;
    if (info.depth == 32) {
        outline.top = true;
        outline.left = false;
    }
    return DrawOutline(this, outline,
                       [&](u8* row, i32 x, i32 count) { InvertPixels(row, info.depth, x, count); });
}
