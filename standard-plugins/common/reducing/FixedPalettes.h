// Palettes that do not look at the picture.
#pragma once

#include "standard-plugins/common/reducing/ReducedPalette.h"

/// The numbers are stored in the settings.
enum class FixedPalette : uint32_t {
    WebCube,       // 216: 0, 51, 102, 153, 204 and 255 of each of red, green and blue
    Standard16,    // 16: black, silver, grey and white; red, green and blue, mixed, full and half
    Grey256,       // every level
    Grey16,        // 0, 17, 34 to 255
    BlackAndWhite, // 2
    Count
};

void FillFixedPalette(FixedPalette which, ReducedPalette* palette);
