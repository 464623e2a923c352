// Pictures with a colour profile come out as sRGB; a profile that is broken, too large, of another
// colour space or sRGB itself changes nothing.

#include "standard-plugins/tests/support/ColorProfiles.h"
#include "standard-plugins/tests/support/Decoding.h"
#include "standard-plugins/tests/support/JpegMaking.h"
#include "standard-plugins/tests/support/PngMaking.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace plugintest;

namespace
{

constexpr uint32_t width = 24;
constexpr uint32_t height = 20;

uint8_t Value(uint32_t x, uint32_t y, int channel)
{
    return static_cast<uint8_t>(x * 11 + y * 5 * static_cast<uint32_t>(channel + 1) + 17);
}

std::string PngWith(const PngForm& form, const std::string& profile)
{
    const uint32_t highest = (1u << form.depth) - 1;
    const std::string plain = MakePng(form, [&](uint32_t x, uint32_t y, int channel) {
        return form.depth == 16 ? Value(x, y, channel) * 257u : Value(x, y, channel) & highest;
    });
    auto parts = SplitPng(plain);
    parts.insert(parts.begin() + 1, {"iCCP", std::string("p\0\0", 3) + Deflate(profile)});
    return JoinPng(parts);
}

std::string JpegWith(const JpegForm& form, const std::string& profile, size_t pieceBytes = 65000,
                     bool reversed = false)
{
    std::string file = MakeJpeg(form, Value);
    const size_t count = (profile.size() + pieceBytes - 1) / pieceBytes;
    std::string segments;
    for (size_t i = 0; i < count; ++i) {
        const size_t number = reversed ? count - 1 - i : i;
        segments += JpegSegment(0xe2, std::string("ICC_PROFILE\0", 12) +
                                          static_cast<char>(number + 1) + static_cast<char>(count) +
                                          profile.substr(number * pieceBytes, pieceBytes));
    }
    return file.insert(2, segments);
}

std::vector<uint8_t> PixelsOf(const Canvas& canvas)
{
    std::vector<uint8_t> pixels;
    for (uint32_t y = 0; y < canvas.height; ++y)
        for (uint32_t x = 0; x < canvas.width; ++x) {
            const Pixel pixel = canvas.At(x, y);
            pixels.insert(pixels.end(), {pixel.red, pixel.green, pixel.blue});
        }
    return pixels;
}

int LargestDistance(const std::vector<uint8_t>& got, const std::vector<uint8_t>& want)
{
    EXPECT_EQ(got.size(), want.size());
    int most = 0;
    for (size_t i = 0; i < got.size() && i < want.size(); ++i)
        most = std::max(most, std::abs(got[i] - want[i]));
    return most;
}

class ColorProfile : public testing::Test
{
protected:
    ColorProfile() { CurrentHost() = {}; }
    ~ColorProfile() override { CurrentHost() = {}; }

    static std::vector<uint8_t> Read(const char* library, const std::string& file)
    {
        PluginLibrary plugin(library);
        ByteStream stream(file);
        Canvas canvas;
        EXPECT_EQ(Decode(plugin, stream, canvas), 1);
        return PixelsOf(canvas);
    }
    static std::vector<uint8_t> ReadPng(const std::string& file) { return Read("INPUT/PNG", file); }
    static std::vector<uint8_t> ReadJpeg(const std::string& file)
    {
        return Read("INPUT/JPEG", file);
    }
};

// The library's own 8-bit shortcuts are off its floats by two steps at the most.
constexpr int nearEnough = 2;

} // namespace

TEST_F(ColorProfile, ConvertsPngOfEveryColourTypeAndDepth)
{
    const std::string wide = WideRgbProfile();
    for (const int depth : {8, 16})
        for (const bool interlaced : {false, true}) {
            const PngForm form = {
                .width = width, .height = height, .depth = depth, .interlaced = interlaced};
            const auto plain = ReadPng(PngWith(form, "no profile"));
            const auto converted = ReadPng(PngWith(form, wide));
            EXPECT_LE(LargestDistance(converted, ToSrgb(wide, plain, 3)), nearEnough) << depth;
            EXPECT_GT(LargestDistance(converted, plain), 20) << "the profile changes much";
        }
}

