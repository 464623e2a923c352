// A row of a reduction, in tiles of some columns whose sums stay in the smallest cache.

#include "pixel/BoxRow.h"

#include "pixel/RowKernels.h"

#include <algorithm>

namespace
{

constexpr u32 TileColumns = 512; // of the source
constexpr u32 TilePixels = 128;  // of the output
constexpr u32 MostRows = 257;    // whose bytes' sum has 16 bits

// What all tiles of a row have in common.
struct Reduction {
    const BoxAxis& columns;
    const u8* const* groups[3]; // rows of one cover
    u32 covers[3];
    u32 rows[3];
};

Reduction GroupRows(const u8* const* rows, u32 count, const BoxSpan& span, const BoxAxis& columns,
                    const BoxAxis& lines)
{
    const u32 behindFirst = count - 1;
    const u32 distance = span.last - span.first;
    const u32 last = distance > 0 && behindFirst >= distance ? 1 : 0;
    const u32 between = behindFirst - last;
    return {columns,
            {rows, rows + 1, rows + distance},
            {span.firstCover, lines.unit, span.lastCover},
            {1, between, last}};
}

BoxColumns ColumnsOf(const BoxSpan& span, const BoxAxis& axis, u32 tile)
{
    const u32 end = std::min(span.last, axis.size);
    const u32 first = span.first - tile;
    BoxColumns columns = {first, 0, first, {span.firstCover, axis.unit, 0, 0}};
    if (span.first == span.last)
        return columns;
    columns.between = end - span.first - 1;
    if (span.last < axis.size) {
        columns.last = span.last - tile;
        columns.covers[2] = span.lastCover;
    }
    return columns;
}

// How many pixels from `pixel` on, 0 or more, fit into a tile; their columns begin at `*tile` and
// end before `*tileEnd`.
u32 FillTile(const BoxAxis& axis, u32 pixel, u32 width, BoxColumns* columns, u32* tile,
             u32* tileEnd)
{
    *tile = BoxSpanOf(axis, pixel).first;
    u32 count = 0;
    for (; count < TilePixels && pixel + count < width; ++count) {
        const BoxSpan span = BoxSpanOf(axis, pixel + count);
        const u32 end = std::min(span.last + 1, axis.size);
        if (span.first >= axis.size || end - *tile > TileColumns)
            break;
        columns[count] = ColumnsOf(span, axis, *tile);
        *tileEnd = end;
    }
    return count;
}

void DrawTile(u8* out, const Reduction& reduction, const BoxColumns* columns, u32 count, u32 tile,
              u32 tileEnd)
{
    u16 sums[3][3 * TileColumns + 5];
    const size_t bytes = size_t{3} * (tileEnd - tile);
    BoxSums of = {{sums[0], sums[1], sums[2]}, {}, {}, 0};
    for (u32 i = 0; i < count; ++i)
        of.samples = std::max(of.samples, std::max(reduction.rows[1], u32{1}) * columns[i].between);
    for (u32 group = 0; group < 3; ++group) {
        of.cover[group] = reduction.covers[group];
        of.rows[group] = reduction.rows[group];
        Kernels().sumRows(sums[group], reduction.groups[group], reduction.rows[group],
                          size_t{3} * tile, bytes);
        std::fill_n(sums[group] + bytes, 5, u16{0});
    }
    Kernels().averageColumns(out, of, columns, count);
}

// Any reduction whatever.
void AveragePixel(u8* out, const Reduction& reduction, const BoxSpan& span)
{
    u32 sums[3] = {};
    u32 weights = 0;
    const u32 end = std::min(span.last, reduction.columns.size - 1);
    for (u32 group = 0; group < 3; ++group)
        for (u32 row = 0; row < reduction.rows[group]; ++row)
            for (u32 x = span.first; x <= end; ++x) {
                const u32 cover = x == span.first  ? span.firstCover
                                  : x == span.last ? span.lastCover
                                                   : reduction.columns.unit;
                const u32 weight = (cover * reduction.covers[group]) >> 4;
                const u8* const pixel = reduction.groups[group][row] + size_t{3} * x;
                for (u32 i = 0; i < 3; ++i)
                    sums[i] += weight * pixel[i];
                weights += weight;
            }
    for (u32 i = 0; i < 3 && weights != 0; ++i)
        out[i] = static_cast<u8>(sums[i] / weights);
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
    const Reduction reduction = GroupRows(rows, count, span, columns, lines);
    BoxColumns of[TilePixels];
    for (u32 pixel = 0; pixel < width;) {
        u32 tile = 0;
        u32 tileEnd = 0;
        const u32 drawn = reduction.rows[1] <= MostRows
                              ? FillTile(columns, pixel, width, of, &tile, &tileEnd)
                              : 0;
        u8* const at = out + size_t{3} * pixel;
        if (drawn > 0)
            DrawTile(at, reduction, of, drawn, tile, tileEnd);
        else
            AveragePixel(at, reduction, BoxSpanOf(columns, pixel));
        pixel += std::max(drawn, u32{1});
    }
}
