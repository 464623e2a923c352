// Rows that become columns: the inner loops of exchanging the two and of a quarter turn, on 24-bit
// pixels.
#pragma once

#include <stddef.h>

#include "foundation/Types.h"

/// Lines at a time: of the source enough that a pixel's place in a target line costs little beside
/// its bytes, and few enough that a cache line of each fits into the smallest cache.
inline constexpr u32 CrossedRows = 64;
inline constexpr u32 CrossedColumns = 16;

/// A block of source rows. Pixel n from `column` on of source row i comes to targets[n] + 3 * i.
struct CrossedBlock {
    const u8* rows[CrossedRows];
    u32 count;
    u32 columns; // whole pixels of a row
};

/// `lines` columns from `column` on, at most CrossedColumns. Rows and targets do not overlap.
void CrossPixels24(u8* const* targets, u32 lines, const CrossedBlock& block, u32 column);

/// Tells the processor what CrossPixels24 is going to write, and what it reads some columns later.
void PrefetchCrossed(u8* const* targets, u32 lines, const CrossedBlock& block, u32 column);
