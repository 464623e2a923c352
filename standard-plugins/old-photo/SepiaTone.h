// The look of an old photograph: brown tones instead of colours, and corners that have gone dark.
//
// The brown of a pixel is its luma of ITU-R Recommendation BT.601 in a toned scale,
//     Y = 0.299 R + 0.587 G + 0.114 B,
//     tone = 1.35 Y in red, 1.20 Y in green, 0.94 Y in blue, each 255 at the most,
// and with a strength of s per cent the colour v becomes v + s / 100 * (tone - v), rounded to the
// nearest, a half up: the matrix of three equal rows of lumas, each with its factor.
//
// Towards the corners it is then darkened by the square of the distance from the middle: with d the
// distance of the pixel's middle from the picture's, r that of the picture's corners and c per
// cent, k = 1 - c / 100 * d^2 / r^2 is rounded to steps of 1/65536 and the value times k to whole
// ones. In whole numbers: the same on every machine.
#pragma once

#include <stdint.h>

struct SepiaTone {
    /// Both in per cent, 0 to 100.
    uint32_t strength;
    uint32_t corners;
    uint32_t width;
    uint32_t height;
};

/// Changes row `y` of the picture in place.
void ToneRow(const SepiaTone& tone, uint32_t y, uint8_t* row);
