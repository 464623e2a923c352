// The colour balance against its formula.

#include "standard-plugins/tests/adjustments/Adjusting.h"

#include <algorithm>
#include <cmath>

using namespace plugintest;

namespace
{

/// Shadows, midtones and highlights of red, then of green, then of blue.
using Tones = std::array<int, 9>;

double Balanced(double value, const int* tones)
{
    const double t = value / 255;
    return value +
           255.0 / 4 *
               (tones[0] * (1 - t) * (1 - t) + tones[1] * 2 * t * (1 - t) + tones[2] * t * t) / 100;
}

Color Balanced(const Color& color, const Tones& tones)
{
    Color changed;
    for (size_t i = 0; i < 3; ++i)
        changed[i] = NearestOfFraction(Balanced(color[i], &tones[3 * i]));
    return changed;
}

double Luma(const Color& color)
{
    return (299 * color[0] + 587 * color[1] + 114 * color[2]) / 1000.0;
}

Color Lifted(const Color& color, const Color& changed)
{
    const double lost = std::floor(Luma(color) - Luma(changed) + 0.5 + 1e-9);
    Color lifted;
    for (size_t i = 0; i < 3; ++i)
        lifted[i] = static_cast<u8>(std::clamp(changed[i] + lost, 0.0, 255.0));
    return lifted;
}

const Tones wild[] = {{100, 0, 0, 0, 0, 0, 0, 0, 0},
                      {0, 100, 0, 0, -100, 0, 0, 50, 0},
                      {0, 0, 100, 0, 0, -100, 0, 0, 7},
                      {100, 100, 100, -100, -100, -100, 33, 33, 33},
                      {-100, 100, -100, 100, -100, 100, 1, -1, 1},
                      {13, -27, 41, -55, 69, -83, 97, -8, 22}};

class ColorBalanceTest : public AdjustTest
{
protected:
    ColorBalanceTest() { Load("ColorBalance.dll"); }

    void Store(const Tones& tones, bool keepLightness)
    {
        const std::u16string colors[] = {u"Red", u"Green", u"Blue"};
        const std::u16string ranges[] = {u"Shadows", u"Midtones", u"Highlights"};
        for (size_t i = 0; i < 9; ++i)
            Set(u"ColorBalance" + colors[i / 3] + ranges[i % 3], static_cast<u32>(tones[i] + 100));
        Set(u"ColorBalanceKeepLightness", keepLightness);
    }
};

} // namespace

TEST_F(ColorBalanceTest, IsTheFormulaRoundedOnceForEveryValueOfEveryColour)
{
    for (const Tones& tones : wild) {
        Store(tones, false);
        ExpectEverywhere([&tones](Color color) { return Balanced(color, tones); });
    }
}

TEST_F(ColorBalanceTest, ZerosChangeNothing)
{
    ExpectNothingChanged();
    for (const bool keep : {false, true}) {
        Store({}, keep);
        ExpectNothingChanged();
    }
}

TEST_F(ColorBalanceTest, KeepsTheLumaWhereItIsAskedTo)
{
    for (const Tones& tones : wild) {
        Store(tones, true);
        ExpectEverywhere([&tones](Color color) { return Lifted(color, Balanced(color, tones)); });
    }
    // Where nothing is cut the luma stays but for the rounding.
    Store({0, 60, 0, 0, -20, 0, 0, -60, 0}, true);
    for (u8 grey = 60; grey < 200; ++grey)
        EXPECT_NEAR(Luma(Adjusted({grey, grey, grey})), grey, 0.5) << int{grey};
}

TEST_F(ColorBalanceTest, MovesTheTonesThatItsRangeIsNamedFor)
{
    Store({100, 0, 0, 0, 100, 0, 0, 0, 100}, false);
    EXPECT_EQ(Adjusted({0, 0, 0}), (Color{64, 0, 0})) << "a quarter of 255 is 63.75";
    EXPECT_EQ(Adjusted({255, 255, 255}), (Color{255, 255, 255}));
    EXPECT_EQ(Adjusted({128, 128, 128}), (Color{144, 160, 144}));
    Store({-100, 0, 0, 0, -100, 0, 0, 0, -100}, false);
    EXPECT_EQ(Adjusted({255, 255, 255}), (Color{255, 255, 191}));
    EXPECT_EQ(Adjusted({0, 0, 0}), (Color{0, 0, 0}));
}

TEST_F(ColorBalanceTest, NeverTurnsTheOrderOfTonesRound)
{
    for (const int shadows : {-100, 0, 100})
        for (const int midtones : {-100, 0, 100})
            for (const int highlights : {-100, 0, 100}) {
                Store({shadows, midtones, highlights}, false);
                const std::vector<u8> table = ChannelOf(Adjusted(256, 1, Ramp), 0);
                EXPECT_TRUE(std::is_sorted(table.begin(), table.end()))
                    << shadows << " " << midtones << " " << highlights;
            }
}
