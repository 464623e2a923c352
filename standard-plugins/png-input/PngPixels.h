// Turns the samples of a PNG row into blue, green and red bytes over a background, by the formulas
// of Background.h. A grey sample of 1, 2 or 4 bits is c times 255, 85 or 17. Gamma plays no part; a
// colour profile is applied to the row before.
#pragma once

#include "standard-plugins/common/reading/Background.h"

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
    Background ground;
    /// Blue, green, red of each level or index, already over the background.
    uint8_t table[256][3];
    /// Entries that the file defines; a pixel at or beyond them sets `beyondTable`.
    uint32_t tableCount;
    bool beyondTable;
    /// One colour of the file is transparent: grey in the first word, or red, green, blue.
    bool hasKey;
    uint16_t key[3];
};

/// Bytes of a pixel of the source row.
size_t BytesPerPixel(PngLayout layout);
/// Converts `count` pixels; each goes `step` bytes behind the one before.
void ConvertPixels(PngPixels* pixels, const uint8_t* source, uint32_t count, uint8_t* target,
                   size_t step);
