// The threshold, by a level of the user's and by one found from the picture.

#include "standard-plugins/tests/adjustments/Adjusting.h"

#include <algorithm>

using namespace plugintest;

namespace
{

u32 Luma(const Color& color)
{
    return NearestOfFraction((299 * color[0] + 587 * color[1] + 114 * color[2]) / 1000.0);
}

ColorChange Divide(u32 level)
{
    return [level](Color color) {
        const u8 value = Luma(color) >= level ? 255 : 0;
        return Color{value, value, value};
    };
}

/// The variance between the classes as the probabilities and means of the paper give it.
double Variance(const std::vector<u32>& lumas, u32 level)
{
    double below = 0;
    double belowSum = 0;
    double sum = 0;
    for (const u32 luma : lumas) {
        below += luma < level;
        belowSum += luma < level ? luma : 0;
        sum += luma;
    }
    const auto count = static_cast<double>(lumas.size());
    if (below == 0 || below == count)
        return 0;
    const double apart = belowSum / below - (sum - belowSum) / (count - below);
    return below / count * (1 - below / count) * apart * apart;
}

u32 BestLevel(const std::vector<u32>& lumas)
{
    u32 first = 1;
    for (u32 level = 1; level < 256; ++level)
        if (Variance(lumas, level) > Variance(lumas, first) * (1 + 1e-12))
            first = level;
    return first;
}

std::vector<u32> LumasOf(const Pixels& pixels)
{
    std::vector<u32> lumas;
    for (size_t at = 0; at < pixels.bytes.size(); at += 3)
        lumas.push_back(Luma({pixels.bytes[at], pixels.bytes[at + 1], pixels.bytes[at + 2]}));
    return lumas;
}

class ThresholdTest : public AdjustTest
{
protected:
    ThresholdTest() { Load("Threshold.dll"); }
};

} // namespace

TEST_F(ThresholdTest, DividesAtItsLevel)
{
    ExpectEverywhere(Divide(128));
    for (const u32 level : {1u, 2u, 77u, 128u, 200u, 254u, 255u}) {
        Set(u"ThresholdLevel", level);
        ExpectEverywhere(Divide(level));
    }
}

TEST_F(ThresholdTest, AgainChangesNothing)
{
    for (const u32 level : {1u, 128u, 255u}) {
        Set(u"ThresholdLevel", level);
        Raster image;
        Fill(&image, 33, 9, 24, Wild);
        ASSERT_EQ(Process(&image), 1);
        const Pixels once = PixelsOf(&image);
        ASSERT_EQ(Process(&image), 1);
        EXPECT_EQ(Difference(PixelsOf(&image), once), "") << level;
    }
}

TEST_F(ThresholdTest, AutomaticLevelIsWhereTheClassesLieFurthestApart)
{
    Set(u"ThresholdAutomatic", 1);
    Set(u"ThresholdLevel", 3);
    for (const Subject& subject : Subjects()) {
        const Pixels in = PixelsOf(subject.width, subject.height, subject.samples);
        ASSERT_EQ(Difference(Adjusted(subject.width, subject.height, subject.samples),
                             Changed(in, Divide(BestLevel(LumasOf(in))))),
                  "")
            << subject.width;
    }
}

TEST_F(ThresholdTest, AutomaticLevelPutsAStrayLumaToTheNearerOfTwo)
{
    Set(u"ThresholdAutomatic", 1);
    const auto pair = [](u32 x, u32, int) -> u8 { return x % 2 ? 200 : 50; };
    EXPECT_EQ(ChannelOf(Adjusted(4, 1, pair), 0), (std::vector<u8>{0, 255, 0, 255}));
    for (const u8 between : {u8{124}, u8{126}}) {
        const auto samples = [between](u32 x, u32, int) -> u8 {
            return x == 2000 ? between : x % 2 ? 200 : 50;
        };
        EXPECT_EQ(Adjusted(2001, 1, samples).bytes.back(), between < 125 ? 0 : 255);
    }
}

TEST_F(ThresholdTest, PictureOfOneLumaIsDividedAtTheLevelThatIsSet)
{
    Set(u"ThresholdAutomatic", 1);
    Set(u"ThresholdLevel", 78);
    EXPECT_EQ(Adjusted({77, 77, 77}), (Color{0, 0, 0}));
    EXPECT_EQ(Adjusted({78, 78, 78}), (Color{255, 255, 255}));
}

TEST_F(ThresholdTest, GoesOverThePictureOnceUnlessItIsAutomatic)
{
    for (const bool automatic : {false, true}) {
        Set(u"ThresholdAutomatic", automatic);
        (void)Adjusted(9, 40, Wild);
        const u32 steps = automatic ? 80 : 40;
        EXPECT_EQ(CurrentWriterHost().progress.back(), (std::pair<u32, u32>(steps, steps)));
    }
}
