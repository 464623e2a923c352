// The formulas of reading, writing and filling pixels, written out pixel by pixel on a plain
// raster.
#pragma once

#include "Twin.h"

/// A colour word taken apart: bytes in the order of a pixel (blue, green, red), alpha, weight.
struct PlainColor {
    explicit PlainColor(u32 word)
        : c{(word >> 8) & 255, (word >> 16) & 255, word >> 24}, a(word & 255), weight(a + 1)
    {
    }
    u32 c[3];
    u32 a;
    u32 weight; // of 256
};

inline bool PlainPaintable(const PlainRaster& plain)
{
    return plain.depth == 24 || plain.depth == 32;
}

/// A rectangle before and after it was cut to the raster.
struct PlainArea {
    PixelRect given; // ordered
    PixelRect cut;
    bool nothing;
};

/// Orders and cuts a rectangle. One that ends at column or row 0 counts as outside.
inline PlainArea PlainCut(const PlainRaster& plain, PixelRect rectangle)
{
    const PixelRect given = {
        std::min(rectangle.left, rectangle.right), std::min(rectangle.top, rectangle.bottom),
        std::max(rectangle.left, rectangle.right), std::max(rectangle.top, rectangle.bottom)};
    PixelRect cut = given;
    if (cut.left < 0)
        cut.left = 0;
    if (cut.top < 0)
        cut.top = 0;
    const i64 width = plain.width;
    const i64 height = plain.height;
    if (cut.left >= width || cut.top >= height || cut.right < 1 || cut.bottom < 1)
        return {given, cut, true};
    if (cut.right >= width)
        cut.right = static_cast<i32>(width - 1);
    if (cut.bottom >= height)
        cut.bottom = static_cast<i32>(height - 1);
    return {given, cut, false};
}

/// One pixel filled: weighed at 24 bits; at 32 the bytes alpha, red, green, blue.
inline void PlainFillPixel(const PlainRaster& plain, std::vector<u8>& row, i64 x,
                           const PlainColor& color)
{
    u8* const pixel = row.data() + x * (plain.depth == 24 ? 3 : 4);
    if (plain.depth == 24) {
        for (u32 i = 0; i < 3; ++i)
            pixel[i] =
                static_cast<u8>((color.weight * color.c[i] + (256 - color.weight) * pixel[i]) >> 8);
        return;
    }
    pixel[0] = static_cast<u8>(color.a);
    pixel[1] = static_cast<u8>(color.c[2]);
    pixel[2] = static_cast<u8>(color.c[1]);
    pixel[3] = static_cast<u8>(color.c[0]);
}

/// Blue, green and red above the alpha byte, which is 255 at 24 bits.
inline i32 PlainGetPixel(PlainRaster& plain, i32 x, i32 y, u32* color)
{
    if (color == nullptr)
        return NoMemory;
    if (!PlainPaintable(plain))
        return Failed;
    if (x < 0 || y < 0 || static_cast<u32>(x) >= plain.width || static_cast<u32>(y) >= plain.height)
        return Failed;
    const i32 status = plain.Lock(y);
    if (status < 1)
        return status;
    const u8* const pixel = plain.Row(y).data() + x * (plain.depth == 24 ? 3 : 4);
    *color = (static_cast<u32>(pixel[0]) << 8) | (static_cast<u32>(pixel[1]) << 16) |
             (static_cast<u32>(pixel[2]) << 24) | (plain.depth == 24 ? 255u : pixel[3]);
    plain.Release(y);
    return Done;
}

/// The colour's bytes as they are; alpha only where a pixel has one.
inline i32 PlainSetPixel(PlainRaster& plain, i32 x, i32 y, u32 color)
{
    if (!PlainPaintable(plain))
        return Failed;
    if (x < 0 || y < 0 || static_cast<u32>(x) >= plain.width || static_cast<u32>(y) >= plain.height)
        return Failed;
    const i32 status = plain.Lock(y);
    if (status < 1)
        return status;
    const PlainColor split(color);
    u8* const pixel = plain.Row(y).data() + x * (plain.depth == 24 ? 3 : 4);
    for (u32 i = 0; i < 3; ++i)
        pixel[i] = static_cast<u8>(split.c[i]);
    if (plain.depth == 32)
        pixel[3] = static_cast<u8>(split.a);
    plain.Release(y);
    return Done;
}

/// Every pixel filled. An opaque colour at 24 bits comes from one zeroed scratch line, which is
/// copied padding and all; `scratch` tells whether that line could be had.
inline i32 PlainFillAll(PlainRaster& plain, u32 color, bool scratch = true)
{
    if (!PlainPaintable(plain))
        return Failed;
    const PlainColor split(color);
    const bool copies = plain.depth == 24 && split.a == 255;
    if (copies && !scratch)
        return Done;
    for (u32 y = 0; y < plain.height; ++y) {
        const i32 status = plain.Lock(y);
        if (status < 1)
            return status;
        std::vector<u8>& row = plain.Row(y);
        if (copies)
            row.assign(plain.stride, 0);
        for (u32 x = 0; x < plain.width; ++x)
            PlainFillPixel(plain, row, x, split);
        plain.Release(y);
    }
    return Done;
}

/// Every pixel of a rectangle filled.
inline i32 PlainFillRect(PlainRaster& plain, u32 color, PixelRect rectangle)
{
    if (!PlainPaintable(plain))
        return Failed;
    const PlainArea area = PlainCut(plain, rectangle);
    if (area.nothing)
        return Done;
    const PlainColor split(color);
    for (i32 y = area.cut.top; y <= area.cut.bottom; ++y) {
        const i32 status = plain.Lock(y);
        if (status < 1)
            return status;
        for (i32 x = area.cut.left; x <= area.cut.right; ++x)
            PlainFillPixel(plain, plain.Row(y), x, split);
        plain.Release(y);
    }
    return Done;
}
