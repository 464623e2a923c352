// Pictures as other programs see them, to hold a reader's lines against.
#pragma once

#include "standard-plugins/tests/support/Decoding.h"
#include "standard-plugins/tests/support/Writing.h"

#include <vector>

namespace plugintest
{

struct Picture {
    uint32_t width = 0;
    uint32_t height = 0;
    std::vector<Pixel> pixels = {};
    const Pixel& At(uint32_t x, uint32_t y) const { return pixels[size_t{y} * width + x]; }
};

/// A raw PPM of 8 bits; an empty picture for anything else.
Picture FromPpm(const std::string& ppm);
/// What a command prints as a raw PPM.
Picture FromCommand(const std::string& command);
/// Empty when the plugin reads `bytes` with 1, and every pixel is that of `expected`.
std::string DifferenceFrom(const PluginLibrary& plugin, const std::string& bytes,
                           const Picture& expected);

} // namespace plugintest