TEST_F(ColorProfile, ConvertsGreyPngOfEveryDepth)
{
    const std::string profile = GreyProfile(1.0);
    for (const int depth : {1, 2, 4, 8, 16}) {
        const PngForm form = {.width = width, .height = height, .colorType = 0, .depth = depth};
        const auto plain = ReadPng(PngWith(form, "no profile"));
        std::vector<uint8_t> levels;
        for (size_t i = 0; i < plain.size(); i += 3)
            levels.push_back(plain[i]);
        const auto converted = ReadPng(PngWith(form, profile));
        EXPECT_LE(LargestDistance(converted, ToSrgb(profile, levels, 1)), nearEnough) << depth;
        if (depth > 1) {
            EXPECT_GT(LargestDistance(converted, plain), 20) << depth;
        }
    }
}

TEST_F(ColorProfile, ConvertsAPaletteAndKeepsWhatIsTransparent)
{
    const std::string wide = WideRgbProfile();
    PngForm form = {.width = width, .height = height, .colorType = 3, .depth = 4};
    for (int i = 0; i < 48; ++i)
        form.palette.push_back(static_cast<uint8_t>(i * 5 + 3));
    const auto plain = ReadPng(PngWith(form, "no profile"));
    const auto converted = ReadPng(PngWith(form, wide));
    EXPECT_LE(LargestDistance(converted, ToSrgb(wide, plain, 3)), nearEnough);
    form.transparency = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(ReadPng(PngWith(form, wide)), std::vector<uint8_t>(size_t{3} * width * height, 255));
}

TEST_F(ColorProfile, ConvertsColoursBeforeTheyAreLaidOverTheBackground)
{
    const std::string wide = WideRgbProfile();
    for (const int depth : {8, 16}) {
        const PngForm form = {.width = width, .height = height, .colorType = 6, .depth = depth};
        const PngForm opaque = {.width = width, .height = height, .depth = depth};
        CurrentHost().settings = {{u"PngInputBackgroundRed", 0},
                                  {u"PngInputBackgroundGreen", 0},
                                  {u"PngInputBackgroundBlue", 0}};
        const auto converted = ReadPng(PngWith(form, wide));
        auto want = ToSrgb(wide, ReadPng(PngWith(opaque, "no profile")), 3);
        for (uint32_t i = 0; i < width * height; ++i)
            for (size_t channel = 0; channel < 3; ++channel) {
                uint8_t& value = want[size_t{3} * i + channel];
                value = static_cast<uint8_t>(value * Value(i % width, i / width, 3) / 255);
            }
        EXPECT_LE(LargestDistance(converted, want), nearEnough + 1) << depth;
    }
}

TEST_F(ColorProfile, AColourThatIsTransparentIsTheOneOfTheFileAndNotOfTheProfile)
{
    const std::string wide = WideRgbProfile();
    for (const int depth : {8, 16})
        for (const int colorType : {0, 2}) {
            PngForm form = {
                .width = width, .height = height, .colorType = colorType, .depth = depth};
            const auto sample = [depth](int channel) {
                return static_cast<uint16_t>(Value(3, 4, channel) * (depth == 16 ? 257 : 1));
            };
            form.transparency = colorType == 0
                                    ? std::vector<uint16_t>{sample(0)}
                                    : std::vector<uint16_t>{sample(0), sample(1), sample(2)};
            const auto pixels = ReadPng(PngWith(form, colorType == 0 ? GreyProfile(1.0) : wide));
            const size_t at = (size_t{4} * width + 3) * 3;
            EXPECT_EQ(pixels[at], 255) << depth << " " << colorType;
            EXPECT_EQ(pixels[at + 1], 255);
            const size_t beside = at + 3;
            EXPECT_FALSE(pixels[beside] == 255 && pixels[beside + 1] == 255);
        }
}

