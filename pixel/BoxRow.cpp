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

// The spans of an axis one after the other, each of which begins where the one before it ends.
class Spans
{
public:
    Spans(const BoxAxis& of, u32 output)
        : axis(of), position(of.step * output), covered(output << 10), first(position >> 16),
          firstUnits(first * of.unit)
    {
    }
    BoxSpan Next()
    {
        position += axis.step;
        covered += 1024;
        const u32 last = position >> 16;
        const u32 lastUnits = last * axis.unit;
        const BoxSpan span = {first, last, axis.unit + (firstUnits & 0x3FF), covered - lastUnits};
        first = last;
        firstUnits = lastUnits;
        return span;
    }

private:
    const BoxAxis axis;
    u32 position; // 16.16
    u32 covered;  // by the outputs so far, in 1/1024
    u32 first;
    u32 firstUnits; // first * axis.unit
};

BoxColumns ColumnsOf(const BoxSpan& span, const BoxAxis& axis, u32 tile)
{
    const u32 first = span.first - tile;
    if (span.first == span.last)
        return {first, 0, first, {span.firstCover, axis.unit, 0, 0}};
    const u32 between = std::min(span.last, axis.size) - span.first - 1;
    if (span.last >= axis.size)
        return {first, between, first, {span.firstCover, axis.unit, 0, 0}};
    return {first, between, span.last - tile, {span.firstCover, axis.unit, span.lastCover, 0}};
}

// Some pixels of a row whose columns fit into a tile.
struct Tile {
    u32 pixels = 0;
    u32 begin = 0; // columns of the source
    u32 end = 0;
    u32 between = 0; // at most that many columns lie between the ends of a pixel's
    BoxColumns columns[TilePixels];
};

// From `pixel` on; none where the columns of that one do not fit.
void FillTile(Tile* tile, const BoxAxis& axis, u32 pixel, u32 width)
{
    Spans spans(axis, pixel);
    tile->begin = BoxSpanOf(axis, pixel).first;
    tile->between = 0;
    u32 count = 0;
    for (const u32 most = std::min(TilePixels, width - pixel); count < most; ++count) {
        const BoxSpan span = spans.Next();
        const u32 end = std::min(span.last + 1, axis.size);
        if (span.first >= axis.size || end - tile->begin > TileColumns)
            break;
        tile->columns[count] = ColumnsOf(span, axis, tile->begin);
        tile->between = std::max(tile->between, tile->columns[count].between);
        tile->end = end;
    }
    tile->pixels = count;
}

void DrawTile(u8* out, const Reduction& reduction, const Tile& tile)
{
    u16 sums[3][3 * TileColumns + 5];
    const size_t bytes = size_t{3} * (tile.end - tile.begin);
    BoxSums of = {{sums[0], sums[1], sums[2]}, {}, {}, 0};
    of.samples = std::max(reduction.rows[1], u32{1}) * tile.between;
    for (u32 group = 0; group < 3; ++group) {
        of.cover[group] = reduction.covers[group];
        of.rows[group] = reduction.rows[group];
        Kernels().sumRows(sums[group], reduction.groups[group], reduction.rows[group],
                          size_t{3} * tile.begin, bytes);
        std::fill_n(sums[group] + bytes, 5, u16{0});
    }
    Kernels().averageColumns(out, of, tile.columns, tile.pixels);
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
    Tile tile;
    for (u32 pixel = 0; pixel < width; pixel += std::max(tile.pixels, u32{1})) {
        if (reduction.rows[1] <= MostRows)
            FillTile(&tile, columns, pixel, width);
        u8* const at = out + size_t{3} * pixel;
        if (tile.pixels > 0)
            DrawTile(at, reduction, tile);
        else
            AveragePixel(at, reduction, BoxSpanOf(columns, pixel));
    }
}
