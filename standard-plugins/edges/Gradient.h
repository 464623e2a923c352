// The edges of a picture: how steeply its colours change, by the operator of I. Sobel and
// G. Feldman (A 3x3 Isotropic Gradient Operator for Image Processing, 1968).
//
// Of each colour, with the columns and rows beside the pixel weighted 1, 2, 1:
//     gx = right column - left column,    gy = lower row - upper row,
//     m = p / 100 * sqrt(gx^2 + gy^2) / 4,
// where p is a strength in per cent and 4 makes a step of 255 a full 255. m is rounded to the
// nearest, a half up, and cut at 255. Either each colour shows its own m, or all three the largest
// of them, as grey. On a light ground 255 - m is shown. Edges of the picture are replicated. The
// rounding is decided in whole numbers: the result is without any error.
#pragma once

#include "standard-plugins/common/filtering/Filter.h"

struct Gradient {
    bool inColour;
    bool lightGround;
    /// m without its rounding is this times the root of the sum of squares; an estimate.
    float factor;
    /// The least sum of squares that gives m, for m from 0 to 255; the last one none reaches.
    uint32_t least[257];
};

/// `inColour` and `lightGround` are the caller's; `strength` in per cent, from 10 to 1000.
void OpenGradient(Gradient* gradient, uint32_t strength);
/// `rows` reach over one pixel at least.
void WriteGradientRow(const Gradient& gradient, const FilterRows& rows, uint8_t* out);