TEST_F(ColorProfile, ConvertsJpegOfColourGreyAndInk)
{
    const std::string wide = WideRgbProfile();
    const JpegForm form = {.width = width, .height = height, .across = 1, .down = 1};
    const auto plain = ReadJpeg(MakeJpeg(form, Value));
    EXPECT_LE(LargestDistance(ReadJpeg(JpegWith(form, wide)), ToSrgb(wide, plain, 3)), nearEnough);

    const JpegForm grey = {.width = width, .height = height, .colors = JpegColors::Grey};
    const std::string linear = GreyProfile(1.0);
    std::vector<uint8_t> levels;
    const auto plainGrey = ReadJpeg(MakeJpeg(grey, Value));
    for (size_t i = 0; i < plainGrey.size(); i += 3)
        levels.push_back(plainGrey[i]);
    EXPECT_LE(LargestDistance(ReadJpeg(JpegWith(grey, linear)), ToSrgb(linear, levels, 1)),
              nearEnough);

    const std::string inks = InkProfile();
    for (const bool adobe : {false, true})
        for (const JpegColors colors : {JpegColors::Cmyk, JpegColors::Ycck}) {
            if (colors == JpegColors::Ycck && !adobe)
                continue; // without the marker nobody can tell it from the other
            const JpegForm form4 = {.width = width,
                                    .height = height,
                                    .colors = colors,
                                    .across = 1,
                                    .down = 1,
                                    .adobeMarker = adobe};
            std::vector<uint8_t> file = ReferencePixels(MakeJpeg(form4, Value), 4);
            for (uint8_t& ink : file)
                ink = adobe ? static_cast<uint8_t>(255 - ink) : ink;
            EXPECT_LE(LargestDistance(ReadJpeg(JpegWith(form4, inks)), ToSrgb(inks, file, 4)), 4)
                << adobe;
        }
}

TEST_F(ColorProfile, OfAJpegComesInPiecesOfAnyOrder)
{
    const std::string wide = WideRgbProfile();
    const JpegForm form = {.width = width, .height = height};
    const auto whole = ReadJpeg(JpegWith(form, wide));
    EXPECT_NE(whole, ReadJpeg(MakeJpeg(form, Value)));
    EXPECT_EQ(ReadJpeg(JpegWith(form, wide, 100)), whole);
    EXPECT_EQ(ReadJpeg(JpegWith(form, wide, 100, true)), whole);
}

TEST_F(ColorProfile, ThatIsNoneOrForOtherColoursChangesNothing)
{
    const JpegForm jpeg = {.width = width, .height = height};
    const PngForm png = {.width = width, .height = height};
    const auto plainJpeg = ReadJpeg(MakeJpeg(jpeg, Value));
    const auto plainPng = ReadPng(PngWith(png, "no profile"));
    std::string broken = WideRgbProfile();
    broken.replace(128, 8, "\xff\xff\xff\xff\xff\xff\xff\xff");
    const std::string profiles[] = {"",
                                    std::string(131, '\0'),
                                    std::string(5000, '\xff'),
                                    broken,
                                    WideRgbProfile().substr(0, 300),
                                    InkProfile(),
                                    GreyProfile(1.0),
                                    SrgbProfile(),
                                    WithPadding(WideRgbProfile(), 4u << 20)};
    for (const std::string& profile : profiles) {
        EXPECT_EQ(ReadPng(PngWith(png, profile)), plainPng) << profile.size();
        EXPECT_EQ(ReadJpeg(JpegWith(jpeg, profile)), plainJpeg) << profile.size();
    }
}

