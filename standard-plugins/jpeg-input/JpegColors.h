// The colour profile of a JPEG, applied to its rows as the codec gives them: blue, green and red
// bytes, or the four inks. Plain data; zeroed memory is a closed one that converts by the plain
// formulas.
#pragma once

#include "standard-plugins/common/reading/ColorConversion.h"
#include "standard-plugins/jpeg-input/JpegReading.h"

struct JpegColors {
    ColorConversion conversion;
    /// The picture is grey, and what its profile makes of each level.
    bool isGrey;
    uint8_t greys[256];
};

/// Behind the header. Where the file has no sound profile, or one that changes nothing, rows stay
/// as they are.
void OpenJpegColors(JpegColors* colors, const JpegReading& reading);
/// A row of blue, green, red in its place.
void ConvertJpegRow(const JpegColors& colors, uint8_t* row, uint32_t count);
/// A row of four inks, of which 255 is none when `inverted`, to blue, green, red.
void ConvertJpegInk(const JpegColors& colors, const uint8_t* inks, uint32_t count, bool inverted,
                    uint8_t* row);
void CloseJpegColors(JpegColors* colors);
