// Snapshots and turns written out pixel by pixel, on plain twins: what SnapshotTo and Rotated are
// held against. A target that could not be created is left empty here; the caller resets its
// raster, which reports the asked size, before it compares.
#pragma once

#include "PlainFill.h"

#include <algorithm>
#include <utility>

/// Memory is short for the lines of paging rasters, and not for the lines of new targets.
inline bool plainTargetsFit = false;

/// For its lifetime lines of `stride` bytes fit into memory, and wider ones do not. To be used with
/// paging twins whose lines are wider, and targets whose lines are not.
struct WithShortMemoryBeyond {
    explicit WithShortMemoryBeyond(u32 stride)
    {
        tavrix::testing::SetFreeMemory(0xA0000ull + stride + 1);
        MemoryGauge::Sample();
        plainTargetsFit = true;
    }
    ~WithShortMemoryBeyond() { plainTargetsFit = false; }

private:
    WithShortMemory memory;
};

namespace plain_turn
{

/// Create at 24 bits without folders.
inline i32 CreateTarget(PlainRaster& target, u32 width, u32 height)
{
    target = PlainRaster();
    if (plainMemoryIsShort && !plainTargetsFit && height > 0)
        return Failed;
    target.Make(width, height, 24);
    return Done;
}

} // namespace plain_turn

/// Raster::SnapshotTo of `source`, without the palette. Locks everything and releases nothing.
inline i32 PlainSnapshotTo(PlainRaster& source, PlainRaster* target)
{
    if (target == nullptr || target == &source)
        return BadArgument;
    const i32 created = plain_turn::CreateTarget(*target, source.width, source.height);
    if (created < 1)
        return created;
    for (u32 y = 0; y < source.height; ++y) {
        const i32 from = source.Lock(y);
        if (from < 0)
            return from;
        const i32 to = target->Lock(y);
        if (to < 0)
            return to;
        std::copy_n(source.Row(y).begin(), std::min(source.stride, target->stride),
                    target->Row(y).begin());
    }
    return Done;
}

/// Raster::Rotated of `source`.
inline i32 PlainRotated(PlainRaster& source, PlainRaster* target, i32 angle)
{
    if (target == nullptr || target == &source)
        return BadArgument;
    if (angle == 0 || angle == 90) {
        i32 status = plain_turn::CreateTarget(*target, source.height, source.width);
        if (status < 1)
            return status;
        const i32 width = static_cast<i32>(source.width);
        const i32 height = static_cast<i32>(source.height);
        for (i32 y = 0; y < height; ++y)
            for (i32 x = 0; x < width; ++x) {
                u32 color = 0;
                status = PlainGetPixel(source, x, y, &color);
                if (status < 1)
                    return status;
                status = PlainSetPixel(*target, height - y - 1, x, color);
                if (status < 1)
                    return status;
            }
    } else if (angle == 180) {
        i32 status = PlainSnapshotTo(source, target);
        if (status < 1)
            return status;
        for (u32 y = 0; y < target->height; ++y) {
            status = target->Lock(y);
            if (status < 1)
                return status;
            for (u32 x = 0; x < target->width / 2; ++x)
                for (u32 c = 0; c < 3; ++c)
                    std::swap(target->Row(y)[x * 3 + c],
                              target->Row(y)[(target->width - 1 - x) * 3 + c]);
        }
        std::reverse(target->rows.begin(), target->rows.end());
    }
    return Done;
}
