// Old photographs, posters and grain against their formulas: what is made of one pixel alone.

#include "standard-plugins/tests/effects/Effects.h"

#include <cmath>

using namespace effecttest;

namespace
{

Pixels Toned(const Pixels& in, u32 strength, u32 corners)
{
    const int gains[3] = {135, 120, 94};
    const long long width = in.width;
    const long long height = in.height;
    return Made(in, [&](int x, int y, u32 channel) {
        const long long tone = std::min(25500000, gains[channel] * Luma(in, x, y));
        const long long mixed =
            (100LL - strength) * 100000 * Nearest(in, x, y, channel) + strength * tone;
        const int brown = RoundedAndCut(mixed, 10000000);
        // Twice the distances from the middle, of which the corners' is the diagonal.
        const long long across = 2 * x + 1 - width;
        const long long down = 2 * y + 1 - height;
        const long long whole = 100 * (width * width + height * height);
        const long long light =
            (2 * 65536 * (whole - corners * (across * across + down * down)) + whole) / (2 * whole);
        return RoundedAndCut(brown * light, 65536);
    });
}

class Colour : public EffectTest
{
protected:
    Pixels OldPhoto(u32 width, u32 height, const Samples& samples, u32 strength, u32 corners)
    {
        Set(u"OldPhotoSepia", strength);
        Set(u"OldPhotoCorners", corners);
        return Apply(width, height, samples);
    }
    Pixels Noise(u32 width, u32 height, const Samples& samples, u32 amount, u32 kind, u32 colours)
    {
        Set(u"NoiseAmount", amount);
        Set(u"NoiseKind", kind);
        Set(u"NoiseColours", colours);
        return Apply(width, height, samples);
    }
};

u8 Grey(u32, u32, int)
{
    return 128;
}

/// Mean and deviation of what was added to 128.
struct Spread {
    double mean = 0;
    double deviation = 0;
    int least = 0;
    int most = 0;
};

Spread SpreadOf(const Pixels& pixels)
{
    Spread spread;
    for (const u8 value : pixels.bytes) {
        const int added = value - 128;
        spread.mean += added;
        spread.deviation += double(added) * added;
        spread.least = std::min(spread.least, added);
        spread.most = std::max(spread.most, added);
    }
    const auto count = static_cast<double>(pixels.bytes.size());
    spread.mean /= count;
    spread.deviation = std::sqrt(spread.deviation / count - spread.mean * spread.mean);
    return spread;
}

/// The hash of the grain: a step of a linear congruential generator, then its bits mixed.
u32 Hash(u32 number)
{
    const u32 state = static_cast<u32>((u64{number} * 747796405 + 2891336453) % (u64{1} << 32));
    const u32 mixed = (state >> (4 + state / (u32{1} << 28))) ^ state;
    const u32 word = static_cast<u32>(u64{mixed} * 277803737 % (u64{1} << 32));
    return word ^ word / (1u << 22);
}

Pixels Grained(const Pixels& in, u32 amount, bool gaussian, bool colours)
{
    const long long size = (255 * amount + 50) / 100;
    return Made(in, [&](int x, int y, u32 channel) {
        // Blue is the first channel of a line.
        const u32 hash = Hash(Hash(Hash(static_cast<u32>(x)) + static_cast<u32>(y)) +
                              (colours ? 2 - channel : 0));
        const long long even = static_cast<long long>(
            static_cast<u64>(std::floor(std::ldexp(double(hash), -32) * double(2 * size + 1))));
        long long sum = -510;
        for (int shift = 0; shift < 32; shift += 8)
            sum += hash >> shift & 255;
        const auto normal = static_cast<long long>(std::floor(double(size * sum) / 256 + 0.5));
        const long long added = gaussian ? normal : even - size;
        return static_cast<u8>(std::clamp(Nearest(in, x, y, channel) + added, 0LL, 255LL));
    });
}

} // namespace

