#include "standard-plugins/tests/writers/ReadingBack.h"

#include <cmath>
#include <sstream>

namespace plugintest
{

Pixels ReadBack(const std::string& command, const std::filesystem::path& file)
{
    std::string full = command;
    for (size_t at = full.find("FILE"); at != std::string::npos; at = full.find("FILE"))
        full.replace(at, 4, file.string());
    const std::string bytes = OutputOf(full);
    std::istringstream stream(bytes);
    std::string magic;
    Pixels pixels;
    u32 most = 0;
    stream >> magic >> pixels.width >> pixels.height >> most;
    const size_t count = size_t{3} * pixels.width * pixels.height;
    const auto start = static_cast<size_t>(stream.tellg()) + 1;
    if (!stream || magic != "P6" || most != 255 || bytes.size() != start + count)
        return {};
    pixels.bytes.assign(bytes.begin() + static_cast<std::ptrdiff_t>(start), bytes.end());
    return pixels;
}

double SignalToNoise(const Pixels& a, const Pixels& b)
{
    if (a.width != b.width || a.height != b.height || a.bytes.empty())
        return 0;
    double sum = 0;
    for (size_t i = 0; i < a.bytes.size(); ++i)
        sum += (a.bytes[i] - b.bytes[i]) * (a.bytes[i] - b.bytes[i]);
    if (sum == 0)
        return 1000;
    return 10 * std::log10(255.0 * 255 * static_cast<double>(a.bytes.size()) / sum);
}

Samples FewColors(const Samples& samples)
{
    return [samples](u32 x, u32 y, int channel) {
        const u32 number = samples(x, y, 0) % 240u;
        return static_cast<u8>(channel == 0 ? number : channel == 1 ? number * 7 : number * 31);
    };
}

} // namespace plugintest
