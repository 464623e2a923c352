// One call of GetImage, with what came of it.
#pragma once

#include "standard-plugins/tests/support/ByteStream.h"
#include "standard-plugins/tests/support/Canvas.h"
#include "standard-plugins/tests/support/PluginLibrary.h"

#include <map>
#include <utility>

namespace plugintest
{

/// What the callbacks of the call were told, and what they answer.
struct Host {
    std::vector<std::pair<uint32_t, uint32_t>> progress;
    std::vector<std::u16string> messages;
    std::vector<uint32_t> messageFlags;
    std::map<std::u16string, uint32_t> settings;
    /// The progress callback refuses from this call on; never when negative.
    int refuseFrom = -1;
};

/// The host of the call that runs; cleared by each Decode unless told otherwise.
Host& CurrentHost();

/// Calls GetImage of the plugin with a fresh host's callbacks and unlocks the canvas. The settings
/// and the refusal of CurrentHost are kept.
int32_t Decode(const PluginLibrary& plugin, ByteStream& stream, Canvas& canvas);

/// How a decode that must be right went wrong, for a test's output; empty when every pixel is the
/// one that `expected(x, y)` gives.
template <typename Expected>
std::string FirstDifference(const Canvas& canvas, uint32_t width, uint32_t height,
                            Expected&& expected)
{
    if (canvas.width != width || canvas.height != height || canvas.depth != 24)
        return "is " + std::to_string(canvas.width) + "x" + std::to_string(canvas.height) + "x" +
               std::to_string(canvas.depth);
    const auto text = [](const Pixel& pixel) {
        return std::to_string(pixel.red) + "," + std::to_string(pixel.green) + "," +
               std::to_string(pixel.blue);
    };
    for (uint32_t y = 0; y < height; ++y)
        for (uint32_t x = 0; x < width; ++x) {
            const Pixel want = expected(x, y);
            const Pixel got = canvas.At(x, y);
            if (!(want == got))
                return "at " + std::to_string(x) + "," + std::to_string(y) + ": expected " +
                       text(want) + ", got " + text(got);
        }
    return {};
}

} // namespace plugintest
