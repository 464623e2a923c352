// How often each value occurs in a picture, counted in a first pass.
#pragma once

#include "standard-plugins/common/adjusting/ToneTables.h"

struct Histogram {
    uint64_t counts[256];
};

/// Counts a row of `width` pixels for each colour by itself.
void CountColors(Histogram histograms[PixelBytes], const uint8_t* row, uint32_t width);
/// Of all values.
uint64_t CountOf(const Histogram& histogram);
