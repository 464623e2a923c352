// Embossing against its formula.

#include "standard-plugins/tests/effects/Effects.h"

using namespace effecttest;

namespace
{

/// The mean slope of the three neighbours on either side, seen from a light.
Pixels Embossed(const Pixels& in, u32 light, u32 strength, bool colours)
{
    const int across[8] = {0, 1, 1, 1, 0, -1, -1, -1};
    const int down[8] = {-1, -1, 0, 1, 1, 1, 0, -1};
    return Made(in, [&](int x, int y, u32 channel) {
        long long slope = 0;
        for (u32 turn : {7u, 0u, 1u}) {
            const u32 to = (light + turn) % 8;
            const u32 from = (to + 4) % 8;
            slope +=
                Luma(in, x + across[from], y + down[from]) - Luma(in, x + across[to], y + down[to]);
        }
        const long long ground = colours ? Nearest(in, x, y, channel) : 128;
        return RoundedAndCut(ground * 300000 + strength * slope, 300000);
    });
}

class Emboss : public EffectTest
{
protected:
    Emboss() { Load("Emboss.dll"); }

    Pixels Relief(u32 width, u32 height, const Samples& samples, u32 light, u32 strength,
                  bool colours)
    {
        Set(u"EmbossLight", light);
        Set(u"EmbossStrength", strength);
        Set(u"EmbossColours", colours);
        return Apply(width, height, samples);
    }
};

} // namespace

TEST_F(Emboss, IsTheFormulaAtEverySize)
{
    ForEverySize([this](u32 width, u32 height) {
        const u32 turn = width * 5 + height * 11;
        const u32 light = turn % 8;
        const u32 strength = turn * 3 % 501;
        const bool colours = turn % 3 == 0;
        ExpectSame(Relief(width, height, Patchy, light, strength, colours),
                   Embossed(PixelsOf(width, height, Patchy), light, strength, colours),
                   "light " + std::to_string(light) + ", strength " + std::to_string(strength));
    });
}

TEST_F(Emboss, SideTowardsTheLightIsBrightAndTheOtherDark)
{
    // A white square on black, lit from each direction in turn: its middle and the ground are grey.
    const auto square = [](u32 x, u32 y, int) -> u8 {
        return x >= 10 && x < 20 && y >= 10 && y < 20 ? 255 : 0;
    };
    const u32 sides[8][2] = {{15, 10}, {19, 10}, {19, 15}, {19, 19},
                             {15, 19}, {10, 19}, {10, 15}, {10, 10}};
    for (u32 light = 0; light < 8; ++light) {
        const Pixels got = Relief(30, 30, square, light, 100, false);
        EXPECT_EQ(got.At(15, 15, 0), 128);
        EXPECT_EQ(got.At(2, 27, 1), 128);
        const u32* bright = sides[light];
        const u32* dark = sides[(light + 4) % 8];
        EXPECT_EQ(got.At(bright[0], bright[1], 0), 255) << light;
        EXPECT_EQ(got.At(dark[0], dark[1], 2), 0) << light;
    }
}

TEST_F(Emboss, WithoutStrengthKeepsTheColoursOrLeavesGrey)
{
    ExpectSame(Relief(23, 9, Wild, 3, 0, true), PixelsOf(23, 9, Wild), "colours");
    const auto grey = [](u32, u32, int) -> u8 { return 128; };
    ExpectSame(Relief(23, 9, Wild, 3, 0, false), PixelsOf(23, 9, grey), "grey");
}

TEST_F(Emboss, WildStoredNumbersAreBroughtIntoTheRange)
{
    const u32 wild = 4000000000u;
    Set(u"EmbossLight", wild);
    Set(u"EmbossStrength", wild);
    Set(u"EmbossColours", wild);
    ExpectSame(Apply(9, 9, Soft), Embossed(PixelsOf(9, 9, Soft), 7, 500, true), "most");
    CurrentWriterHost().settings.clear();
    ExpectSame(Apply(9, 9, Soft), Embossed(PixelsOf(9, 9, Soft), 7, 100, false),
               "without settings");
}
