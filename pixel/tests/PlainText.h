// The two formulas of text on pixels, written out pixel by pixel from a bitmap of ink that stands
// from its bottom row up.
#pragma once

#include "PlainFill.h"

/// 1 bit a pixel, a set bit is ink; rows from the bottom up, padded to 4 bytes.
struct PlainInk {
    i64 width = 0;
    i64 height = 0;
    std::vector<u8> bytes;

    size_t RowBytes() const { return static_cast<size_t>((width + 31) / 32 * 4); }
    /// A pixel, counted from the top.
    bool At(i64 x, i64 y) const
    {
        const size_t at =
            static_cast<size_t>(height - 1 - y) * RowBytes() + static_cast<size_t>(x / 8);
        return (bytes[at] >> (7 - x % 8) & 1) != 0;
    }
    /// What is set of a square block.
    u32 Count(i64 x, i64 y, i64 side) const
    {
        u32 count = 0;
        for (i64 row = 0; row < side; ++row)
            for (i64 column = 0; column < side; ++column)
                count += At(x * side + column, y * side + row) ? 1 : 0;
        return count;
    }
};

/// One byte of a pixel under a text, with `coverage` of 64 and an opacity.
inline u8 PlainTextByte(u32 old, u32 value, u32 coverage, u32 opacity)
{
    const u32 weight = coverage * (opacity + 1);
    return static_cast<u8>(((16384 - weight) * old + weight * value) / 16384);
}

/// Text eight times as large laid over a rectangle, from its last line up.
inline void PlainLayText(PlainRaster& plain, const PlainInk& ink, u32 color, PixelRect at)
{
    const PlainColor split(color);
    for (i64 y = at.bottom; y >= at.top; --y) {
        if (y >= plain.height)
            return;
        if (y < 0)
            continue;
        if (plain.Lock(y) < 1)
            return;
        std::vector<u8>& row = plain.Row(y);
        for (i64 x = at.left; x <= at.right; ++x) {
            if (x < 0 || x >= plain.width || 3 * x + 3 > plain.stride)
                continue;
            const u32 coverage = ink.Count(x - at.left, y - at.top, 8);
            for (size_t i = 0; i < 3; ++i) {
                u8& byte = row[static_cast<size_t>(3 * x) + i];
                byte = PlainTextByte(byte, split.c[i], coverage, split.a);
            }
        }
        plain.Release(y);
    }
}

/// A letter of its own laid with its top left at (x, y), as far as its extent goes and not past the
/// column `right`.
inline i32 PlainLayLetter(PlainRaster& plain, const PlainInk& ink, u32 color, i64 x, i64 y,
                          i64 width, i64 height, i64 right, u32 scale)
{
    const PlainColor split(color);
    for (i64 row = 0; row < height; ++row) {
        bool any = false;
        for (i64 column = 0; column < width; ++column)
            any = any || (x + column >= 0 && x + column < plain.width && x + column <= right &&
                          3 * (x + column) + 3 <= plain.stride);
        if (!any || y + row < 0 || y + row >= plain.height)
            continue;
        const i32 status = plain.Lock(y + row);
        if (status < 1)
            return status;
        for (i64 column = 0; column < width; ++column) {
            const i64 at = x + column;
            if (at < 0 || at >= plain.width || at > right || 3 * at + 3 > plain.stride)
                continue;
            const u32 v = ink.Count(column, row, scale) * split.a * 255 / (scale * scale) / 256;
            for (size_t i = 0; i < 3; ++i) {
                u8& byte = plain.Row(y + row)[static_cast<size_t>(3 * at) + i];
                byte = static_cast<u8>(((255 - v) * byte + v * split.c[i]) / 256);
            }
        }
        plain.Release(y + row);
    }
    return Done;
}
