// Filling a whole raster or a rectangle with one colour.

#include "image/Raster.h"
#include "pixel/Ink.h"
#include "pixel/RowWalk.h"

#include <string.h>

namespace
{

// From here on a row is copied from a model of it: rows begin at any address, and copying one is
// faster than making it there anew.
constexpr size_t ModelRows = 8;
constexpr size_t ModelPixels = 64;

} // namespace

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
    const size_t rows = static_cast<u32>(rectangle.bottom - rectangle.top) + size_t{1};
    u8* model = nullptr;
    if (info.depth == 24 && ink.color.alpha == 255 && rows >= ModelRows && count >= ModelPixels)
        model = static_cast<u8*>(TakeBlock(info.stride));
    if (model == nullptr)
        return DrawRows(this, rectangle.top, rectangle.bottom,
                        [&](u8* row) { DrawInk(ink, row, left, count); });

    StoreRow24(model, count, ink.color);
    const i32 status = DrawRows(this, rectangle.top, rectangle.bottom, [&](u8* row) {
        memcpy(row + size_t{3} * static_cast<u32>(left), model, 3 * count);
    });
    GiveBlock(model);
    return status;
}
