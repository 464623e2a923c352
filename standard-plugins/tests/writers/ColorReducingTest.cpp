// The reduction of colours, against plain transcriptions of its formulas.

#include "standard-plugins/common/reducing/ColorReducer.h"
#include "standard-plugins/common/reducing/FixedPalettes.h"
#include "standard-plugins/common/reducing/PaletteSurvey.h"
#include "standard-plugins/tests/support/Writing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <random>
#include <set>

using plugintest::Samples;

namespace
{

using Color = std::array<int, 3>;
using Picture = std::vector<Color>; // row by row

std::vector<Color> ColorsOf(const ReducedPalette& palette)
{
    std::vector<Color> colors;
    for (uint32_t i = 0; i < palette.count; ++i)
        colors.push_back({palette.colors[i][0], palette.colors[i][1], palette.colors[i][2]});
    return colors;
}

ReducedPalette PaletteOf(const std::vector<Color>& colors)
{
    ReducedPalette palette = {};
    for (const Color& color : colors) {
        for (size_t i = 0; i < 3; ++i)
            palette.colors[palette.count][i] = static_cast<uint8_t>(color[i]);
        ++palette.count;
    }
    return palette;
}

std::vector<uint8_t> BytesOf(const Picture& picture)
{
    std::vector<uint8_t> bytes;
    for (const Color& color : picture)
        for (const int value : color)
            bytes.push_back(static_cast<uint8_t>(value));
    return bytes;
}

/// Clouds of colours about a few middles.
Picture Clouds(uint32_t seed, size_t pixels)
{
    std::mt19937 random(seed);
    std::vector<Color> middles(7);
    for (Color& middle : middles)
        for (int& value : middle)
            value = static_cast<int>(random() % 256);
    Picture picture;
    for (size_t i = 0; i < pixels; ++i) {
        Color color = middles[random() % middles.size()];
        for (int& value : color)
            value = std::clamp(value + static_cast<int>(random() % 61) - 30, 0, 255);
        picture.push_back(color);
    }
    return picture;
}

std::vector<Color> TakenPalette(const Picture& picture, uint32_t most, uint32_t width)
{
    PaletteSurvey* survey = OpenPaletteSurvey();
    const std::vector<uint8_t> bytes = BytesOf(picture);
    for (size_t x = 0; x < picture.size(); x += width)
        SurveyRow(survey, bytes.data() + 3 * x,
                  static_cast<uint32_t>(std::min<size_t>(width, picture.size() - x)));
    ReducedPalette palette;
    TakePalette(survey, most, &palette);
    ClosePaletteSurvey(survey);
    return ColorsOf(palette);
}

// ---- Wu's division, over the pixels themselves -------------------------------------------------

int Cell(int value)
{
    return value / 8;
}

double SquaredSumByCount(const Picture& pixels)
{
    std::array<double, 3> sum = {};
    for (const Color& pixel : pixels)
        for (size_t i = 0; i < 3; ++i)
            sum[i] += pixel[i];
    double squared = 0;
    for (const double each : sum)
        squared += each * each;
    return squared / static_cast<double>(pixels.size());
}

double Spread(const Picture& pixels)
{
    double squares = 0;
    for (const Color& pixel : pixels)
        for (const int value : pixel)
            squares += value * value;
    return squares - SquaredSumByCount(pixels);
}

std::pair<Picture, Picture> Split(const Picture& pixels, size_t axis, int place)
{
    std::pair<Picture, Picture> parts;
    for (const Color& pixel : pixels)
        (Cell(pixel[axis]) < place ? parts.first : parts.second).push_back(pixel);
    return parts;
}

std::vector<Color> PlainDivision(const Picture& picture, size_t most)
{
    std::vector<Picture> boxes = {picture};
    std::vector<double> spreads = {Spread(picture)};
    while (boxes.size() < most) {
        const size_t widest =
            static_cast<size_t>(std::max_element(spreads.begin(), spreads.end()) - spreads.begin());
        if (spreads[widest] <= 0)
            break;
        double best = -1;
        std::pair<Picture, Picture> chosen;
        for (size_t axis = 0; axis < 3; ++axis)
            for (int place = 1; place < 32; ++place) {
                const auto parts = Split(boxes[widest], axis, place);
                if (parts.first.empty() || parts.second.empty())
                    continue;
                const double gain =
                    SquaredSumByCount(parts.first) + SquaredSumByCount(parts.second);
                if (gain > best) {
                    best = gain;
                    chosen = parts;
                }
            }
        if (best < 0) {
            spreads[widest] = 0;
            continue;
        }
        boxes[widest] = chosen.first;
        boxes.push_back(chosen.second);
        spreads[widest] = Spread(chosen.first);
        spreads.push_back(Spread(chosen.second));
    }
    std::vector<Color> colors;
    for (const Picture& box : boxes) {
        Color mean = {};
        for (const Color& pixel : box)
            for (size_t i = 0; i < 3; ++i)
                mean[i] += pixel[i];
        for (int& value : mean)
            value = static_cast<int>(
                std::floor(static_cast<double>(value) / static_cast<double>(box.size()) + 0.5));
        colors.push_back(mean);
    }
    return colors;
}

// ---- The nearest entry and the diffusion, over the whole picture ------------------------------

int SquaredDistance(const Color& a, const Color& b)
{
    int sum = 0;
    for (size_t i = 0; i < 3; ++i)
        sum += (a[i] - b[i]) * (a[i] - b[i]);
    return sum;
}

size_t PlainNearest(const std::vector<Color>& palette, const Color& color)
{
    return static_cast<size_t>(std::min_element(palette.begin(), palette.end(),
                                                [&](const Color& a, const Color& b) {
                                                    return SquaredDistance(a, color) <
                                                           SquaredDistance(b, color);
                                                }) -
                               palette.begin());
}

std::vector<size_t> PlainDiffusion(const std::vector<Color>& palette, const Picture& picture,
                                   int width)
{
    const int height = static_cast<int>(picture.size()) / width;
    std::vector<Color> sixteenths(picture.size());
    const auto give = [&](int x, int y, size_t channel, int part) {
        if (x >= 0 && x < width && y < height)
            sixteenths[static_cast<size_t>(y * width + x)][channel] += part;
    };
    std::vector<size_t> entries(picture.size());
    for (int y = 0; y < height; ++y)
        for (int i = 0; i < width; ++i) {
            const int ahead = y % 2 == 0 ? 1 : -1;
            const int x = ahead > 0 ? i : width - 1 - i;
            const auto at = static_cast<size_t>(y * width + x);
            Color wanted;
            for (size_t channel = 0; channel < 3; ++channel)
                wanted[channel] = std::clamp(
                    picture[at][channel] +
                        static_cast<int>(std::floor((sixteenths[at][channel] + 8) / 16.0)),
                    0, 255);
            entries[at] = PlainNearest(palette, wanted);
            for (size_t channel = 0; channel < 3; ++channel) {
                const int difference = wanted[channel] - palette[entries[at]][channel];
                give(x + ahead, y, channel, 7 * difference);
                give(x - ahead, y + 1, channel, 3 * difference);
                give(x, y + 1, channel, 5 * difference);
                give(x + ahead, y + 1, channel, difference);
            }
        }
    return entries;
}

std::vector<size_t> Reduced(ColorReducer* reducer, const Picture& picture)
{
    const std::vector<uint8_t> bytes = BytesOf(picture);
    std::vector<size_t> entries;
    std::vector<uint8_t> row(reducer->width);
    for (size_t x = 0; x < picture.size(); x += reducer->width) {
        ReduceRow(reducer, bytes.data() + 3 * x, row.data());
        entries.insert(entries.end(), row.begin(), row.end());
    }
    return entries;
}

struct ReducerInUse {
    ReducerInUse(const std::vector<Color>& palette, uint32_t width, bool diffuses)
    {
        EXPECT_TRUE(OpenReducer(reducer.get(), PaletteOf(palette), width, diffuses));
    }
    ~ReducerInUse() { CloseReducer(reducer.get()); }
    std::unique_ptr<ColorReducer> reducer = std::make_unique<ColorReducer>();
};

} // namespace

