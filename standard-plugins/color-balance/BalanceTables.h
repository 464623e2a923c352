// More of a colour in the dark, the middle and the light tones, or of what it is mixed against.
//
// For each of red, green and blue, with the settings a, b and c for shadows, midtones and
// highlights, from -100 (cyan, magenta, yellow) to 100 (red, green, blue), and t = v / 255:
//     out = v + 255 / 4 (a (1 - t)^2 + 2 b t (1 - t) + c t^2) / 100
// cut to 0 .. 255 and rounded to the nearest, a half up, in whole numbers without any other error.
// The three weights are the polynomials of S. Bernstein (1912) of degree 2, which add up to 1:
// alike settings move all tones alike. A quarter of the range is the most for which no settings can
// make a darker tone the lighter one.
//
// Where the lightness is to be kept, the pixel's luma (Rec. 601, of the values before and of the
// rounded ones behind) is made up for in all three colours alike: the difference, rounded in the
// same way, is added to each, and cut.
#pragma once

#include "standard-plugins/common/adjusting/ToneTables.h"

constexpr int32_t mostBalance = 100;

/// Each from -mostBalance to mostBalance.
struct ToneBalance {
    int32_t shadows;
    int32_t midtones;
    int32_t highlights;
};

void FillBalance(uint8_t table[256], const ToneBalance& balance);
/// `row` and `out`, which may be the same, hold 3 * width bytes of blue, green, red.
void BalanceRowKeepingLuma(const ToneTables& tables, const uint8_t* row, uint32_t width,
                           uint8_t* out);
