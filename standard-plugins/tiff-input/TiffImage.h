// What the tags of a directory say about its picture (TIFF 6.0, Adobe 1992), as far as it can be
// shown.
#pragma once

#include "standard-plugins/tiff-input/TiffFile.h"

enum class TiffColors : uint8_t {
    Grey,         // 0 is black
    InvertedGrey, // 0 is white
    Rgb,
    Palette,
    Inks // cyan, magenta, yellow, black; full ink is the highest value
};

enum class TiffAlpha : uint8_t { None, Associated, Unassociated };

struct TiffImage {
    uint32_t width;
    uint32_t height;
    uint32_t orientation; // 1 to 8
    /// Bits of a sample: 1 to 16, or 32.
    uint32_t bits;
    bool isFloat;
    /// Samples of a pixel, those that are its colour, and the number of the alpha among them.
    uint32_t samples;
    uint32_t colorSamples;
    uint32_t alphaSample;
    TiffColors colors;
    TiffAlpha alpha;
    /// Each sample in strips or tiles of its own.
    bool separate;
    /// The library itself makes red, green, blue and associated alpha of 8 bits, a strip or a row
    /// of tiles at a time: colours that are not known here.
    bool converted;
    bool tiled;
    uint16_t compression;
    uint16_t fillOrder;
    uint32_t rowsPerStrip;
    uint32_t tileWidth;
    uint32_t tileHeight;
    /// Of a palette: red, green, blue of each value.
    uint8_t table[256][3];
    /// The file has no sound palette for its values, and the library takes them for greys.
    bool paletteMissing;
    /// Null without a colour profile; the library's until the file is closed.
    const void* profile;
    uint32_t profileBytes;
};

constexpr uint32_t mostTiffSamples = 16;

/// False where the picture cannot be shown in full, or where its header promises more than the file
/// could hold by its compression. Prepares the library for reading it.
bool ReadTiffImage(TiffFile* file, TiffImage* image);
/// Bytes of a row of one plane: all samples, or one where they are separate.
uint64_t TiffRowBytes(const TiffImage& image, uint32_t width);
inline uint32_t TiffPlanes(const TiffImage& image)
{
    return image.separate ? image.samples : 1;
}
