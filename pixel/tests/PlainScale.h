// Area averaging and aspect scaling written out pixel by pixel, on plain twins: what BoxScaleLine
// and ScaleTo are held against.
#pragma once

#include "PlainStretch.h"

/// Raster::BoxScaleLine of `source`; all of it in unsigned 32 bits.
inline i32 PlainBoxScaleLine(PlainRaster& source, u8* out, u32 row, u32 height, u32 width)
{
    if (out == nullptr || row >= height)
        return BadArgument;
    if (source.depth != 24)
        return Failed;
    if (width == 0)
        return Done;
    const u32 unitX = (width << 10) / source.width;
    const u32 unitY = (height << 10) / source.height;
    const u32 stepX = (source.width << 16) / width;
    const u32 stepY = (source.height << 16) / height;
    const u32 top = (stepY * row) >> 16;
    const u32 bottom = (stepY * (row + 1)) >> 16;

    u32 lastLocked = top;
    for (u32 line = top; line <= bottom && line < source.height; ++line) {
        const i32 status = source.Lock(line);
        if (status < 1 && line == top)
            return status;
        if (status < 1)
            break;
        lastLocked = line;
    }

    const u32 topCover = (top + 1) * unitY - ((top * unitY) & ~0x3FFu);
    const u32 bottomCover = (row + 1) * 1024 - bottom * unitY;
    for (u32 i = 0; i < width; ++i) {
        const u32 left = (i * stepX) >> 16;
        const u32 right = ((i + 1) * stepX) >> 16;
        const u32 leftCover = (left + 1) * unitX - ((left * unitX) & ~0x3FFu);
        const u32 rightCover = (i + 1) * 1024 - right * unitX;
        u32 sums[3] = {};
        u32 weights = 0;
        for (u32 line = top; line <= bottom && line < source.height; ++line)
            for (u32 x = left; x <= right && x < source.width; ++x) {
                const u32 rowCover = line == top ? topCover : line == bottom ? bottomCover : unitY;
                const u32 columnCover = x == left ? leftCover : x == right ? rightCover : unitX;
                const u32 weight = (columnCover * rowCover) >> 4;
                const std::vector<u8>& from = source.Row(std::min(line, lastLocked));
                for (u32 c = 0; c < 3; ++c)
                    sums[c] += weight * from[x * 3 + c];
                weights += weight;
            }
        if (weights != 0)
            for (u32 c = 0; c < 3; ++c)
                out[i * 3 + c] = static_cast<u8>(sums[c] / weights);
    }
    return Done;
}

/// Raster::ScaleTo of `source`; `scratch` as for an opaque fill of the target.
inline i32 PlainScaleTo(PlainRaster& source, PlainRaster* target, u32 background, u32 fit, u32 box,
                        bool scratch = true)
{
    if (target == nullptr || target == &source)
        return BadArgument;
    if (source.depth == 0)
        return Failed;
    i32 status = PlainFillAll(*target, background, scratch);
    if (status < 1)
        return status;
    u64 width = source.width;
    u64 height = source.height;
    if (width == 0 || height == 0)
        return Done;
    if (fit != 0 || width > target->width || height > target->height) {
        width = u64{source.width} * target->height / source.height;
        height = target->height;
        if (width > target->width) {
            height = u64{source.height} * target->width / source.width;
            width = target->width;
        }
    }
    if (width == 0 || height == 0)
        return Done;
    if (source.depth != 24 || target->depth != 24)
        return Failed;
    const u32 left = (target->width - static_cast<u32>(width)) >> 1;
    const u32 top = (target->height - static_cast<u32>(height)) >> 1;
    if (box == 0)
        return PlainStretchRect(source, target, {0, 0, source.width - 1.0, source.height - 1.0},
                                {static_cast<f64>(left), static_cast<f64>(top),
                                 static_cast<f64>(left + width) - 1.0,
                                 static_cast<f64>(top + height) - 1.0});
    for (u32 y = 0; y < height; ++y) {
        status = target->Lock(y + top);
        if (status < 1)
            return status;
        status = PlainBoxScaleLine(source, target->Row(y + top).data() + left * 3, y,
                                   static_cast<u32>(height), static_cast<u32>(width));
        if (status < 1)
            return status;
        target->Release(y); // row y of the target, not the row that was locked
    }
    return Done;
}
