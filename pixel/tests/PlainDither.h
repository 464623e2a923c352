// The straight copy and the ordered dither of a screen surface, pixel by pixel.
#pragma once

#include "pixel/tests/PlainSurface.h"

/// The threshold of a pixel: a 4x4 matrix that repeats over the picture.
inline u32 PlainThreshold(u32 x, u32 y)
{
    static constexpr u32 Matrix[4][4] = {{7, 3, 6, 2}, {1, 5, 0, 4}, {6, 2, 7, 3}, {0, 4, 1, 5}};
    return Matrix[y & 3][x & 3];
}

/// A byte brought to five bits: the threshold is added and the low three bits go.
inline u8 PlainDithered(u32 value, u32 threshold)
{
    const u32 sum = (value + threshold) & ~7u;
    return static_cast<u8>(sum > 255 ? 255 : sum);
}

/// One row at depth 24.
inline void PlainColorRow(PlainSurface& surface, const u8* source, u32 y, u32 columns, u32 method)
{
    u8* row = surface.Row(y);
    for (u32 x = 0; x < columns; ++x)
        for (u32 channel = 0; channel < 3; ++channel) {
            const u8 value = source[x * 3 + channel];
            row[x * 3 + channel] = method == 0 ? value : PlainDithered(value, PlainThreshold(x, y));
        }
}

/// Present on a surface of depth 24: method 0 copies, 1 dithers.
inline i32 PlainPresentColor(PlainSurface& surface, PlainRaster& raster, u32 method)
{
    if (raster.depth != 24 || method > 1)
        return Failed;
    const u32 columns = std::min(surface.width, raster.width);
    const u32 rows = std::min(surface.height, raster.height);
    for (u32 y = 0; y < rows; ++y) {
        if (const i32 result = raster.Lock(y); result < 1)
            return result;
        PlainColorRow(surface, raster.Row(y).data(), y, columns, method);
        raster.Release(y);
    }
    return Done;
}
