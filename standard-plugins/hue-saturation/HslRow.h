// A picture's colours turned, made stronger or weaker, and lighter or darker, in the double cone of
// hue, saturation and lightness (A. R. Smith, Color Gamut Transform Pairs, 1978; G. Joblove and
// D. Greenberg, Color Spaces for Computer Graphics, 1978).
//
// Of red, green and blue in 0 .. 1, with the largest M, the smallest m and c = M - m:
//     L = (M + m) / 2,    S = c / (1 - |2 L - 1|),
//     H = 60 (g - b) / c degrees where red is the largest, 120 + 60 (b - r) / c where green is,
//         240 + 60 (r - g) / c where blue is;
// a grey has no hue, and saturation 0. With the three settings h, s and l:
//     H' = H + h,    S' = S (1 + s / 100), at most 1,
//     L' = L (1 + l / 100) for l up to 0,    L' = L + (1 - L) l / 100 above.
// Back, with k = S' (1 - |2 L' - 1|), each colour is L' + k (f - 1/2), where f depends on how far
// H' is from the colour's own hue (0, 120 and 240 degrees): 1 up to 60 degrees, 0 from 120, a
// straight line between. That times 255 is rounded to the nearest, a half up.
//
// Computed in whole numbers, without any other error: settings of 0 change nothing. Greys stay grey
// whatever the hue and the saturation.
#pragma once

#include <stdint.h>

constexpr int32_t mostHue = 180; // degrees
constexpr int32_t mostSaturation = 100;
constexpr int32_t mostLightness = 100;

/// Each from minus its most to its most.
struct HslChange {
    int32_t hue;
    int32_t saturation;
    int32_t lightness;
};

/// `out` may be `row` itself; rows of 3 * width bytes of blue, green, red.
void ChangeHslRow(const uint8_t* row, uint32_t width, const HslChange& change, uint8_t* out);
