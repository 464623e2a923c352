// Forms that no program at hand writes, put together byte by byte. What they must give is worked
// out here from the numbers, by fractions.

#include "standard-plugins/tests/simple-formats/Pictures.h"
#include "standard-plugins/tests/simple-formats/SimpleMaking.h"
#include "standard-plugins/tests/support/PngMaking.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>

using namespace plugintest;

namespace
{

using PixelAt = std::function<Pixel(uint32_t x, uint32_t y)>;

class HandMade : public testing::Test
{
protected:
    HandMade() { CurrentHost() = {}; }
    ~HandMade() override { CurrentHost() = {}; }

    /// Reads it and compares; `result` is what the reader has to answer.
    static void Expect(const char* library, const std::string& file, uint32_t width,
                       uint32_t height, const PixelAt& expected, int32_t result = 1)
    {
        PluginLibrary plugin(library);
        ByteStream stream(file);
        Canvas canvas;
        EXPECT_EQ(Decode(plugin, stream, canvas), result);
        EXPECT_EQ(FirstDifference(canvas, width, height, expected), "");
        EXPECT_EQ(stream.seeks + stream.sizesAsked, 0);
    }
    static void ExpectRefused(const char* library, const std::string& file)
    {
        PluginLibrary plugin(library);
        ByteStream stream(file);
        Canvas canvas;
        EXPECT_LT(Decode(plugin, stream, canvas), 0);
        EXPECT_EQ(canvas.allocations, 0);
    }
};

uint8_t ByteAt(const std::string& bytes, size_t at)
{
    return static_cast<uint8_t>(bytes.at(at));
}

uint8_t Nearest(long double value)
{
    return static_cast<uint8_t>(std::floor(value + 0.5L));
}

// A sample of `highest` at most, with alpha of the same kind over a ground.
uint8_t Over(long double sample, long double alpha, long double highest, uint8_t ground = 255)
{
    const long double part = alpha / highest;
    return Nearest(part * (sample / highest) * 255 + (1 - part) * ground);
}

// Red, green, blue of an entry of a bitmap's palette.
Pixel EntryOf(const std::string& palette, uint32_t index, uint32_t entryBytes)
{
    const size_t at = size_t{index} * entryBytes;
    if (at + 3 > palette.size())
        return {};
    return {ByteAt(palette, at + 2), ByteAt(palette, at + 1), ByteAt(palette, at)};
}

uint32_t IndexAt(const std::string& row, uint32_t x, uint32_t bits)
{
    const uint32_t perByte = 8 / bits;
    return static_cast<uint32_t>(ByteAt(row, x / perByte) >> (8 - bits - x % perByte * bits)) &
           ((1u << bits) - 1);
}

// Rows are stored from the last line up.
std::string RowOf(const std::string& pixels, uint32_t rowBytes, uint32_t height, uint32_t y)
{
    return pixels.substr(size_t{rowBytes} * (height - 1 - y), rowBytes);
}

uint32_t Filled(uint32_t width, uint32_t bits)
{
    return (width * bits + 31) / 32 * 4;
}

const Pixel red = {255, 0, 0};
const Pixel green = {0, 255, 0};
const Pixel blue = {0, 0, 255};
const Pixel white = {255, 255, 255};
const Pixel black = {0, 0, 0};

// Black, red, green, blue, white as entries of four bytes.
std::string FivePalette()
{
    return Bytes({0, 0, 0, 0, 0, 0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 0, 255, 255, 255, 0});
}
const Pixel five[] = {black, red, green, blue, white};

} // namespace

TEST_F(HandMade, BitmapHeadersOfEveryLengthGiveTheSamePixels)
{
    constexpr uint32_t width = 11;
    constexpr uint32_t height = 5;
    for (const uint32_t bits : {1u, 2u, 4u, 8u})
        for (const uint32_t size : {12u, 16u, 24u, 36u, 40u, 46u, 52u, 56u, 64u, 108u, 124u}) {
            SCOPED_TRACE(std::to_string(bits) + " bits, header " + std::to_string(size));
            const uint32_t entryBytes = size == 12 ? 3 : 4;
            BmpForm form = {.width = width, .height = height, .bits = bits, .headerSize = size};
            form.palette = FilledRows(1u << bits, entryBytes, entryBytes, bits);
            const uint32_t rowBytes = Filled(width, bits);
            form.pixels = FilledRows(height, rowBytes, rowBytes, size);
            Expect("INPUT/BMP", MakeBmp(form), width, height, [&](uint32_t x, uint32_t y) {
                const std::string row = RowOf(form.pixels, rowBytes, height, y);
                return EntryOf(form.palette, IndexAt(row, x, bits), entryBytes);
            });
        }
}

