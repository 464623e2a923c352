// Hue, saturation and lightness against the double cone, written out in doubles.

#include "standard-plugins/tests/adjustments/Adjusting.h"

#include <algorithm>
#include <cmath>

using namespace plugintest;

namespace
{

struct Hsl {
    double hue; // degrees
    double saturation;
    double lightness;
};

Hsl ToHsl(const Color& color)
{
    const double red = color[0] / 255.0;
    const double green = color[1] / 255.0;
    const double blue = color[2] / 255.0;
    const double most = std::max({red, green, blue});
    const double least = std::min({red, green, blue});
    const double chroma = most - least;
    const double lightness = (most + least) / 2;
    if (chroma == 0)
        return {0, 0, lightness};
    const double hue = most == red     ? (green - blue) / chroma
                       : most == green ? 2 + (blue - red) / chroma
                                       : 4 + (red - green) / chroma;
    return {60 * hue, chroma / (1 - std::abs(2 * lightness - 1)), lightness};
}

double Value(double low, double high, double hue)
{
    const double turned = std::fmod(hue + 720, 360);
    if (turned < 60)
        return low + (high - low) * turned / 60;
    if (turned < 180)
        return high;
    return turned < 240 ? low + (high - low) * (240 - turned) / 60 : low;
}

Color ToRgb(const Hsl& hsl)
{
    const double high = hsl.lightness <= 0.5
                            ? hsl.lightness * (1 + hsl.saturation)
                            : hsl.lightness + hsl.saturation - hsl.lightness * hsl.saturation;
    const double low = 2 * hsl.lightness - high;
    return {NearestOfFraction(255 * Value(low, high, hsl.hue + 120)),
            NearestOfFraction(255 * Value(low, high, hsl.hue)),
            NearestOfFraction(255 * Value(low, high, hsl.hue - 120))};
}

Color Turned(const Color& color, int hue, int saturation, int lightness)
{
    Hsl hsl = ToHsl(color);
    hsl.hue += hue;
    hsl.saturation = std::min(1.0, hsl.saturation * (100 + saturation) / 100);
    hsl.lightness = lightness > 0 ? hsl.lightness + (1 - hsl.lightness) * lightness / 100
                                  : hsl.lightness * (100 + lightness) / 100;
    return ToRgb(hsl);
}

class HueSaturationTest : public AdjustTest
{
protected:
    HueSaturationTest() { Load("HueSaturation.dll"); }

    void Store(int hue, int saturation, int lightness)
    {
        Set(u"HueSaturationHue", static_cast<u32>(hue + 180));
        Set(u"HueSaturationSaturation", static_cast<u32>(saturation + 100));
        Set(u"HueSaturationLightness", static_cast<u32>(lightness + 100));
    }
    Color Turn(Color color, int hue, int saturation, int lightness)
    {
        Store(hue, saturation, lightness);
        return Adjusted(color);
    }
};

/// Every corner of the cube, its middle, and colours that differ by one.
u8 Corners(u32 x, u32 y, int channel)
{
    const u32 levels[] = {0, 1, 2, 127, 128, 253, 254, 255};
    const u32 places[] = {x % 8, x / 8 % 8, y % 8};
    return static_cast<u8>(levels[places[channel]]);
}

} // namespace

TEST_F(HueSaturationTest, AreTheDoubleConeRoundedOnce)
{
    const int rows[][3] = {{1, 0, 0},      {-1, 0, 0},     {60, 0, 0},      {-120, 0, 0},
                           {180, 0, 0},    {-180, 0, 0},   {37, 0, 0},      {0, 30, 0},
                           {0, 100, 0},    {0, -45, 0},    {0, -100, 0},    {0, 0, 50},
                           {0, 0, -50},    {0, 0, 100},    {0, 0, -100},    {-77, 63, -21},
                           {133, -40, 35}, {179, 100, 99}, {-179, 99, -99}, {90, 1, -1}};
    for (const auto& [hue, saturation, lightness] : rows) {
        Store(hue, saturation, lightness);
        const auto turned = [&](Color color) { return Turned(color, hue, saturation, lightness); };
        ExpectEverywhere(turned);
        EXPECT_EQ(Difference(Adjusted(64, 8, Corners), Changed(PixelsOf(64, 8, Corners), turned)),
                  "")
            << hue << " " << saturation << " " << lightness;
    }
}

TEST_F(HueSaturationTest, ZerosChangeNothing)
{
    ExpectNothingChanged();
    Store(0, 0, 0);
    ExpectNothingChanged();
    EXPECT_EQ(Difference(Adjusted(64, 8, Corners), PixelsOf(64, 8, Corners)), "");
}

TEST_F(HueSaturationTest, AThirdOfTheCircleExchangesColoursExactlyAndComesBack)
{
    Store(120, 0, 0);
    ExpectEverywhere([](Color color) { return Color{color[2], color[0], color[1]}; });
    Store(-120, 0, 0);
    ExpectEverywhere([](Color color) { return Color{color[1], color[2], color[0]}; });
}

TEST_F(HueSaturationTest, HalfTheCircleTwiceIsThePictureAsItWas)
{
    Store(180, 0, 0);
    for (const Subject& subject : Subjects()) {
        Raster image;
        Fill(&image, subject.width, subject.height, 24, subject.samples);
        ASSERT_EQ(Process(&image), 1);
        ASSERT_EQ(Process(&image), 1);
        EXPECT_EQ(
            Difference(PixelsOf(&image), PixelsOf(subject.width, subject.height, subject.samples)),
            "");
    }
}

TEST_F(HueSaturationTest, NamedColoursGoWhereTheyAreExpected)
{
    EXPECT_EQ(Turn({255, 0, 0}, 60, 0, 0), (Color{255, 255, 0}));
    EXPECT_EQ(Turn({255, 0, 0}, -60, 0, 0), (Color{255, 0, 255}));
    EXPECT_EQ(Turn({255, 0, 0}, 30, 0, 0), (Color{255, 128, 0})) << "127.5 goes up";
    EXPECT_EQ(Turn({255, 0, 0}, 0, -100, 0), (Color{128, 128, 128}));
    EXPECT_EQ(Turn({255, 0, 0}, 0, 0, 50), (Color{255, 128, 128}));
    EXPECT_EQ(Turn({255, 0, 0}, 0, 0, -50), (Color{128, 0, 0}));
    EXPECT_EQ(Turn({10, 200, 30}, 5, 10, 100), (Color{255, 255, 255}));
    EXPECT_EQ(Turn({10, 200, 30}, 5, 10, -100), (Color{0, 0, 0}));
    EXPECT_EQ(Turn({150, 100, 100}, 0, 100, 0), (Color{175, 75, 75}));
}

TEST_F(HueSaturationTest, GreysStayGreyWhateverTheHueAndTheSaturation)
{
    const auto grey = [](u32 x, u32, int) { return static_cast<u8>(x); };
    for (const int saturation : {-100, -3, 50, 100})
        for (const int hue : {-180, -50, 77, 180}) {
            Store(hue, saturation, 0);
            EXPECT_EQ(Difference(Adjusted(256, 1, grey), PixelsOf(256, 1, grey)), "")
                << hue << ", " << saturation;
        }
}
