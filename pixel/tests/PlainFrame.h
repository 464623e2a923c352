// The formulas of outlines and of inversion, written out pixel by pixel on a plain raster.
#pragma once

#include "PlainFill.h"

/// One pixel inverted; byte 0 of a 32-bit pixel stays.
inline void PlainInvertPixel(const PlainRaster& plain, std::vector<u8>& row, i64 x)
{
    const u32 size = plain.depth == 24 ? 3 : 4;
    for (u32 i = size - 3; i < size; ++i) {
        u8& byte = row[static_cast<size_t>(x * size + i)];
        byte = static_cast<u8>(255 - byte);
    }
}

/// Locks a row, hands it to `draw` and releases it; below 1 the status of the lock.
template <typename Draw>
i32 PlainOnRow(PlainRaster& plain, i32 y, Draw draw)
{
    const i32 status = plain.Lock(y);
    if (status < 1)
        return status;
    draw(plain.Row(y));
    plain.Release(y);
    return Done;
}

/// Top row, sides and bottom row, without those that were cut off; at 32 bits the whole rectangle.
inline i32 PlainFrameRect(PlainRaster& plain, u32 color, PixelRect rectangle)
{
    if (plain.depth == 32)
        return PlainFillRect(plain, color, rectangle);
    if (plain.depth != 24)
        return Failed;
    const PlainArea area = PlainCut(plain, rectangle);
    if (area.nothing)
        return Done;
    const PixelRect& cut = area.cut;
    const PlainColor split(color);
    const auto wholeRow = [&](std::vector<u8>& row) {
        for (i32 x = cut.left; x <= cut.right; ++x)
            PlainFillPixel(plain, row, x, split);
    };
    const auto ends = [&](std::vector<u8>& row) {
        if (cut.left == area.given.left)
            PlainFillPixel(plain, row, cut.left, split);
        if (cut.right == area.given.right)
            PlainFillPixel(plain, row, cut.right, split);
    };
    i32 status = Done;
    if (cut.top == area.given.top)
        status = PlainOnRow(plain, cut.top, wholeRow);
    for (i32 y = cut.top + 1; status == Done && y < cut.bottom; ++y)
        status = PlainOnRow(plain, y, ends);
    if (status == Done && cut.bottom == area.given.bottom)
        status = PlainOnRow(plain, cut.bottom, wholeRow);
    return status;
}

/// Every pixel of a rectangle inverted.
inline i32 PlainInvertRect(PlainRaster& plain, PixelRect rectangle)
{
    if (!PlainPaintable(plain))
        return Failed;
    const PlainArea area = PlainCut(plain, rectangle);
    if (area.nothing)
        return Done;
    i32 status = Done;
    for (i32 y = area.cut.top; status == Done && y <= area.cut.bottom; ++y)
        status = PlainOnRow(plain, y, [&](std::vector<u8>& row) {
            for (i32 x = area.cut.left; x <= area.cut.right; ++x)
                PlainInvertPixel(plain, row, x);
        });
    return status;
}

/// The outline inverted. 24 bits: sides that were cut off are left out, but never the bottom row.
/// 32 bits: both rows always, the right side unless it was cut off, the left side never.
inline i32 PlainInvertFrame(PlainRaster& plain, PixelRect rectangle)
{
    if (!PlainPaintable(plain))
        return Failed;
    const PlainArea area = PlainCut(plain, rectangle);
    if (area.nothing)
        return Done;
    const PixelRect& cut = area.cut;
    const bool deep = plain.depth == 32;
    const auto wholeRow = [&](std::vector<u8>& row) {
        for (i32 x = cut.left; x <= cut.right; ++x)
            PlainInvertPixel(plain, row, x);
    };
    const auto ends = [&](std::vector<u8>& row) {
        if (!deep && cut.left == area.given.left)
            PlainInvertPixel(plain, row, cut.left);
        if (cut.right == area.given.right)
            PlainInvertPixel(plain, row, cut.right);
    };
    i32 status = Done;
    if (deep || cut.top == area.given.top)
        status = PlainOnRow(plain, cut.top, wholeRow);
    for (i32 y = cut.top + 1; status == Done && y < cut.bottom; ++y)
        status = PlainOnRow(plain, y, ends);
    if (status == Done)
        status = PlainOnRow(plain, cut.bottom, wholeRow);
    return status;
}
