// Drawing a rectangle's outline in one colour.

#include "image/Raster.h"
#include "pixel/Ink.h"
#include "pixel/RowWalk.h"

i32 Raster::FrameRect(u32 color, PixelRect rectangle)
{
    // Meant: at 32 bits a frame is a filled rectangle.
    if (info.depth == 32)
        return FillRect(color, rectangle);
    if (info.depth != 24)
        return Failed;
    Outline outline = {};
    if (!ClipOutline(rectangle, info, &outline))
        return Done;
    const Ink ink = InkOf(color, info.depth);
    return DrawOutline(this, outline, [&](u8* row, i32 x, i32 count) {
        DrawInk(ink, row, x, static_cast<u32>(count));
    });
}
