// Walking the rows of rasters, of each one locked at a time. `draw` gets a row's first byte. A row
// that cannot be locked ends the walk with its status; the rows before it stay drawn.
#pragma once

#include "pixel/Clip.h"

/// Locks a row of each raster, `first`'s first. The status of a row that cannot be locked; the
/// other row then stays locked, until UnlockAll at the end of the command.
[[nodiscard]] inline i32 LockPair(Raster* first, i32 firstLine, u8** firstRow, Raster* second,
                                  i32 secondLine, u8** secondRow)
{
    const i32 status = first->LockLine(firstLine, firstRow);
    return status < 1 ? status : second->LockLine(secondLine, secondRow);
}

/// Calls `draw(row)` for the rows from `first` to `last`.
template <typename Draw>
i32 DrawRows(Raster* raster, i64 first, i64 last, const Draw& draw)
{
    for (i64 y = first; y <= last; ++y) {
        const i32 line = static_cast<i32>(y);
        u8* row = nullptr;
        const i32 status = raster->LockLine(line, &row);
        if (status < 1)
            return status;
        draw(row);
        (void)raster->ReleaseLine(line);
    }
    return Done;
}

/// Calls `draw(row, x, count)` for the pixels along the outline: the top row, the ends of the rows
/// below it, the bottom row. Meant: top and bottom, or left and right, are both drawn where they
/// are one, and the rows between are locked and released though neither end may be drawn.
template <typename Draw>
i32 DrawOutline(Raster* raster, const Outline& outline, const Draw& draw)
{
    const PixelRect& at = outline.rectangle;
    const auto across = [&](u8* row) { draw(row, at.left, at.right - at.left + 1); };
    i32 status = Done;
    if (outline.top)
        status = DrawRows(raster, at.top, at.top, across);
    if (status < 1)
        return status;
    status = DrawRows(raster, i64{at.top} + 1, i64{at.bottom} - 1, [&](u8* row) {
        if (outline.left)
            draw(row, at.left, 1);
        if (outline.right)
            draw(row, at.right, 1);
    });
    if (status < 1 || !outline.bottom)
        return status;
    return DrawRows(raster, at.bottom, at.bottom, across);
}