TEST(ColorReducing, OptimalPaletteIsThatOfTheDivisionOverThePixelsThemselves)
{
    for (uint32_t seed = 1; seed <= 6; ++seed) {
        const Picture picture = Clouds(seed, 900);
        ASSERT_GT(std::set<Color>(picture.begin(), picture.end()).size(), 256u);
        for (const uint32_t most : {2u, 3u, 16u, 57u, 256u})
            EXPECT_EQ(TakenPalette(picture, most, 100), PlainDivision(picture, most))
                << "seed " << seed << ", " << most << " colours";
    }
}

TEST(ColorReducing, PictureOfFewColoursKeepsThemInTheOrderInWhichTheyCame)
{
    for (const size_t count : {size_t{1}, size_t{2}, size_t{17}, size_t{256}}) {
        Picture picture;
        for (size_t i = 0; i < count; ++i)
            picture.push_back({static_cast<int>(i * 7 % 256), static_cast<int>(i),
                               static_cast<int>(255 - i * 3 % 256)});
        const Picture once = picture;
        picture.insert(picture.end(), once.begin(), once.end());
        for (uint32_t most = 2; most <= 256; most *= 2)
            if (count <= most) {
                EXPECT_EQ(TakenPalette(picture, most, 5), once) << count << " of " << most;
            } else {
                EXPECT_LE(TakenPalette(picture, most, 5).size(), most);
            }
    }
}

