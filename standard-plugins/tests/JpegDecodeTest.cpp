// Sound JPEG files of every form. The expected pixels come from the library's plain reading of the
// whole file in its own order of colours, and near enough from the samples that went in.

#include "standard-plugins/tests/support/Decoding.h"
#include "standard-plugins/tests/support/JpegMaking.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/testing/core/TestPaths.h"

using plugintest::ByteStream;
using plugintest::Canvas;
using plugintest::CurrentHost;
using plugintest::Decode;
using plugintest::FirstDifference;
using plugintest::JpegColors;
using plugintest::JpegForm;
using plugintest::MakeJpeg;
using plugintest::Pixel;
using plugintest::PluginLibrary;
using plugintest::ReferencePixels;

namespace
{

uint8_t Smooth(uint32_t x, uint32_t y, int channel)
{
    const double phase = channel * 2.1 + 0.4;
    return static_cast<uint8_t>(128 +
                                100 * std::sin(x * 0.05 + phase) * std::cos(y * 0.04 + phase));
}

class JpegReader : public testing::Test
{
protected:
    JpegReader() { CurrentHost() = {}; }
    ~JpegReader() override { CurrentHost() = {}; }

    // Against the library's own reading, bit for bit.
    void ExpectAsReference(const JpegForm& form, const std::string& what)
    {
        const std::string file = MakeJpeg(form, Smooth);
        const int channels = plugintest::ChannelCount(form.colors);
        const std::vector<uint8_t> reference = ReferencePixels(file, channels);
        ByteStream stream(file);
        Canvas canvas;
        EXPECT_GE(Decode(plugin, stream, canvas), 0) << what;
        EXPECT_EQ(
            FirstDifference(
                canvas, form.width, form.height,
                [&](uint32_t x, uint32_t y) {
                    const uint8_t* at =
                        &reference[(size_t{y} * form.width + x) * static_cast<size_t>(channels)];
                    return ToPixel(at, form);
                }),
            "")
            << what;
        EXPECT_EQ(stream.seeks, 0);
        EXPECT_EQ(stream.sizesAsked, 0);
    }

    static Pixel ToPixel(const uint8_t* at, const JpegForm& form)
    {
        if (form.colors == JpegColors::Grey)
            return {at[0], at[0], at[0]};
        if (form.colors == JpegColors::YCbCr || form.colors == JpegColors::Rgb)
            return {at[0], at[1], at[2]};
        const auto light = [&](int i) { return form.adobeMarker ? at[i] : 255 - at[i]; };
        const auto out = [&](int i) {
            return static_cast<uint8_t>(std::floor(light(i) * light(3) / 255.0 + 0.5));
        };
        return {out(0), out(1), out(2)};
    }

    PluginLibrary plugin{"INPUT/JPEG"};
};

constexpr uint32_t sizes[][2] = {{1, 1},   {1, 40},  {40, 1},  {7, 9},  {8, 8},
                                 {16, 16}, {17, 33}, {48, 31}, {65, 50}};

} // namespace

TEST_F(JpegReader, ReadsEverySamplingAsTheLibraryItself)
{
    for (const auto& size : sizes)
        for (const int across : {1, 2, 4})
            for (const int down : {1, 2, 4}) {
                if (across * down > 8)
                    continue;
                ExpectAsReference(
                    {.width = size[0], .height = size[1], .across = across, .down = down},
                    std::to_string(across) + "x" + std::to_string(down));
            }
}

TEST_F(JpegReader, ReadsEveryColourSpace)
{
    for (const JpegColors colors : {JpegColors::Grey, JpegColors::YCbCr, JpegColors::Rgb,
                                    JpegColors::Cmyk, JpegColors::Ycck}) {
        JpegForm form = {.width = 61, .height = 47, .colors = colors, .across = 1, .down = 1};
        for (const bool progressive : {false, true}) {
            form.progressive = progressive;
            ExpectAsReference(form, "space " + std::to_string(static_cast<int>(colors)));
        }
    }
}

TEST_F(JpegReader, ReadsScansOfOneComponentEach)
{
    ExpectAsReference({.width = 61, .height = 47, .separateScans = true}, "separate scans");
}

TEST_F(JpegReader, ReadsArithmeticCoding)
{
    ExpectAsReference({.width = 61, .height = 47, .arithmetic = true}, "arithmetic");
    ExpectAsReference({.width = 61, .height = 47, .progressive = true, .arithmetic = true},
                      "arithmetic, progressive");
}

TEST_F(JpegReader, ReadsRestartIntervals)
{
    ExpectAsReference({.width = 61, .height = 147, .restartRows = 1}, "restarts");
}