TEST_F(Colour, OldPhotographIsTheFormulaAtEverySize)
{
    Load("OldPhoto.dll");
    ForEverySize([this](u32 width, u32 height) {
        const u32 strength = (width * 7 + height * 3) % 101;
        const u32 corners = (width * 5 + height * 11) % 101;
        ExpectSame(OldPhoto(width, height, Wild, strength, corners),
                   Toned(PixelsOf(width, height, Wild), strength, corners),
                   std::to_string(strength) + ", " + std::to_string(corners));
    });
}

TEST_F(Colour, OldPhotographIsBrownAndDarkOnlyAtItsCorners)
{
    Load("OldPhoto.dll");
    const Pixels got = OldPhoto(201, 101, Grey, 100, 100);
    // 1.35, 1.20 and 0.94 times 128 in the middle, nearly nothing in the corners.
    EXPECT_EQ(got.At(100, 50, 0), 173);
    EXPECT_EQ(got.At(100, 50, 1), 154);
    EXPECT_EQ(got.At(100, 50, 2), 120);
    for (u32 x : {0u, 200u})
        for (u32 y : {0u, 100u})
            EXPECT_LE(got.At(x, y, 0), 3);
    EXPECT_EQ(got.At(0, 50, 0), got.At(200, 50, 0));
    EXPECT_EQ(got.At(30, 0, 1), got.At(170, 100, 1));
}

TEST_F(Colour, OldPhotographWithoutEitherIsThePicture)
{
    Load("OldPhoto.dll");
    ExpectSame(OldPhoto(33, 20, Wild, 0, 0), PixelsOf(33, 20, Wild), "nothing");
}

TEST_F(Colour, OldPhotographOfAWidePictureKeepsItsMiddle)
{
    // Squares of distances beyond 32 bits.
    Load("OldPhoto.dll");
    const Pixels got = OldPhoto(65535, 2, Grey, 0, 100);
    EXPECT_EQ(got.At(32767, 0, 0), 128);
    EXPECT_EQ(got.At(0, 1, 0), 0);
    EXPECT_EQ(got.At(16383, 1, 0), 96) << "a quarter less half way";
}

TEST_F(Colour, PosterIsTheFormulaForEveryValueAndNumberOfLevels)
{
    Load("Posterise.dll");
    const auto ramp = [](u32 x, u32, int channel) {
        return static_cast<u8>(channel == 1 ? 255 - x : x + static_cast<u32>(channel) * 50);
    };
    const Pixels in = PixelsOf(256, 1, ramp);
    for (int levels = 2; levels <= 64; ++levels) {
        Set(u"PosteriseLevels", static_cast<u32>(levels));
        const Pixels expected = Made(in, [&](int x, int y, u32 channel) {
            return RoundedAndCut(Nearest(in, x, y, channel) * levels / 256 * 255, levels - 1);
        });
        ExpectSame(Apply(256, 1, ramp), expected, std::to_string(levels));
    }
    Set(u"PosteriseLevels", 2);
    EXPECT_EQ(Apply(256, 1, ramp).At(127, 0, 0), 0);
    EXPECT_EQ(Apply(256, 1, ramp).At(128, 0, 0), 255);
}

TEST_F(Colour, PosterHasTheFormulaInEveryRow)
{
    Load("Posterise.dll");
    Set(u"PosteriseLevels", 5);
    ForEverySize([this](u32 width, u32 height) {
        const Pixels in = PixelsOf(width, height, Wild);
        ExpectSame(Apply(width, height, Wild),
                   Made(in,
                        [&](int x, int y, u32 channel) {
                            return RoundedAndCut(Nearest(in, x, y, channel) * 5 / 256 * 255, 4);
                        }),
                   "5 levels");
    });
}

TEST_F(Colour, GrainIsTheFormulaAtEverySize)
{
    Load("Noise.dll");
    ForEverySize([this](u32 width, u32 height) {
        const u32 amount = 1 + (width * 7 + height * 3) % 100;
        const bool gaussian = width % 2;
        const bool colours = height % 2;
        ExpectSame(Noise(width, height, Wild, amount, gaussian, colours),
                   Grained(PixelsOf(width, height, Wild), amount, gaussian, colours),
                   "amount " + std::to_string(amount));
    });
}