TEST_F(HandMade, BitmapMasksOfAnyWidthAreBroughtToEightBitsByTheNearest)
{
    const std::vector<std::vector<uint32_t>> layouts16 = {
        {0x7c00, 0x3e0, 0x1f},   {0xf800, 0x7e0, 0x1f}, {0xf00, 0xf0, 0xf},
        {0xe000, 0x1c00, 0x300}, {0x1, 0x1ffe, 0xe000}, {0, 0xffff, 0}};
    const std::vector<std::vector<uint32_t>> layouts32 = {
        {0xff0000, 0xff00, 0xff},   {0xff, 0xff00, 0xff0000}, {0x3ff00000, 0xffc00, 0x3ff},
        {0xfffe0000, 0x1fffc, 0x3}, {0xffffffff, 0, 0xfff},   {0x80000000, 0x7f000000, 0x1ffffff}};
    constexpr uint32_t width = 37;
    constexpr uint32_t height = 4;
    for (const uint32_t bits : {16u, 32u})
        for (const auto& masks : bits == 16 ? layouts16 : layouts32)
            for (const uint32_t size : {40u, 52u, 56u, 108u, 124u}) {
                BmpForm form = {.width = width,
                                .height = height,
                                .bits = bits,
                                .headerSize = size,
                                .compression = 3,
                                .masks = masks};
                const uint32_t rowBytes = Filled(width, bits);
                form.pixels = FilledRows(height, rowBytes, rowBytes, size + bits);
                Expect("INPUT/BMP", MakeBmp(form), width, height, [&](uint32_t x, uint32_t y) {
                    const std::string row = RowOf(form.pixels, rowBytes, height, y);
                    uint32_t pixel = 0;
                    for (uint32_t i = 0; i < bits / 8; ++i)
                        pixel |= static_cast<uint32_t>(ByteAt(row, x * bits / 8 + i)) << (8 * i);
                    const auto channel = [&](uint32_t mask) -> uint8_t {
                        if (mask == 0)
                            return 0;
                        const int shift = std::countr_zero(mask);
                        return Nearest(255.0L * ((pixel & mask) >> shift) / (mask >> shift));
                    };
                    return Pixel{channel(masks[0]), channel(masks[1]), channel(masks[2])};
                });
            }
}

TEST_F(HandMade, BitmapAlphaLiesOverTheChosenGround)
{
    constexpr uint32_t width = 40;
    constexpr uint32_t height = 3;
    CurrentHost().settings = {{u"BmpInputBackgroundRed", 10},
                              {u"BmpInputBackgroundGreen", 200},
                              {u"BmpInputBackgroundBlue", 77}};
    for (const uint32_t size : {40u, 56u, 108u, 124u}) {
        BmpForm form = {.width = width,
                        .height = height,
                        .bits = 32,
                        .headerSize = size,
                        .compression = size == 40 ? 6u : 3u,
                        .masks = {0xff0000, 0xff00, 0xff, 0xff000000}};
        form.pixels = FilledRows(height, 4 * width, 4 * width, size);
        Expect("INPUT/BMP", MakeBmp(form), width, height, [&](uint32_t x, uint32_t y) {
            const std::string row = RowOf(form.pixels, 4 * width, height, y);
            const uint8_t alpha = ByteAt(row, 4 * x + 3);
            return Pixel{Over(ByteAt(row, 4 * x + 2), alpha, 255, 10),
                         Over(ByteAt(row, 4 * x + 1), alpha, 255, 200),
                         Over(ByteAt(row, 4 * x), alpha, 255, 77)};
        });
    }
    // Plain pixels of 32 bits have no alpha, whatever their fourth byte is.
    const BmpForm plain = {.bits = 32, .headerSize = 124, .pixels = Bytes({0, 0, 255, 0})};
    Expect("INPUT/BMP", MakeBmp(plain), 1, 1, [](uint32_t, uint32_t) { return red; });
}

TEST_F(HandMade, BitmapFromTheTopGapBeforeThePixelsAndArrayOfBitmaps)
{
    const auto first = [](uint32_t, uint32_t y) { return y == 0 ? red : blue; };
    const std::string rows = Bytes({0, 0, 255, 0, 255, 0, 0, 0});
    Expect("INPUT/BMP", MakeBmp({.height = -2, .pixels = rows}), 1, 2, first);
    Expect("INPUT/BMP", MakeBmp({.height = -2, .gap = std::string(70001, 'g'), .pixels = rows}), 1,
           2, first);
    Expect("INPUT/BMP", MakeBmp({.height = -2, .offset = 0, .pixels = rows}), 1, 2, first);
    std::string array = MakeBmp({.height = -2, .offset = 14 + 54, .pixels = rows});
    array = "BA" + Le32(40) + Le32(0) + Le32(0) + array;
    Expect("INPUT/BMP", array, 1, 2, first);
}