TEST_F(JpegReader, GivesTheColoursThatWentIn)
{
    for (const bool progressive : {false, true}) {
        const JpegForm form = {.width = 120,
                               .height = 80,
                               .quality = 97,
                               .across = 1,
                               .down = 1,
                               .progressive = progressive};
        ByteStream stream(MakeJpeg(form, Smooth));
        Canvas canvas;
        EXPECT_GE(Decode(plugin, stream, canvas), 0);
        int worst = 0;
        for (uint32_t y = 0; y < form.height; ++y)
            for (uint32_t x = 0; x < form.width; ++x) {
                const Pixel got = canvas.At(x, y);
                worst = std::max({worst, std::abs(got.red - Smooth(x, y, 0)),
                                  std::abs(got.green - Smooth(x, y, 1)),
                                  std::abs(got.blue - Smooth(x, y, 2))});
            }
        EXPECT_LE(worst, 5);
    }
}

TEST_F(JpegReader, TakesInksTheOtherWayRoundWithTheMarkerOfTheirWriter)
{
    // Half cyan and no other ink, written both ways: both are the same light red.
    const auto flat = [](bool inverted) {
        return [inverted](uint32_t, uint32_t, int channel) -> uint8_t {
            const uint8_t ink = channel == 0 ? 128 : 0;
            return inverted ? static_cast<uint8_t>(255 - ink) : ink;
        };
    };
    for (const JpegColors colors : {JpegColors::Cmyk, JpegColors::Ycck})
        for (const bool marked : {true, false}) {
            if (colors == JpegColors::Ycck && !marked)
                continue; // without the marker nothing tells that the file is YCCK
            const JpegForm form = {.width = 16,
                                   .height = 16,
                                   .colors = colors,
                                   .quality = 100,
                                   .across = 1,
                                   .down = 1,
                                   .adobeMarker = marked};
            ByteStream stream(MakeJpeg(form, flat(marked)));
            Canvas canvas;
            EXPECT_GE(Decode(plugin, stream, canvas), 0);
            const Pixel got = canvas.At(5, 5);
            EXPECT_NEAR(got.red, 127, 2) << marked;
            EXPECT_NEAR(got.green, 255, 2) << marked;
            EXPECT_NEAR(got.blue, 255, 2) << marked;
        }
}

TEST_F(JpegReader, LocksOneLineAtATime)
{
    for (const bool progressive : {false, true}) {
        ByteStream stream(
            MakeJpeg({.width = 20, .height = 90, .progressive = progressive}, Smooth));
        Canvas canvas;
        EXPECT_GE(Decode(plugin, stream, canvas), 0);
        EXPECT_EQ(canvas.mostLentAtOnce, 1u);
        EXPECT_EQ(canvas.allocations, 1);
    }
}

TEST_F(JpegReader, TellsTheSizeFromTheHeader)
{
    for (const bool progressive : {false, true}) {
        ByteStream stream(MakeJpeg({.width = 33, .height = 7, .progressive = progressive}, Smooth));
        RasterInfo info = {};
        info.size = sizeof info;
        EXPECT_EQ(plugin.getImageInfo(nullptr, &stream.record, &info), 1);
        EXPECT_EQ(info.size, sizeof info);
        EXPECT_EQ(info.width, 33u);
        EXPECT_EQ(info.height, 7u);
        EXPECT_EQ(info.depth, 24u);
        EXPECT_EQ(info.stride, 100u);
    }
    RasterInfo info = {4, 1, 2, 3, 4, 5};
    ByteStream stream(MakeJpeg({.width = 33, .height = 7}, Smooth));
    EXPECT_EQ(plugin.getImageInfo(nullptr, &stream.record, &info), 1);
    EXPECT_EQ(info.width, 1u);
    info.size = 3;
    ByteStream again(stream.bytes);
    EXPECT_LT(plugin.getImageInfo(nullptr, &again.record, &info), 0);
}

TEST_F(JpegReader, RefusesScansThatTakeMoreMemoryThanTheSettingAllows)
{
    // 1024 x 1024 pixels in three full components: 6 MB of coefficients.
    const JpegForm form = {
        .width = 1024, .height = 1024, .across = 1, .down = 1, .progressive = true};
    const std::string file = MakeJpeg(form, Smooth);
    CurrentHost().settings[u"JpegInputMemory"] = 5;
    {
        ByteStream stream(file);
        Canvas canvas;
        EXPECT_LT(Decode(plugin, stream, canvas), 0);
        EXPECT_EQ(canvas.allocations, 0);
        ASSERT_EQ(CurrentHost().messages.size(), 1u);
        EXPECT_NE(CurrentHost().messages[0].find(u"JpegInputMemory"), std::u16string::npos);
        EXPECT_EQ(CurrentHost().messageFlags[0] & 16, 16u); // so that it can be read
        EXPECT_LT(stream.peak.Most(), 1u << 20);
    }
    CurrentHost().settings[u"JpegInputMemory"] = 6;
    {
        ByteStream stream(file);
        Canvas canvas;
        EXPECT_GE(Decode(plugin, stream, canvas), 0);
        EXPECT_TRUE(CurrentHost().messages.empty());
    }
    // A baseline file needs no such memory, whatever the setting.
    CurrentHost().settings[u"JpegInputMemory"] = 1;
    ByteStream stream(MakeJpeg({.width = 1024, .height = 1024, .across = 1, .down = 1}, Smooth));
    Canvas canvas;
    EXPECT_GE(Decode(plugin, stream, canvas), 0);
}

