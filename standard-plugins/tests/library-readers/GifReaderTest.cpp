// The GIF reader's pixels, against other programs', and its frame on its screen.

#include "standard-plugins/gif-input/GifCodeCheck.h"
#include "standard-plugins/tests/library-readers/References.h"

#include <random>

using plugintest::ByteStream;
using plugintest::Canvas;
using plugintest::CurrentHost;
using plugintest::Decode;
using plugintest::FirstDifference;
using plugintest::Pixel;
using plugintest::PluginLibrary;

namespace
{

class GifReader : public plugintest::ReaderTest
{
protected:
    PluginLibrary plugin{"INPUT/GIF"};
};

std::string Word(uint32_t value)
{
    return {static_cast<char>(value & 255), static_cast<char>(value >> 8)};
}

struct GifForm {
    uint32_t screenWidth = 6;
    uint32_t screenHeight = 5;
    uint32_t left = 0;
    uint32_t top = 0;
    uint32_t width = 6;
    uint32_t height = 5;
    bool interlaced = false;
    int transparent = -1;
    bool screenPalette = true;
    bool framePalette = false;
    /// Entries of a palette: 2 to the power of this.
    int paletteBits = 3;
    int codeSize = 3;
};

std::string Palette(int bits, int step)
{
    std::string colors;
    for (int i = 0; i < 3 << bits; ++i)
        colors += static_cast<char>(i * step + 5);
    return colors;
}

Pixel PaletteColor(uint32_t index, uint32_t step)
{
    const auto channel = [&](uint32_t c) {
        return static_cast<uint8_t>((index * 3 + c) * step + 5);
    };
    return {channel(0), channel(1), channel(2)};
}

// Index of a pixel of the frame.
uint32_t IndexAt(uint32_t x, uint32_t y)
{
    return (x + 3 * y) % 8;
}

// Codes of a fixed width: a clear code before each pixel keeps them so.
std::string Codes(const GifForm& form)
{
    std::string bytes;
    uint32_t held = 0;
    int bits = 0;
    const auto put = [&](uint32_t code) {
        held |= code << bits;
        for (bits += form.codeSize + 1; bits >= 8; bits -= 8, held >>= 8)
            bytes += static_cast<char>(held);
    };
    std::vector<uint32_t> rows;
    if (form.interlaced)
        for (const auto& [start, step] : {std::pair{0u, 8u}, {4u, 8u}, {2u, 4u}, {1u, 2u}})
            for (uint32_t y = start; y < form.height; y += step)
                rows.push_back(y);
    else
        for (uint32_t y = 0; y < form.height; ++y)
            rows.push_back(y);
    for (const uint32_t y : rows)
        for (uint32_t x = 0; x < form.width; ++x) {
            put(1u << form.codeSize);
            put(IndexAt(x, y));
        }
    put((1u << form.codeSize) + 1);
    put(0);
    put(0);
    return bytes;
}

std::string Blocks(const std::string& bytes)
{
    std::string blocks;
    for (size_t at = 0; at < bytes.size(); at += 255) {
        const std::string part = bytes.substr(at, 255);
        blocks += static_cast<char>(part.size()) + part;
    }
    return blocks + '\0';
}

std::string MakeGif(const GifForm& form)
{
    const auto flags = [&](bool has) {
        return static_cast<char>(has ? 0x80 | (form.paletteBits - 1) : 0);
    };
    std::string file = "GIF89a" + Word(form.screenWidth) + Word(form.screenHeight) +
                       flags(form.screenPalette) + std::string(2, '\0');
    if (form.screenPalette)
        file += Palette(form.paletteBits, 11);
    if (form.transparent >= 0)
        file += std::string("\x21\xf9\x04\x01\0\0", 6) + static_cast<char>(form.transparent) + '\0';
    file += ',' + Word(form.left) + Word(form.top) + Word(form.width) + Word(form.height);
    file += static_cast<char>(flags(form.framePalette) | (form.interlaced ? 0x40 : 0));
    if (form.framePalette)
        file += Palette(form.paletteBits, 7);
    return file + static_cast<char>(form.codeSize) + Blocks(Codes(form)) + ';';
}

} // namespace

