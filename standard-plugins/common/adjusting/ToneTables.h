// A table for each colour, for adjustments that look at each value by itself.
#pragma once

#include "standard-plugins/common/filtering/Filter.h"

/// In the order of a pixel's bytes.
enum PixelByte : uint32_t { BlueByte, GreenByte, RedByte, PixelBytes };

struct ToneTables {
    uint8_t of[PixelBytes][256];
};

/// Sends each value of the row through the table of its colour.
void ApplyTones(const ToneTables& tables, const FilterRows& rows, uint8_t* out);
/// Rounded to the nearest, a half up, and cut to 0 .. 255.
uint8_t RoundedTone(double value);
/// number / divisor in the same way, without any error; the divisor is above 0, and the doubled
/// number fits.
uint8_t RoundedShare(int64_t number, int64_t divisor);
