// Sound PNG files of every form. The expected pixels come from the samples by exact fractions.

#include "standard-plugins/tests/support/Decoding.h"
#include "standard-plugins/tests/support/PngMaking.h"

#include <gtest/gtest.h>

#include <cmath>

using plugintest::ByteStream;
using plugintest::Canvas;
using plugintest::Decode;
using plugintest::FirstDifference;
using plugintest::MakePng;
using plugintest::Pixel;
using plugintest::PluginLibrary;
using plugintest::PngForm;

namespace
{

uint32_t Sample(const PngForm& form, uint32_t x, uint32_t y, int channel)
{
    const auto c = static_cast<uint32_t>(channel);
    const uint32_t mixed = (x + 1) * 40503u + (y + 3) * 30011u + c * 17777u + x * y * 977u;
    if (form.colorType == 3)
        return mixed % (static_cast<uint32_t>(form.palette.size()) / 3);
    const uint32_t highest = (1u << form.depth) - 1;
    // Whole and empty alpha at some pixels.
    if ((form.colorType == 4 && c == 1) || (form.colorType == 6 && c == 3)) {
        if ((x + y) % 5 == 0)
            return highest;
        if ((x + y) % 5 == 1)
            return 0;
    }
    return form.depth == 16 ? mixed & highest : (mixed >> 3) & highest;
}

// alpha of value over white in 255 steps, to the nearest. No two halves meet: the denominators are
// odd.
uint8_t OverWhite(uint32_t value, uint32_t alpha, uint32_t highest)
{
    const long double high = highest;
    const long double part = alpha / high;
    return static_cast<uint8_t>(std::floor((part * (value / high) + 1 - part) * 255 + 0.5L));
}

Pixel ExpectedPixel(const PngForm& form, uint32_t x, uint32_t y)
{
    const uint32_t highest = (1u << form.depth) - 1;
    const uint32_t s0 = Sample(form, x, y, 0);
    const auto& key = form.transparency;
    switch (form.colorType) {
    case 0: {
        const uint8_t grey = OverWhite(s0, !key.empty() && key[0] == s0 ? 0 : highest, highest);
        return {grey, grey, grey};
    }
    case 2: {
        const uint32_t s1 = Sample(form, x, y, 1);
        const uint32_t s2 = Sample(form, x, y, 2);
        const bool isKey = !key.empty() && key[0] == s0 && key[1] == s1 && key[2] == s2;
        const uint32_t alpha = isKey ? 0 : highest;
        return {OverWhite(s0, alpha, highest), OverWhite(s1, alpha, highest),
                OverWhite(s2, alpha, highest)};
    }
    case 3: {
        const uint32_t alpha = s0 < key.size() ? key[s0] : 255;
        return {OverWhite(form.palette[s0 * 3], alpha, 255),
                OverWhite(form.palette[s0 * 3 + 1], alpha, 255),
                OverWhite(form.palette[s0 * 3 + 2], alpha, 255)};
    }
    case 4: {
        const uint8_t grey = OverWhite(s0, Sample(form, x, y, 1), highest);
        return {grey, grey, grey};
    }
    default: {
        const uint32_t alpha = Sample(form, x, y, 3);
        return {OverWhite(s0, alpha, highest), OverWhite(Sample(form, x, y, 1), alpha, highest),
                OverWhite(Sample(form, x, y, 2), alpha, highest)};
    }
    }
}

std::string File(const PngForm& form)
{
    return MakePng(
        form, [&](uint32_t x, uint32_t y, int channel) { return Sample(form, x, y, channel); });
}

std::string Name(const PngForm& form)
{
    return "type " + std::to_string(form.colorType) + ", " + std::to_string(form.depth) +
           " bits, " + std::to_string(form.width) + "x" + std::to_string(form.height) +
           (form.interlaced ? ", interlaced" : "") +
           (form.transparency.empty() ? "" : ", transparency");
}

void ExpectRight(const PluginLibrary& plugin, const PngForm& form)
{
    ByteStream stream(File(form));
    Canvas canvas;
    EXPECT_GE(Decode(plugin, stream, canvas), 0) << Name(form);
    EXPECT_EQ(FirstDifference(canvas, form.width, form.height,
                              [&](uint32_t x, uint32_t y) { return ExpectedPixel(form, x, y); }),
              "")
        << Name(form);
    EXPECT_EQ(stream.seeks, 0);
    EXPECT_EQ(stream.sizesAsked, 0);
}

// Every colour type at every depth that it has.
std::vector<PngForm> EveryForm()
{
    std::vector<PngForm> forms;
    const auto add = [&](int colorType, std::initializer_list<int> depths) {
        for (const int depth : depths) {
            PngForm form;
            form.colorType = colorType;
            form.depth = depth;
            if (colorType == 3)
                for (uint32_t i = 0; i < (1u << depth) * 3; ++i)
                    form.palette.push_back(static_cast<uint8_t>(i * 83 + 7));
            forms.push_back(form);
        }
    };
    add(0, {1, 2, 4, 8, 16});
    add(2, {8, 16});
    add(3, {1, 2, 4, 8});
    add(4, {8, 16});
    add(6, {8, 16});
    return forms;
}

class PngReader : public testing::Test
{
protected:
    PluginLibrary plugin{"INPUT/PNG"};
};

constexpr uint32_t sizes[][2] = {{1, 1}, {1, 9}, {2, 2},  {3, 2},   {4, 4},  {5, 1},
                                 {5, 5}, {8, 8}, {9, 17}, {13, 11}, {33, 3}, {7, 33}};

} // namespace