TEST_F(ColorProfile, WhoseTagsLeadNowhereOrToThemselvesIsSurvivedAndMostlyChangesNothing)
{
    const JpegForm jpeg = {.width = width, .height = height};
    const PngForm png = {.width = width, .height = height};
    const auto plainJpeg = ReadJpeg(MakeJpeg(jpeg, Value));
    const auto plainPng = ReadPng(PngWith(png, "no profile"));
    const std::string wide = WideRgbProfile();
    const auto word = [](uint32_t value) {
        return std::string{static_cast<char>(value >> 24), static_cast<char>(value >> 16),
                           static_cast<char>(value >> 8), static_cast<char>(value)};
    };
    // The count stands at 128; then each tag has its name, its offset and its length.
    constexpr size_t count = 128;
    constexpr size_t firstTag = 132;
    const auto changed = [&](uint32_t offset, uint32_t length) {
        std::string profile = wide;
        for (size_t i = 0; i < static_cast<uint8_t>(wide[count + 3]); ++i)
            profile.replace(firstTag + 12 * i + 4, 8, word(offset) + word(length));
        return profile;
    };
    const std::string profiles[] = {
        std::string(wide).replace(count, 4, word(0)),
        std::string(wide).replace(count, 4, word(101)),
        std::string(wide).replace(count, 4, word(0xffffffff)),
        changed(0, static_cast<uint32_t>(wide.size())), // the profile itself
        changed(count, 36),                             // the list of the tags
        changed(static_cast<uint32_t>(wide.size()), 20),
        changed(0xfffffff0, 0x20),
        changed(200, 0xffffffff),
        changed(200, 0),
    };
    for (const std::string& profile : profiles) {
        EXPECT_EQ(ReadPng(PngWith(png, profile)), plainPng);
        EXPECT_EQ(ReadJpeg(JpegWith(jpeg, profile)), plainJpeg);
    }
    // With a length in its header that is not its own it is read or passed over as a whole.
    const auto converted = ReadPng(PngWith(png, wide));
    for (const uint32_t length : {0u, 100u, 132u, static_cast<uint32_t>(wide.size()) - 1,
                                  static_cast<uint32_t>(wide.size()) + 1, 0xffffffffu}) {
        const auto got = ReadPng(PngWith(png, std::string(wide).replace(0, 4, word(length))));
        EXPECT_TRUE(got == plainPng || got == converted) << length;
    }
}

TEST_F(ColorProfile, OfALargeTableIsAppliedUpToFourMegabytesAndThenPassedOver)
{
    // Inks over a table of 3 bytes for each of points^4 colours, 16 bits each.
    const JpegForm form = {
        .width = width, .height = height, .colors = JpegColors::Cmyk, .across = 1, .down = 1};
    const auto plain = ReadJpeg(MakeJpeg(form, Value));
    const std::string large = InkProfile(28);
    EXPECT_LT(large.size(), 4u << 20);
    EXPECT_GT(large.size(), 3u << 20);
    EXPECT_NE(ReadJpeg(JpegWith(form, large)), plain);
    const std::string larger = InkProfile(34);
    EXPECT_GT(larger.size(), 7u << 20);
    EXPECT_EQ(ReadJpeg(JpegWith(form, larger)), plain);
}

TEST_F(ColorProfile, OfAJpegWithPiecesThatContradictEachOtherChangesNothing)
{
    const JpegForm form = {.width = width, .height = height};
    const auto plain = ReadJpeg(MakeJpeg(form, Value));
    const std::string wide = WideRgbProfile();
    const auto piece = [](int number, int count, const std::string& data) {
        return JpegSegment(0xe2, std::string("ICC_PROFILE\0", 12) + static_cast<char>(number) +
                                     static_cast<char>(count) + data);
    };
    const std::string half = wide.substr(0, wide.size() / 2);
    const std::string rest = wide.substr(half.size());
    for (const std::string& segments :
         {piece(1, 2, half), piece(1, 2, half) + piece(1, 2, rest), piece(0, 1, wide),
          piece(2, 1, wide), piece(1, 2, half) + piece(2, 3, rest), piece(1, 0, wide),
          piece(1, 2, half) + piece(2, 2, rest) + piece(2, 2, rest)})
        EXPECT_EQ(ReadJpeg(MakeJpeg(form, Value).insert(2, segments)), plain);
}

TEST_F(ColorProfile, LeavesNothingInMemory)
{
    const std::string png = PngWith({.width = width, .height = height}, WideRgbProfile());
    const std::string jpeg = JpegWith({.width = width, .height = height}, WideRgbProfile());
    (void)ReadPng(png);
    (void)ReadJpeg(jpeg);
    const size_t before = MemoryInUse();
    for (int i = 0; i < 10; ++i) {
        (void)ReadPng(png);
        (void)ReadJpeg(jpeg);
    }
    EXPECT_LE(MemoryInUse(), before + 4096);
}
