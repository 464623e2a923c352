// An effect in the program's own hands, and what its formula is written out with.
#pragma once

#include "standard-plugins/tests/support/Changing.h"

#include <algorithm>

namespace effecttest
{

using namespace plugintest;

/// A colour of the nearest pixel inside; `channel` 0 red, 1 green, 2 blue.
inline int Nearest(const Pixels& pixels, int x, int y, u32 channel)
{
    return pixels.At(static_cast<u32>(std::clamp(x, 0, static_cast<int>(pixels.width) - 1)),
                     static_cast<u32>(std::clamp(y, 0, static_cast<int>(pixels.height) - 1)),
                     channel);
}

/// floor(number / divisor + 1/2), the divisor above 0, and cut to what a colour can be.
inline u8 RoundedAndCut(long long number, long long divisor)
{
    const long long doubled = 2 * number + divisor;
    return static_cast<u8>(std::clamp(doubled < 0 ? -1LL : doubled / (2 * divisor), 0LL, 255LL));
}

/// Thousandths of the luma of BT.601.
inline int Luma(const Pixels& pixels, int x, int y)
{
    return 299 * Nearest(pixels, x, y, 0) + 587 * Nearest(pixels, x, y, 1) +
           114 * Nearest(pixels, x, y, 2);
}

/// A picture of `pixels`' size, each value made from its place.
template <typename Make>
Pixels Made(const Pixels& pixels, const Make& make)
{
    Pixels out{pixels.width, pixels.height, {}};
    for (u32 y = 0; y < pixels.height; ++y)
        for (u32 x = 0; x < pixels.width; ++x)
            for (u32 channel = 0; channel < 3; ++channel)
                out.bytes.push_back(make(static_cast<int>(x), static_cast<int>(y), channel));
    return out;
}

/// As noise, with most neighbours alike.
inline u8 Patchy(u32 x, u32 y, int channel)
{
    return (x * 7 + y * 3) % 5 == 0 ? Wild(x, y, channel) : Wild(x / 3, y / 3, channel);
}

class EffectTest : public ChangeTest<EffectPlugin>
{
protected:
    /// The picture of the samples behind the loaded effect, which must succeed silently.
    Pixels Apply(u32 width, u32 height, const Samples& samples)
    {
        Raster image;
        Fill(&image, width, height, 24, samples);
        EXPECT_EQ(Process(&image), 1);
        EXPECT_TRUE(CurrentWriterHost().messages.empty());
        return PixelsOf(&image);
    }
    /// `check(width, height)` for every size up to 33 x 33, until one fails.
    template <typename Check>
    void ForEverySize(const Check& check)
    {
        for (u32 height = 1; height <= 33; ++height)
            for (u32 width = 1; width <= 33; ++width) {
                check(width, height);
                if (HasFailure())
                    return;
            }
    }
    /// Fails with the first place where the two differ.
    static void ExpectSame(const Pixels& got, const Pixels& expected, const std::string& what)
    {
        ASSERT_EQ(got.bytes.size(), expected.bytes.size());
        for (size_t i = 0; i < got.bytes.size(); ++i)
            ASSERT_EQ(int{got.bytes[i]}, int{expected.bytes[i]})
                << what << ": " << got.width << "x" << got.height << ", pixel " << i / 3 % got.width
                << "," << i / 3 / got.width << ", channel " << i % 3;
    }
};

} // namespace effecttest
