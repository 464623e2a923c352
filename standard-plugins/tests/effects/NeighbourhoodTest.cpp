// Median, oil painting and mosaic against their formulas: what is made of all pixels around one.

#include "standard-plugins/tests/effects/Effects.h"

using namespace effecttest;

namespace
{

/// Numbers of a picture's pixels, with `radius` more on each side that repeat the nearest inside.
struct Wide {
    int radius;
    int stride;
    std::vector<int> numbers;

    template <typename Number>
    Wide(const Pixels& in, int wideRadius, const Number& number)
        : radius(wideRadius), stride(static_cast<int>(in.width) + 2 * wideRadius)
    {
        for (int y = -radius; y < static_cast<int>(in.height) + radius; ++y)
            for (int x = -radius; x < static_cast<int>(in.width) + radius; ++x)
                numbers.push_back(number(x, y));
    }
    const int* At(int x, int y) const
    {
        return numbers.data() + (y + radius) * stride + x + radius;
    }
};

Wide Channel(const Pixels& in, int radius, u32 channel)
{
    return Wide(in, radius, [&](int x, int y) { return Nearest(in, x, y, channel); });
}

Pixels Middles(const Pixels& in, int radius)
{
    const Wide channels[3] = {Channel(in, radius, 0), Channel(in, radius, 1),
                              Channel(in, radius, 2)};
    const int before = (2 * radius + 1) * (2 * radius + 1) / 2;
    return Made(in, [&](int x, int y, u32 channel) {
        int counts[256] = {};
        for (int j = -radius; j <= radius; ++j) {
            const int* row = channels[channel].At(x - radius, y + j);
            for (int i = 0; i <= 2 * radius; ++i)
                ++counts[row[i]];
        }
        int value = 0;
        for (int seen = counts[0]; seen <= before; seen += counts[value])
            ++value;
        return static_cast<u8>(value);
    });
}

/// The mean of the level that most pixels around one have, of several the darkest.
Pixels Painted(const Pixels& in, int radius, int levels)
{
    const Wide channels[3] = {Channel(in, radius, 0), Channel(in, radius, 1),
                              Channel(in, radius, 2)};
    const Wide wide(in, radius, [&](int x, int y) { return Luma(in, x, y) * levels / 256000; });
    return Made(in, [&](int x, int y, u32 channel) {
        int counts[64] = {};
        int sums[64] = {};
        for (int j = -radius; j <= radius; ++j)
            for (int i = -radius; i <= radius; ++i) {
                const int level = *wide.At(x + i, y + j);
                ++counts[level];
                sums[level] += *channels[channel].At(x + i, y + j);
            }
        int most = 0;
        for (int level = 1; level < levels; ++level)
            if (counts[level] > counts[most])
                most = level;
        return RoundedAndCut(sums[most], counts[most]);
    });
}

u8 MeanOfBlock(const Pixels& in, u32 left, u32 top, u32 size, u32 channel)
{
    long long sum = 0;
    long long count = 0;
    for (u32 y = top; y < std::min(top + size, in.height); ++y)
        for (u32 x = left; x < std::min(left + size, in.width); ++x, ++count)
            sum += in.At(x, y, channel);
    return RoundedAndCut(sum, count);
}

Pixels Tiled(const Pixels& in, u32 size)
{
    // Of each block once, in the place of its first pixel.
    Pixels first = in;
    for (u32 y = 0; y < in.height; y += size)
        for (u32 x = 0; x < in.width; x += size)
            for (u32 channel = 0; channel < 3; ++channel)
                first.bytes[(size_t{y} * in.width + x) * 3 + channel] =
                    MeanOfBlock(in, x, y, size, channel);
    return Made(in, [&](int x, int y, u32 channel) {
        return first.At(static_cast<u32>(x) / size * size, static_cast<u32>(y) / size * size,
                        channel);
    });
}

/// All radiuses take their turn, the large ones at small pictures and at some of the others.
u32 RadiusFor(u32 width, u32 height, u32 most)
{
    const u32 turn = width * 3 + height;
    return width * height < 150 || turn % 16 == 0 ? 1 + turn / 16 % most : 1 + turn % 2;
}

class Neighbourhood : public EffectTest
{
protected:
    Pixels Median(u32 width, u32 height, const Samples& samples, u32 radius)
    {
        Set(u"MedianRadius", radius);
        return Apply(width, height, samples);
    }
    Pixels Oil(u32 width, u32 height, const Samples& samples, u32 radius, u32 levels)
    {
        Set(u"OilRadius", radius);
        Set(u"OilLevels", levels);
        return Apply(width, height, samples);
    }
    Pixels Mosaic(u32 width, u32 height, const Samples& samples, u32 size)
    {
        Set(u"MosaicSize", size);
        return Apply(width, height, samples);
    }
};

} // namespace

