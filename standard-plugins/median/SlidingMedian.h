// The median of each colour in the square around a pixel, which takes away specks and keeps edges:
// of (2 radius + 1)^2 values in order the one in the middle. Edges are replicated. Without any
// error.
//
// A histogram slides along the row: at each step a column of pixels leaves it and another comes in,
// and the median goes up or down from where it was. (T. Huang, G. Yang, G. Tang, A Fast
// Two-Dimensional Median Filtering Algorithm, 1979.)
#pragma once

#include "standard-plugins/common/filtering/Filter.h"

/// The radius, up to 127, is the reach of `rows`.
void WriteMedianRow(const FilterRows& rows, uint8_t* out);