TEST_F(GifReader, ReadsWhatOtherProgramsWriteAsTheyDo)
{
    Write("in.ppm", plugintest::MakePpm(97, 61, plugintest::SoftSample));
    for (const int colors : {2, 3, 4, 7, 16, 30, 100, 256})
        for (const char* interlace : {"none", "GIF"}) {
            const std::string name =
                "c" + std::to_string(colors) + "-" + interlace[0] + std::string(".gif");
            Run("convert in.ppm -colors " + std::to_string(colors) + " -interlace " + interlace +
                " " + name);
            ExpectLike(plugin, name, "convert " + name + " ppm:-");
            ExpectLike(plugin, name, "giftopnm " + name);
            ExpectLike(plugin, name,
                       "gif2rgb " + name + " > out.rgb && (echo P6 97 61 255; cat out.rgb)");
        }
    Run("pnmquant 200 in.ppm 2>/dev/null | ppmtogif 2>/dev/null > netpbm.gif");
    ExpectLike(plugin, "netpbm.gif", "giftopnm netpbm.gif");
    Run("pnmquant 50 in.ppm 2>/dev/null | ppmtogif -nolzw 2>/dev/null > nolzw.gif");
    ExpectLike(plugin, "nolzw.gif", "giftopnm nolzw.gif");
    Run("gm convert in.ppm magick.gif");
    ExpectLike(plugin, "magick.gif", "gm convert magick.gif ppm:-");
}

TEST_F(GifReader, ReadsEverySizeUpTo17Interlaced)
{
    for (uint32_t width = 1; width <= 17; ++width)
        for (uint32_t height = 1; height <= 17; ++height)
            for (const bool interlaced : {false, true}) {
                ByteStream stream(MakeGif({.screenWidth = width,
                                           .screenHeight = height,
                                           .width = width,
                                           .height = height,
                                           .interlaced = interlaced}));
                Canvas canvas;
                ASSERT_EQ(Decode(plugin, stream, canvas), 1) << width << "x" << height;
                ASSERT_EQ(FirstDifference(canvas, width, height,
                                          [](uint32_t x, uint32_t y) {
                                              return PaletteColor(IndexAt(x, y), 11);
                                          }),
                          "")
                    << width << "x" << height;
            }
}

TEST_F(GifReader, LaysTheFrameOnItsScreenAndCutsItThere)
{
    CurrentHost().settings = {{u"GifInputBackgroundRed", 10},
                              {u"GifInputBackgroundGreen", 20},
                              {u"GifInputBackgroundBlue", 30}};
    for (const auto& [left, top] : {std::pair{0u, 0u},
                                    {3u, 2u},
                                    {9u, 12u},
                                    {18u, 2u},
                                    {2u, 17u},
                                    {20u, 0u},
                                    {0u, 20u},
                                    {65535u, 65535u}})
        for (const bool interlaced : {false, true}) {
            SCOPED_TRACE(std::to_string(left) + "," + std::to_string(top));
            const uint32_t x0 = left;
            const uint32_t y0 = top;
            ByteStream stream(MakeGif({.screenWidth = 20,
                                       .screenHeight = 20,
                                       .left = left,
                                       .top = top,
                                       .width = 9,
                                       .height = 11,
                                       .interlaced = interlaced}));
            Canvas canvas;
            EXPECT_EQ(Decode(plugin, stream, canvas), 1);
            EXPECT_EQ(FirstDifference(canvas, 20, 20,
                                      [&](uint32_t x, uint32_t y) {
                                          if (x < x0 || x >= x0 + 9 || y < y0 || y >= y0 + 11)
                                              return Pixel{10, 20, 30};
                                          return PaletteColor(IndexAt(x - x0, y - y0), 11);
                                      }),
                      "");
        }
}

