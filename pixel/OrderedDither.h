// Ordered dither of 24-bit rows to 5 significant bits a channel, by a 4x4 threshold matrix (Bayer,
// 1973), for the surface that the window is painted from.
//
// The table has one sub-table of 256 entries for each place of the matrix, its rows one after the
// other; all three channels of a pixel go through the same one.
#pragma once

#include "foundation/Types.h"

constexpr u32 DitherSide = 4; // of the matrix
constexpr u32 DitherEntries = 256;
constexpr u32 DitherTableSize = DitherSide * DitherSide * DitherEntries;

constexpr u8 DitherThresholds[DitherSide * DitherSide] = {
    7, 3, 6, 2, //
    1, 5, 0, 4, //
    6, 2, 7, 3, //
    0, 4, 1, 5,
};

/// The threshold of a pixel, 0 to 7.
constexpr u8 DitherThreshold(u32 x, u32 y)
{
    return DitherThresholds[y % DitherSide * DitherSide + x % DitherSide];
}

/// Entry v of the sub-table of a place with threshold t becomes (v + t) & ~7, at most 255.
void FillDitherTable(u8* table);
/// `columns` pixels of the picture's row `y` from `source` to `target`, 3 bytes each.
void DitherRow(u8* target, const u8* source, u32 columns, const u8* table, u32 y);