TEST_F(HandMade, BitmapPalettesMayBeShortOrTooLong)
{
    BmpForm form = {.width = 5, .height = 1, .bits = 8, .entries = 5, .palette = FivePalette()};
    form.pixels = Bytes({0, 1, 2, 3, 4, 0, 0, 0});
    const auto expected = [](uint32_t x, uint32_t) { return five[x]; };
    Expect("INPUT/BMP", MakeBmp(form), 5, 1, expected);
    form.entries = 300;
    form.palette.resize(1200, '\x7f');
    Expect("INPUT/BMP", MakeBmp(form), 5, 1, expected);
    // The header promises 256; the pixels begin behind five.
    form.entries = 0;
    form.palette = FivePalette();
    Expect("INPUT/BMP", MakeBmp(form), 5, 1, expected);
    // Beyond them it is black, and not sound.
    form.pixels = Bytes({0, 1, 2, 3, 5, 0, 0, 0});
    Expect(
        "INPUT/BMP", MakeBmp(form), 5, 1,
        [](uint32_t x, uint32_t) { return x == 4 ? black : five[x]; }, -1);
}

TEST_F(HandMade, BitmapRunsOfEightBits)
{
    BmpForm form = {.width = 6,
                    .height = 4,
                    .bits = 8,
                    .compression = 1,
                    .entries = 5,
                    .palette = FivePalette()};
    // From the bottom: a run and three as they are with filling; a move over the row's end; skipped
    // pixels have colour 0.
    form.pixels = Bytes({3, 1, 0, 3, 2, 3, 4, 0, 0, 0, 2, 2, 0, 2, 2, 1, 1, 3, 0, 1});
    const int expected[4][6] = {
        {0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 3, 0}, {2, 2, 0, 0, 0, 0}, {1, 1, 1, 2, 3, 4}};
    const auto pixel = [&](uint32_t x, uint32_t y) { return five[expected[y][x]]; };
    Expect("INPUT/BMP", MakeBmp(form), 6, 4, pixel);
    form.height = -4;
    Expect("INPUT/BMP", MakeBmp(form), 6, 4,
           [&](uint32_t x, uint32_t y) { return pixel(x, 3 - y); });
}

TEST_F(HandMade, BitmapRunsOfFourBits)
{
    BmpForm form = {.width = 7,
                    .height = 2,
                    .bits = 4,
                    .compression = 2,
                    .entries = 5,
                    .palette = FivePalette()};
    form.pixels = Bytes({5, 0x12, 2, 0x34, 0, 0, 0, 6, 0x12, 0x34, 0x01, 0, 1, 0x20, 0, 1});
    const int expected[2][7] = {{1, 2, 3, 4, 0, 1, 2}, {1, 2, 1, 2, 1, 3, 4}};
    Expect("INPUT/BMP", MakeBmp(form), 7, 2,
           [&](uint32_t x, uint32_t y) { return five[expected[y][x]]; });
}

TEST_F(HandMade, BitmapRunsOf24Bits)
{
    BmpForm form = {.width = 5, .height = 2, .bits = 24, .headerSize = 64, .compression = 4};
    form.pixels = Bytes(
        {5, 0, 0, 255, 0, 0, 2, 255, 0, 0, 0, 3, 0, 0, 255, 0, 255, 0, 255, 255, 255, 0, 0, 1});
    const Pixel upper[] = {blue, blue, red, green, white};
    Expect("INPUT/BMP", MakeBmp(form), 5, 2,
           [&](uint32_t x, uint32_t y) { return y == 0 ? upper[x] : red; });
}

TEST_F(HandMade, BitmapRunsMayCodeTheFillingOfTheirRowsButNoMore)
{
    BmpForm form = {.width = 3,
                    .height = 2,
                    .bits = 8,
                    .compression = 1,
                    .entries = 5,
                    .palette = FivePalette()};
    const auto pixel = [](uint32_t, uint32_t y) { return y == 0 ? green : red; };
    form.pixels = Bytes({4, 1, 0, 0, 4, 2, 0, 1});
    Expect("INPUT/BMP", MakeBmp(form), 3, 2, pixel);
    form.pixels = Bytes({5, 1, 0, 0, 4, 2, 0, 1});
    Expect("INPUT/BMP", MakeBmp(form), 3, 2, pixel, -1);
    form.pixels = Bytes({3, 1, 0, 0, 3, 2, 0, 0, 1, 1, 0, 1}); // a third row
    Expect("INPUT/BMP", MakeBmp(form), 3, 2, pixel, -1);
    form.pixels = Bytes({3, 1, 0, 0, 3, 2, 0, 0}); // no end mark
    Expect("INPUT/BMP", MakeBmp(form), 3, 2, pixel, -1);
}

