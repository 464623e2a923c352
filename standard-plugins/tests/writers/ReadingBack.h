// What other programs see in the files that were written.
#pragma once

#include "standard-plugins/tests/support/Changing.h"

namespace plugintest
{

/// The picture that `command` gives as a binary PPM, with the file's path in the place of FILE;
/// without pixels where it gives none.
Pixels ReadBack(const std::string& command, const std::filesystem::path& file);
/// Decibels of the peak signal over the noise, of all channels together; 1000 for equal pictures,
/// 0 for such of different sizes.
double SignalToNoise(const Pixels& a, const Pixels& b);
/// The samples in no more than 240 colours.
Samples FewColors(const Samples& samples);

constexpr const char* giftopnm = "giftopnm FILE | ppmtoppm";
constexpr const char* imageMagick = "convert FILE -depth 8 ppm:-";
constexpr const char* graphicsMagick = "gm convert FILE -depth 8 ppm:-";
constexpr const char* tifftopnm = "tifftopnm FILE 2>/dev/null | ppmtoppm";
constexpr const char* dwebp = "dwebp FILE -quiet -ppm -o -";
constexpr const char* djxl = "djxl FILE FILE.ppm 2>/dev/null && cat FILE.ppm";

} // namespace plugintest
