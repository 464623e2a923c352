#include "standard-plugins/tests/adjustments/Adjusting.h"

#include <algorithm>
#include <cmath>

namespace plugintest
{

namespace
{

std::string Shown(const Pixels& pixels, size_t at)
{
    return std::to_string(pixels.bytes[at]) + " " + std::to_string(pixels.bytes[at + 1]) + " " +
           std::to_string(pixels.bytes[at + 2]);
}

} // namespace

u8 Nearest(double value)
{
    return static_cast<u8>(std::clamp(std::floor(value + 0.5), 0.0, 255.0));
}

u8 NearestOfFraction(double value)
{
    return Nearest(value + 1e-9);
}

u8 Ramp(u32 x, u32 y, int channel)
{
    const u32 values[] = {x, x + 249 + y, 255 - x};
    return static_cast<u8>(values[channel]);
}

Samples Flat(Color color)
{
    return [color](u32, u32, int channel) { return color[static_cast<size_t>(channel)]; };
}

std::vector<Subject> Subjects()
{
    std::vector<Subject> subjects = {{256, 2, Ramp}};
    for (u32 width = 1; width <= 33; ++width)
        subjects.push_back({width, 3, [width](u32 x, u32 y, int channel) {
                                return Wild(x, y + 3 * width, channel);
                            }});
    return subjects;
}

Pixels Changed(Pixels pixels, const ColorChange& change)
{
    for (size_t at = 0; at < pixels.bytes.size(); at += 3) {
        const Color color = change({pixels.bytes[at], pixels.bytes[at + 1], pixels.bytes[at + 2]});
        std::copy(color.begin(), color.end(), pixels.bytes.begin() + static_cast<long>(at));
    }
    return pixels;
}

std::string Difference(const Pixels& got, const Pixels& expected)
{
    if (got.width != expected.width || got.bytes.size() != expected.bytes.size())
        return "other sizes";
    for (size_t at = 0; at < got.bytes.size(); at += 3)
        if (!std::equal(got.bytes.begin() + static_cast<long>(at),
                        got.bytes.begin() + static_cast<long>(at + 3),
                        expected.bytes.begin() + static_cast<long>(at)))
            return std::to_string(at / 3 % got.width) + "," + std::to_string(at / 3 / got.width) +
                   ": " + Shown(got, at) + " instead of " + Shown(expected, at);
    return {};
}

std::vector<u8> ChannelOf(const Pixels& pixels, u32 channel)
{
    std::vector<u8> values;
    for (size_t at = channel; at < pixels.bytes.size(); at += 3)
        values.push_back(pixels.bytes[at]);
    return values;
}

Pixels AdjustTest::Adjusted(u32 width, u32 height, const Samples& samples)
{
    Raster image;
    Fill(&image, width, height, 24, samples);
    EXPECT_EQ(Process(&image), 1);
    EXPECT_TRUE(CurrentWriterHost().messages.empty());
    return PixelsOf(&image);
}

Color AdjustTest::Adjusted(Color color)
{
    const Pixels pixels = Adjusted(1, 1, Flat(color));
    return {pixels.bytes[0], pixels.bytes[1], pixels.bytes[2]};
}

void AdjustTest::ExpectEverywhere(const ColorChange& change)
{
    for (const Subject& subject : Subjects())
        ASSERT_EQ(
            Difference(Adjusted(subject.width, subject.height, subject.samples),
                       Changed(PixelsOf(subject.width, subject.height, subject.samples), change)),
            "")
            << subject.width;
}

void AdjustTest::ExpectNothingChanged()
{
    ExpectEverywhere([](Color color) { return color; });
}

} // namespace plugintest