TEST_F(HandMade, BitmapWhoseRunsSkipGigabytesIsRefused)
{
    const BmpForm form = {.width = 65535,
                          .height = 65535,
                          .bits = 8,
                          .compression = 1,
                          .entries = 5,
                          .palette = FivePalette(),
                          .pixels = Bytes({1, 1, 0, 0, 0, 1})};
    PluginLibrary plugin("INPUT/BMP");
    ByteStream stream(MakeBmp(form));
    Canvas canvas;
    canvas.forgets = true;
    EXPECT_EQ(Decode(plugin, stream, canvas), -1);
    EXPECT_FALSE(canvas.askedTooMuch);
    EXPECT_LE(uint64_t{canvas.stride} * canvas.height, uint64_t{512} << 20);
}

TEST_F(HandMade, AnymapsOfEveryMaxvalAreRoundedToTheNearest)
{
    for (const uint32_t highest : {1u, 2u, 3u, 100u, 254u, 255u, 256u, 1000u, 65534u, 65535u})
        for (const bool plain : {false, true}) {
            SCOPED_TRACE(highest);
            const uint32_t width = highest < 300 ? highest + 1 : 300;
            const auto sample = [&](uint32_t x) {
                return highest < 300 ? x : static_cast<uint32_t>(uint64_t{x} * highest / 299);
            };
            std::string file = (plain ? "P2 " : "P5 ") + std::to_string(width) + " 1\t" +
                               std::to_string(highest) + "\n";
            for (uint32_t x = 0; x < width; ++x) {
                const uint32_t value = sample(x);
                if (plain)
                    file += std::to_string(value) + "\v";
                else if (highest > 255)
                    file += Bytes({static_cast<int>(value >> 8), static_cast<int>(value & 255)});
                else
                    file += static_cast<char>(value);
            }
            Expect("INPUT/PNM", file, width, 1, [&](uint32_t x, uint32_t) {
                const uint8_t grey = Nearest(255.0L * sample(x) / highest);
                return Pixel{grey, grey, grey};
            });
        }
}

TEST_F(HandMade, AnymapsOfEveryTupleTypeLieOverTheGround)
{
    constexpr uint32_t width = 30;
    constexpr uint32_t height = 7;
    CurrentHost().settings = {{u"PnmInputBackgroundRed", 0},
                              {u"PnmInputBackgroundGreen", 99},
                              {u"PnmInputBackgroundBlue", 180}};
    const uint8_t ground[] = {0, 99, 180};
    const std::pair<const char*, uint32_t> types[] = {{"BLACKANDWHITE", 1},
                                                      {"GRAYSCALE", 1},
                                                      {"RGB", 3},
                                                      {"BLACKANDWHITE_ALPHA", 2},
                                                      {"GRAYSCALE_ALPHA", 2},
                                                      {"RGB_ALPHA", 4},
                                                      {"", 1},
                                                      {"", 2},
                                                      {"", 3},
                                                      {"", 4}};
    for (const auto& [type, depth] : types)
        for (const uint32_t highest : {1u, 77u, 255u, 4095u, 65535u}) {
            SCOPED_TRACE(std::string(type) + " " + std::to_string(highest));
            const auto sample = [highest](uint32_t x, uint32_t y, uint32_t channel) {
                return (x * 7919 + y * 104729 + channel * 1299709) % (highest + 1);
            };
            std::string file = "P7\n# a comment\nWIDTH 30\nHEIGHT 7\nDEPTH " +
                               std::to_string(depth) + "\nMAXVAL " + std::to_string(highest) + "\n";
            if (*type)
                file += std::string("TUPLTYPE ") + type + "\n";
            file += "ENDHDR\n";
            for (uint32_t y = 0; y < height; ++y)
                for (uint32_t x = 0; x < width; ++x)
                    for (uint32_t i = 0; i < depth; ++i) {
                        if (highest > 255)
                            file += static_cast<char>(sample(x, y, i) >> 8);
                        file += static_cast<char>(sample(x, y, i));
                    }
            Expect("INPUT/PNM", file, width, height, [&, count = depth](uint32_t x, uint32_t y) {
                const uint32_t alpha = count % 2 == 0 ? sample(x, y, count - 1) : highest;
                const auto channel = [&](uint32_t i) {
                    return Over(sample(x, y, count >= 3 ? i : 0), alpha, highest, ground[i]);
                };
                return Pixel{channel(0), channel(1), channel(2)};
            });
        }
}