TEST(ColorReducing, OneColourMoreThanThePaletteHoldsIsReduced)
{
    Picture picture;
    for (int i = 0; i < 257; ++i)
        picture.push_back({i % 256, i / 256 * 100, 255 - i % 256});
    const std::vector<Color> palette = TakenPalette(picture, 256, 257);
    EXPECT_LT(palette.size(), 256u) << "colours that share a cell cannot be told apart";
    EXPECT_GT(palette.size(), 30u);
}

TEST(ColorReducing, NearestEntryIsTheFirstOfTheClosest)
{
    std::mt19937 random(11);
    for (const size_t count : {size_t{1}, size_t{2}, size_t{30}, size_t{256}}) {
        std::vector<Color> palette;
        for (size_t i = 0; i < count; ++i)
            palette.push_back({static_cast<int>(random() % 16 * 17),
                               static_cast<int>(random() % 8 * 36),
                               static_cast<int>(random() % 4 * 85)}); // some twice
        auto matcher = std::make_unique<PaletteMatcher>();
        PrepareMatcher(matcher.get(), PaletteOf(palette));
        for (int i = 0; i < 40000; ++i) {
            const uint32_t drawn = static_cast<uint32_t>(random());
            const uint8_t rgb[] = {static_cast<uint8_t>(drawn), static_cast<uint8_t>(drawn >> 8),
                                   static_cast<uint8_t>(drawn >> 16)};
            const size_t expected = PlainNearest(palette, {rgb[0], rgb[1], rgb[2]});
            ASSERT_EQ(NearestEntry(matcher.get(), rgb), expected);
            ASSERT_EQ(NearestEntry(matcher.get(), rgb), expected) << "remembered";
        }
    }
}

TEST(ColorReducing, OfTwoEntriesAsFarAwayAcrossTheEdgeOfACellTheFirstIsTaken)
{
    // Colours are looked up in cells of 16 x 16 x 16: the corner of the first cell lies in the
    // middle between black and this grey, which is as near as black at its farthest.
    for (const bool greyFirst : {false, true}) {
        const Color black = {0, 0, 0};
        const Color grey = {30, 30, 30};
        auto matcher = std::make_unique<PaletteMatcher>();
        PrepareMatcher(matcher.get(), PaletteOf(greyFirst ? std::vector<Color>{grey, black}
                                                          : std::vector<Color>{black, grey}));
        const uint8_t corner[] = {15, 15, 15};
        const uint8_t darker[] = {15, 15, 14};
        EXPECT_EQ(NearestEntry(matcher.get(), corner), 0);
        EXPECT_EQ(NearestEntry(matcher.get(), darker), greyFirst ? 1 : 0);
    }
}

