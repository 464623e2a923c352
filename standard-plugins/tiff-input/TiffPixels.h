// Turns the samples of a TIFF's row into blue, green and red bytes over the background.
//
// Samples of up to 8 bits become 8, of 9 to 32 bits 16, to the nearest: (v * top + max div 2) div
// max; of 32 bits the upper 16 count. A float runs from 0 to 1, and one beyond is cut and noted. A
// profile converts what is there then. Straight alpha is laid over the background by the formulas
// of Background.h; associated alpha, which the colours already hold, by
//
//     out = c + (255 - a) * b div 255, to the nearest,
//
// its 16-bit form likewise, and is divided out first where a profile wants the colours themselves.
// Inks without a profile are light of the colour times light of black, with light = 255 - ink:
// out = (light of the colour * light of black + 127) div 255.
#pragma once

#include "standard-plugins/common/reading/Background.h"
#include "standard-plugins/common/reading/ColorConversion.h"
#include "standard-plugins/tiff-input/TiffImage.h"

struct TiffPixels {
    const TiffImage* image;
    Background ground;
    ColorConversion colors;
    /// Colours are 16 bits wide.
    bool wide;
    /// Colour samples of a pixel in `values`: 1, 3 or 4.
    uint32_t channels;
    /// A row's colours and its alpha, 8 or 16 bits each; the colours of inks, converted.
    uint8_t* values;
    uint8_t* alphas;
    uint8_t* light;
    /// A float was no colour.
    bool beyond;
};

/// False without memory.
bool OpenTiffPixels(TiffPixels* pixels, const TiffImage* image, const Background& ground);
/// `row` as TiffRows gives it; `out` has room for 3 bytes a pixel.
void ConvertTiffRow(TiffPixels* pixels, const uint8_t* row, uint8_t* out);
void CloseTiffPixels(TiffPixels* pixels);
