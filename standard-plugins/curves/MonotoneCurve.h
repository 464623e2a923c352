// A smooth curve through five points that rises and falls only where they do.
//
// Piecewise cubic Hermite interpolation with the slopes of F. Fritsch and R. Carlson, Monotone
// Piecewise Cubic Interpolation, 1980. With d_k the slope of the straight line from point k to the
// next, the slope of the curve in a point is
//     at both ends that of the line there;
//     0 where the lines on both sides do not both rise or both fall;
//     else their mean.
// Then in each piece, with a and b the slopes at its ends divided by d_k: where a^2 + b^2 is above
// 9, both are multiplied by 3 / sqrt(a^2 + b^2); in a level piece both become 0. Pieces are gone
// through from the left. All in doubles; a value of the curve is rounded to the nearest, a half up.
// Points on a straight line give that line.
#pragma once

#include <stdint.h>

constexpr uint32_t curvePoints = 5;
/// Where they lie.
constexpr uint32_t curveInputs[curvePoints] = {0, 64, 128, 192, 255};

/// `outputs` of 0 to 255, one for each point.
void FillCurve(uint8_t table[256], const uint32_t outputs[curvePoints]);
