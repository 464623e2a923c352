// Nearest-neighbour stretching written out pixel by pixel, on plain twins: what StretchRect and
// StretchRegion are held against. Steps and offsets run in unsigned 32 bits. Bounds are found in
// 64: a sum of 2^32 and more is past the source.
#pragma once

#include "PlainCopy.h"

#include "foundation/Numbers.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace plain_stretch
{

inline DoubleRect Ordered(DoubleRect rect)
{
    if (rect.left > rect.right)
        std::swap(rect.left, rect.right);
    if (rect.top > rect.bottom)
        std::swap(rect.top, rect.bottom);
    return rect;
}

inline f64 WidthOf(const DoubleRect& rect)
{
    return rect.right - rect.left + 1.0;
}

inline f64 HeightOf(const DoubleRect& rect)
{
    return rect.bottom - rect.top + 1.0;
}

inline bool StartsInside(const DoubleRect& rect, const PlainRaster& raster)
{
    return rect.left < raster.width && rect.top < raster.height;
}

inline void Narrow(DoubleRect* rect, const DoubleRect& to)
{
    rect->left = std::max(rect->left, to.left);
    rect->top = std::max(rect->top, to.top);
    rect->right = std::min(rect->right, to.right);
    rect->bottom = std::min(rect->bottom, to.bottom);
}

/// How pixel (i, j), counted from (targetX, targetY), is found: source column (fromX + i * stepX)
/// >> 16, row alike.
struct Mapping {
    DoubleRect to; // corrected for what begins before source or target, cut at the target's end
    u32 stepX, stepY;
    u32 fromX, fromY;
    i32 targetX, targetY;

    u32 Column(u32 i) const { return (i * stepX + fromX) >> 16; }
    u32 Row(u32 j) const { return (j * stepY + fromY) >> 16; }
    bool ColumnPast(i64 i, u32 width) const { return Past(i, stepX, fromX, width); }
    bool RowPast(i64 j, u32 height) const { return Past(j, stepY, fromY, height); }

private:
    static bool Past(i64 at, u32 step, u32 from, u32 size)
    {
        const u64 sum = static_cast<u64>(at) * step + from;
        return (sum >> 32) != 0 || (sum >> 16) >= size;
    }
};

inline Mapping Map(DoubleRect from, DoubleRect to, const PlainRaster& target)
{
    const f64 fromWidth = WidthOf(from);
    const f64 fromHeight = HeightOf(from);
    const f64 toWidth = WidthOf(to);
    const f64 toHeight = HeightOf(to);
    Mapping map;
    map.stepX = RoundToUnsigned(fromWidth * 65536.0 / toWidth);
    map.stepY = RoundToUnsigned(fromHeight * 65536.0 / toHeight);
    if (from.top < 0) {
        to.top -= toHeight * from.top / fromHeight;
        from.top = 0;
    }
    if (from.left < 0) {
        to.left -= toWidth * from.left / fromWidth;
        from.left = 0;
    }
    to.left = to.left < 0 ? 0 : to.left;
    to.top = to.top < 0 ? 0 : to.top;
    if (to.right >= target.width)
        to.right = static_cast<f64>(target.width) - 1;
    if (to.bottom >= target.height)
        to.bottom = static_cast<f64>(target.height) - 1;
    map.to = to;
    map.fromX = TruncateToUnsigned(std::floor(from.left * 65536.0));
    map.fromY = TruncateToUnsigned(std::floor(from.top * 65536.0));
    map.targetX = TruncateToSigned(std::floor(to.left));
    map.targetY = TruncateToSigned(std::floor(to.top));
    return map;
}

/// Columns first to last and rows first to last of the mapping, target rows locked first.
inline void Draw(PlainRaster& source, PlainRaster& target, const Mapping& map, i64 firstX, i64 endX,
                 i64 firstY, i64 endY)
{
    if (firstX >= endX)
        return;
    for (i64 j = firstY; j < endY; ++j) {
        const i64 targetRow = map.targetY + j;
        const i64 sourceRow = map.Row(static_cast<u32>(j));
        if (target.Lock(targetRow) < 1 || source.Lock(sourceRow) < 1)
            return;
        for (i64 i = firstX; i < endX; ++i) {
            const u32 column = map.Column(static_cast<u32>(i));
            const i64 targetColumn = map.targetX + i;
            if (targetColumn >= target.width) // a width that rounded up
                continue;
            for (u32 c = 0; c < 3; ++c)
                target.Row(targetRow)[static_cast<size_t>(targetColumn * 3 + c)] =
                    source.Row(sourceRow)[column * 3 + c];
        }
        source.Release(sourceRow);
        target.Release(targetRow);
    }
}

} // namespace plain_stretch

/// Raster::StretchRect of `source`.
inline i32 PlainStretchRect(PlainRaster& source, PlainRaster* target, DoubleRect from,
                            DoubleRect to)
{
    using namespace plain_stretch;
    if (target == nullptr)
        return BadArgument;
    if (source.depth != 24 || target->depth != 24)
        return Failed;
    from = Ordered(from);
    to = Ordered(to);
    if (!StartsInside(from, source) || !StartsInside(to, *target))
        return Done;
    if (WidthOf(from) == WidthOf(to) && HeightOf(from) == HeightOf(to))
        return PlainCopyTo(source,
                           {TruncateToSigned(from.left), TruncateToSigned(from.top),
                            TruncateToSigned(WidthOf(from)), TruncateToSigned(HeightOf(from)),
                            TruncateToSigned(to.left), TruncateToSigned(to.top)},
                           target, SRCCOPY);
    const Mapping map = Map(from, to, *target);
    const i64 columns = TruncateToSigned(std::floor(WidthOf(map.to)));
    const i64 rows = TruncateToSigned(std::floor(HeightOf(map.to)));
    i64 endX = 0;
    while (endX < columns && !map.ColumnPast(endX, source.width))
        ++endX;
    i64 endY = 0;
    while (endY < rows && !map.RowPast(endY, source.height))
        ++endY;
    Draw(source, *target, map, 0, endX, 0, endY);
    return Done;
}

/// Raster::StretchRegion of `source`: the mapping of PlainStretchRect inside `clip`.
inline i32 PlainStretchRegion(PlainRaster& source, PlainRaster* target, DoubleRect from,
                              DoubleRect to, DoubleRect clip)
{
    using namespace plain_stretch;
    if (target == nullptr)
        return BadArgument;
    if (source.depth != 24 || target->depth != 24)
        return Failed;
    from = Ordered(from);
    to = Ordered(to);
    clip = Ordered(clip);
    if (!StartsInside(from, source) || !StartsInside(to, *target))
        return Done;
    Narrow(&clip, to);
    if (!StartsInside(clip, *target))
        return Done;
    const Mapping map = Map(from, to, *target);
    Narrow(&clip, map.to);
    const i64 firstX = TruncateToSigned(std::floor(clip.left - map.to.left));
    const i64 lastX = TruncateToSigned(std::floor(clip.right - map.to.left));
    const i64 firstY = TruncateToSigned(std::floor(clip.top - map.to.top));
    const i64 lastY = TruncateToSigned(std::floor(clip.bottom - map.to.top));
    i64 endX = firstX;
    while (endX <= lastX && !map.ColumnPast(endX, source.width))
        ++endX;
    i64 endY = firstY;
    while (endY <= lastY && !map.RowPast(endY, source.height))
        ++endY;
    Draw(source, *target, map, firstX, endX, firstY, endY);
    return Done;
}
