// Colour profiles for the tests, made by the library lcms2, and what it makes of single colours.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace plugintest
{

/// Primaries of Adobe RGB (1998) and a plain curve of this gamma: no colour but the greys of gamma
/// 2.2 stays as it is.
std::string WideRgbProfile(double gamma = 1.8);
std::string SrgbProfile();
std::string GreyProfile(double gamma);
/// Four inks through a table of so many points for each ink: points^4 * 6 bytes.
std::string InkProfile(uint32_t points = 5);
/// Any profile with a tag of so many bytes besides.
std::string WithPadding(const std::string& profile, size_t bytes);

/// Pixels of `channels` 8-bit samples (1, 3, or 4 inks of which 255 is full) as sRGB red, green,
/// blue, each computed in floats without the library's shortcuts.
std::vector<uint8_t> ToSrgb(const std::string& profile, const std::vector<uint8_t>& pixels,
                            int channels);

} // namespace plugintest
