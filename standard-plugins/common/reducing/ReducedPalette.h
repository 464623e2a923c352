// The few colours that a picture is reduced to.
#pragma once

#include <stdint.h>

constexpr uint32_t mostReducedColors = 256;

struct ReducedPalette {
    /// 1 to mostReducedColors once it is made.
    uint32_t count;
    /// Red, green, blue.
    uint8_t colors[mostReducedColors][3];
};
