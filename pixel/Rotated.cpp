// Turning a picture into another raster.

#include "image/Raster.h"
#include "pixel/CrossPixels.h"
#include "pixel/Rows.h"

#include <algorithm>

namespace
{

// Pixel by pixel, so that source and target may have any depth that has colours and a raster that
// pages holds one line.
i32 TurnRow(Raster* source, Raster* target, u32 width, u32 height, u32 y)
{
    const i32 column = static_cast<i32>(height - y - 1);
    for (u32 x = 0; x < width; ++x) {
        u32 color = 0;
        i32 status = source->GetPixel(static_cast<i32>(x), static_cast<i32>(y), &color);
        if (status < 1)
            return status;
        status = target->SetPixel(column, static_cast<i32>(x), color);
        if (status < 1)
            return status;
    }
    return Done;
}

// The last row that is read is the first pixel that is written. False, with nothing done, where a
// line of the target is not there.
bool CrossColumns(Raster* target, const CrossedBlock& block, u32 x, u32 lines, u32 column)
{
    u8* written[CrossedColumns];
    if (!target->GetKeptLines(x, lines, written))
        return false;
    for (u32 n = 0; n < lines; ++n)
        written[n] += size_t{3} * column;
    PrefetchCrossed(written, lines, block, x);
    CrossPixels24(written, lines, block, x);
    target->PassKeptLines(x, lines);
    return true;
}

// As TurnRow for the rows from `y` on, where none leaves memory: `*done` of them.
i32 TurnRows(Raster* source, Raster* target, u32 width, u32 height, u32 y, u32* done)
{
    const u32 wanted = std::min(CrossedRows, height - y);
    u8* read[CrossedRows] = {};
    CrossedBlock block = {{}, wanted, width};
    const i32 status = source->LockLines(static_cast<i32>(y), read, &block.count);
    std::reverse_copy(read, read + block.count, block.rows);
    for (u32 x = 0; x < width && block.count > 0; x += CrossedColumns)
        if (!CrossColumns(target, block, x, std::min(CrossedColumns, width - x),
                          height - y - block.count))
            return Failed;
    for (u32 i = 0; i < block.count; ++i)
        (void)source->ReleaseLine(static_cast<i32>(y + i));
    *done = block.count;
    return status;
}

i32 TurnQuarter(Raster* source, Raster* target, u32 width, u32 height, u32 depth)
{
    i32 status = target->Create(height, width, 24, nullptr, nullptr);
    // The target has no folders: its lines are all there, and stay.
    const bool byRows = depth == 24 && source->KeepsLines();
    for (u32 y = 0; y < height && status > 0;) {
        u32 done = 1;
        status = byRows ? TurnRows(source, target, width, height, y, &done)
                        : TurnRow(source, target, width, height, y);
        y += done;
    }
    return status;
}

// The target is 24 bits whatever the source is, and its pixels are what is exchanged. Its lines
// stay locked until UnlockAll, as the snapshot leaves them anyway.
i32 TurnHalf(Raster* source, Raster* target, u32 width, u32 height)
{
    i32 status = source->SnapshotTo(target);
    if (status < 1)
        return status;
    for (u32 y = 0; y < height; ++y) {
        u8* row = nullptr;
        status = target->LockLine(static_cast<i32>(y), &row);
        if (status < 1)
            return status;
        ReverseRow24(row, width);
    }
    return target->FlipVertical();
}

} // namespace

i32 Raster::Rotated(Raster* target, i32 angle)
{
    if (target == nullptr || target == this)
        return BadArgument;
    switch (angle) {
    case 0: // Meant: callers that ask for no angle get the quarter turn.
    case 90:
        return TurnQuarter(this, target, info.width, info.height, info.depth);
    case 180:
        return TurnHalf(this, target, info.width, info.height);
    default:
        return Done;
    }
}
