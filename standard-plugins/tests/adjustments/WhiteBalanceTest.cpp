// The white balance against its formula, by a chosen colour and by the mean of the picture.

#include "standard-plugins/tests/adjustments/Adjusting.h"

#include <algorithm>
#include <cmath>

using namespace plugintest;

namespace
{

/// Light of red, green and blue.
using Light = std::array<double, 3>;

double ToLight(double value)
{
    const double v = value / 255;
    return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
}

double ToStored(double light)
{
    return light <= 0.04045 / 12.92 ? light * 12.92 : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
}

ColorChange ToGrey(const Light& grey)
{
    // Summed in the plugin's order, from blue.
    const double luminance = 0.0722 * grey[2] + 0.7152 * grey[1] + 0.2126 * grey[0];
    return [=](Color color) {
        for (size_t i = 0; i < 3; ++i) {
            const double gain = luminance == 0 ? 1
                                : grey[i] == 0 ? 16
                                               : std::min(16.0, luminance / grey[i]);
            color[i] = Nearest(255 * ToStored(gain * ToLight(color[i])));
        }
        return color;
    };
}

Light MeanOf(const Pixels& pixels)
{
    Light mean = {};
    for (u32 i = 0; i < 3; ++i) {
        for (const u8 value : ChannelOf(pixels, i))
            mean[i] += ToLight(value);
        mean[i] /= static_cast<double>(pixels.bytes.size()) / 3;
    }
    return mean;
}

class WhiteBalanceTest : public AdjustTest
{
protected:
    WhiteBalanceTest() { Load("WhiteBalance.dll"); }

    void Store(const Color& grey, bool automatic = false)
    {
        Set(u"WhiteBalanceRed", grey[0]);
        Set(u"WhiteBalanceGreen", grey[1]);
        Set(u"WhiteBalanceBlue", grey[2]);
        Set(u"WhiteBalanceAutomatic", automatic);
    }
};

} // namespace

TEST_F(WhiteBalanceTest, IsTheFormulaRoundedOnceForEveryValueOfEveryColour)
{
    for (const Color grey :
         {Color{200, 180, 150}, Color{90, 130, 120}, Color{255, 254, 253}, Color{12, 9, 7},
          Color{3, 200, 1}, Color{0, 0, 200}, Color{77, 0, 77}, Color{0, 0, 0}}) {
        Store(grey);
        ExpectEverywhere(ToGrey({ToLight(grey[0]), ToLight(grey[1]), ToLight(grey[2])}));
    }
}

TEST_F(WhiteBalanceTest, AnyGreyPointChangesNothing)
{
    ExpectNothingChanged();
    for (int level = 0; level < 256; level += 15) {
        const auto grey = static_cast<u8>(level);
        Store({grey, grey, grey});
        ASSERT_EQ(Difference(Adjusted(256, 2, Ramp), PixelsOf(256, 2, Ramp)), "") << level;
    }
}

TEST_F(WhiteBalanceTest, ChosenColourBecomesAGreyOfItsOwnLuminance)
{
    for (const Color color :
         {Color{200, 180, 150}, Color{90, 130, 120}, Color{31, 30, 40}, Color{140, 150, 230}}) {
        Store(color);
        const Color grey = Adjusted(color);
        EXPECT_EQ(grey[0], grey[1]);
        EXPECT_EQ(grey[1], grey[2]);
        EXPECT_NEAR(255 * ToStored(0.2126 * ToLight(color[0]) + 0.7152 * ToLight(color[1]) +
                                   0.0722 * ToLight(color[2])),
                    grey[0], 0.5);
    }
}

TEST_F(WhiteBalanceTest, AutomaticTakesTheMeanLightOfThePicture)
{
    Store({1, 2, 3}, true);
    for (const Subject& subject : Subjects()) {
        const auto cast = [&subject](u32 x, u32 y, int channel) {
            return static_cast<u8>(subject.samples(x, y, channel) * (4 - channel) / 5);
        };
        const Pixels in = PixelsOf(subject.width, subject.height, cast);
        ASSERT_EQ(Difference(Adjusted(subject.width, subject.height, cast),
                             Changed(in, ToGrey(MeanOf(in)))),
                  "")
            << subject.width;
    }
    EXPECT_EQ(Adjusted({0, 0, 0}), (Color{0, 0, 0}));
    const Color grey = Adjusted({200, 100, 120});
    EXPECT_EQ(grey, (Color{grey[0], grey[0], grey[0]}));
}

TEST_F(WhiteBalanceTest, GoesOverThePictureOnceUnlessItIsAutomatic)
{
    for (const bool automatic : {false, true}) {
        Store({200, 180, 150}, automatic);
        (void)Adjusted(9, 40, Wild);
        const u32 steps = automatic ? 80 : 40;
        EXPECT_EQ(CurrentWriterHost().progress.back(), (std::pair<u32, u32>(steps, steps)));
    }
}
