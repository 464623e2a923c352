// Curves against the interpolation as its authors give it, and what they promise of it.

#include "standard-plugins/tests/adjustments/Adjusting.h"

#include <algorithm>
#include <cmath>

using namespace plugintest;

namespace
{

using Outputs = std::array<u32, 5>;

const int inputs[] = {0, 64, 128, 192, 255};
const Outputs straight = {0, 64, 128, 192, 255};

std::array<double, 5> Slopes(const std::array<double, 4>& lines)
{
    std::array<double, 5> slopes = {lines[0], 0, 0, 0, lines[3]};
    for (size_t i = 1; i < 4; ++i)
        if ((lines[i - 1] > 0 && lines[i] > 0) || (lines[i - 1] < 0 && lines[i] < 0))
            slopes[i] = (lines[i - 1] + lines[i]) / 2;
    for (size_t i = 0; i < 4; ++i) {
        if (lines[i] == 0) {
            slopes[i] = slopes[i + 1] = 0;
            continue;
        }
        const double a = slopes[i] / lines[i];
        const double b = slopes[i + 1] / lines[i];
        if (a * a + b * b > 9) {
            const double tau = 3 / std::sqrt(a * a + b * b);
            slopes[i] = tau * a * lines[i];
            slopes[i + 1] = tau * b * lines[i];
        }
    }
    return slopes;
}

std::vector<double> Curve(const Outputs& outputs)
{
    std::array<double, 4> lines;
    for (size_t i = 0; i < 4; ++i)
        lines[i] = (static_cast<double>(outputs[i + 1]) - outputs[i]) / (inputs[i + 1] - inputs[i]);
    const std::array<double, 5> slopes = Slopes(lines);
    std::vector<double> curve(256);
    for (int value = 0; value < 256; ++value) {
        const size_t i = value == 255 ? 3 : static_cast<size_t>(value / 64);
        const double width = inputs[i + 1] - inputs[i];
        const double t = (value - inputs[i]) / width;
        curve[static_cast<size_t>(value)] = (2 * t * t * t - 3 * (t * t) + 1) * outputs[i] +
                                            (t * t * t - 2 * (t * t) + t) * width * slopes[i] +
                                            (3 * (t * t) - 2 * (t * t * t)) * outputs[i + 1] +
                                            (t * t * t - t * t) * width * slopes[i + 1];
    }
    return curve;
}

class CurvesTest : public AdjustTest
{
protected:
    CurvesTest() { Load("Curves.dll"); }

    void Store(const Outputs& outputs, u32 channel = 0)
    {
        const char16_t* keys[] = {u"Curves0", u"Curves64", u"Curves128", u"Curves192",
                                  u"Curves255"};
        for (size_t i = 0; i < 5; ++i)
            Set(keys[i], outputs[i]);
        Set(u"CurvesChannel", channel);
    }
    std::vector<u8> Table(const Outputs& outputs)
    {
        Store(outputs);
        return ChannelOf(Adjusted(256, 1, Ramp), 0);
    }

    std::vector<Outputs> wild = {
        {0, 20, 40, 136, 200},     {0, 30, 128, 220, 255}, {255, 192, 128, 64, 0},
        {0, 0, 255, 255, 255},     {10, 200, 30, 180, 90}, {0, 1, 2, 250, 255},
        {128, 128, 128, 128, 128}, {255, 0, 0, 0, 255},    {0, 255, 0, 255, 0},
        {40, 41, 200, 201, 202},   {0, 2, 3, 4, 255},      {250, 100, 99, 98, 3},
        {7, 77, 77, 177, 255}};
};

} // namespace

TEST_F(CurvesTest, AreTheInterpolationRoundedOnceForEveryValue)
{
    for (const Outputs& outputs : wild) {
        Store(outputs);
        const std::vector<double> curve = Curve(outputs);
        ExpectEverywhere([&curve](Color color) {
            for (u8& value : color)
                value = Nearest(curve[value]);
            return color;
        });
    }
}

TEST_F(CurvesTest, StraightOnesChangeNothing)
{
    ExpectNothingChanged();
    Store(straight);
    ExpectNothingChanged();
}

TEST_F(CurvesTest, GoThroughTheirPointsAndNowhereBeyondThem)
{
    for (const Outputs& outputs : wild) {
        const std::vector<u8> table = Table(outputs);
        for (size_t i = 0; i < 5; ++i)
            EXPECT_EQ(table[static_cast<size_t>(inputs[i])], outputs[i]) << i;
        for (size_t i = 0; i < 4; ++i) {
            const auto first = table.begin() + inputs[i];
            const auto last = table.begin() + inputs[i + 1] + 1;
            const bool rises = outputs[i] <= outputs[i + 1];
            const bool falls = outputs[i] >= outputs[i + 1];
            EXPECT_EQ(std::is_sorted(first, last), rises) << i;
            EXPECT_EQ(std::is_sorted(first, last, std::greater<>()), falls) << i;
        }
    }
}

TEST_F(CurvesTest, AreSmoothWhereTheirPointsAllRise)
{
    // A gentle curve has no corner: no step differs from the one before by more than the rounding.
    const std::vector<u8> table = Table({0, 44, 108, 182, 255});
    for (size_t value = 2; value < 256; ++value)
        EXPECT_LE(std::abs(table[value] - 2 * table[value - 1] + table[value - 2]), 1) << value;
}

TEST_F(CurvesTest, BendOneColourAloneWhereItIsChosen)
{
    const Outputs outputs = {30, 90, 100, 150, 220};
    const std::vector<double> curve = Curve(outputs);
    for (u32 channel = 0; channel <= 3; ++channel) {
        Store(outputs, channel);
        ExpectEverywhere([&](Color color) {
            for (u32 i = 0; i < 3; ++i)
                if (channel == 0 || channel == i + 1)
                    color[i] = Nearest(curve[color[i]]);
            return color;
        });
    }
}