TEST(ColorReducing, DiffusionIsThatOfTheFormulaPixelByPixel)
{
    for (const uint32_t width : {1u, 2u, 3u, 40u}) {
        const Picture picture = Clouds(width, size_t{width} * 31);
        for (const uint32_t most : {2u, 5u, 16u}) {
            const std::vector<Color> palette = TakenPalette(picture, most, width);
            ReducerInUse diffusing(palette, width, true);
            const auto expected = PlainDiffusion(palette, picture, static_cast<int>(width));
            EXPECT_EQ(Reduced(diffusing.reducer.get(), picture), expected)
                << width << " wide, " << most << " colours";
            RestartReducer(diffusing.reducer.get());
            EXPECT_EQ(Reduced(diffusing.reducer.get(), picture), expected) << "again";
        }
    }
}

TEST(ColorReducing, WithoutDiffusionEachPixelGetsTheNearestEntry)
{
    const Picture picture = Clouds(5, 600);
    const std::vector<Color> palette = TakenPalette(picture, 12, 30);
    ReducerInUse plain(palette, 30, false);
    const std::vector<size_t> got = Reduced(plain.reducer.get(), picture);
    for (size_t i = 0; i < picture.size(); ++i)
        ASSERT_EQ(got[i], PlainNearest(palette, picture[i])) << i;
}

TEST(ColorReducing, DiffusionKeepsTheMeanOfAnEvenArea)
{
    for (const int level : {40, 100, 128, 215}) {
        const Picture picture(size_t{64} * 64, Color{level, level, level});
        ReducerInUse diffusing({{0, 0, 0}, {255, 255, 255}}, 64, true);
        const std::vector<size_t> entries = Reduced(diffusing.reducer.get(), picture);
        const auto white = static_cast<double>(std::count(entries.begin(), entries.end(), 1u));
        EXPECT_NEAR(white * 255 / (64 * 64), level, 3);
    }
}

TEST(ColorReducing, DiffusionOverAPaletteThatHasAllColoursChangesNone)
{
    Picture picture;
    for (int i = 0; i < 200; ++i)
        picture.push_back({i % 10 * 25, i % 7 * 30, i % 3 * 100});
    const std::vector<Color> palette = TakenPalette(picture, 256, 20);
    ReducerInUse diffusing(palette, 20, true);
    const std::vector<size_t> entries = Reduced(diffusing.reducer.get(), picture);
    for (size_t i = 0; i < picture.size(); ++i)
        ASSERT_EQ(palette[entries[i]], picture[i]) << i;
}

TEST(ColorReducing, FixedPalettesAreTheOnesOfTheirNames)
{
    const auto colors = [](FixedPalette which) {
        ReducedPalette palette;
        FillFixedPalette(which, &palette);
        const std::vector<Color> list = ColorsOf(palette);
        const std::set<Color> different(list.begin(), list.end());
        EXPECT_EQ(different.size(), list.size());
        return different;
    };
    std::set<Color> cube;
    for (int red = 0; red <= 255; red += 51)
        for (int green = 0; green <= 255; green += 51)
            for (int blue = 0; blue <= 255; blue += 51)
                cube.insert({red, green, blue});
    EXPECT_EQ(colors(FixedPalette::WebCube), cube);
    EXPECT_EQ(colors(FixedPalette::Standard16), (std::set<Color>{{0, 0, 0},
                                                                 {128, 0, 0},
                                                                 {0, 128, 0},
                                                                 {128, 128, 0},
                                                                 {0, 0, 128},
                                                                 {128, 0, 128},
                                                                 {0, 128, 128},
                                                                 {192, 192, 192},
                                                                 {128, 128, 128},
                                                                 {255, 0, 0},
                                                                 {0, 255, 0},
                                                                 {255, 255, 0},
                                                                 {0, 0, 255},
                                                                 {255, 0, 255},
                                                                 {0, 255, 255},
                                                                 {255, 255, 255}}));
    std::set<Color> all;
    std::set<Color> sixteen;
    for (int level = 0; level <= 255; ++level) {
        all.insert({level, level, level});
        if (level % 17 == 0)
            sixteen.insert({level, level, level});
    }
    EXPECT_EQ(colors(FixedPalette::Grey256), all);
    EXPECT_EQ(colors(FixedPalette::Grey16), sixteen);
    EXPECT_EQ(colors(FixedPalette::BlackAndWhite), (std::set<Color>{{0, 0, 0}, {255, 255, 255}}));
}