TEST_F(Neighbourhood, MedianIsTheValueInTheMiddleAtEverySize)
{
    Load("Median.dll");
    ForEverySize([this](u32 width, u32 height) {
        const u32 radius = RadiusFor(width, height, 10);
        const Samples samples = (width + height) % 2 ? Samples(Wild) : Samples(Patchy);
        ExpectSame(Median(width, height, samples, radius),
                   Middles(PixelsOf(width, height, samples), static_cast<int>(radius)),
                   "radius " + std::to_string(radius));
    });
}

TEST_F(Neighbourhood, MedianTakesSpecksAwayAndKeepsAnEdge)
{
    Load("Median.dll");
    const auto edge = [](u32 x, u32, int) -> u8 { return x < 15 ? 20 : 200; };
    const auto specks = [edge](u32 x, u32 y, int channel) -> u8 {
        return x % 9 == 4 && y % 9 == 4 ? 255 : edge(x, y, channel);
    };
    for (const u32 radius : {1u, 2u, 4u})
        ExpectSame(Median(30, 30, specks, radius), PixelsOf(30, 30, edge), "specks");
}

TEST_F(Neighbourhood, OilIsTheMeanOfTheFullestLevelAtEverySize)
{
    Load("Oil.dll");
    ForEverySize([this](u32 width, u32 height) {
        const u32 radius = RadiusFor(width, height, 8);
        const u32 levels = 4 + (width * 17 + height * 5) % 61;
        const Samples samples = (width + height) % 2 ? Samples(Wild) : Samples(Soft);
        ExpectSame(Oil(width, height, samples, radius, levels),
                   Painted(PixelsOf(width, height, samples), static_cast<int>(radius),
                           static_cast<int>(levels)),
                   "radius " + std::to_string(radius) + ", levels " + std::to_string(levels));
    });
}

TEST_F(Neighbourhood, OilTakesTheDarkestOfLevelsThatAreEquallyFull)
{
    Load("Oil.dll");
    // Every 3 x 3 pixels hold three of each of three levels; at the edges others are more.
    const auto stripes = [](u32 x, u32, int) { return static_cast<u8>(40 + x % 3 * 80); };
    const Pixels got = Oil(12, 9, stripes, 1, 4);
    for (u32 x = 1; x < 11; ++x)
        EXPECT_EQ(got.At(x, 4, 1), 40) << x;
}

TEST_F(Neighbourhood, MosaicIsTheMeanOfEachBlockAtEverySize)
{
    Load("Mosaic.dll");
    ForEverySize([this](u32 width, u32 height) {
        const u32 size = 2 + (width * 31 + height * 7) % 63;
        for (const u32 each : {size, 2 + size % 7})
            ExpectSame(Mosaic(width, height, Wild, each),
                       Tiled(PixelsOf(width, height, Wild), each), "size " + std::to_string(each));
    });
}

TEST_F(Neighbourhood, MosaicHasManyBlocksUnderEachOther)
{
    Load("Mosaic.dll");
    for (const u32 size : {2u, 3u, 17u, 64u})
        ExpectSame(Mosaic(150, 200, Patchy, size), Tiled(PixelsOf(150, 200, Patchy), size),
                   "size " + std::to_string(size));
}

TEST_F(Neighbourhood, PicturesOfOneColourStayAsTheyAre)
{
    for (const u8 level : {u8{0}, u8{1}, u8{128}, u8{254}, u8{255}}) {
        const auto flat = [level](u32, u32, int channel) {
            return channel == 1 ? static_cast<u8>(255 - level) : level;
        };
        const Pixels before = PixelsOf(29, 18, flat);
        Load("Median.dll");
        ExpectSame(Median(29, 18, flat, 10), before, "median");
        Load("Oil.dll");
        ExpectSame(Oil(29, 18, flat, 8, 64), before, "oil");
        Load("Mosaic.dll");
        ExpectSame(Mosaic(29, 18, flat, 5), before, "mosaic");
    }
}

TEST_F(Neighbourhood, WildStoredNumbersAreBroughtIntoTheRange)
{
    const u32 wild = 4000000000u;
    const Pixels in = PixelsOf(14, 11, Patchy);
    Load("Median.dll");
    ExpectSame(Median(14, 11, Patchy, wild), Middles(in, 10), "median");
    ExpectSame(Median(14, 11, Patchy, 0), Middles(in, 1), "median");
    Load("Oil.dll");
    ExpectSame(Oil(14, 11, Patchy, wild, wild), Painted(in, 8, 64), "oil");
    ExpectSame(Oil(14, 11, Patchy, 0, 0), Painted(in, 1, 4), "oil");
    Load("Mosaic.dll");
    ExpectSame(Mosaic(14, 11, Patchy, wild), Tiled(in, 64), "mosaic");
    ExpectSame(Mosaic(14, 11, Patchy, 0), Tiled(in, 2), "mosaic");
    CurrentWriterHost().settings.clear();
    ExpectSame(Apply(14, 11, Patchy), Tiled(in, 8), "mosaic without settings");
    Load("Median.dll");
    ExpectSame(Apply(14, 11, Patchy), Middles(in, 1), "median without settings");
    Load("Oil.dll");
    ExpectSame(Apply(14, 11, Patchy), Painted(in, 3, 20), "oil without settings");
}
