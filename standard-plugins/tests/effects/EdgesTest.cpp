// Edges against the formula of their gradient; the rounding decided in whole numbers.

#include "standard-plugins/tests/effects/Effects.h"

using namespace effecttest;

namespace
{

/// The whole number nearest to strength * sqrt(square) / 400, a half up, 255 at the most.
int Magnitude(long long square, long long strength)
{
    int magnitude = 0;
    for (;; ++magnitude) {
        const long long root = (2 * magnitude + 1) * 200LL; // of magnitude + 1/2
        if (magnitude == 255 || strength * strength * square < root * root)
            return magnitude;
    }
}

Pixels Edged(const Pixels& in, u32 strength, bool light, bool colours)
{
    const int weights[3] = {1, 2, 1};
    const auto magnitude = [&](int x, int y, u32 channel) {
        long long across = 0;
        long long down = 0;
        for (int i = -1; i <= 1; ++i) {
            across += weights[i + 1] *
                      (Nearest(in, x + 1, y + i, channel) - Nearest(in, x - 1, y + i, channel));
            down += weights[i + 1] *
                    (Nearest(in, x + i, y + 1, channel) - Nearest(in, x + i, y - 1, channel));
        }
        return Magnitude(across * across + down * down, strength);
    };
    return Made(in, [&](int x, int y, u32 channel) {
        const int edge =
            colours ? magnitude(x, y, channel)
                    : std::max({magnitude(x, y, 0), magnitude(x, y, 1), magnitude(x, y, 2)});
        return static_cast<u8>(light ? 255 - edge : edge);
    });
}

class Edges : public EffectTest
{
protected:
    Edges() { Load("Edges.dll"); }

    Pixels Drawn(u32 width, u32 height, const Samples& samples, u32 strength, bool light,
                 bool colours)
    {
        Set(u"EdgesStrength", strength);
        Set(u"EdgesGround", light);
        Set(u"EdgesColours", colours);
        return Apply(width, height, samples);
    }
};

} // namespace

TEST_F(Edges, IsTheFormulaAtEverySize)
{
    ForEverySize([this](u32 width, u32 height) {
        const u32 turn = width * 7 + height * 13;
        const u32 strength = turn % 4 == 0 ? 100 : 10 + turn * 29 % 991;
        const bool light = turn % 2 == 0;
        const bool colours = turn % 3 == 0;
        const Samples& samples = turn % 5 == 0 ? Samples(Soft) : Samples(Patchy);
        ExpectSame(Drawn(width, height, samples, strength, light, colours),
                   Edged(PixelsOf(width, height, samples), strength, light, colours),
                   "strength " + std::to_string(strength));
    });
}

TEST_F(Edges, RoundsEveryStepOfARampExactly)
{
    // Steps of every height, upright: 4 times the step across, nothing down. At 50 per cent odd
    // steps end in a half, which goes up.
    for (const u32 strength : {10u, 50u, 100u, 333u, 1000u})
        for (u32 step = 0; step < 256; ++step) {
            const auto edge = [step](u32 x, u32, int) { return static_cast<u8>(x < 2 ? 0 : step); };
            const Pixels got = Drawn(4, 1, edge, strength, false, true);
            ASSERT_EQ(int{got.At(1, 0, 0)}, std::min(255u, (2 * strength * step + 100) / 200))
                << step << " at " << strength;
            ASSERT_EQ(int{got.At(0, 0, 0)}, 0);
        }
}

TEST_F(Edges, PicturesOfOneColourHaveNone)
{
    const auto flat = [](u32, u32, int channel) { return static_cast<u8>(channel * 100 + 27); };
    const auto level = [](u8 value) { return [value](u32, u32, int) { return value; }; };
    ExpectSame(Drawn(13, 8, flat, 1000, false, true), PixelsOf(13, 8, level(0)), "dark");
    ExpectSame(Drawn(13, 8, flat, 1000, true, false), PixelsOf(13, 8, level(255)), "light");
}

TEST_F(Edges, WildStoredNumbersAreBroughtIntoTheRange)
{
    const u32 wild = 4000000000u;
    Set(u"EdgesStrength", wild);
    Set(u"EdgesGround", wild);
    Set(u"EdgesColours", wild);
    ExpectSame(Apply(9, 9, Soft), Edged(PixelsOf(9, 9, Soft), 1000, true, true), "most");
    Set(u"EdgesStrength", 0);
    ExpectSame(Apply(9, 9, Soft), Edged(PixelsOf(9, 9, Soft), 10, true, true), "least");
    CurrentWriterHost().settings.clear();
    ExpectSame(Apply(9, 9, Soft), Edged(PixelsOf(9, 9, Soft), 100, false, false),
               "without settings");
}
