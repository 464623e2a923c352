// Copying a rectangle between rasters, a row at a time.

#include "image/Raster.h"

#include <algorithm>
#include <string.h>

namespace
{

// Where a row's copy starts in each raster and how far it goes.
struct RowCopy {
    i64 x;
    i64 targetX;
    i64 width;
    u32 step; // bytes from pixel to pixel
    u32 targetStep;
};

bool HasColor(u32 depth)
{
    return depth == 24 || depth == 32;
}

u32 StepOf(u32 depth)
{
    return depth == 24 ? 3 : 4;
}

// Colour bytes only: a fourth byte of the target stays as it is, one of the source is dropped.
void CopyPixels(u8* target, const u8* source, const RowCopy& copy)
{
    target += copy.targetX * copy.targetStep;
    source += copy.x * copy.step;
    for (i64 i = 0; i < copy.width; ++i) {
        target[0] = source[0];
        target[1] = source[1];
        target[2] = source[2];
        target += copy.targetStep;
        source += copy.step;
    }
}

void CopyRow(u8* target, const u8* source, const RowCopy& copy, u32 depth, u32 targetDepth)
{
    // The two rows may be one and the same.
    if (depth == 24 && targetDepth == 24)
        memmove(target + 3 * copy.targetX, source + 3 * copy.x,
                static_cast<size_t>(3 * copy.width));
    else if (depth == 32 && targetDepth == 32)
        // Meant: pixel numbers serve as byte numbers here, so that a quarter of what is asked
        // moves.
        memmove(target + copy.targetX, source + copy.x, static_cast<size_t>(copy.width));
    else
        CopyPixels(target, source, copy);
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

    RowCopy copy = {x, targetX, width, StepOf(info.depth), StepOf(to.depth)};
    i64 row = y;
    i64 targetRow = targetY;
    i64 rows = height;
    // Meant: a start before the source moves the target and leaves the size as it is.
    if (copy.x < 0) {
        copy.targetX -= copy.x;
        copy.x = 0;
    }
    if (row < 0) {
        targetRow -= row;
        row = 0;
    }
    if (copy.targetX < 0) {
        copy.width += copy.targetX;
        copy.x -= copy.targetX;
        copy.targetX = 0;
    }
    if (targetRow < 0) {
        rows += targetRow;
        row -= targetRow;
        targetRow = 0;
    }
    if (copy.x >= info.width || row >= info.height || copy.targetX >= to.width ||
        targetRow >= to.height)
        return Done;
    copy.width = std::min({copy.width, info.width - copy.x, to.width - copy.targetX});
    rows = std::min({rows, info.height - row, to.height - targetRow});
    if (operation != SRCCOPY)
        return Failed;
    // A raster of 8 or 16 bits is walked in steps of 4 bytes and ends before its width does.
    copy.width = std::min({copy.width, i64{info.stride / copy.step} - copy.x,
                           i64{to.stride / copy.targetStep} - copy.targetX});
    if (copy.width < 1 || rows < 1)
        return Done;

    for (i64 i = 0; i < rows; ++i) {
        const i32 targetLine = static_cast<i32>(targetRow + i);
        const i32 line = static_cast<i32>(row + i);
        u8* written = nullptr;
        u8* read = nullptr;
        i32 status = target->LockLines(targetLine, &written, nullptr);
        if (status < 1)
            return status;
        // A failure leaves the target's row locked, until UnlockAll at the end of the command.
        status = LockLines(line, &read, nullptr);
        if (status < 1)
            return status;
        CopyRow(written, read, copy, info.depth, to.depth);
        (void)ReleaseLines(line, 1, 0);
        (void)target->ReleaseLines(targetLine, 1, 0);
    }
    return Done;
}