TEST_F(HandMade, AnymapsTakeCommentsAnyWhiteSpaceAndManyPictures)
{
    const auto pixels = [](uint32_t x, uint32_t y) { return (x + y) % 2 ? black : white; };
    Expect("INPUT/PNM", "P1#c\n# more 1 2\n2#\n\r\n 2#last\n01\n#in between\n1 0", 2, 2, pixels);
    Expect("INPUT/PNM", "P1 2 2 0110 and what follows", 2, 2, pixels);
    Expect("INPUT/PNM", "P4 2 2\n" + Bytes({0x40, 0x80}) + "P4 9 9\n", 2, 2, pixels);
    Expect("INPUT/PNM", "P2 2 2 # max\n 9\n9 0 0\n#c\n9", 2, 2, pixels);
    // Directly behind the last number a comment ends with the header.
    Expect("INPUT/PNM", "P5 2 2 255#c\n" + Bytes({255, 0, 0, 255}), 2, 2, pixels);
    Expect("INPUT/PNM", "P3 1 1 255 1 2 3", 1, 1, [](uint32_t, uint32_t) {
        return Pixel{1, 2, 3};
    });
}

TEST_F(HandMade, TargaFromEachCorner)
{
    const std::string rows = FilledRows(3, 12, 12);
    for (const uint32_t corner : {0x00u, 0x10u, 0x20u, 0x30u})
        Expect(
            "INPUT/TGA",
            MakeTga(
                {.width = 4, .height = 3, .descriptor = corner, .id = "any text", .pixels = rows}),
            4, 3, [&](uint32_t x, uint32_t y) {
                const uint32_t column = corner & 0x10 ? 3 - x : x;
                const uint32_t row = corner & 0x20 ? y : 2 - y;
                return EntryOf(rows, row * 4 + column, 3);
            });
}

TEST_F(HandMade, TargaOfEveryDepthWithAndWithoutAlpha)
{
    CurrentHost().settings = {{u"TgaInputBackgroundRed", 33},
                              {u"TgaInputBackgroundGreen", 150},
                              {u"TgaInputBackgroundBlue", 240}};
    constexpr uint32_t width = 50;
    const auto five = [](uint32_t word, uint32_t shift) {
        return Nearest(255.0L * (word >> shift & 31) / 31);
    };
    for (const auto& [bits, attributes] :
         {std::pair<uint32_t, uint32_t>{15, 0}, {16, 0}, {16, 1}, {24, 0}, {32, 0}, {32, 8}}) {
        SCOPED_TRACE(bits);
        const uint32_t step = (bits + 7) / 8;
        const std::string row = FilledRows(1, width * step, width * step, bits);
        Expect(
            "INPUT/TGA",
            MakeTga({.width = width, .bits = bits, .descriptor = 0x20 | attributes, .pixels = row}),
            width, 1, [&, b = bits, has = attributes != 0](uint32_t x, uint32_t) {
                if (b > 16) {
                    const uint8_t alpha = has ? ByteAt(row, x * step + 3) : 255;
                    const Pixel pixel = EntryOf(row, x, step);
                    return Pixel{Over(pixel.red, alpha, 255, 33),
                                 Over(pixel.green, alpha, 255, 150),
                                 Over(pixel.blue, alpha, 255, 240)};
                }
                const uint32_t word = ByteAt(row, 2 * x) | ByteAt(row, 2 * x + 1) << 8;
                if (has && word >> 15 == 0)
                    return Pixel{33, 150, 240};
                return Pixel{five(word, 10), five(word, 5), five(word, 0)};
            });
    }
    const std::string greys = FilledRows(1, 2 * width, 2 * width);
    Expect("INPUT/TGA",
           MakeTga({.type = 3, .width = width, .bits = 16, .descriptor = 0x28, .pixels = greys}),
           width, 1, [&](uint32_t x, uint32_t) {
               const uint8_t alpha = ByteAt(greys, 2 * x + 1);
               const uint8_t grey = ByteAt(greys, 2 * x);
               return Pixel{Over(grey, alpha, 255, 33), Over(grey, alpha, 255, 150),
                            Over(grey, alpha, 255, 240)};
           });
}

