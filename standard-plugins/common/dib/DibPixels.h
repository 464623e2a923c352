// Turns the pixels of a device-independent bitmap into blue, green and red bytes.
//
// A channel of a 16- or 32-bit pixel is what its mask leaves, brought to 8 bits to the nearest:
// (255 * v + m div 2) div m with m = 2^n - 1 for a mask of n bits; a channel without a mask is 0.
// Alpha is brought to 8 bits in the same way and then laid over the ground (Background.h).
#pragma once

#include "standard-plugins/common/reading/Background.h"

#include <stddef.h>

/// Where a channel lies in a pixel.
struct DibChannel {
    uint32_t shift;
    /// The value of all bits set, 0 for no channel.
    uint32_t highest;
    /// Values of up to 8 bits as bytes.
    uint8_t bytes[256];
};

struct DibPixels {
    /// 1, 2, 4, 8, 16, 24 or 32.
    uint32_t bits;
    /// Blue, green, red of each index; black beyond the file's palette.
    uint8_t colors[256][3];
    uint32_t colorCount;
    /// A pixel had an index at or beyond `colorCount`.
    bool beyondPalette;
    /// Red, green, blue, alpha.
    DibChannel channels[4];
    Background ground;
};

/// Each is the bits of one run, or 0.
bool AreDibMasks(const uint32_t masks[4]);
/// `masks` passed AreDibMasks.
void SetDibMasks(DibPixels* pixels, const uint32_t masks[4]);
/// Bytes of a row, which is filled up to a multiple of four.
size_t DibRowBytes(uint32_t width, uint32_t bits);
/// Converts a row; `bgr` has 3 * width bytes.
void ConvertDibRow(DibPixels* pixels, const uint8_t* source, uint32_t width, uint8_t* bgr);
/// The colour of an index, noting one beyond the palette.
const uint8_t* DibColor(DibPixels* pixels, uint32_t index);
/// The index of pixel `x` in a row of 1, 2, 4 or 8 bits, the highest bits first.
uint32_t DibIndex(const uint8_t* source, uint32_t x, uint32_t bits);
