#include "standard-plugins/tests/library-readers/References.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

#include "platform/testing/core/TestPaths.h"

namespace plugintest
{

namespace
{

// The numbers of a PNM header, behind its two letters; comments end with their line.
bool ReadNumbers(std::istringstream& in, std::initializer_list<uint32_t*> numbers)
{
    for (uint32_t* number : numbers) {
        while (in >> std::ws && in.peek() == '#')
            in.ignore(1 << 20, '\n');
        if (!(in >> *number))
            return false;
    }
    in.get();
    return true;
}

uint8_t ToByte(uint32_t value, uint32_t highest)
{
    return static_cast<uint8_t>((value * 255 + highest / 2) / highest);
}

std::string Samples(std::istringstream& in, size_t count, uint32_t highest)
{
    std::string samples;
    for (size_t i = 0; i < count; ++i) {
        auto value = static_cast<uint32_t>(in.get());
        if (highest > 255)
            value = value << 8 | static_cast<uint32_t>(in.get());
        samples += static_cast<char>(ToByte(value, highest));
    }
    return samples;
}

std::string Bilevel(std::istringstream& in, uint32_t width, uint32_t height)
{
    std::string samples;
    for (uint32_t y = 0; y < height; ++y)
        for (uint32_t x = 0, byte = 0; x < width; ++x, byte <<= 1) {
            if (x % 8 == 0)
                byte = static_cast<uint32_t>(in.get());
            samples += static_cast<char>(byte & 128 ? 0 : 255);
        }
    return samples;
}

} // namespace

Pixel Reference::At(uint32_t x, uint32_t y) const
{
    const auto* at = reinterpret_cast<const uint8_t*>(rgb.data()) + size_t{3} * (y * width + x);
    return {at[0], at[1], at[2]};
}

Reference ReadPnm(const std::string& bytes)
{
    Reference read;
    std::istringstream in(bytes);
    const int letter = in.get();
    const int kind = in.get();
    uint32_t highest = 1;
    if (letter != 'P' || kind < '4' || kind > '6' || !ReadNumbers(in, {&read.width, &read.height}))
        return {};
    if (kind != '4') {
        in.unget();
        if (!ReadNumbers(in, {&highest}))
            return {};
    }
    const size_t pixels = size_t{read.width} * read.height;
    const std::string samples = kind == '4' ? Bilevel(in, read.width, read.height)
                                            : Samples(in, pixels * (kind == '6' ? 3 : 1), highest);
    if (!in)
        return {};
    if (kind == '6')
        read.rgb = samples;
    else
        for (const char grey : samples)
            read.rgb.append(3, grey);
    return read;
}

std::string MakePpm(uint32_t width, uint32_t height, uint8_t (*sample)(uint32_t, uint32_t, int))
{
    std::string text = "P6\n" + std::to_string(width) + " " + std::to_string(height) + "\n255\n";
    for (uint32_t y = 0; y < height; ++y)
        for (uint32_t x = 0; x < width; ++x)
            for (int channel = 0; channel < 3; ++channel)
                text += static_cast<char>(sample(x, y, channel));
    return text;
}

uint8_t SoftSample(uint32_t x, uint32_t y, int channel)
{
    const uint32_t noise = ((x * 2654435761u) ^ (y * 40503u)) >> 13 & 7;
    return static_cast<uint8_t>(
        std::min(x * 2 + y + static_cast<uint32_t>(channel) * 40 + noise, 255u));
}

int GreatestDistance(const Canvas& canvas, const Reference& reference)
{
    if (canvas.width != reference.width || canvas.height != reference.height || canvas.width == 0)
        return 1000;
    int greatest = 0;
    for (uint32_t y = 0; y < canvas.height; ++y)
        for (uint32_t x = 0; x < canvas.width; ++x) {
            const Pixel got = canvas.At(x, y);
            const Pixel want = reference.At(x, y);
            greatest = std::max({greatest, std::abs(got.red - want.red),
                                 std::abs(got.green - want.green), std::abs(got.blue - want.blue)});
        }
    return greatest;
}

std::string BytesOf(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    EXPECT_TRUE(in) << file;
    return {std::istreambuf_iterator<char>(in), {}};
}

std::filesystem::path KeptFolder(const std::string& format)
{
    return std::filesystem::path(tavrix::testing::InSource("/tests/inputs")) / format;
}

ReaderTest::ReaderTest()
{
    CurrentHost() = {};
}

ReaderTest::~ReaderTest()
{
    CurrentHost() = {};
}

std::string ReaderTest::Run(const std::string& command) const
{
    std::string text;
    FILE* pipe = popen(("cd " + folder.string() + " && " + command).c_str(), "r");
    std::array<char, 65536> part;
    while (pipe) {
        const size_t got = fread(part.data(), 1, part.size(), pipe);
        if (got == 0)
            break;
        text.append(part.data(), got);
    }
    const int status = pipe ? pclose(pipe) : -1;
    EXPECT_EQ(status, 0) << command;
    return text;
}

void ReaderTest::Write(const std::string& name, const std::string& bytes) const
{
    std::ofstream(folder / name, std::ios::binary) << bytes;
}

void ReaderTest::ExpectLike(const PluginLibrary& plugin, const std::string& name,
                            const std::string& referenceCommand, int tolerance) const
{
    ExpectLike(plugin, name, ReadPnm(Run(referenceCommand)), tolerance);
}

void ReaderTest::ExpectLike(const PluginLibrary& plugin, const std::string& name,
                            const Reference& reference, int tolerance) const
{
    SCOPED_TRACE(name);
    ASSERT_GT(reference.width, 0u);
    ByteStream stream(Read(name));
    Canvas canvas;
    EXPECT_EQ(Decode(plugin, stream, canvas), 1);
    EXPECT_EQ(stream.seeks, 0);
    EXPECT_EQ(stream.sizesAsked, 0);
    EXPECT_LE(canvas.mostLentAtOnce, 2u);
    if (tolerance == 0)
        EXPECT_EQ(FirstDifference(canvas, reference.width, reference.height,
                                  [&](uint32_t x, uint32_t y) { return reference.At(x, y); }),
                  "");
    else
        EXPECT_LE(GreatestDistance(canvas, reference), tolerance);
}

} // namespace plugintest
