// Laying a picture over another by its own alpha.

#include "image/Raster.h"
#include "pixel/Rows.h"
#include "pixel/RowWalk.h"

#include <algorithm>

i32 Raster::CompositeTo(i32 x, i32 y, i32 width, i32 height, Raster* target, i32 targetX,
                        i32 targetY)
{
    if (target == nullptr)
        return BadArgument;
    const RasterInfo& to = target->info;
    if (info.depth != 32 || !HasColor(to.depth))
        return Failed;
    CopyRun run = {x, y, width, height, targetX, targetY};
    if (!ClipRun(&run, info, to))
        return Done;
    if (to.depth == 32) {
        // Meant: onto 32 bits both rows are walked one pixel ahead, and the pixels asked first
        // stay. The walk ends with the shorter line.
        ++run.x;
        ++run.targetX;
        run.width = std::min({run.width, info.width - run.x, to.width - run.targetX});
    }
    if (run.width < 1 || run.height < 1)
        return Done;

    const size_t firstRead = 4 * static_cast<size_t>(run.x);
    const size_t firstWritten = StepOf(to.depth) * static_cast<size_t>(run.targetX);
    const size_t count = static_cast<size_t>(run.width);
    for (i64 i = 0; i < run.height; ++i) {
        const i32 targetLine = static_cast<i32>(run.targetY + i);
        const i32 line = static_cast<i32>(run.y + i);
        u8* written = nullptr;
        u8* read = nullptr;
        const i32 status = LockPair(target, targetLine, &written, this, line, &read);
        if (status < 1)
            return status;
        if (to.depth == 24)
            CompositeRow24(written + firstWritten, read + firstRead, count);
        else
            CompositeRow32(written + firstWritten, read + firstRead, count);
        (void)target->ReleaseLine(targetLine);
        (void)ReleaseLine(line);
    }
    return Done;
}
