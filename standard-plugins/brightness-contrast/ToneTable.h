// What becomes of each of the 256 values of a colour.
//
// With brightness b and contrast c, from -100 to 100, and the middle M = 127.5:
//     out = M + (v + 2.55 b - M) * gain,    gain = 1 + c / 100    for c up to 0,
//                                           gain = 1 / (1 - c / 100)    above,
// cut to 0 .. 255 and rounded to the nearest, a half up. So brightness alone moves every value by
// its share of the whole range, and contrast alone turns the line about the middle: level at -100,
// upright at 100, where what lies below the middle becomes 0, what lies above 255, and the middle
// itself stays. Computed in whole numbers, without any error.
#pragma once

#include <stdint.h>

constexpr int32_t mostTone = 100;

/// Both numbers from -mostTone to mostTone.
void FillToneTable(uint8_t table[256], int32_t brightness, int32_t contrast);
