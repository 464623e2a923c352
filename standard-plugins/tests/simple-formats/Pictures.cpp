#include "standard-plugins/tests/simple-formats/Pictures.h"

#include <cstdio>

namespace plugintest
{

Picture FromPpm(const std::string& ppm)
{
    Picture picture;
    int read = 0;
    if (std::sscanf(ppm.c_str(), "P6%u%u%*u%n", &picture.width, &picture.height, &read) != 2)
        return {};
    const size_t count = size_t{picture.width} * picture.height;
    const size_t first = static_cast<size_t>(read) + 1;
    if (read == 0 || ppm.size() != first + 3 * count)
        return {};
    for (size_t i = 0; i < count; ++i) {
        const auto* at = reinterpret_cast<const uint8_t*>(ppm.data()) + first + 3 * i;
        picture.pixels.push_back({at[0], at[1], at[2]});
    }
    return picture;
}

Picture FromCommand(const std::string& command)
{
    return FromPpm(OutputOf(command));
}

std::string DifferenceFrom(const PluginLibrary& plugin, const std::string& bytes,
                           const Picture& expected)
{
    if (expected.width == 0)
        return "there is nothing to compare with";
    ByteStream stream(bytes);
    Canvas canvas;
    const int32_t result = Decode(plugin, stream, canvas);
    const std::string difference =
        FirstDifference(canvas, expected.width, expected.height,
                        [&](uint32_t x, uint32_t y) { return expected.At(x, y); });
    return result == 1 ? difference : "gives " + std::to_string(result) + "; " + difference;
}

} // namespace plugintest
