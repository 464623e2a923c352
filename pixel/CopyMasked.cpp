// Copying a rectangle between rasters through a mask of coverage.

#include "image/Raster.h"
#include "pixel/Rows.h"
#include "pixel/RowWalk.h"

#include <algorithm>

namespace
{

// Meant: a run that reaches past the end of a raster ends one pixel before it, unlike CopyTo's.
void CutTighter(i64* count, i64 first, u32 size)
{
    if (*count + first > size)
        *count = size - first - 1;
}

void CutTighter(CopyRun* run, const RasterInfo& source, const RasterInfo& target)
{
    CutTighter(&run->width, run->x, source.width);
    CutTighter(&run->width, run->targetX, target.width);
    CutTighter(&run->height, run->y, source.height);
    CutTighter(&run->height, run->targetY, target.height);
}

} // namespace

i32 Raster::CopyMasked(i32 x, i32 y, i32 width, i32 height, Raster* target, i32 targetX,
                       i32 targetY, Raster* mask, i32 maskX, i32 maskY)
{
    if (target == nullptr || mask == nullptr)
        return BadArgument;
    const RasterInfo& to = target->info;
    const RasterInfo& through = mask->info;
    if (info.depth != 24 || to.depth != 24 || through.depth != 8)
        return Failed;
    CopyRun run = {x, y, width, height, targetX, targetY};
    if (StartsBehind(run, info, to))
        return Done;
    // The mask keeps its position when the run moves.
    MoveIntoRasters(&run);
    CutTighter(&run, info, to);
    if (maskX + run.width > through.width || maskY + run.height > through.height)
        return Failed;
    if (run.width < 1 || run.height < 1)
        return Done;

    // The mask has no cells left of its column 0, which leaves the pixels there as they are.
    const i64 missing = std::clamp<i64>(-i64{maskX}, 0, run.width);
    const size_t firstCell = static_cast<size_t>(std::max(maskX, 0));
    const size_t firstRead = 3 * static_cast<size_t>(run.x + missing);
    const size_t firstWritten = 3 * static_cast<size_t>(run.targetX + missing);
    const size_t count = static_cast<size_t>(run.width - missing);
    for (i64 i = 0; i < run.height; ++i) {
        const i32 targetLine = static_cast<i32>(run.targetY + i);
        const i32 line = static_cast<i32>(run.y + i);
        // One above the mask's row 0 counts from the mask's end, as line numbers do.
        const i32 maskLine = static_cast<i32>(maskY + i);
        u8* written = nullptr;
        u8* read = nullptr;
        u8* cells = nullptr;
        i32 status = LockPair(target, targetLine, &written, this, line, &read);
        if (status < 1)
            return status;
        status = mask->LockLine(maskLine, &cells);
        if (status < 1)
            return status;
        CopyMaskedRow24(written + firstWritten, read + firstRead, cells + firstCell, count);
        (void)target->ReleaseLine(targetLine);
        (void)ReleaseLine(line);
        (void)mask->ReleaseLine(maskLine);
    }
    return Done;
}