TEST_F(HandMade, TargaColourMapsOfEveryDepthWithAnOrigin)
{
    for (const uint32_t mapBits : {15u, 16u, 24u, 32u})
        for (const uint32_t bits : {8u, 16u}) {
            const uint32_t step = (mapBits + 7) / 8;
            TgaForm form = {.type = 1,
                            .width = 20,
                            .bits = bits,
                            .mapType = 1,
                            .mapFirst = 100,
                            .mapEntries = 20,
                            .mapBits = mapBits};
            form.map = FilledRows(20, step, step, mapBits);
            for (int x = 0; x < 20; ++x)
                form.pixels += bits == 8 ? Bytes({119 - x}) : Le16(static_cast<uint32_t>(119 - x));
            const auto expected = [&](uint32_t x, uint32_t) {
                if (mapBits > 16)
                    return EntryOf(form.map, 19 - x, step);
                const size_t at = 2 * (19 - x);
                const uint32_t word = ByteAt(form.map, at) | ByteAt(form.map, at + 1) << 8;
                const auto five = [&](uint32_t shift) {
                    return Nearest(255.0L * (word >> shift & 31) / 31);
                };
                return Pixel{five(10), five(5), five(0)};
            };
            Expect("INPUT/TGA", MakeTga(form), 20, 1, expected);
            form.pixels[0] = '\x63'; // 99, before the map
            Expect(
                "INPUT/TGA", MakeTga(form), 20, 1,
                [&](uint32_t x, uint32_t y) { return x == 0 ? black : expected(x, y); }, -1);
        }
}

TEST_F(HandMade, TargaRunsReachOverTheEndsOfRowsButNotOverThePicture)
{
    // 3 x 2: four red, then one green and one blue as they are.
    TgaForm form = {.type = 10, .width = 3, .height = 2};
    form.pixels = Bytes({0x83, 0, 0, 255, 0x01, 0, 255, 0, 255, 0, 0});
    const auto expected = [](uint32_t x, uint32_t y) {
        return y == 0 || x == 0 ? red : x == 1 ? green : blue;
    };
    Expect("INPUT/TGA", MakeTga(form), 3, 2, expected);
    form.pixels[4] = 2;
    form.pixels += Bytes({1, 2, 3});
    Expect("INPUT/TGA", MakeTga(form), 3, 2, expected, -1);
}

TEST_F(HandMade, PcxOfEveryPlaneFormWithItsPalette)
{
    const std::string palette = FilledRows(16, 3, 3, 5); // red, green, blue
    const auto entry = [&](uint32_t number) {
        return Pixel{ByteAt(palette, 3 * number), ByteAt(palette, 3 * number + 1),
                     ByteAt(palette, 3 * number + 2)};
    };
    constexpr uint32_t width = 13;
    constexpr uint32_t height = 6;
    for (const auto& [bits, planes] :
         {std::pair<uint32_t, uint32_t>{1, 1}, {1, 2}, {1, 3}, {1, 4}, {2, 1}, {4, 1}})
        for (const uint32_t planeBytes : {(width * bits + 7) / 8, (width * bits + 7) / 8 + 5, 301u})
            for (const uint32_t encoding : {0u, 1u}) {
                const std::string rows =
                    FilledRows(height, planeBytes * planes, planeBytes * planes, bits * 8 + planes);
                const PcxForm form = {.width = width,
                                      .height = height,
                                      .encoding = encoding,
                                      .bits = bits,
                                      .planes = planes,
                                      .planeBytes = planeBytes,
                                      .palette = palette,
                                      .data = encoding ? PcxRuns(rows) : rows};
                Expect("INPUT/PCX", MakePcx(form), width, height,
                       [&, b = bits, count = planes](uint32_t x, uint32_t y) {
                           uint32_t number = 0;
                           for (uint32_t plane = 0; plane < count; ++plane)
                               number |=
                                   IndexAt(rows.substr((y * count + plane) * planeBytes), x, b)
                                   << plane;
                           return entry(number);
                       });
            }
}

TEST_F(HandMade, PcxOfOldVersionsHasTheColoursOfTheCardsAndTwoColoursAreBlackAndWhite)
{
    for (const uint32_t version : {0u, 3u}) {
        // Planes 1 and 2 of four: brown would be both.
        const PcxForm form = {.width = 4,
                              .version = version,
                              .bits = 1,
                              .planes = 4,
                              .planeBytes = 1,
                              .palette = FilledRows(16, 3, 3),
                              .data = PcxRuns(Bytes({0, 0x50, 0x30, 0}))};
        const Pixel expected[] = {black, {0, 170, 0}, {170, 0, 0}, {170, 85, 0}};
        Expect("INPUT/PCX", MakePcx(form), 4, 1, [&](uint32_t x, uint32_t) { return expected[x]; });
    }
    const auto stripes = [](uint32_t x, uint32_t) { return x % 2 ? white : black; };
    for (const uint32_t version : {0u, 2u, 3u, 4u, 5u})
        Expect("INPUT/PCX",
               MakePcx({.width = 4,
                        .version = version,
                        .bits = 1,
                        .planes = 1,
                        .planeBytes = 1,
                        .data = Bytes({0x50})}),
               4, 1, stripes);
    Expect("INPUT/PCX",
           MakePcx({.width = 4,
                    .version = 3,
                    .bits = 2,
                    .planes = 1,
                    .planeBytes = 1,
                    .data = Bytes({0x1b})}),
           4, 1, [](uint32_t x, uint32_t) {
               const Pixel four[] = {black, {0, 170, 170}, {170, 0, 170}, {170, 170, 170}};
               return four[x];
           });
}

