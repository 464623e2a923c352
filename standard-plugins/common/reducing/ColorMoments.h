// A palette made for a picture: X. Wu, Color Quantization by Dynamic Programming and Principal
// Analysis, ACM Transactions on Graphics 11 (1992); the same author's Efficient Statistical
// Computations for Optimal Color Quantization, Graphics Gems II (1991).
//
// The colours lie in a cube of 32 cells a side (the upper five bits of a channel). For each cell
// the number of its pixels, their sums of red, green and blue, and their sum of squares are kept;
// summed up from the cube's corner, they give those of any box from its eight corners. One box, the
// whole cube, is divided again and again: of all boxes the one with the largest sum of squared
// distances from its mean,
//     E = sum(c^2) - |sum(c)|^2 / n,
// along the axis and at the place where
//     |sum1|^2 / n1 + |sum2|^2 / n2
// is largest, which leaves the smallest E of both parts together. A palette entry is the mean of
// its box's pixels, from all eight bits, rounded to the nearest. Of equal boxes the first is
// divided; of equal cuts the first of red, green, blue, lowest place first, is taken.
#pragma once

#include "standard-plugins/common/reducing/ReducedPalette.h"

/// Cells a side, with a border of zeros below.
constexpr uint32_t momentSide = 33;
constexpr uint32_t momentCells = momentSide * momentSide * momentSide;

/// The moments of one cell. 64 bits hold those of the largest picture.
struct ColorMoment {
    uint64_t count;
    uint64_t sum[3];
    uint64_t squares;
};

/// 1.4 MB; zeroed memory is the start. Plain data.
struct ColorMoments {
    ColorMoment cells[momentCells];
};

/// Counts a row of `width` pixels of red, green and blue. Before MakeOptimalPalette.
void CountColors(ColorMoments* moments, const uint8_t* rgb, uint32_t width);
/// The palette of at most `most` colours (1 to mostReducedColors), fewer where no box can be
/// divided any more. Sums the moments up, so that it can be called once. At least one pixel was
/// counted.
void MakeOptimalPalette(ColorMoments* moments, uint32_t most, ReducedPalette* palette);
