// A row of a reduction, in tiles of some columns whose sums stay in the smallest cache.

#include "pixel/BoxRow.h"

#include "pixel/RowKernels.h"

#include <algorithm>

namespace
{

// Without rows of no cover, whose weights are 0.
BoxRows GroupRows(const u8* const* rows, u32 count, const BoxSpan& span, u32 unit)
{
    const u32 behindFirst = count - 1;
    const u32 distance = span.last - span.first;
    const u32 last = distance > 0 && behindFirst >= distance ? 1 : 0;
    const u32 between = behindFirst - last;
    const u32 lastCover = last > 0 ? span.lastCover : 0;
    return {{rows, rows + 1, rows + distance},
            {span.firstCover, unit, lastCover},
            {1, unit > 0 ? between : 0, lastCover > 0 ? 1u : 0u}};
}

// Some pixels of a row whose columns fit into a tile.
struct Tile {
    u32 begin; // columns of the source
    u32 end;
    BoxColumns columns;
};

// From `pixel` on; of no pixels where the columns of that one do not fit. A span begins in the
// source, and where the one before it ends.
void FillTile(Tile* tile, const BoxAxis& axis, u32 pixel, u32 width)
{
    BoxColumns& columns = tile->columns;
    Kernels().placeColumns(&columns, axis, pixel, std::min(BoxTilePixels, width - pixel));
    while (columns.count > 0 && columns.last[columns.count - 1] >= BoxTileColumns)
        --columns.count;
    if (columns.count == 0)
        return;
    tile->begin = BoxSpanOf(axis, pixel).first;
    tile->end = tile->begin + columns.last[columns.count - 1] + 1;
}

void DrawTile(u8* out, const BoxRows& rows, const Tile& tile)
{
    u16 sums[3 * BoxTileColumns * BoxGroups + BoxSumsBeside];
    const size_t bytes = size_t{3} * (tile.end - tile.begin);
    Kernels().sumRows(sums, rows, size_t{3} * tile.begin, bytes);
    std::fill_n(sums + bytes * BoxGroups, BoxSumsBeside, u16{0});
    Kernels().averageColumns(out, sums, rows, tile.columns);
}

// Any reduction whatever.
void AveragePixel(u8* out, const BoxRows& rows, const BoxAxis& columns, const BoxSpan& span)
{
    u32 sums[3] = {};
    u32 weights = 0;
    const u32 end = std::min(span.last, columns.size - 1);
    for (u32 group = 0; group < 3; ++group)
        for (u32 row = 0; row < rows.counts[group]; ++row)
            for (u32 x = span.first; x <= end; ++x) {
                const u32 cover = x == span.first  ? span.firstCover
                                  : x == span.last ? span.lastCover
                                                   : columns.unit;
                const u32 weight = (cover * rows.covers[group]) >> 4;
                const u8* const pixel = rows.groups[group][row] + size_t{3} * x;
                for (u32 i = 0; i < 3; ++i)
                    sums[i] += weight * pixel[i];
                weights += weight;
            }
    for (u32 i = 0; i < 3 && weights != 0; ++i)
        out[i] = static_cast<u8>(sums[i] / weights);
}

// Whether all pixels of the output are those of two rows and two columns, each of a weight of
// 512 * 512 / 16 = 2^14: together 2^16, so that their sum by 4 is the average.
bool IsHalf(const BoxRows& rows, const BoxAxis& columns, const BoxAxis& lines)
{
    return columns.unit == 512 && columns.step == 2 << 16 && lines.unit == 512 &&
           rows.covers[0] == 512 && rows.counts[1] == 1 && rows.counts[2] == 0;
}

} // namespace

BoxAxis MakeBoxAxis(u32 size, u32 outputSize)
{
    // A source of no pixels has no cover to give; no line or no column of it is then read.
    const u32 unit = size == 0 ? 0 : (outputSize << 10) / size;
    return {size, unit, (size << 16) / outputSize};
}

BoxSpan BoxSpanOf(const BoxAxis& axis, u32 output)
{
    // The products do not wrap: the step times all output pixels is at most the size in 16.16,
    // which is what wraps for a large source. So the span is in order and begins in the source.
    BoxSpan span = {};
    span.first = (axis.step * output) >> 16;
    span.last = (axis.step * (output + 1)) >> 16;
    span.firstCover = (span.first + 1) * axis.unit - ((span.first * axis.unit) & ~u32{0x3FF});
    span.lastCover = (output + 1) * 1024 - span.last * axis.unit;
    return span;
}

void AverageRow24(u8* out, u32 width, const u8* const* rows, u32 count, const BoxSpan& span,
                  const BoxAxis& columns, const BoxAxis& lines)
{
    if (columns.size == 0 || count == 0)
        return;
    const BoxRows grouped = GroupRows(rows, count, span, lines.unit);
    if (IsHalf(grouped, columns, lines))
        return Kernels().halveRows24(out, grouped.groups[0][0], grouped.groups[1][0], width);
    Tile tile;
    tile.columns.count = 0;
    for (u32 pixel = 0; pixel < width; pixel += std::max(tile.columns.count, u32{1})) {
        if (grouped.counts[1] <= 2 * HalfBoxRows)
            FillTile(&tile, columns, pixel, width);
        u8* const at = out + size_t{3} * pixel;
        if (tile.columns.count > 0)
            DrawTile(at, grouped, tile);
        else
            AveragePixel(at, grouped, columns, BoxSpanOf(columns, pixel));
    }
}