TEST_F(JpegReader, AnswersTheRefusalInTheLanguageOfTheSystem)
{
    plugin.setLanguage(17);
    CurrentHost().settings[u"JpegInputMemory"] = 1;
    ByteStream stream(MakeJpeg({.width = 1024, .height = 1024, .progressive = true}, Smooth));
    Canvas canvas;
    EXPECT_LT(Decode(plugin, stream, canvas), 0);
    ASSERT_EQ(CurrentHost().messages.size(), 1u);
    EXPECT_NE(CurrentHost().messages[0].find(u"プログレッシブ"), std::u16string::npos);
}

namespace
{

int32_t DecodeFast(const PluginLibrary& plugin, const TavrixChar* path, ByteStream* stream,
                   Canvas& canvas)
{
    const int32_t result = plugin.getImageFast(
        path, stream ? &stream->record : nullptr, canvas.Handle(), canvas.Table(), nullptr, nullptr,
        nullptr, nullptr, [](Variant* item) -> int32_t {
            const auto found = CurrentHost().settings.find(item->name);
            if (found == CurrentHost().settings.end())
                return -10;
            item->value = found->second;
            return 1;
        });
    canvas.UnlockAll();
    return result;
}

} // namespace

TEST_F(JpegReader, DecodesQuicklyAtAHalfAQuarterOrAnEighth)
{
    const std::string file = MakeJpeg({.width = 101, .height = 67}, Smooth);
    ByteStream whole(file);
    Canvas full;
    ASSERT_EQ(Decode(plugin, whole, full), 1);
    const std::pair<uint32_t, uint32_t> rows[] = {{1, 1}, {2, 2}, {3, 2},    {4, 4},
                                                  {7, 4}, {8, 8}, {4711, 8}, {0, 1}};
    for (const auto& [setting, divisor] : rows) {
        CurrentHost().settings[u"JpegInputFastDivisor"] = setting;
        ByteStream stream(file);
        Canvas canvas;
        EXPECT_EQ(DecodeFast(plugin, nullptr, &stream, canvas), 1);
        EXPECT_EQ(canvas.width, (101 + divisor - 1) / divisor);
        EXPECT_EQ(canvas.height, (67 + divisor - 1) / divisor);
        // Each pixel is about the middle of its square.
        for (uint32_t y = 0; y < 67 / divisor; ++y)
            for (uint32_t x = 0; x < 101 / divisor; ++x) {
                const Pixel want = full.At(x * divisor + divisor / 2, y * divisor + divisor / 2);
                EXPECT_NEAR(canvas.At(x, y).green, want.green, 24) << divisor;
            }
    }
    CurrentHost().settings.clear();
    ByteStream stream(file);
    Canvas canvas;
    EXPECT_EQ(DecodeFast(plugin, nullptr, &stream, canvas), 1);
    EXPECT_EQ(canvas.width, 13u);
}

TEST_F(JpegReader, QuickDecodeOfEveryKeptFileFailsWhereTheWholeOneDoes)
{
    const auto folder = tavrix::testing::InSource("/tests/inputs/jpeg");
    for (const uint32_t divisor : {2u, 8u})
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            CurrentHost().settings[u"JpegInputFastDivisor"] = divisor;
            std::ifstream in(entry.path(), std::ios::binary);
            const std::string file(std::istreambuf_iterator<char>(in), {});
            ByteStream stream(file);
            Canvas whole;
            whole.forgets = true;
            const int32_t expected = Decode(plugin, stream, whole);
            ByteStream again(file);
            Canvas canvas;
            canvas.forgets = true;
            const int32_t got = DecodeFast(plugin, nullptr, &again, canvas);
            EXPECT_EQ(got < 0, expected < 0) << entry.path() << ": " << got;
            EXPECT_EQ(canvas.allocations, whole.allocations) << entry.path();
            EXPECT_LT(canvas.peak.Most(), size_t{12} << 20) << entry.path();
        }
}

TEST_F(JpegReader, QuickDecodeOfAPathThatIsNotThereFails)
{
    Canvas canvas;
    EXPECT_LT(DecodeFast(plugin, u"\\no such folder\\picture.jpg", nullptr, canvas), 0);
    EXPECT_EQ(canvas.allocations, 0);
}