TEST_F(GifReader, ShowsTheBackgroundThroughTheTransparentIndex)
{
    CurrentHost().settings = {{u"GifInputBackgroundGreen", 99}};
    ByteStream stream(MakeGif({.transparent = 4}));
    Canvas canvas;
    EXPECT_EQ(Decode(plugin, stream, canvas), 1);
    EXPECT_EQ(FirstDifference(canvas, 6, 5,
                              [](uint32_t x, uint32_t y) {
                                  const uint32_t index = IndexAt(x, y);
                                  return index == 4 ? Pixel{255, 99, 255} : PaletteColor(index, 11);
                              }),
              "");
}

TEST_F(GifReader, PrefersTheFramesOwnPalette)
{
    for (const bool screenToo : {false, true}) {
        ByteStream stream(MakeGif({.screenPalette = screenToo, .framePalette = true}));
        Canvas canvas;
        EXPECT_EQ(Decode(plugin, stream, canvas), 1);
        EXPECT_EQ(canvas.At(2, 1), PaletteColor(IndexAt(2, 1), 7));
    }
}

TEST_F(GifReader, RefusesAFrameWithoutAnyPalette)
{
    ByteStream stream(MakeGif({.screenPalette = false}));
    Canvas canvas;
    EXPECT_LT(Decode(plugin, stream, canvas), 0);
    EXPECT_EQ(canvas.allocations, 0);
}

TEST_F(GifReader, ShowsAnIndexBeyondThePaletteAndFails)
{
    // Four colours, and codes for eight.
    ByteStream stream(MakeGif({.paletteBits = 2}));
    Canvas canvas;
    EXPECT_LT(Decode(plugin, stream, canvas), 0);
    EXPECT_EQ(canvas.At(1, 0), PaletteColor(1, 11));
    EXPECT_EQ(canvas.At(5, 0), (Pixel{0, 0, 0}));
    EXPECT_TRUE(canvas.WasWritten(4));
    // As the transparent index it needs no colour.
    ByteStream again(MakeGif({.width = 5, .height = 1, .transparent = 4, .paletteBits = 2}));
    EXPECT_EQ(Decode(plugin, again, canvas), 1);
    EXPECT_EQ(canvas.At(4, 0), (Pixel{255, 255, 255}));
}

TEST_F(GifReader, StopsBehindTheFirstFrame)
{
    const std::string sound = MakeGif({});
    Canvas canvas;
    ByteStream noTrailer(sound.substr(0, sound.size() - 1));
    EXPECT_EQ(Decode(plugin, noTrailer, canvas), 1);
    ByteStream noEndBlock(sound.substr(0, sound.size() - 2));
    EXPECT_LT(Decode(plugin, noEndBlock, canvas), 0);
    EXPECT_TRUE(canvas.WasWritten(4)); // all rows are there all the same
    EXPECT_EQ(canvas.At(5, 4), PaletteColor(IndexAt(5, 4), 11));
    const size_t frameStart = sound.find(',');
    std::string frames = sound.substr(0, sound.size() - 1);
    for (int i = 0; i < 100000; ++i)
        frames.append(sound, frameStart, sound.size() - 1 - frameStart);
    ByteStream many(frames);
    EXPECT_EQ(Decode(plugin, many, canvas), 1);
    EXPECT_LE(many.given, 65536u);
    ByteStream garbage(sound.substr(0, sound.size() - 1) + "no GIF at all");
    EXPECT_EQ(Decode(plugin, garbage, canvas), 1);
}

TEST_F(GifReader, SkipsAHundredThousandExtensionsAndCanBeStoppedThere)
{
    const std::string sound = MakeGif({});
    std::string file = sound.substr(0, sound.find(','));
    for (int i = 0; i < 100000; ++i)
        file += std::string("\x21\xfe\x05hello\0", 9);
    file += sound.substr(sound.find(','));
    ByteStream stream(file);
    Canvas canvas;
    EXPECT_EQ(Decode(plugin, stream, canvas), 1);
    EXPECT_EQ(canvas.At(2, 1), PaletteColor(IndexAt(2, 1), 11));
    EXPECT_LT(stream.peak.Most(), 1u << 20);
    CurrentHost().refuseFrom = 0;
    ByteStream again(file);
    Canvas untouched;
    EXPECT_LT(Decode(plugin, again, untouched), 0);
    EXPECT_EQ(untouched.allocations, 0);
    EXPECT_LT(again.given, 200000u);
}

