// Turns the samples of a PNG row into blue, green and red bytes on white.
//
// A pixel with alpha is laid over white with one rounding, to the nearest, from exact integers:
//
//     8 bits:   out = (a * c + (255 - a) * 255 + 127) div 255
//     16 bits:  out = (a * c + (65535 - a) * 65535 + 8421247) div 16842495
//
// where 16842495 = 65535 * 257 brings the 16-bit result down to 8 bits in the same division, and
// the term added is half of the odd divisor, rounded down, so that no tie exists. A 16-bit sample
// without alpha is (c + 128) div 257. A grey sample of 1, 2 or 4 bits is c times 255, 85 or 17.
// Gamma and colour profiles play no part.
#pragma once

#include <stddef.h>
#include <stdint.h>

/// How the samples of a row lie in memory, most significant byte first.
enum class PngLayout {
    Table, // one byte a pixel, an index or a grey level, through `table`
    Grey16,
    GreyAlpha8,
    GreyAlpha16,
    Rgb8,
    Rgb16,
    Rgba8,
    Rgba16
};

struct PngPixels {
    PngLayout layout;
    /// Blue, green, red of each level or index, already on white.
    uint8_t table[256][3];
    /// Entries that the file defines; a pixel at or beyond them sets `beyondTable`.
    uint32_t tableCount;
    bool beyondTable;
    /// One colour of the file is transparent: grey in the first word, or red, green, blue.
    bool hasKey;
    uint16_t key[3];
};

/// A pixel over white, by the formula above; `channel` and `alpha` from 0 to 255.
uint8_t OverWhite8(uint32_t channel, uint32_t alpha);
/// The same from 16-bit samples.
uint8_t OverWhite16(uint32_t channel, uint32_t alpha);
/// Bytes of a pixel of the source row.
size_t BytesPerPixel(PngLayout layout);
/// Converts `count` pixels; each goes `step` bytes behind the one before.
void ConvertPixels(PngPixels* pixels, const uint8_t* source, uint32_t count, uint8_t* target,
                   size_t step);
