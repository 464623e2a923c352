#include "bench/program/TexturedPictures.h"

#include "bench/program/LibraryCodecs.h"
#include "platform/testing/core/TestPaths.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <vector>

namespace bench
{

namespace
{

constexpr unsigned TileRows = 240;
const std::string folder = tavrix::testing::InBuild("/bench/pictures/");

std::string PathOf(const std::string& kind, unsigned width, unsigned height,
                   const std::string& extension)
{
    std::filesystem::create_directories(folder);
    return folder + kind + "-" + std::to_string(width) + "x" + std::to_string(height) + extension;
}

/// Makes a picture under another name first, so that one that was left half way is not taken.
template <typename Make>
std::string Keep(const std::string& path, const std::string& extension, const Make& make)
{
    const std::string begun = path + ".part" + extension;
    if (std::filesystem::exists(path))
        return path;
    if (!make(begun))
        return "";
    std::filesystem::rename(begun, path);
    return path;
}

unsigned Grain(unsigned x, unsigned y)
{
    uint32_t value = x * 374761393U + y * 668265263U;
    value = (value ^ (value >> 13)) * 1274126177U;
    return (value ^ (value >> 16)) & 15U;
}

// Waves of several lengths with a little grain: to the codecs roughly what a photograph is.
std::vector<unsigned char> MakeTile(unsigned width)
{
    std::vector<unsigned char> tile(size_t{3} * width * TileRows);
    unsigned char* out = tile.data();
    for (unsigned y = 0; y < TileRows; ++y)
        for (unsigned x = 0; x < width; ++x) {
            const auto wave = [](unsigned value) {
                return value & 256 ? 255 - value % 256 : value % 256;
            };
            const unsigned grain = Grain(x, y);
            *out++ = static_cast<unsigned char>(wave(x / 3 + y) * 15 / 16 + grain);
            *out++ = static_cast<unsigned char>(wave(x / 7 + 2 * y) * 15 / 16 + grain);
            *out++ = static_cast<unsigned char>(wave(x / 64 + y / 2) * 15 / 16 + grain);
        }
    return tile;
}

} // namespace

std::string Harbour(unsigned width, unsigned height, const std::string& extension)
{
    return Keep(PathOf("harbour", width, height, extension), extension,
                [&](const std::string& target) {
                    const std::string command = tavrix::testing::InBuild("/tools/make-picture ") +
                                                std::to_string(width) + " " +
                                                std::to_string(height) + " '" + target + "'";
                    return std::system(command.c_str()) == 0;
                });
}

std::string Textured(unsigned width, unsigned height, const std::string& extension)
{
    return Keep(PathOf("textured", width, height, extension), extension,
                [&](const std::string& target) {
                    const std::vector<unsigned char> tile = MakeTile(width);
                    return WriteByLibrary(target, width, height, [&](unsigned y) {
                        return tile.data() + size_t{3} * width * (y % TileRows);
                    });
                });
}

} // namespace bench
