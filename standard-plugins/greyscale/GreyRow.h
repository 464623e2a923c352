// A picture without colours: each pixel's three values become its luma (common/adjusting/Luma.h).
// Greys stay as they are, since the weights of each kind add up to 1.
#pragma once

#include "standard-plugins/common/adjusting/Luma.h"

/// `out` may be `row` itself; rows of 3 * width bytes of blue, green, red.
void GreyRow(const uint8_t* row, uint32_t width, LumaKind kind, uint8_t* out);
