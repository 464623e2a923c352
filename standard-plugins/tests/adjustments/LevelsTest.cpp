// Levels against their formula.

#include "standard-plugins/tests/adjustments/Adjusting.h"

#include <algorithm>
#include <cmath>

using namespace plugintest;

namespace
{

struct Setting {
    u32 inputBlack = 0;
    u32 inputWhite = 255;
    u32 gamma = 100;
    u32 outputBlack = 0;
    u32 outputWhite = 255;
};

u8 Level(u8 value, const Setting& setting)
{
    const double black = setting.inputBlack;
    const double t = std::clamp((value - black) / (setting.inputWhite - black), 0.0, 1.0);
    const double low = setting.outputBlack;
    return Nearest(low + (setting.outputWhite - low) * std::pow(t, 100.0 / setting.gamma));
}

class LevelsTest : public AdjustTest
{
protected:
    LevelsTest() { Load("Levels.dll"); }

    void Store(const Setting& setting)
    {
        Set(u"LevelsInputBlack", setting.inputBlack);
        Set(u"LevelsInputWhite", setting.inputWhite);
        Set(u"LevelsGamma", setting.gamma);
        Set(u"LevelsOutputBlack", setting.outputBlack);
        Set(u"LevelsOutputWhite", setting.outputWhite);
    }
    std::vector<u8> Table(const Setting& setting)
    {
        Store(setting);
        return ChannelOf(Adjusted(256, 1, Ramp), 0);
    }
};

std::vector<u8> StepAt(u32 first)
{
    std::vector<u8> step(256, 0);
    std::fill(step.begin() + first, step.end(), u8{255});
    return step;
}

} // namespace

TEST_F(LevelsTest, AreTheFormulaRoundedOnceForEveryValueOfEveryColour)
{
    const Setting rows[] = {{},
                            {20, 230, 100, 0, 255},
                            {0, 255, 220, 0, 255},
                            {0, 255, 45, 0, 255},
                            {0, 255, 10, 0, 255},
                            {0, 255, 1000, 0, 255},
                            {0, 255, 100, 30, 200},
                            {17, 199, 137, 12, 243},
                            {100, 101, 250, 5, 250},
                            {0, 1, 33, 255, 0},
                            {254, 255, 100, 0, 255},
                            {40, 180, 80, 220, 35}};
    for (const Setting& row : rows) {
        Store(row);
        ExpectEverywhere([&row](Color color) {
            for (u8& value : color)
                value = Level(value, row);
            return color;
        });
    }
}

TEST_F(LevelsTest, AtRestChangeNothing)
{
    ExpectNothingChanged();
    Store({});
    ExpectNothingChanged();
}

TEST_F(LevelsTest, MiddleOfAGammaIsWhereItsDefinitionPutsIt)
{
    // A quarter of the light is a half with gamma 2: 255 sqrt(64 / 255) = 127.7.
    EXPECT_EQ(Table({0, 255, 200, 0, 255})[64], 128);
    EXPECT_EQ(Table({0, 255, 50, 0, 255})[128], 64) << "255 (128 / 255)^2 = 64.3";
    EXPECT_EQ(Table({50, 150, 100, 0, 255})[100], 128) << "127.5 goes up";
    EXPECT_EQ(Table({0, 255, 100, 255, 0})[10], 245) << "turned over";
}

TEST_F(LevelsTest, WhitePointThatIsNotAboveTheBlackOneCountsAsTheNextValue)
{
    EXPECT_EQ(Table({100, 100}), StepAt(101));
    EXPECT_EQ(Table({100, 20}), StepAt(101));
    EXPECT_EQ(Table({0, 0}), StepAt(1));
    EXPECT_EQ(Table({255, 255}), std::vector<u8>(256, 0));
    EXPECT_EQ(Table({255, 0, 1000}), std::vector<u8>(256, 0));
}

TEST_F(LevelsTest, NeverTurnTheOrderOfTonesRound)
{
    for (const u32 gamma : {10u, 37u, 100u, 333u, 1000u}) {
        const std::vector<u8> table = Table({10, 240, gamma, 3, 250});
        EXPECT_TRUE(std::is_sorted(table.begin(), table.end())) << gamma;
        EXPECT_EQ(table.front(), 3);
        EXPECT_EQ(table.back(), 250);
    }
}
