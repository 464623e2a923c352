// The error diffusion of a screen surface into four greys, pixel by pixel, with every error kept in
// a picture of its own instead of two rows.
#pragma once

#include "pixel/tests/PlainSurface.h"

/// The noise of one random number: its low byte, signed, brought to -4 to 3.
inline i32 PlainNoise(LONG number)
{
    i32 low = number & 255;
    if (low >= 128)
        low -= 256;
    return low / 32;
}

/// Present on a surface of depth 2. Takes one of `numbers` a pixel, from the front.
inline i32 PlainPresentGrey(PlainSurface& surface, PlainRaster& raster,
                            const std::vector<LONG>& numbers, size_t* taken)
{
    *taken = 0;
    if (raster.depth != 24)
        return Failed;
    const u32 columns = std::min(surface.width, raster.width);
    const u32 rows = std::min(surface.height, raster.height);
    // In sixteenths; one column more on each side and one row more below for what spills.
    std::vector<std::vector<i32>> errors(rows + 1, std::vector<i32>(columns + 2));
    for (u32 y = 0; y < rows; ++y) {
        if (const i32 result = raster.Lock(y); result < 1)
            return result;
        u8* row = surface.Row(y);
        std::fill(row, row + surface.stride, u8{0});
        const std::vector<u8>& source = raster.Row(y);
        for (u32 x = 0; x < columns; ++x) {
            const u32 blue = source[x * 3];
            const u32 green = source[x * 3 + 1];
            const u32 red = source[x * 3 + 2];
            const i32 luma = static_cast<i32>((28 * blue + 77 * red + 151 * green) >> 8);
            const i32 light = luma + errors[y][x + 1] / 16;
            const i32 noise = PlainNoise(numbers[(*taken)++]);
            u32 level = 3;
            i32 error = light - 255;
            if (light < noise + 64) {
                level = 0;
                error = light;
            } else if (light < noise + 128) {
                level = 1;
                error = light - 128;
            } else if (light < noise + 196) {
                level = 2;
                error = light - 192;
            }
            errors[y][x + 2] += 7 * error;
            errors[y + 1][x] += 3 * error;
            errors[y + 1][x + 1] += 5 * error;
            errors[y + 1][x + 2] += error;
            row[x >> 2] = static_cast<u8>(row[x >> 2] | level << (6 - (x & 3) * 2));
        }
        raster.Release(y);
    }
    return Done;
}
