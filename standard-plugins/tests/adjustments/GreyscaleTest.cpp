// Grey by each of the three sums.

#include "standard-plugins/tests/adjustments/Adjusting.h"

using namespace plugintest;

namespace
{

class GreyscaleTest : public AdjustTest
{
protected:
    GreyscaleTest() { Load("Greyscale.dll"); }
};

Color Grey(const Color& color, u32 kind)
{
    const double sums[] = {(299 * color[0] + 587 * color[1] + 114 * color[2]) / 1000.0,
                           (2126 * color[0] + 7152 * color[1] + 722 * color[2]) / 10000.0,
                           (color[0] + color[1] + color[2]) / 3.0};
    const u8 grey = NearestOfFraction(sums[kind]);
    return {grey, grey, grey};
}

} // namespace

TEST_F(GreyscaleTest, IsTheSumRoundedOnce)
{
    for (const u32 kind : {0u, 1u, 2u}) {
        Set(u"GreyscaleLuma", kind);
        ExpectEverywhere([kind](Color color) { return Grey(color, kind); });
    }
}

TEST_F(GreyscaleTest, IsRec601AtFirst)
{
    EXPECT_EQ(Adjusted({255, 0, 0}), (Color{76, 76, 76}));
    EXPECT_EQ(Adjusted({0, 255, 0}), (Color{150, 150, 150}));
    EXPECT_EQ(Adjusted({0, 0, 255}), (Color{29, 29, 29}));
}

TEST_F(GreyscaleTest, LeavesGreysAsTheyAreByEachSum)
{
    const auto grey = [](u32 x, u32, int) { return static_cast<u8>(x); };
    for (const u32 kind : {0u, 1u, 2u}) {
        Set(u"GreyscaleLuma", kind);
        EXPECT_EQ(Difference(Adjusted(256, 1, grey), PixelsOf(256, 1, grey)), "") << kind;
    }
}
