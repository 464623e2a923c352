// One output row of an area-averaged reduction, from source rows of 24 bits. Weights are coverages
// in 1/1024 of an output pixel. All numbers are unsigned 32 bits and wrap, as enlarging by 16 or
// more and sources of more than 65,535 pixels a side make them do.
//
// Rows of one cover have one weight in each column, and so have columns of one cover in each row:
// in arithmetic that wraps, the bytes under one weight can be summed before they are weighed.
#pragma once

#include <stddef.h>

#include "foundation/Types.h"

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

/// The sums of some columns of three groups of rows, those of one cover each: the first row, the
/// ones between, the last.
struct BoxSums {
    const u16* bytes[3]; // 3 sums a column, and 5 numbers of 0 behind them
    u32 cover[3];
    u32 rows[3]; // in the group; one without rows has sums of 0
    u32 samples; // at most that many bytes of a channel lie between the ends of a span and of rows
};

/// Columns of one output pixel, counted from the sums' first.
struct BoxColumns {
    u32 first;
    u32 between; // the columns behind the first that are covered in whole
    u32 last;
    u32 covers[4]; // of the first, of each one between, of the last, which is 0 where there is none
};
