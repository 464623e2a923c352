// One output row of an area-averaged reduction, from source rows of 24 bits. Weights are coverages
// in 1/1024 of an output pixel. All numbers are unsigned 32 bits and wrap, as enlarging by 16 or
// more and sources of more than 65,535 pixels a side make them do.
//
// Rows of one cover have one weight in each column, and so have columns of one cover in each row:
// in arithmetic that wraps, the bytes under one weight can be summed before they are weighed.
#pragma once

#include <stddef.h>

#include "foundation/Types.h"

#include <algorithm>

/// One axis of the reduction.
struct BoxAxis {
    u32 size; // of the source
    u32 unit; // what a whole source pixel covers of an output pixel, in 1/1024
    u32 step; // source pixels for one output pixel, 16.16
};

/// The source pixels of one output pixel along an axis: from `first` to `last`, of which the ends
/// are covered in part.
struct BoxSpan {
    u32 first;
    u32 last;
    u32 firstCover;
    u32 lastCover;
};

BoxAxis MakeBoxAxis(u32 size, u32 outputSize);
BoxSpan BoxSpanOf(const BoxAxis& axis, u32 output);

/// `width` pixels to `out` from `count` rows, those of the span from its first on, as many as there
/// are. A pixel whose weights make 0 is left as it was. `out` is no part of a row.
void AverageRow24(u8* out, u32 width, const u8* const* rows, u32 count, const BoxSpan& span,
                  const BoxAxis& columns, const BoxAxis& lines);

constexpr u32 BoxTileColumns = 648; // of the source, whose sums stay in the smallest cache
constexpr u32 BoxTilePixels = 128;  // of the output
constexpr u32 HalfBoxRows = 128;    // whose bytes' sum has 15 bits

/// The rows of one output row in three groups, those of one cover each: the first row, the ones
/// between, the last.
struct BoxRows {
    const u8* const* groups[3];
    u32 covers[3]; // 0 in a group without rows
    u32 counts[3]; // 1; up to 2 * HalfBoxRows; 0 or 1
};

/// What four numbers stand for in the sums of a byte's rows: the first row, up to HalfBoxRows of
/// those between, the last row, the rest of those between.
constexpr u32 BoxGroups = 4;
/// Numbers that are read behind the sums of a tile's last column, of no account.
constexpr u32 BoxSumsBeside = 4;

/// The columns of some output pixels, counted from the first one's first.
struct BoxColumns {
    u32 count; // of pixels, up to BoxTilePixels
    u32 unit;  // the cover of a column between
    u32 first[BoxTilePixels];
    u32 between[BoxTilePixels]; // the columns behind the first that are covered in whole
    u32 last[BoxTilePixels];
    u32 firstCovers[BoxTilePixels];
    u32 lastCovers[BoxTilePixels]; // 0 where the span has no other end, or one behind the source
};

/// The columns of `count` output pixels from `pixel` on, in numbers rounded up to 8: what is behind
/// them is of no account. Without branches, so that the compiler takes several at a time, and in
/// line, for the instructions of who calls it.
[[gnu::always_inline]] inline void PlaceBoxColumns(BoxColumns* columns, const BoxAxis& axis,
                                                   u32 pixel, u32 count)
{
    const u32 unit = axis.unit;
    const u32 size = axis.size;
    const u32 step = axis.step;
    const u32 begin = (step * pixel) >> 16;
    const u32 rounded = (count + 7) / 8 * 8;
    columns->count = count;
    columns->unit = unit;
    for (u32 i = 0; i < rounded; ++i) {
        const u32 first = (step * (pixel + i)) >> 16;
        const u32 last = (step * (pixel + i + 1)) >> 16;
        const bool isOne = first == last;
        const u32 between = std::min(last, size) - first - 1;
        const u32 lastCover = (pixel + i + 1) * 1024 - last * unit;
        columns->first[i] = first - begin;
        columns->between[i] = isOne ? 0 : between;
        columns->last[i] = std::min(last, size - 1) - begin;
        columns->firstCovers[i] = unit + ((first * unit) & 0x3FF);
        columns->lastCovers[i] = isOne || last >= size ? 0 : lastCover;
    }
}
