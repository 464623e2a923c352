// Grain: a random number for each pixel, added to its colours.
//
// The number is drawn from the pixel's place alone, through the hash of M. Jarzynski and M. Olano
// (Hash Functions for GPU Rendering, 2020, "pcg") over column, row and colour: the same picture
// always gets the same grain, and no generator has to run over the pixels in order. With
// w = 2.55 * amount, rounded, and a hash h of 32 bits:
//     even:     floor(h (2 w + 1) / 2^32) - w, each whole number from -w to w alike;
//     Gaussian: w (s - 510) / 256, rounded to the nearest, a half up, where s is the sum of the
//     four
//               bytes of h. That is nearly normal (the central limit theorem) with the deviation
//               w / sqrt(3) of the even one: that of s is 147.8, 256 / sqrt(3).
// The sum with the colour is cut to 0 .. 255. Grey grain adds the same number to all three colours.
#pragma once

#include <stdint.h>

struct Grain {
    /// Per cent, 0 to 100.
    uint32_t amount;
    bool gaussian;
    bool inColour;
};

/// Changes row `y` of `width` pixels in place.
void AddGrain(const Grain& grain, uint32_t y, uint32_t width, uint8_t* row);