TEST_F(Colour, GrainHasTheSpreadThatIsToldAndNoMean)
{
    Load("Noise.dll");
    for (const u32 kind : {0u, 1u})
        for (const u32 amount : {5u, 20u}) {
            const double width = std::floor(2.55 * amount + 0.5);
            const Spread spread = SpreadOf(Noise(300, 200, Grey, amount, kind, 1));
            // 180,000 numbers: six times the deviation of their mean.
            EXPECT_LE(std::abs(spread.mean), 6 * spread.deviation / std::sqrt(180000.0));
            EXPECT_NEAR(spread.deviation, width / std::sqrt(3.0), 0.02 * width + 0.3);
            if (kind == 0) {
                EXPECT_EQ(spread.least, -width);
                EXPECT_EQ(spread.most, width);
            } else {
                EXPECT_LT(spread.least, -1.2 * width);
                EXPECT_GT(spread.most, 1.2 * width);
            }
        }
}

TEST_F(Colour, GreyGrainIsTheSameInAllColoursAndColouredIsNot)
{
    Load("Noise.dll");
    const Pixels grey = Noise(40, 30, Grey, 30, 0, 0);
    const Pixels coloured = Noise(40, 30, Grey, 30, 0, 1);
    u32 alike = 0;
    for (u32 y = 0; y < 30; ++y)
        for (u32 x = 0; x < 40; ++x) {
            ASSERT_EQ(grey.At(x, y, 0), grey.At(x, y, 1));
            ASSERT_EQ(grey.At(x, y, 0), grey.At(x, y, 2));
            alike += coloured.At(x, y, 0) == coloured.At(x, y, 1);
        }
    EXPECT_LT(alike, 60u);
}

TEST_F(Colour, GrainIsTheSameEachTimeAndNeitherRowsNorColumnsRepeat)
{
    Load("Noise.dll");
    const Pixels first = Noise(60, 60, Grey, 50, 0, 1);
    ExpectSame(Noise(60, 60, Grey, 50, 0, 1), first, "again");
    for (u32 y = 1; y < 60; ++y) {
        u32 asRow = 0;
        u32 asColumn = 0;
        for (u32 x = 0; x < 60; ++x) {
            asRow += first.At(x, y, 0) == first.At(x, 0, 0);
            asColumn += first.At(y, x, 0) == first.At(0, x, 0);
        }
        EXPECT_LT(asRow, 10u) << y;
        EXPECT_LT(asColumn, 10u) << y;
    }
}

TEST_F(Colour, WildStoredNumbersAreBroughtIntoTheRange)
{
    const u32 wild = 4000000000u;
    const Pixels in = PixelsOf(14, 11, Patchy);
    Load("OldPhoto.dll");
    ExpectSame(OldPhoto(14, 11, Patchy, wild, wild), Toned(in, 100, 100), "old photograph");
    Load("Noise.dll");
    ExpectSame(Noise(14, 11, Patchy, wild, wild, wild), Grained(in, 100, true, true), "grain");
    ExpectSame(Noise(14, 11, Patchy, 0, 0, 0), Grained(in, 1, false, false), "grain");
    CurrentWriterHost().settings.clear();
    ExpectSame(Apply(14, 11, Patchy), Grained(in, 10, false, true), "grain without settings");
    Load("OldPhoto.dll");
    ExpectSame(Apply(14, 11, Patchy), Toned(in, 100, 30), "old photograph without settings");
    Load("Posterise.dll");
    Set(u"PosteriseLevels", wild);
    const Pixels most = Apply(14, 11, Patchy);
    Set(u"PosteriseLevels", 64);
    ExpectSame(Apply(14, 11, Patchy), most, "levels");
}
