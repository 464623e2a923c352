// The formula of painting through a mask, written out pixel by pixel on plain rasters.
#pragma once

#include "PlainFill.h"

/// out = ((0x10000 - w) * old + w * c) >> 16 with w = m * (a + 1), m being 0 left of the mask. The
/// rectangle comes back as it was cut, low 32 bits of exact numbers.
inline i32 PlainBlendMask(PlainRaster& plain, u32 color, PixelRect* rectangle, PlainRaster* mask,
                          i64 maskX, i64 maskY)
{
    if (rectangle == nullptr || mask == nullptr)
        return BadArgument;
    if (!PlainPaintable(plain) && mask->depth != 8)
        return Failed;
    const PlainArea area = PlainCut(plain, *rectangle);
    *rectangle = area.given;
    if (area.nothing)
        return Done;
    const i64 left = area.cut.left;
    const i64 top = area.cut.top;
    i64 right = area.cut.right;
    i64 bottom = area.cut.bottom;
    if (area.given.left < 0)
        maskX -= area.given.left;
    if (area.given.top < 0)
        maskY -= area.given.top;
    const i64 maskWidth = mask->width;
    const i64 maskHeight = mask->height;
    if (right - left + 1 > maskWidth - maskX)
        right = maskWidth - maskX + left - 1;
    if (bottom - top + 1 > maskHeight - maskY)
        bottom = maskHeight - maskY + top - 1;
    *rectangle = {static_cast<i32>(left), static_cast<i32>(top), static_cast<i32>(right),
                  static_cast<i32>(bottom)};
    if (!PlainPaintable(plain) || right < left)
        return Done;
    const PlainColor split(color);
    for (i64 y = top; y <= bottom; ++y) {
        i32 status = plain.Lock(y);
        if (status < 1)
            return status;
        const i64 maskRow = y - top + maskY;
        status = mask->Lock(maskRow);
        if (status < 1)
            return status;
        for (i64 x = left; x <= right; ++x) {
            const i64 column = x - left + maskX;
            const u32 m = column < 0 ? 0u : mask->Row(maskRow)[static_cast<size_t>(column)];
            const u32 w = m * split.weight;
            u8* const pixel = plain.Row(y).data() + x * (plain.depth == 24 ? 3 : 4);
            for (u32 i = 0; i < 3; ++i)
                pixel[i] = static_cast<u8>(((0x10000 - w) * pixel[i] + w * split.c[i]) >> 16);
        }
        plain.Release(y);
        mask->Release(maskRow);
    }
    return Done;
}
