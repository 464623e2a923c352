// The unsharp mask: what a blur takes away is added to the picture once more.
//
// With the value v of a colour, its blurred value b, an amount of a per cent and a threshold t:
//     out = v                          where |v - b| < t,
//     out = v + a / 100 * (v - b)      elsewhere,
// cut to 0 .. 255 and rounded to the nearest, a half up. (The formula: R. Gonzalez, R. Woods,
// Digital Image Processing, on unsharp masking and highboost filtering.) The blur is a Gaussian
// (common/gaussian), taken before it is rounded to whole steps, in steps of 1/256; from there on
// the arithmetic is in whole numbers and exact.
//
// Held are the blur's rows and, as they were, the rows from the one in work to the end of the
// blur's reach. Plain data; zeroed memory is a closed one.
#pragma once

#include "standard-plugins/common/gaussian/GaussianRows.h"

struct UnsharpMask {
    GaussianRows blurred;
    /// Row y lies in place y % keptRows.
    uint8_t* kept;
    uint32_t keptRows;
    int32_t amount;
    int32_t threshold;
};

/// `radius` is sigma in tenths of a pixel, at least 1. `amount` and `threshold` are set by the
/// caller. False without memory.
bool OpenUnsharpMask(UnsharpMask* mask, uint32_t width, uint32_t height, uint32_t radius);
void CloseUnsharpMask(UnsharpMask* mask);
/// Takes row `y` of the picture; rows come in order, from 0.
void TakeUnsharpRow(UnsharpMask* mask, uint32_t y, const uint8_t* row);
/// Writes sharpened row `y`, once row y + reach of the blur (or the last one) was taken and no
/// later row.
void WriteUnsharpRow(UnsharpMask* mask, uint32_t y, uint8_t* row);
