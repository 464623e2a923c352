// Painting a colour through a mask of coverage: what the brush, text and markers are made of.

#include "image/Raster.h"
#include "pixel/NormalizeRect.h"
#include "pixel/Rows.h"
#include "pixel/RowWalk.h"

#include <algorithm>

namespace
{

constexpr u32 BatchRows = 16;

struct MaskedRows {
    Raster* raster;
    Raster* mask;
    i64 line;     // of the raster, the first row that is not painted
    i64 maskLine; // one above the mask's row 0 counts from the mask's end, as line numbers do
    size_t firstByte;
    size_t firstCell;
    size_t count;
    u32 depth;
    ColorBytes color;
};

void BlendRows(const MaskedRows& at, u8** rows, u8** cells, u32 count)
{
    for (u32 i = 0; i < count; ++i) {
        rows[i] += at.firstByte;
        cells[i] += at.firstCell;
    }
    if (at.depth == 24)
        BlendMaskRows24(rows, cells, count, at.count, at.color);
    else
        for (u32 i = 0; i < count; ++i)
            BlendMaskRow32(rows[i], cells[i], at.count, at.color);
}

i32 PaintRow(const MaskedRows& at)
{
    u8* row = nullptr;
    u8* cells = nullptr;
    const i32 line = static_cast<i32>(at.line);
    const i32 maskLine = static_cast<i32>(at.maskLine);
    const i32 status = LockPair(at.raster, line, &row, at.mask, maskLine, &cells);
    if (status < 1)
        return status;
    BlendRows(at, &row, &cells, 1);
    (void)at.raster->ReleaseLine(line);
    (void)at.mask->ReleaseLine(maskLine);
    return Done;
}

// A batch comes to the same as its rows one by one.
i32 PaintRows(const MaskedRows& at, u32 rows)
{
    u8* row[BatchRows];
    u8* cells[BatchRows];
    if (at.raster->GetKeptLines(at.line, rows, row) &&
        at.mask->GetKeptLines(at.maskLine, rows, cells)) {
        BlendRows(at, row, cells, rows);
        at.raster->PassKeptLines(at.line, rows);
        at.mask->PassKeptLines(at.maskLine, rows);
        return Done;
    }
    MaskedRows next = at;
    for (u32 i = 0; i < rows; ++i, ++next.line, ++next.maskLine) {
        const i32 status = PaintRow(next);
        if (status < 1)
            return status;
    }
    return Done;
}

} // namespace

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
    MaskedRows at = {this,
                     mask,
                     cut.top,
                     maskTop,
                     StepOf(info.depth) * static_cast<size_t>(cut.left + missing),
                     static_cast<size_t>(std::max<i64>(maskLeft, 0)),
                     static_cast<size_t>(columns - missing),
                     info.depth,
                     BytesOf(color)};
    for (i64 left = rows; left > 0;) {
        const u32 batch = static_cast<u32>(std::min(left, i64{BatchRows}));
        const i32 status = PaintRows(at, batch);
        if (status < 1)
            return status;
        at.line += batch;
        at.maskLine += batch;
        left -= batch;
    }
    return Done;
}

i32 Raster::BlendMaskRect(u32 color, PixelRect rectangle, Raster* mask, i32 maskX, i32 maskY)
{
    return BlendMask(color, &rectangle, mask, maskX, maskY);
}
