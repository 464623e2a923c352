// How light a pixel is, as one number of 0 to 255: sums of the stored, gamma-corrected values.
#pragma once

#include <stdint.h>

enum class LumaKind : uint8_t {
    Rec601, // 0.299 red + 0.587 green + 0.114 blue: ITU-R BT.601, section 2.5.1
    Rec709, // 0.2126 red + 0.7152 green + 0.0722 blue: ITU-R BT.709, section 3.2
    Average // a third of each
};

/// Of a pixel of blue, green and red; rounded to the nearest, a half up, without any other error.
uint8_t LumaOf(const uint8_t* pixel, LumaKind kind);
