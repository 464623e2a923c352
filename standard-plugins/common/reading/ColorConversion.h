// Rows of a picture with a colour profile (ICC.1:2010) converted to sRGB, by the library lcms2,
// with perceptual intent. Alpha is kept as it is; lay the result over a background afterwards.
//
// A profile is passed over, and the picture shown as it stands, when it is larger than 4 MB,
// broken, of another colour space than the pixels (a CMYK profile in an RGB file), sRGB itself (it
// moves no colour of a coarse cube by more than one step), or when the library is not installed.
//
// Plain data, so that a codec's jump may pass over it; zeroed memory is a closed one that converts
// nothing. The library is open from OpenColorConversion to CloseColorConversion.
#pragma once

#include "standard-plugins/common/reading/LcmsLibrary.h"

#include <stddef.h>

/// How the samples of a pixel lie in memory; 16-bit ones in the machine's own byte order.
enum class ColorLayout : uint8_t {
    Grey8,
    Grey16,
    GreyAlpha8,
    GreyAlpha16,
    Rgb8,
    Bgr8,
    Rgba8,
    Bgra8,
    Rgb16,
    Rgba16,
    Cmyk8,         // 255 is full ink
    CmykInverted8, // 255 is no ink, as one widespread writer's files have it
};

struct ColorConversion {
    LcmsLibrary lcms;
    cmsContext context;
    cmsHTRANSFORM transform;
};

/// True when rows are to be converted; otherwise nothing is open.
bool OpenColorConversion(ColorConversion* conversion, const void* profile, size_t bytes,
                         ColorLayout layout);
inline bool ConvertsColors(const ColorConversion& conversion)
{
    return conversion.transform != nullptr;
}
/// `count` pixels. The result has the layout of the source, and may lie in its place; that of the
/// two CMYK layouts is Bgr8 and lies elsewhere.
void ConvertColors(const ColorConversion& conversion, const void* source, void* target,
                   uint32_t count);
void CloseColorConversion(ColorConversion* conversion);
