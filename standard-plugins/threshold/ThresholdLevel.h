// Black and white by a level: a pixel whose luma (Rec. 601, common/adjusting/Luma.h) is at least
// the level becomes white, any other black.
//
// The level may be found from the picture (N. Otsu, A Threshold Selection Method from Gray-Level
// Histograms, 1979): of the n pixels let a level t leave n0 below it with the sum s0 of their
// lumas, and n1 = n - n0 above with the sum s1. The variance between the two classes is, but for a
// factor that is the same for all levels,
//     (s0 n1 - s1 n0)^2 / (n0 n1),
// and the level is the first where it is largest. (Levels between which no pixel lies divide alike.)
#pragma once

#include "standard-plugins/common/adjusting/Histogram.h"

constexpr uint32_t leastLevel = 1;
constexpr uint32_t mostLevel = 255;

void CountLumas(Histogram* histogram, const uint8_t* row, uint32_t width);
/// From leastLevel to mostLevel; `otherwise` for a picture of a single luma, which has no classes.
uint32_t DividingLevel(const Histogram& histogram, uint32_t otherwise);
/// `out` may be `row` itself; rows of 3 * width bytes of blue, green, red.
void DivideRow(const uint8_t* row, uint32_t width, uint32_t level, uint8_t* out);