TEST_F(PngReader, ReadsEveryColourTypeAndDepth)
{
    for (PngForm form : EveryForm())
        for (const auto& size : sizes) {
            form.width = size[0];
            form.height = size[1];
            ExpectRight(plugin, form);
        }
}

TEST_F(PngReader, ReadsInterlacedFilesLikeOthers)
{
    for (PngForm form : EveryForm())
        for (const auto& size : sizes) {
            form.width = size[0];
            form.height = size[1];
            form.interlaced = true;
            ExpectRight(plugin, form);
        }
}

TEST_F(PngReader, ReadsEveryWidthUpTo33Interlaced)
{
    for (uint32_t width = 1; width <= 33; ++width)
        for (uint32_t height : {1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u, 9u})
            ExpectRight(plugin, {.width = width, .height = height, .interlaced = true});
}

TEST_F(PngReader, LaysTransparentColoursOnWhite)
{
    for (PngForm form : EveryForm()) {
        form.width = 33;
        form.height = 17;
        if (form.colorType == 0)
            form.transparency = {static_cast<uint16_t>(Sample(form, 4, 4, 0))};
        else if (form.colorType == 2)
            form.transparency = {static_cast<uint16_t>(Sample(form, 4, 4, 0)),
                                 static_cast<uint16_t>(Sample(form, 4, 4, 1)),
                                 static_cast<uint16_t>(Sample(form, 4, 4, 2))};
        else if (form.colorType == 3)
            form.transparency = {0, 128};
        else
            continue;
        for (const bool interlaced : {false, true}) {
            form.interlaced = interlaced;
            ExpectRight(plugin, form);
        }
    }
}

TEST_F(PngReader, ComparesTheWhole16BitColourWithTheTransparentOne)
{
    // The two greys share their high bytes; only one of them is the transparent one.
    PngForm form = {.width = 2, .height = 1, .colorType = 0, .depth = 16};
    form.transparency = {0x1234};
    ByteStream stream(
        MakePng(form, [](uint32_t x, uint32_t, int) { return x == 0 ? 0x1234u : 0x1235u; }));
    Canvas canvas;
    EXPECT_GE(Decode(plugin, stream, canvas), 0);
    EXPECT_EQ(canvas.At(0, 0), (Pixel{255, 255, 255}));
    EXPECT_EQ(canvas.At(1, 0), (Pixel{18, 18, 18})); // 0x1235 / 257 = 18.13
}

TEST_F(PngReader, RoundsEveryLevelAndAlphaToTheNearest)
{
    const PngForm form = {.width = 256, .height = 256, .colorType = 4};
    ByteStream stream(
        MakePng(form, [](uint32_t x, uint32_t y, int channel) { return channel == 0 ? x : y; }));
    Canvas canvas;
    EXPECT_GE(Decode(plugin, stream, canvas), 0);
    EXPECT_EQ(FirstDifference(canvas, 256, 256,
                              [](uint32_t x, uint32_t y) {
                                  const uint8_t grey = OverWhite(x, y, 255);
                                  return Pixel{grey, grey, grey};
                              }),
              "");
    EXPECT_EQ(canvas.At(100, 128), (Pixel{177, 177, 177})); // 255 - 155 * 128 / 255 = 177.2
}

TEST_F(PngReader, RoundsEvery16BitLevelToTheNearest)
{
    const PngForm form = {.width = 256, .height = 256, .colorType = 0, .depth = 16};
    ByteStream stream(MakePng(form, [](uint32_t x, uint32_t y, int) { return y * 256 + x; }));
    Canvas canvas;
    EXPECT_GE(Decode(plugin, stream, canvas), 0);
    EXPECT_EQ(FirstDifference(canvas, 256, 256,
                              [](uint32_t x, uint32_t y) {
                                  const uint8_t grey = OverWhite(y * 256 + x, 65535, 65535);
                                  return Pixel{grey, grey, grey};
                              }),
              "");
}