TEST_F(GifReader, CountsThePixelsOfSoundCodesAlone)
{
    GifCodeCheck check;
    StartCodeCheck(&check, 2);
    // 4 clear, 1, 6 (not defined: the next is 6, which 1 precedes: it is 1 1), 7 (1 1 1), 5 end.
    const uint8_t defined[] = {0x8c, 0x5f};
    CheckCodes(&check, defined, 2);
    EXPECT_EQ(check.pixels, 6u);
    EXPECT_TRUE(check.ended);
    StartCodeCheck(&check, 2);
    const uint8_t notDefined[] = {0xcc, 0x5f}; // 4 clear, 1, 7: nothing defines it
    CheckCodes(&check, notDefined, 2);
    EXPECT_EQ(check.pixels, 1u);
    EXPECT_TRUE(check.ended);
    // What a clear code took back means nothing any more: 4, 1, 6, 7, 4, 1, 7.
    StartCodeCheck(&check, 2);
    const uint8_t takenBack[] = {0x8c, 0x4f, 0x39};
    CheckCodes(&check, takenBack, 3);
    EXPECT_EQ(check.pixels, 7u);
    EXPECT_TRUE(check.ended);
}

TEST_F(GifReader, FailsWhereACodeMeansNothingAndKeepsTheRowsBefore)
{
    Write("in.ppm", plugintest::MakePpm(64, 64, plugintest::SoftSample));
    Run("convert in.ppm -colors 256 in.gif");
    const std::string file = Read("in.gif");
    ByteStream sound(file);
    Canvas whole;
    ASSERT_EQ(Decode(plugin, sound, whole), 1);
    std::mt19937 random(7);
    int failed = 0;
    for (int i = 0; i < 300; ++i) {
        std::string spoiled = file;
        const size_t at = 900 + random() % (file.size() - 900);
        spoiled[at] = static_cast<char>(random());
        ByteStream stream(spoiled);
        Canvas canvas;
        const int32_t result = Decode(plugin, stream, canvas);
        failed += result < 0;
        // A block's bytes hold at least its 12-bit codes one pixel each, so the first rows are far
        // before the spoiled byte.
        if (at > 1800 && canvas.height > 0) {
            EXPECT_TRUE(canvas.WasWritten(0)) << at;
            EXPECT_EQ(canvas.At(5, 0), whole.At(5, 0)) << at;
        }
    }
    EXPECT_GT(failed, 100);
}

TEST_F(GifReader, RefusesAScreenThatItsFrameDoesNotFill)
{
    ByteStream stream(MakeGif({.screenWidth = 65535, .screenHeight = 65535}));
    Canvas canvas;
    EXPECT_LT(Decode(plugin, stream, canvas), 0);
    EXPECT_EQ(canvas.allocations, 0);
    // Up to 64 million pixels a small frame may lie on a large screen.
    ByteStream large(MakeGif({.screenWidth = 8192, .screenHeight = 8192}));
    canvas.forgets = true;
    EXPECT_EQ(Decode(plugin, large, canvas), 1);
    EXPECT_EQ(canvas.height, 8192u);
}

TEST_F(GifReader, TellsTheScreensSize)
{
    ByteStream stream(MakeGif({.screenWidth = 33, .screenHeight = 7}).substr(0, 60));
    RasterInfo info = {};
    info.size = sizeof info;
    EXPECT_EQ(plugin.getImageInfo(nullptr, &stream.record, &info), 1);
    EXPECT_EQ(info.width, 33u);
    EXPECT_EQ(info.height, 7u);
}