TEST_F(HandMade, PcxOf256ColoursFindsThemAtTheEndOfTheFile)
{
    const std::string rows = FilledRows(4, 21, 30, 9);
    const std::string palette = PcxPalette(4);
    PcxForm form = {.width = 21, .height = 4, .planes = 1, .planeBytes = 30};
    const auto number = [&](uint32_t x, uint32_t y) { return ByteAt(rows, y * 30 + x); };
    const auto colored = [&](uint32_t x, uint32_t y) {
        const size_t at = 1 + size_t{3} * number(x, y);
        return Pixel{ByteAt(palette, at), ByteAt(palette, at + 1), ByteAt(palette, at + 2)};
    };
    const auto grey = [&](uint32_t x, uint32_t y) {
        return Pixel{number(x, y), number(x, y), number(x, y)};
    };
    form.data = PcxRuns(rows) + palette;
    Expect("INPUT/PCX", MakePcx(form), 21, 4, colored);
    form.data = PcxRuns(rows) + "some bytes between" + palette;
    Expect("INPUT/PCX", MakePcx(form), 21, 4, colored);
    form.data = PcxRuns(rows);
    Expect("INPUT/PCX", MakePcx(form), 21, 4, grey, -1);
    form.paletteInfo = 2;
    Expect("INPUT/PCX", MakePcx(form), 21, 4, grey);
}

TEST_F(HandMade, PcxPlanesReachUpTo65535BytesAndRunsOverThem)
{
    const std::string rows(65535 * 3 * 2, '\x40');
    PcxForm form = {.width = 3, .height = 2, .planeBytes = 65535, .data = PcxRuns(rows)};
    const auto expected = [](uint32_t, uint32_t) { return Pixel{64, 64, 64}; };
    Expect("INPUT/PCX", MakePcx(form), 3, 2, expected);
    form.data = PcxRuns(rows + "@@@");
    Expect("INPUT/PCX", MakePcx(form), 3, 2, expected, -1);
    form.data = PcxRuns(rows.substr(1));
    PluginLibrary plugin("INPUT/PCX");
    ByteStream stream(MakePcx(form));
    Canvas canvas;
    EXPECT_LT(Decode(plugin, stream, canvas), 0);
    EXPECT_TRUE(canvas.WasWritten(0));
    EXPECT_FALSE(canvas.WasWritten(1));
}

TEST_F(HandMade, IconShowsTheLargestThenTheMostColours)
{
    const auto picture = [](uint32_t side, uint32_t bits, int byte) {
        BmpForm form = {.width = side, .height = 2 * side, .bits = bits};
        if (bits <= 8)
            form.palette = std::string(size_t{4} << bits, static_cast<char>(byte));
        form.pixels = std::string(Filled(side, bits) * side, static_cast<char>(byte)) +
                      std::string(Filled(side, 1) * side, '\0');
        if (bits <= 8)
            form.pixels = std::string(form.pixels.size(), '\0');
        return IcoEntry{side, side, bits, MakeDib(form)};
    };
    const auto all = [](int byte) {
        return [byte](uint32_t, uint32_t) {
            const auto grey = static_cast<uint8_t>(byte);
            return Pixel{grey, grey, grey};
        };
    };
    for (const uint32_t kind : {1u, 2u}) {
        Expect("INPUT/ICO",
               MakeIco({picture(4, 24, 9), picture(8, 8, 7), picture(8, 24, 5), picture(2, 24, 4)},
                       kind),
               8, 8, all(5));
        Expect("INPUT/ICO", MakeIco({picture(8, 24, 5), picture(9, 4, 3)}, kind), 9, 9, all(3));
    }
    // The directory is not believed.
    IcoEntry liar = picture(4, 24, 6);
    liar.width = 0;
    liar.height = 0;
    Expect("INPUT/ICO", MakeIco({liar, picture(5, 24, 8)}), 5, 5, all(8));
    // 255 entries that all point to the last one's data; overlapping is no fault.
    std::vector<IcoEntry> many(254);
    many.push_back(picture(6, 24, 8));
    for (IcoEntry& entry : many)
        entry.offset = 6 + 16 * 255, entry.bytes = static_cast<int64_t>(many.back().data.size());
    Expect("INPUT/ICO", MakeIco(many), 6, 6, all(8));
    // One points to the directory: the others are shown, and the file is not sound.
    many[7].offset = 6;
    Expect("INPUT/ICO", MakeIco(many), 6, 6, all(8), -1);
}

