// One row of an area-averaged reduction. Weights are coverages in 1/1024 of an output pixel. All
// numbers are unsigned 32 bits and wrap, as enlarging by 16 or more and sources of more than 65,535
// pixels a side make them do.

#include "image/Raster.h"

#include <algorithm>
#include <stdlib.h>

namespace
{

// One axis of the reduction.
struct Axis {
    u32 size; // of the source
    u32 unit; // what a whole source pixel covers of an output pixel, in 1/1024
    u32 step; // source pixels for one output pixel, 16.16
};

// The source pixels of one output pixel along an axis: from `first` to `last`, of which the ends
// are covered in part.
struct Span {
    u32 first;
    u32 last;
    u32 firstCover;
    u32 lastCover;
};

// Weighted sums of each channel, and of the weights.
struct Sums {
    u32 blue;
    u32 green;
    u32 red;
    u32 weight;
};

Axis MakeAxis(u32 size, u32 outputSize)
{
    // A source of no pixels has no cover to give; no line or no column of it is then read.
    const u32 unit = size == 0 ? 0 : (outputSize << 10) / size;
    return {size, unit, (size << 16) / outputSize};
}

Span SpanOf(const Axis& axis, u32 output)
{
    // The products do not wrap: the step times all output pixels is at most the size in 16.16,
    // which is what wraps for a large source. So the span is in order and begins in the source.
    Span span = {};
    span.first = (axis.step * output) >> 16;
    span.last = (axis.step * (output + 1)) >> 16;
    span.firstCover = (span.first + 1) * axis.unit - ((span.first * axis.unit) & ~u32{0x3FF});
    span.lastCover = (output + 1) * 1024 - span.last * axis.unit;
    return span;
}

void AddPixel(Sums* sums, const u8* pixel, u32 weight)
{
    sums->blue += weight * pixel[0];
    sums->green += weight * pixel[1];
    sums->red += weight * pixel[2];
    sums->weight += weight;
}

// Adds the span's part of one source row. A single column has the cover of a first one; a last
// column past the source has no weight.
void AddRow(Sums* sums, const u8* row, const Span& columns, const Axis& axis, u32 rowCover)
{
    if (columns.first >= axis.size) // only where there are no columns
        return;
    const u8* pixel = row + size_t{3} * columns.first;
    AddPixel(sums, pixel, (columns.firstCover * rowCover) >> 4);
    if (columns.first == columns.last)
        return;
    // The columns between have one weight, so their bytes are summed first. In arithmetic that
    // wraps the result is the same.
    const u32 end = std::min(columns.last, axis.size);
    Sums whole = {};
    for (u32 x = columns.first + 1; x < end; ++x) {
        pixel += 3;
        whole.blue += pixel[0];
        whole.green += pixel[1];
        whole.red += pixel[2];
    }
    const u32 weight = (axis.unit * rowCover) >> 4;
    sums->blue += weight * whole.blue;
    sums->green += weight * whole.green;
    sums->red += weight * whole.red;
    sums->weight += weight * (end - columns.first - 1);
    if (columns.last < axis.size)
        AddPixel(sums, pixel + 3, (columns.lastCover * rowCover) >> 4);
}

u32 RowCover(const Span& rows, const Axis& axis, u32 row)
{
    if (row == rows.first)
        return rows.firstCover;
    return row == rows.last ? rows.lastCover : axis.unit;
}

// `lines` holds the `count` source rows from rows.first on.
void AverageRow(u8* out, u32 width, u8* const* lines, u32 count, const Span& rows,
                const Axis& columnAxis, const Axis& rowAxis)
{
    for (u32 i = 0; i < width; ++i, out += 3) {
        const Span columns = SpanOf(columnAxis, i);
        Sums sums = {};
        for (u32 j = 0; j < count; ++j)
            AddRow(&sums, lines[j], columns, columnAxis, RowCover(rows, rowAxis, rows.first + j));
        if (sums.weight == 0)
            continue;
        out[0] = static_cast<u8>(sums.blue / sums.weight);
        out[1] = static_cast<u8>(sums.green / sums.weight);
        out[2] = static_cast<u8>(sums.red / sums.weight);
    }
}

} // namespace

i32 Raster::BoxScaleLine(u8* out, u32 row, u32 height, u32 width)
{
    if (out == nullptr || row >= height)
        return BadArgument;
    if (info.depth != 24)
        return Failed;
    if (width == 0)
        return Done;
    const Axis columnAxis = MakeAxis(info.width, width);
    const Axis rowAxis = MakeAxis(info.height, height);
    const Span rows = SpanOf(rowAxis, row);
    const u32 room = (rowAxis.step >> 16) + 2;
    u8** const table = static_cast<u8**>(malloc(room * sizeof(u8*)));
    if (table == nullptr)
        return NoMemory;

    const u32 wanted = rows.last - rows.first + 1; // at most `room`
    u32 got = wanted;
    table[0] = nullptr; // `got` says nothing where there are no lines
    const i32 status = LockLines(static_cast<i32>(rows.first), table, &got);
    if (status < 1 && table[0] == nullptr) {
        free(table);
        return status;
    }
    // The source's lines stay locked until UnlockAll. Where some could not be had, the last one
    // that could stands in for them.
    const u32 count = std::min(wanted, info.height - rows.first);
    for (u32 j = got; j < count; ++j)
        table[j] = table[got - 1];
    AverageRow(out, width, table, count, rows, columnAxis, rowAxis);
    free(table);
    return Done;
}
