// Nearest-neighbour stretch. The mapping is set up in doubles, since view coordinates are doubles;
// the loops run on 16.16 fixed point in unsigned 32 bits.

#include "foundation/Numbers.h"
#include "image/Raster.h"
#include "pixel/NormalizeRect.h"
#include "pixel/RowWalk.h"
#include "pixel/StretchRow.h"

#include <algorithm>
#include <math.h>

namespace
{

constexpr f64 One = 65536.0; // 1 in 16.16

// One axis of the mapping.
struct Axis {
    u32 start; // source position of the first target pixel, 16.16
    u32 step;  // source pixels for one target pixel, 16.16
    i32 to;    // the mapping's first target pixel
    f64 low;   // the target's bounds, corrected
    f64 high;
    i32 first; // the first target pixel to be written, counted from `to`
    i32 count; // how many
};

// How many of the axis's pixels have their source before the end of `size` pixels. Found in 64
// bits: a position past 2^32 is past the source, though the loops' 32 bits would come round.
i32 CutToSource(const Axis& axis, u32 size)
{
    const u64 end = std::min(u64{size} << 16, u64{1} << 32);
    const u64 start = axis.start + static_cast<u64>(axis.first) * axis.step;
    if (start >= end)
        return 0;
    if (axis.step == 0)
        return axis.count;
    const u64 inside = (end - start + axis.step - 1) / axis.step;
    return inside < static_cast<u64>(axis.count) ? static_cast<i32>(inside) : axis.count;
}

// `low` and `high` bound the source and the target along the axis; `targetSize` is the target
// raster's extent. Leaves what is to be written open.
Axis MapAxis(f64 sourceLow, f64 sourceHigh, f64 targetLow, f64 targetHigh, u32 targetSize)
{
    const f64 span = sourceHigh - sourceLow + 1.0;
    const f64 targetSpan = targetHigh - targetLow + 1.0;
    Axis axis = {};
    axis.step = RoundToUnsigned(span * One / targetSpan);
    if (sourceLow < 0) {
        targetLow -= targetSpan * sourceLow / span;
        sourceLow = 0;
    }
    // Meant: a target that starts outside is moved in and the source is not, so that the start of
    // the source shows at the edge.
    if (targetLow < 0)
        targetLow = 0;
    if (targetHigh >= targetSize)
        targetHigh = targetSize - 1.0;
    axis.low = targetLow;
    axis.high = targetHigh;
    axis.to = TruncateToSigned(floor(targetLow));
    axis.start = TruncateToUnsigned(floor(sourceLow * One));
    return axis;
}

// Writes `count` pixels from `first` on, as far as both rasters go. Rounding of the sum can bring
// the last pixel of a fractional rectangle past the target's edge.
void TakePart(Axis* axis, i64 first, i64 count, u32 size, u32 targetSize)
{
    axis->first = static_cast<i32>(std::clamp<i64>(first, 0, targetSize));
    count = std::min(count, i64{targetSize} - axis->to - axis->first);
    axis->count = count < 1 ? 0 : static_cast<i32>(count);
    if (axis->count > 0)
        axis->count = CutToSource(*axis, size);
}

void TakeAll(Axis* axis, u32 size, u32 targetSize)
{
    TakePart(axis, 0, TruncateToSigned(floor(axis->high - axis->low + 1.0)), size, targetSize);
}

// From the pixel of `clipLow` to that of `clipHigh`, both inside the target's bounds.
void TakeClip(Axis* axis, f64 clipLow, f64 clipHigh, u32 size, u32 targetSize)
{
    clipLow = std::max(clipLow, axis->low);
    clipHigh = std::min(clipHigh, axis->high);
    const i64 first = TruncateToSigned(floor(clipLow - axis->low));
    const i64 last = TruncateToSigned(floor(clipHigh - axis->low));
    TakePart(axis, first, last - first + 1, size, targetSize);
}

void StretchRows(Raster* source, u32 sourceStride, Raster* target, const Axis& columns,
                 const Axis& rows)
{
    if (columns.count < 1)
        return;
    StretchColumns mapped;
    MapColumns(&mapped, columns.start + static_cast<u32>(columns.first) * columns.step,
               columns.step, static_cast<u32>(columns.count), sourceStride);
    const size_t firstWritten = size_t{3} * static_cast<u32>(columns.to + columns.first);
    u32 position = rows.start + static_cast<u32>(rows.first) * rows.step;
    for (i32 i = 0; i < rows.count; ++i, position += rows.step) {
        const i32 targetLine = rows.to + rows.first + i;
        const i32 line = static_cast<i32>(position >> 16);
        u8* written = nullptr;
        u8* read = nullptr;
        // A line that cannot be had ends the work quietly: the view stays incomplete until it is
        // drawn again. The target's line then stays locked until UnlockAll.
        if (LockPair(target, targetLine, &written, source, line, &read) < 1)
            return;
        StretchRow24(written + firstWritten, read, mapped);
        (void)source->ReleaseLine(line);
        (void)target->ReleaseLine(targetLine);
    }
}

// A coordinate that is no number is not inside, and so draws nothing.
bool StartsInside(const DoubleRect& rectangle, const RasterInfo& raster)
{
    return rectangle.left < raster.width && rectangle.top < raster.height;
}

// Orders both rectangles; false when one starts behind its raster and there is nothing to map.
bool PrepareMapping(DoubleRect* from, DoubleRect* into, const RasterInfo& source,
                    const RasterInfo& target)
{
    (void)NormalizeDoubleRect(from);
    (void)NormalizeDoubleRect(into);
    return StartsInside(*from, source) && StartsInside(*into, target);
}

} // namespace

