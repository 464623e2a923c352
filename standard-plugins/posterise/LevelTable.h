// What becomes of each of the 256 values of a colour when there are n levels of it: uniform
// quantisation (R. Gonzalez, R. Woods, Digital Image Processing, on grey-level resolution).
//     level = floor(v n / 256),    out = 255 * level / (n - 1), rounded to the nearest, a half up,
// so that all levels take equally many values, and black and white stay. In whole numbers, without
// any error.
#pragma once

#include <stdint.h>

/// `levels` from 2 to 256.
void FillLevelTable(uint8_t table[256], uint32_t levels);
