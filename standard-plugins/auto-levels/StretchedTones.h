// Tones stretched over the whole range, but for a share of the darkest and of the lightest values
// that may be lost.
//
// Of n values, with the clip p in hundredths of a percent: the low end is the smallest value up to
// which more than n p / 10000 values lie, the high end the largest from which on more than that
// many lie (the p and 1 - p quantiles of the values). Between them
//     out = 255 (v - low) / (high - low)
// cut to 0 .. 255 and rounded to the nearest, a half up, in whole numbers without any other error.
// Where the high end does not lie above the low one, nothing is changed. A picture that was
// stretched once is not changed by the same settings again.
#pragma once

#include "standard-plugins/common/adjusting/Histogram.h"

constexpr uint32_t mostClip = 500; // 5 %

/// From the counts of one colour, or of several together.
void FillStretch(uint8_t table[256], const Histogram& histogram, uint32_t clip);