TEST_F(HandMade, IconMasksLetTheGroundThroughAtEveryDepth)
{
    CurrentHost().settings = {{u"IcoInputBackgroundRed", 1},
                              {u"IcoInputBackgroundGreen", 2},
                              {u"IcoInputBackgroundBlue", 3}};
    constexpr uint32_t width = 19;
    constexpr uint32_t height = 7;
    for (const uint32_t bits : {1u, 2u, 4u, 8u, 24u, 32u}) {
        SCOPED_TRACE(bits);
        const uint32_t rowBytes = Filled(width, bits);
        BmpForm form = {.width = width, .height = 2 * height, .bits = bits};
        if (bits <= 8)
            form.palette = FilledRows(1u << bits, 3, 4, bits);
        std::string pixels = FilledRows(height, rowBytes, rowBytes, bits);
        if (bits == 32) // no alpha at all: the mask counts
            for (size_t i = 3; i < pixels.size(); i += 4)
                pixels[i] = 0;
        const std::string mask = FilledRows(height, 3, 4, bits + 1);
        form.pixels = pixels + mask;
        Expect("INPUT/ICO", MakeIco({{19, 7, bits, MakeDib(form)}}), width, height,
               [&](uint32_t x, uint32_t y) {
                   if (IndexAt(RowOf(mask, 4, height, y), x, 1))
                       return Pixel{1, 2, 3};
                   const std::string row = RowOf(pixels, rowBytes, height, y);
                   return bits > 8 ? EntryOf(row, x, bits / 8)
                                   : EntryOf(form.palette, IndexAt(row, x, bits), 4);
               });
    }
}

TEST_F(HandMade, IconAlphaOf32BitsCountsAndItsMaskThenDoesNot)
{
    BmpForm form = {.width = 30, .height = 4, .bits = 32};
    const std::string pixels = FilledRows(2, 120, 120, 3);
    form.pixels = pixels + std::string(8, '\xff');
    Expect("INPUT/ICO", MakeIco({{30, 2, 32, MakeDib(form)}}), 30, 2, [&](uint32_t x, uint32_t y) {
        const std::string row = RowOf(pixels, 120, 2, y);
        const uint8_t alpha = ByteAt(row, 4 * x + 3);
        return Pixel{Over(ByteAt(row, 4 * x + 2), alpha, 255),
                     Over(ByteAt(row, 4 * x + 1), alpha, 255),
                     Over(ByteAt(row, 4 * x), alpha, 255)};
    });
}

TEST_F(HandMade, IconWithAPngOfEveryKind)
{
    CurrentHost().settings = {{u"IcoInputBackgroundRed", 90}};
    for (const int type : {0, 2, 3, 4, 6})
        for (const int depth : {1, 2, 4, 8, 16})
            for (const bool interlaced : {false, true}) {
                if ((type == 3 && depth == 16) || ((type == 2 || type >= 4) && depth < 8))
                    continue;
                SCOPED_TRACE(std::to_string(type) + ", " + std::to_string(depth));
                PngForm png = {.width = 21,
                               .height = 17,
                               .colorType = type,
                               .depth = depth,
                               .interlaced = interlaced};
                const uint32_t highest = (1u << depth) - 1;
                const auto sample = [&](uint32_t x, uint32_t y, int channel) -> uint32_t {
                    return (x * 7919 + y * 3571 + static_cast<uint32_t>(channel) * 1299709 +
                            x * y * 31) &
                           highest;
                };
                if (type == 3)
                    for (uint32_t i = 0; i < 3 * (highest + 1); ++i)
                        png.palette.push_back(static_cast<uint8_t>(i * 89 + 3));
                const std::string file = MakePng(png, sample);
                Expect(
                    "INPUT/ICO", MakeIco({{1, 1, 32, file}}), 21, 17, [&](uint32_t x, uint32_t y) {
                        if (type == 3) {
                            const uint32_t at = 3 * sample(x, y, 0);
                            return Pixel{png.palette[at], png.palette[at + 1], png.palette[at + 2]};
                        }
                        const bool colored = type == 2 || type == 6;
                        const uint32_t alpha = type >= 4 ? sample(x, y, colored ? 3 : 1) : highest;
                        const auto channel = [&](int i, uint8_t ground) {
                            return Over(sample(x, y, colored ? i : 0), alpha, highest, ground);
                        };
                        return Pixel{channel(0, 90), channel(1, 255), channel(2, 255)};
                    });
            }
}
