// The automatic levels against quantiles found by sorting.

#include "standard-plugins/tests/adjustments/Adjusting.h"

#include <algorithm>
#include <cmath>

using namespace plugintest;

namespace
{

struct Ends {
    int low;
    int high;
};

/// More than `clip` hundredths of a percent of the values lie up to the low end, and as many from
/// the high end on.
Ends EndsOf(std::vector<u8> values, u32 clip)
{
    std::sort(values.begin(), values.end());
    const size_t lost = values.size() * clip / 10000;
    return {values[lost], values[values.size() - 1 - lost]};
}

u8 Stretched(u8 value, const Ends& ends)
{
    if (ends.high <= ends.low)
        return value;
    return NearestOfFraction(255.0 * (value - ends.low) / (ends.high - ends.low));
}

ColorChange Stretch(const Pixels& pixels, u32 clip, bool perChannel)
{
    std::array<Ends, 3> ends;
    for (u32 i = 0; i < 3; ++i)
        ends[i] = EndsOf(perChannel ? ChannelOf(pixels, i) : pixels.bytes, clip);
    return [ends](Color color) {
        for (size_t i = 0; i < 3; ++i)
            color[i] = Stretched(color[i], ends[i]);
        return color;
    };
}

/// Little contrast, each colour elsewhere.
u8 Flatter(u32 x, u32 y, int channel)
{
    return static_cast<u8>(60 + 25 * channel + Wild(x, y, channel) * (3 + channel) / 10);
}

class AutoLevelsTest : public AdjustTest
{
protected:
    AutoLevelsTest() { Load("AutoLevels.dll"); }

    void Store(u32 clip, bool perChannel)
    {
        Set(u"AutoLevelsClip", clip);
        Set(u"AutoLevelsPerChannel", perChannel);
    }
    void ExpectStretched(u32 width, u32 height, const Samples& samples, u32 clip, bool perChannel)
    {
        Store(clip, perChannel);
        const Pixels in = PixelsOf(width, height, samples);
        ASSERT_EQ(Difference(Adjusted(width, height, samples),
                             Changed(in, Stretch(in, clip, perChannel))),
                  "")
            << width << "x" << height << ", " << clip << ", " << perChannel;
    }
};

} // namespace

TEST_F(AutoLevelsTest, StretchFromQuantileToQuantile)
{
    for (const bool perChannel : {true, false})
        for (const u32 clip : {0u, 1u, 10u, 137u, 500u}) {
            for (u32 width = 1; width <= 33; ++width)
                ExpectStretched(width, 3, Flatter, clip, perChannel);
            ExpectStretched(100, 101, Flatter, clip, perChannel);
            ExpectStretched(256, 2, Ramp, clip, perChannel);
        }
}

TEST_F(AutoLevelsTest, ShareThatMayBeLostIsLostAndNoMore)
{
    // 10,000 pixels of 100 to 200 but for single ones further out.
    const auto stray = [](u32 darker, u32 lighter) {
        return [=](u32 x, u32 y, int) -> u8 {
            const u32 index = y * 100 + x;
            if (index < darker)
                return 20;
            return index < darker + lighter ? 250 : static_cast<u8>(100 + index % 101);
        };
    };
    const auto place = [this](const Samples& samples) {
        return Adjusted(100, 100, samples).bytes.back();
    };
    Store(10, true); // 10 pixels
    EXPECT_EQ(place(stray(10, 10)), Stretched(100 + 9999 % 101, {100, 200}));
    EXPECT_EQ(place(stray(11, 10)), Stretched(100 + 9999 % 101, {20, 200}));
    EXPECT_EQ(place(stray(10, 11)), Stretched(100 + 9999 % 101, {100, 250}));
    Store(0, true);
    EXPECT_EQ(place(stray(1, 1)), Stretched(100 + 9999 % 101, {20, 250}));
}

TEST_F(AutoLevelsTest, TakeATenthOfAPercentOfEachColourAtFirst)
{
    const Pixels in = PixelsOf(100, 101, Flatter);
    EXPECT_EQ(Difference(Adjusted(100, 101, Flatter), Changed(in, Stretch(in, 10, true))), "");
}

TEST_F(AutoLevelsTest, AgainChangeNothing)
{
    for (const bool perChannel : {true, false})
        for (const u32 clip : {0u, 10u, 500u}) {
            Store(clip, perChannel);
            Raster image;
            Fill(&image, 90, 91, 24, Flatter);
            ASSERT_EQ(Process(&image), 1);
            const Pixels once = PixelsOf(&image);
            ASSERT_EQ(Process(&image), 1);
            EXPECT_EQ(Difference(PixelsOf(&image), once), "") << clip;
            EXPECT_NE(Difference(once, PixelsOf(90, 91, Flatter)), "");
        }
}

TEST_F(AutoLevelsTest, ColoursOfASingleValueStay)
{
    for (const u32 clip : {0u, 500u}) {
        Store(clip, true);
        EXPECT_EQ(Adjusted({0, 77, 255}), (Color{0, 77, 255}));
        Store(clip, false);
        EXPECT_EQ(Adjusted({77, 77, 77}), (Color{77, 77, 77}));
    }
    EXPECT_EQ(Adjusted({10, 20, 30}), (Color{0, 128, 255})) << "alike for all three colours";
}

TEST_F(AutoLevelsTest, CountBothPassesAsProgressAndCanBeStoppedInEach)
{
    (void)Adjusted(5, 50, Flatter);
    EXPECT_EQ(CurrentWriterHost().progress.back(), (std::pair<u32, u32>(100, 100)));
    for (const int refused : {0, 20, 49, 70}) {
        Raster image;
        Fill(&image, 5, 50, 24, Flatter);
        CurrentWriterHost().refuseFrom = refused;
        EXPECT_EQ(Process(&image), -9);
        CurrentWriterHost().refuseFrom = -1;
        EXPECT_EQ(PixelsOf(&image) == PixelsOf(5, 50, Flatter), refused < 50) << refused;
    }
}
