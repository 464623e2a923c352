// The formulas of copying between rasters, as it is, through a mask and by the source's own alpha,
// written out pixel by pixel on plain rasters. All positions are exact numbers.
#pragma once

#include "PlainFill.h"

/// What a copy is asked to take from where to where.
struct PlainRun {
    i64 x;
    i64 y;
    i64 width;
    i64 height;
    i64 targetX;
    i64 targetY;
};

/// A negative source position shifts the target; a negative target position shortens the run.
inline void PlainShift(PlainRun* run)
{
    if (run->x < 0) {
        run->targetX -= run->x;
        run->x = 0;
    }
    if (run->y < 0) {
        run->targetY -= run->y;
        run->y = 0;
    }
    if (run->targetX < 0) {
        run->width += run->targetX;
        run->x -= run->targetX;
        run->targetX = 0;
    }
    if (run->targetY < 0) {
        run->height += run->targetY;
        run->y -= run->targetY;
        run->targetY = 0;
    }
}

inline bool PlainBeyond(const PlainRaster& source, const PlainRaster& target, const PlainRun& run)
{
    return run.x >= source.width || run.y >= source.height || run.targetX >= target.width ||
           run.targetY >= target.height;
}

/// Cuts the run to both rasters.
inline void PlainTrim(const PlainRaster& source, const PlainRaster& target, PlainRun* run)
{
    run->width = std::min({run->width, source.width - run->x, target.width - run->targetX});
    run->height = std::min({run->height, source.height - run->y, target.height - run->targetY});
}

/// 24 to 24 bits: pixels. 32 to 32: as many bytes as pixels are asked for, at the pixels' numbers.
/// Else bytes 0 to 2 of each pixel, in steps of 3 at 24 bits and of 4 at all others, up to a line's
/// last whole pixel. A run over itself is copied as if it lay apart.
inline i32 PlainCopyTo(PlainRaster& source, PlainRun run, PlainRaster* target, u32 operation)
{
    if (target == nullptr)
        return BadArgument;
    if (!PlainPaintable(source) && !PlainPaintable(*target))
        return Failed;
    PlainShift(&run);
    if (PlainBeyond(source, *target, run))
        return Done;
    PlainTrim(source, *target, &run);
    if (operation != SRCCOPY)
        return Failed;
    const bool deep = source.depth == 32 && target->depth == 32;
    const i64 step = deep ? 1 : source.depth == 24 ? 3 : 4;
    const i64 targetStep = deep ? 1 : target->depth == 24 ? 3 : 4;
    const i64 bytes = deep ? 1 : 3;
    run.width = std::min(
        {run.width, source.stride / step - run.x, target->stride / targetStep - run.targetX});
    if (run.height < 1 || run.width < 1)
        return Done;
    for (i64 i = 0; i < run.height; ++i) {
        i32 status = target->Lock(run.targetY + i);
        if (status < 1)
            return status;
        status = source.Lock(run.y + i);
        if (status < 1)
            return status;
        const std::vector<u8> from = source.Row(run.y + i);
        std::vector<u8>& to = target->Row(run.targetY + i);
        for (i64 at = 0; at < run.width; ++at) {
            const i64 read = (run.x + at) * step;
            const i64 written = (run.targetX + at) * targetStep;
            for (i64 byte = 0; byte < bytes; ++byte)
                to[static_cast<size_t>(written + byte)] = from[static_cast<size_t>(read + byte)];
        }
        source.Release(run.y + i);
        target->Release(run.targetY + i);
    }
    return Done;
}

/// out = (old * (m ^ 255) + source * (m + 1)) >> 8. A run that is cut ends one pixel before the
/// edge.
inline i32 PlainCopyMasked(PlainRaster& source, PlainRun run, PlainRaster* target,
                           PlainRaster* mask, i64 maskX, i64 maskY)
{
    if (target == nullptr || mask == nullptr)
        return BadArgument;
    if (source.depth != 24 || target->depth != 24 || mask->depth != 8)
        return Failed;
    if (PlainBeyond(source, *target, run))
        return Done;
    PlainShift(&run);
    const i64 sourceWidth = source.width;
    const i64 sourceHeight = source.height;
    const i64 targetWidth = target->width;
    const i64 targetHeight = target->height;
    if (run.width + run.x > sourceWidth)
        run.width = sourceWidth - run.x - 1;
    if (run.width + run.targetX > targetWidth)
        run.width = targetWidth - run.targetX - 1;
    if (run.height + run.y > sourceHeight)
        run.height = sourceHeight - run.y - 1;
    if (run.height + run.targetY > targetHeight)
        run.height = targetHeight - run.targetY - 1;
    if (maskX + run.width > mask->width || maskY + run.height > mask->height)
        return Failed;
    if (run.width < 1 || run.height < 1)
        return Done;
    for (i64 i = 0; i < run.height; ++i) {
        i32 status = target->Lock(run.targetY + i);
        if (status < 1)
            return status;
        status = source.Lock(run.y + i);
        if (status < 1)
            return status;
        status = mask->Lock(maskY + i);
        if (status < 1)
            return status;
        for (i64 at = 0; at < run.width; ++at) {
            if (maskX + at < 0)
                continue;
            const u32 m = mask->Row(maskY + i)[static_cast<size_t>(maskX + at)];
            u8* const pixel = target->Row(run.targetY + i).data() + (run.targetX + at) * 3;
            const u8* const from = source.Row(run.y + i).data() + (run.x + at) * 3;
            for (u32 byte = 0; byte < 3; ++byte)
                pixel[byte] =
                    static_cast<u8>((pixel[byte] * (m ^ 255) + from[byte] * (m + 1)) >> 8);
        }
        target->Release(run.targetY + i);
        source.Release(run.y + i);
        mask->Release(maskY + i);
    }
    return Done;
}

/// out = ((s + 1) * source + (s ^ 255) * old) >> 8 with s the source pixel's alpha. Onto 32 bits
/// both rows are walked one pixel ahead, up to the last pixel of either.
inline i32 PlainCompositeTo(PlainRaster& source, PlainRun run, PlainRaster* target)
{
    if (target == nullptr)
        return BadArgument;
    if (source.depth != 32 || !PlainPaintable(*target))
        return Failed;
    PlainShift(&run);
    if (PlainBeyond(source, *target, run))
        return Done;
    PlainTrim(source, *target, &run);
    const i64 ahead = target->depth == 32 ? 1 : 0;
    run.width =
        std::min({run.width, source.width - ahead - run.x, target->width - ahead - run.targetX});
    if (run.width < 1 || run.height < 1)
        return Done;
    const i64 size = target->depth == 32 ? 4 : 3;
    for (i64 i = 0; i < run.height; ++i) {
        i32 status = target->Lock(run.targetY + i);
        if (status < 1)
            return status;
        status = source.Lock(run.y + i);
        if (status < 1)
            return status;
        for (i64 at = 0; at < run.width; ++at) {
            const i64 x = run.x + at + ahead;
            const i64 targetX = run.targetX + at + ahead;
            u8* const pixel = target->Row(run.targetY + i).data() + targetX * size;
            const u8* const from = source.Row(run.y + i).data() + x * 4;
            const u32 s = from[3];
            for (u32 byte = 0; byte < 3; ++byte)
                pixel[byte] =
                    static_cast<u8>(((s + 1) * from[byte] + (s ^ 255) * pixel[byte]) >> 8);
        }
        target->Release(run.targetY + i);
        source.Release(run.y + i);
    }
    return Done;
}
