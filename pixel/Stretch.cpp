// Nearest-neighbour stretch. The mapping is set up in doubles, since view coordinates are doubles;
// the loops run on 16.16 fixed point in unsigned 32 bits.

#include "foundation/Numbers.h"
#include "image/Raster.h"
#include "pixel/NormalizeRect.h"

#include <algorithm>
#include <math.h>

namespace
{

constexpr f64 One = 65536.0; // 1 in 16.16

// One axis of the mapping.
struct Axis {
    u32 start; // source position of the first target pixel, 16.16
    u32 step;  // source pixels for one target pixel, 16.16
    i32 to;    // first target pixel
    i32 count; // target pixels
};

// How many of `count` positions lie before the end of a source of `size` pixels. Found in 64 bits:
// a position past 2^32 is past the source, though the loops' 32 bits would come round.
i32 CutToSource(const Axis& axis, u32 size)
{
    const u64 end = std::min(u64{size} << 16, u64{1} << 32);
    if (axis.start >= end)
        return 0;
    if (axis.step == 0)
        return axis.count;
    const u64 inside = (end - axis.start + axis.step - 1) / axis.step;
    return inside < static_cast<u64>(axis.count) ? static_cast<i32>(inside) : axis.count;
}

// `low` and `high` bound the source and the target along the axis, `size` and `targetSize` are the
// rasters' extents.
Axis MapAxis(f64 sourceLow, f64 sourceHigh, f64 targetLow, f64 targetHigh, u32 size, u32 targetSize)
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
    axis.count = TruncateToSigned(floor(targetHigh - targetLow + 1.0));
    axis.to = TruncateToSigned(floor(targetLow));
    axis.start = TruncateToUnsigned(floor(sourceLow * One));
    // Rounding of the sum can bring the last pixel of a fractional rectangle past the edge.
    axis.count = static_cast<i32>(std::min(i64{axis.count}, i64{targetSize} - axis.to));
    axis.count = axis.count < 1 ? 0 : CutToSource(axis, size);
    return axis;
}

void StretchRow(u8* target, const u8* source, const Axis& columns)
{
    target += size_t{3} * static_cast<u32>(columns.to);
    u8* const end = target + size_t{3} * static_cast<u32>(columns.count);
    const u32 step = columns.step;
    u32 position = columns.start;
    for (; target != end; target += 3, position += step) {
        const u8* const pixel = source + size_t{3} * (position >> 16);
        target[0] = pixel[0];
        target[1] = pixel[1];
        target[2] = pixel[2];
    }
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
    (void)NormalizeDoubleRect(&from);
    (void)NormalizeDoubleRect(&into);
    // Written so that a coordinate that is no number draws nothing.
    if (!(from.left < info.width && from.top < info.height && into.left < to.width &&
          into.top < to.height))
        return Done;
    const f64 width = from.right - from.left + 1.0;
    const f64 height = from.bottom - from.top + 1.0;
    if (width == into.right - into.left + 1.0 && height == into.bottom - into.top + 1.0)
        return CopyTo(TruncateToSigned(from.left), TruncateToSigned(from.top),
                      TruncateToSigned(width), TruncateToSigned(height), target,
                      TruncateToSigned(into.left), TruncateToSigned(into.top), SRCCOPY);

    const Axis columns =
        MapAxis(from.left, from.right, into.left, into.right, info.width, to.width);
    const Axis rows = MapAxis(from.top, from.bottom, into.top, into.bottom, info.height, to.height);
    u32 position = rows.start;
    for (i32 i = 0; i < rows.count; ++i, position += rows.step) {
        const i32 targetLine = rows.to + i;
        const i32 line = static_cast<i32>(position >> 16);
        u8* written = nullptr;
        u8* read = nullptr;
        // A line that cannot be had ends the work quietly: the view stays incomplete until it is
        // drawn again. The target's line then stays locked until UnlockAll.
        if (target->LockLines(targetLine, &written, nullptr) < 1 ||
            LockLines(line, &read, nullptr) < 1)
            return Done;
        StretchRow(written, read, columns);
        (void)ReleaseLines(line, 1, 0);
        (void)target->ReleaseLines(targetLine, 1, 0);
    }
    return Done;
}
