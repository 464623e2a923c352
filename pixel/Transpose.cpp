// Exchanging rows and columns, into another raster.

#include "image/Raster.h"
#include "pixel/CrossPixels.h"

#include <algorithm>
#include <string.h>

namespace
{

struct Crossing {
    Raster* source;
    Raster* target;
    u32 width;   // of the source
    u32 columns; // whole pixels inside a line of the source that lie in its width
    u32 rows;    // whole pixels inside a line of the target
};

void CopyPixel(u8* target, const u8* source)
{
    memcpy(target, source, 3);
}

// Two lines at a time. The source's line is held over the whole row: releasing it after each pixel
// would send it to its file and fetch it again, and come to the same in the end.
i32 CrossRow(const Crossing& crossing, u32 y)
{
    const i32 line = static_cast<i32>(y);
    u8* read = nullptr;
    i32 status = crossing.source->LockLine(line, &read);
    if (status < 1)
        return status;
    for (u32 x = 0; x < crossing.width; ++x) {
        const i32 column = static_cast<i32>(x);
        u8* written = nullptr;
        status = crossing.target->LockLine(column, &written);
        // The source's line stays locked, until UnlockAll.
        if (status < 1)
            return status;
        if (x < crossing.columns && y < crossing.rows)
            CopyPixel(written + size_t{3} * y, read + size_t{3} * x);
        (void)crossing.target->ReleaseLine(column);
    }
    (void)crossing.source->ReleaseLine(line);
    return Done;
}

// Columns from `x` on of the rows from `first` on: `crossed` of them.
i32 CrossColumns(const Crossing& crossing, const CrossedBlock& block, u32 first, u32 x,
                 u32* crossed)
{
    u8* written[CrossedColumns] = {};
    *crossed = std::min(CrossedColumns, crossing.columns - x);
    const i32 status = crossing.target->LockLines(static_cast<i32>(x), written, crossed);
    if (status < 1)
        return status;
    for (u32 n = 0; n < *crossed; ++n)
        written[n] += size_t{3} * first;
    PrefetchCrossed(written, *crossed, block, x);
    CrossPixels24(written, *crossed, block, x);
    for (u32 n = 0; n < *crossed; ++n)
        (void)crossing.target->ReleaseLine(static_cast<i32>(x + n));
    return status;
}

// As CrossRow for `count` rows, where no line leaves memory and every line of the target is there.
// A row that cannot be locked ends it; the rows before it are done.
i32 CrossBlock(const Crossing& crossing, u32 first, u32 count)
{
    u8* read[CrossedRows] = {};
    u32 held = count;
    const i32 status = crossing.source->LockLines(static_cast<i32>(first), read, &held);
    CrossedBlock block = {{}, 0, crossing.columns};
    block.count = first < crossing.rows ? std::min(held, crossing.rows - first) : 0;
    std::copy_n(read, block.count, block.rows);
    u32 crossed = 0;
    for (u32 x = 0; x < crossing.columns && block.count > 0; x += crossed) {
        const i32 locked = CrossColumns(crossing, block, first, x, &crossed);
        if (locked < 1)
            return locked;
    }
    // One by one: a run that reached the last line would release none.
    for (u32 i = 0; i < held; ++i)
        (void)crossing.source->ReleaseLine(static_cast<i32>(first + i));
    return status;
}

} // namespace

// The first row fetches every line of the target. Where none leaves memory after that, only a line
// of the source can still fail, and blocks fetch those in the same order: nobody can tell them from
// single rows.
i32 Raster::TransposeTo(Raster* target)
{
    if (target == nullptr || target == this)
        return BadArgument;
    if (!created || !target->created)
        return WrongState;
    if (info.width == 0 || info.height == 0)
        return Done;
    const Crossing crossing = {this, target, info.width, std::min(info.width, info.stride / 3),
                               target->info.stride / 3};
    const bool single = !KeepsLines() || !target->KeepsLines();
    i32 status = CrossRow(crossing, 0);
    for (u32 y = 1; status > 0 && y < info.height;) {
        const u32 count = single ? 1 : std::min(CrossedRows, info.height - y);
        status = single ? CrossRow(crossing, y) : CrossBlock(crossing, y, count);
        y += count;
    }
    return status;
}
