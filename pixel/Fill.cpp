// Filling a whole raster or a rectangle with one colour.

#include "image/Raster.h"
#include "pixel/Ink.h"
#include "pixel/RowWalk.h"

#include <string.h>

i32 Raster::FillAll(u32 color)
{
    if (!HasColor(info.depth))
        return Failed;
    const Ink ink = InkOf(color, info.depth);
    const i64 last = i64{info.height} - 1;
    if (info.depth != 24 || ink.color.alpha != 255)
        return DrawRows(this, 0, last, [&](u8* row) { DrawInk(ink, row, 0, info.width); });

    u8* const model = static_cast<u8*>(TakeBlock(info.stride));
    // Without a block for the model line nothing is drawn, and that is no failure.
    if (model == nullptr)
        return Done;
    StoreRow24(model, info.width, ink.color);
    const i32 status = DrawRows(this, 0, last, [&](u8* row) { memcpy(row, model, info.stride); });
    GiveBlock(model);
    return status;
}

i32 Raster::FillRect(u32 color, PixelRect rectangle)
{
    if (!HasColor(info.depth))
        return Failed;
    if (!ClipRect(&rectangle, info))
        return Done;
    const Ink ink = InkOf(color, info.depth);
    const i32 left = rectangle.left;
    const size_t count = static_cast<u32>(rectangle.right - left) + size_t{1};
    return DrawRows(this, rectangle.top, rectangle.bottom,
                    [&](u8* row) { DrawInk(ink, row, left, count); });
}