i32 Raster::StretchRect(Raster* target, f64 sourceLeft, f64 sourceTop, f64 sourceRight,
                        f64 sourceBottom, f64 targetLeft, f64 targetTop, f64 targetRight,
                        f64 targetBottom)
{
    if (target == nullptr)
        return BadArgument;
    const RasterInfo& to = target->info;
    if (info.depth != 24 || to.depth != 24)
        return Failed;
    DoubleRect from = {sourceLeft, sourceTop, sourceRight, sourceBottom};
    DoubleRect into = {targetLeft, targetTop, targetRight, targetBottom};
    if (!PrepareMapping(&from, &into, info, to))
        return Done;
    const f64 width = from.right - from.left + 1.0;
    const f64 height = from.bottom - from.top + 1.0;
    if (width == into.right - into.left + 1.0 && height == into.bottom - into.top + 1.0)
        return CopyTo(TruncateToSigned(from.left), TruncateToSigned(from.top),
                      TruncateToSigned(width), TruncateToSigned(height), target,
                      TruncateToSigned(into.left), TruncateToSigned(into.top), SRCCOPY);

    Axis columns = MapAxis(from.left, from.right, into.left, into.right, to.width);
    Axis rows = MapAxis(from.top, from.bottom, into.top, into.bottom, to.height);
    TakeAll(&columns, info.width, to.width);
    TakeAll(&rows, info.height, to.height);
    StretchRows(this, info.stride, target, columns, rows);
    return Done;
}

i32 Raster::StretchRegion(Raster* target, f64 sourceLeft, f64 sourceTop, f64 sourceRight,
                          f64 sourceBottom, f64 targetLeft, f64 targetTop, f64 targetRight,
                          f64 targetBottom, f64 clipLeft, f64 clipTop, f64 clipRight,
                          f64 clipBottom)
{
    if (target == nullptr)
        return BadArgument;
    const RasterInfo& to = target->info;
    if (info.depth != 24 || to.depth != 24)
        return Failed;
    DoubleRect from = {sourceLeft, sourceTop, sourceRight, sourceBottom};
    DoubleRect into = {targetLeft, targetTop, targetRight, targetBottom};
    if (!PrepareMapping(&from, &into, info, to))
        return Done;
    DoubleRect clip = {clipLeft, clipTop, clipRight, clipBottom};
    (void)NormalizeDoubleRect(&clip);
    // Narrowed to the target as it was given, and again to the corrected one.
    clip = {std::max(clip.left, into.left), std::max(clip.top, into.top),
            std::min(clip.right, into.right), std::min(clip.bottom, into.bottom)};
    if (!StartsInside(clip, to))
        return Done;
    Axis columns = MapAxis(from.left, from.right, into.left, into.right, to.width);
    Axis rows = MapAxis(from.top, from.bottom, into.top, into.bottom, to.height);
    TakeClip(&columns, clip.left, clip.right, info.width, to.width);
    TakeClip(&rows, clip.top, clip.bottom, info.height, to.height);
    StretchRows(this, info.stride, target, columns, rows);
    return Done;
}
