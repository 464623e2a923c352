// The negative of a picture: each value v of each colour becomes 255 - v. Twice is the picture as
// it was.
#pragma once

#include <stdint.h>

/// `out` may be `row` itself; rows of 3 * width bytes.
void InvertRow(const uint8_t* row, uint32_t width, uint8_t* out);