TEST_F(PngReader, LocksOneLineAtATime)
{
    ByteStream stream(File({.width = 20, .height = 40, .interlaced = true}));
    Canvas canvas;
    EXPECT_GE(Decode(plugin, stream, canvas), 0);
    // The unlock of the last line does nothing in the host, so that one stays beside the current.
    EXPECT_LE(canvas.mostLentAtOnce, 2u);
    EXPECT_EQ(canvas.allocations, 1);
}

TEST_F(PngReader, ReplacesThePictureThatWasThere)
{
    Canvas canvas;
    ByteStream first(File({.width = 30, .height = 30}));
    EXPECT_GE(Decode(plugin, first, canvas), 0);
    ByteStream second(File({.width = 4, .height = 3}));
    EXPECT_GE(Decode(plugin, second, canvas), 0);
    EXPECT_EQ(canvas.width, 4u);
    EXPECT_EQ(canvas.height, 3u);
}

TEST_F(PngReader, TellsTheSizeFromTheHeader)
{
    ByteStream stream(File({.width = 33, .height = 7}).substr(0, 8 + 25 + 12));
    RasterInfo info = {};
    info.size = sizeof info;
    EXPECT_EQ(plugin.getImageInfo(nullptr, &stream.record, &info), 1);
    EXPECT_EQ(info.size, sizeof info);
    EXPECT_EQ(info.width, 33u);
    EXPECT_EQ(info.height, 7u);
    EXPECT_EQ(info.depth, 24u);
    EXPECT_EQ(info.stride, 100u); // (3 * 34) & ~3
    EXPECT_EQ(info.colorCount, 0u);
}

TEST_F(PngReader, FillsOnlyAsMuchOfTheInfoAsItsSizeAllows)
{
    ByteStream stream(File({.width = 33, .height = 7}));
    RasterInfo info = {12, 1, 2, 3, 4, 5};
    EXPECT_EQ(plugin.getImageInfo(nullptr, &stream.record, &info), 1);
    EXPECT_EQ(info.size, sizeof info);
    EXPECT_EQ(info.width, 33u);
    EXPECT_EQ(info.height, 7u);
    EXPECT_EQ(info.depth, 3u);
    EXPECT_EQ(info.stride, 4u);
    ByteStream again(stream.bytes);
    EXPECT_LT(plugin.getImageInfo(nullptr, &again.record, nullptr), 0);
    EXPECT_LT(plugin.getImageInfo(u"\\x.png", nullptr, &info), 0);
    ByteStream broken("no picture");
    EXPECT_LT(plugin.getImageInfo(nullptr, &broken.record, &info), 0);
}

TEST_F(PngReader, LaysTransparentPartsOverTheColourOfTheSettings)
{
    plugintest::CurrentHost().settings = {{u"PngInputBackgroundRed", 200},
                                          {u"PngInputBackgroundGreen", 100},
                                          {u"PngInputBackgroundBlue", 3}};
    const auto over = [](uint32_t value, uint32_t alpha, uint32_t ground) {
        return static_cast<uint8_t>(
            std::lround((alpha * 1.0 * value + (255.0 - alpha) * ground) / 255));
    };
    for (const int depth : {8, 16})
        for (const int colorType : {4, 6}) {
            const std::string file =
                MakePng({.width = 256, .height = 8, .colorType = colorType, .depth = depth},
                        [&](uint32_t x, uint32_t y, int channel) {
                            const bool isAlpha = channel == (colorType == 4 ? 1 : 3);
                            return (isAlpha ? x : y * 36) * (depth == 16 ? 257 : 1);
                        });
            ByteStream stream(file);
            Canvas canvas;
            ASSERT_EQ(Decode(plugin, stream, canvas), 1);
            EXPECT_EQ(plugintest::FirstDifference(canvas, 256, 8,
                                                  [&](uint32_t x, uint32_t y) {
                                                      return Pixel{over(y * 36, x, 200),
                                                                   over(y * 36, x, 100),
                                                                   over(y * 36, x, 3)};
                                                  }),
                      "")
                << depth << " " << colorType;
        }
    // A colour of the file that stands for nothing.
    const std::string keyed = MakePng({.width = 4, .height = 1, .transparency = {7, 7, 7}},
                                      [](uint32_t x, uint32_t, int) { return 6 + x; });
    ByteStream stream(keyed);
    Canvas canvas;
    ASSERT_EQ(Decode(plugin, stream, canvas), 1);
    EXPECT_EQ(canvas.At(1, 0), (Pixel{200, 100, 3}));
    EXPECT_EQ(canvas.At(0, 0), (Pixel{6, 6, 6}));
    plugintest::CurrentHost().settings.clear();
}
