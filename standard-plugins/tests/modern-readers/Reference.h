// A picture as another program decodes it.
#pragma once

#include "standard-plugins/tests/support/Canvas.h"

#include <cstdint>
#include <string>
#include <vector>

namespace moderntest
{

/// Samples from 0 to 1, row by row.
struct Sample {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;
};

struct Picture {
    uint32_t width = 0;
    uint32_t height = 0;
    std::vector<Sample> samples;
    const Sample& At(uint32_t x, uint32_t y) const { return samples[size_t{y} * width + x]; }
};

/// Whether a program of these names is installed.
bool IsInstalled(const std::string& program);
/// The bytes of a file; none where it is missing.
std::string Contents(const std::string& file);
/// Runs `command` with "IN" and "OUT" replaced by a file of these bytes and a PNG to be made, and
/// reads that. An empty picture where it fails.
Picture Decoded(const std::string& bytes, const std::string& extension, const std::string& command);
/// Quarter turns against the clock, then a mirror: 0 none, 1 top and bottom, 2 left and right.
Picture Turned(const Picture& picture, int turns, int mirror);
Picture CutOut(const Picture& picture, uint32_t left, uint32_t top, uint32_t width,
               uint32_t height);
/// Each sample changed.
template <typename Change>
Picture Changed(Picture picture, Change&& change)
{
    for (Sample& sample : picture.samples)
        change(sample);
    return picture;
}

/// The largest distance of a channel, in steps of 255, of the canvas from the picture over a
/// background, both rounded; -1 where the sizes differ.
int LargestStep(const plugintest::Canvas& canvas, const Picture& picture,
                plugintest::Pixel background = {255, 255, 255});

} // namespace moderntest
