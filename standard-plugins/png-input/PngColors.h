// The colour profile that a PNG may hold (chunk iCCP), applied to its rows and tables before they
// are laid over the background.
#pragma once

#include "standard-plugins/common/reading/ColorConversion.h"
#include "standard-plugins/png-input/PngPixels.h"

#include <png.h>

/// Opens the conversion where the file has a profile that changes colours. To be called behind
/// png_read_info.
void OpenPngColors(ColorConversion* conversion, png_structp png, png_infop info);
/// A table of `count` colours, red, green and blue each.
void ConvertPngTable(const ColorConversion& conversion, uint8_t (*colors)[3], uint32_t count);
/// A table of greys: `levels` become what the profile makes of them.
void ConvertPngGreys(const ColorConversion& conversion, uint8_t* levels, uint32_t count);
/// A row of `count` pixels in its place, samples with the most significant byte first, before and
/// behind.
void ConvertPngRow(const ColorConversion& conversion, PngLayout layout, uint8_t* row,
                   uint32_t count);
