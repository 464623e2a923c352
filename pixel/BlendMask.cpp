// Painting a colour through a mask of coverage: what the brush, text and markers are made of.

#include "image/Raster.h"
#include "pixel/NormalizeRect.h"
#include "pixel/Rows.h"
#include "pixel/RowWalk.h"

#include <algorithm>

i32 Raster::BlendMask(u32 color, PixelRect* rectangle, Raster* mask, i32 maskX, i32 maskY)
{
    if (rectangle == nullptr || mask == nullptr)
        return BadArgument;
    const RasterInfo& from = mask->info;
    // Meant: with a mask of coverage a raster that cannot be painted on is let be without a word,
    // and the rectangle comes back as if it had been painted.
    if (!HasColor(info.depth) && from.depth != 8)
        return Failed;
    (void)NormalizeRect(rectangle);
    PixelRect cut = *rectangle;
    if (!ClipRect(&cut, info))
        return Done;
    const i64 maskLeft = i64{maskX} + cut.left - rectangle->left;
    const i64 maskTop = i64{maskY} + cut.top - rectangle->top;
    const i64 columns = std::min(i64{cut.right} - cut.left + 1, from.width - maskLeft);
    const i64 rows = std::min(i64{cut.bottom} - cut.top + 1, from.height - maskTop);
    // Behind the mask's end the size is below 1 and the rectangle comes back inside out.
    cut.right = static_cast<i32>(cut.left + columns - 1);
    cut.bottom = static_cast<i32>(cut.top + rows - 1);
    *rectangle = cut;
    if (!HasColor(info.depth) || columns < 1 || rows < 1)
        return Done;

    // The mask has no cells left of its column 0, which leaves the pixels there as they are.
    const i64 missing = std::clamp<i64>(-maskLeft, 0, columns);
    const size_t firstCell = static_cast<size_t>(std::max<i64>(maskLeft, 0));
    const size_t firstByte = StepOf(info.depth) * static_cast<size_t>(cut.left + missing);
    const size_t count = static_cast<size_t>(columns - missing);
    const ColorBytes bytes = BytesOf(color);
    for (i64 i = 0; i < rows; ++i) {
        const i32 line = static_cast<i32>(cut.top + i);
        // One above the mask's row 0 counts from the mask's end, as line numbers do.
        const i32 maskLine = static_cast<i32>(maskTop + i);
        u8* row = nullptr;
        u8* cells = nullptr;
        const i32 status = LockPair(this, line, &row, mask, maskLine, &cells);
        if (status < 1)
            return status;
        if (info.depth == 24)
            BlendMaskRow24(row + firstByte, cells + firstCell, count, bytes);
        else
            BlendMaskRow32(row + firstByte, cells + firstCell, count, bytes);
        (void)ReleaseLines(line, 1, 0);
        (void)mask->ReleaseLines(maskLine, 1, 0);
    }
    return Done;
}

i32 Raster::BlendMaskRect(u32 color, PixelRect rectangle, Raster* mask, i32 maskX, i32 maskY)
{
    return BlendMask(color, &rectangle, mask, maskX, maskY);
}
