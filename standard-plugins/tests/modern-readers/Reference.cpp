#include "standard-plugins/tests/modern-readers/Reference.h"

#include <png.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <unistd.h>

namespace moderntest
{

namespace
{

std::string Replaced(std::string text, const std::string& from, const std::string& to)
{
    for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

Sample SampleOf(const unsigned char* bytes, uint32_t channels, bool wide)
{
    const auto value = [&](uint32_t i) {
        return wide ? (bytes[2 * i] * 256 + bytes[2 * i + 1]) / 65535.0 : bytes[i] / 255.0;
    };
    const bool grey = channels < 3;
    const bool alpha = channels % 2 == 0;
    return {value(0), value(grey ? 0 : 1), value(grey ? 0 : 2), alpha ? value(channels - 1) : 1};
}

// Without any change by the library: no gamma, no profile.
Picture ReadPng(const std::string& file)
{
    Picture picture;
    std::FILE* in = std::fopen(file.c_str(), "rb");
    if (!in)
        return picture;
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    if (setjmp(png_jmpbuf(png)) == 0) {
        png_init_io(png, in);
        png_read_png(png, info, PNG_TRANSFORM_EXPAND, nullptr);
        picture.width = png_get_image_width(png, info);
        picture.height = png_get_image_height(png, info);
        const uint32_t channels = png_get_channels(png, info);
        const bool wide = png_get_bit_depth(png, info) == 16;
        for (uint32_t y = 0; y < picture.height; ++y)
            for (uint32_t x = 0; x < picture.width; ++x)
                picture.samples.push_back(
                    SampleOf(png_get_rows(png, info)[y] + size_t{x} * channels * (wide ? 2 : 1),
                             channels, wide));
    }
    png_destroy_read_struct(&png, &info, nullptr);
    std::fclose(in);
    return picture;
}

Picture QuarterTurned(const Picture& from)
{
    Picture to = {from.height, from.width, {}};
    for (uint32_t y = 0; y < to.height; ++y)
        for (uint32_t x = 0; x < to.width; ++x)
            to.samples.push_back(from.At(from.width - 1 - y, x));
    return to;
}

} // namespace

bool IsInstalled(const std::string& program)
{
    return std::system(("command -v " + program + " > /dev/null").c_str()) == 0;
}

std::string Contents(const std::string& file)
{
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

Picture Decoded(const std::string& bytes, const std::string& extension, const std::string& command)
{
    const auto folder =
        std::filesystem::temp_directory_path() / ("modern-readers-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder);
    const std::string in = folder / ("in." + extension);
    const std::string out = folder / "out.png";
    std::ofstream(in, std::ios::binary) << bytes;
    const std::string line = Replaced(Replaced(command, "IN", in), "OUT", out);
    const bool ran = std::system(("(" + line + ") > /dev/null 2>&1").c_str()) == 0;
    Picture picture = ran ? ReadPng(out) : Picture();
    std::filesystem::remove_all(folder);
    return picture;
}

Picture Turned(const Picture& picture, int turns, int mirror)
{
    Picture to = picture;
    for (int i = 0; i < turns; ++i)
        to = QuarterTurned(to);
    const Picture from = to;
    for (uint32_t y = 0; mirror && y < to.height; ++y)
        for (uint32_t x = 0; x < to.width; ++x)
            to.samples[size_t{y} * to.width + x] =
                mirror == 1 ? from.At(x, to.height - 1 - y) : from.At(to.width - 1 - x, y);
    return to;
}

Picture CutOut(const Picture& picture, uint32_t left, uint32_t top, uint32_t width, uint32_t height)
{
    Picture part = {width, height, {}};
    for (uint32_t y = 0; y < height; ++y)
        for (uint32_t x = 0; x < width; ++x)
            part.samples.push_back(picture.At(left + x, top + y));
    return part;
}

int LargestStep(const plugintest::Canvas& canvas, const Picture& picture,
                plugintest::Pixel background)
{
    if (canvas.width != picture.width || canvas.height != picture.height || picture.width == 0)
        return -1;
    int most = 0;
    const auto look = [&most](int got, double channel, double alpha, int ground) {
        const double want = alpha * channel * 255 + (1 - alpha) * ground;
        most = std::max(most, std::abs(got - static_cast<int>(std::lround(want))));
    };
    for (uint32_t y = 0; y < picture.height; ++y)
        for (uint32_t x = 0; x < picture.width; ++x) {
            const Sample& sample = picture.At(x, y);
            const plugintest::Pixel got = canvas.At(x, y);
            look(got.red, sample.red, sample.alpha, background.red);
            look(got.green, sample.green, sample.alpha, background.green);
            look(got.blue, sample.blue, sample.alpha, background.blue);
        }
    return most;
}

} // namespace moderntest
