// The scalers against sums written out plainly in doubles, and what becomes of the picture when
// they cannot go on.

#include "standard-plugins/tests/support/Changing.h"

#include <algorithm>
#include <cmath>
#include <numbers>

using namespace plugintest;

namespace
{

struct Scaler {
    const char* file;
    double reach;
    /// Null for the mean of areas.
    double (*kernel)(double);
    const char16_t* name;
    const char16_t* japaneseName;
    /// What another program is asked for.
    const char* others;
};

double Triangle(double x)
{
    return std::max(0.0, 1 - std::abs(x));
}

double Lanczos(double x)
{
    if (x == 0)
        return 1;
    if (std::abs(x) >= 3)
        return 0;
    const double turn = std::numbers::pi * x;
    return std::sin(turn) / turn * std::sin(turn / 3) / (turn / 3);
}

double CatmullRom(double distance)
{
    const double x = std::abs(distance);
    if (x < 1)
        return 1.5 * x * x * x - 2.5 * x * x + 1;
    return x < 2 ? -0.5 * x * x * x + 2.5 * x * x - 4 * x + 2 : 0;
}

const Scaler scalers[] = {
    {"Bilinear.dll", 1, Triangle, u"Bilinear", u"バイリニア", "-filter triangle -resize"},
    {"Bicubic.dll", 2, CatmullRom, u"Bicubic", u"バイキュービック", "-filter catrom -resize"},
    {"Lanczos.dll", 3, Lanczos, u"Lanczos", u"ランチョス",
     "-filter lanczos -define filter:window=sinc -resize"},
    {"Area.dll", 0, nullptr, u"Area Average", u"面積平均", "-scale"},
};

void PrintTo(const Scaler& scaler, std::ostream* out)
{
    *out << scaler.file;
}

struct Weight {
    u32 at;
    double weight;
};

/// The share of each pixel's stretch that lies over pixels of the source.
std::vector<std::vector<Weight>> Overlaps(u32 from, u32 to)
{
    std::vector<std::vector<Weight>> all;
    const double ratio = static_cast<double>(from) / to;
    for (u32 j = 0; j < to; ++j) {
        std::vector<Weight> weights;
        const double first = j * ratio;
        const double end = first + ratio;
        for (auto i = static_cast<u32>(first); i < from && i < end; ++i)
            weights.push_back({i, (std::min(end, i + 1.0) - std::max<double>(first, i)) / ratio});
        all.push_back(weights);
    }
    return all;
}

/// The weights that each pixel of the result gives to the pixels of the source, along one side. The
/// picture goes on beyond its edges as in a mirror; what lies beyond that too is the far edge.
std::vector<std::vector<Weight>> Weights(const Scaler& scaler, u32 from, u32 to)
{
    if (!scaler.kernel)
        return Overlaps(from, to);
    std::vector<std::vector<Weight>> all;
    const double ratio = static_cast<double>(from) / to;
    const double stretch = std::max(1.0, ratio);
    const int count = static_cast<int>(from);
    for (u32 j = 0; j < to; ++j) {
        std::vector<Weight> weights;
        const double middle = (j + 0.5) * ratio;
        double total = 0;
        const int first = static_cast<int>(std::floor(middle - scaler.reach * stretch)) - 1;
        const int last = static_cast<int>(std::ceil(middle + scaler.reach * stretch)) + 1;
        for (int i = first; i <= last; ++i) {
            const double weight = scaler.kernel((i + 0.5 - middle) / stretch);
            const int at = i < 0 ? -1 - i : i >= count ? 2 * count - 1 - i : i;
            weights.push_back({static_cast<u32>(std::clamp(at, 0, count - 1)), weight});
            total += weight;
        }
        for (Weight& each : weights)
            each.weight /= total;
        all.push_back(weights);
    }
    return all;
}

std::vector<double> Scaled(const Scaler& scaler, const Pixels& in, u32 width, u32 height)
{
    const auto across = Weights(scaler, in.width, width);
    const auto down = Weights(scaler, in.height, height);
    std::vector<double> rows(size_t{in.height} * width * 3);
    for (u32 y = 0; y < in.height; ++y)
        for (u32 x = 0; x < width; ++x)
            for (const Weight& each : across[x])
                for (u32 channel = 0; channel < 3; ++channel)
                    rows[(size_t{y} * width + x) * 3 + channel] +=
                        each.weight * in.At(each.at, y, channel);
    const size_t line = size_t{3} * width;
    std::vector<double> out(height * line);
    for (u32 y = 0; y < height; ++y)
        for (const Weight& each : down[y])
            for (size_t x = 0; x < line; ++x)
                out[y * line + x] += each.weight * rows[each.at * line + x];
    return out;
}

class Scale : public ChangeTest<ScalePlugin>, public testing::WithParamInterface<Scaler>
{
protected:
    Scale() { Load(GetParam().file); }

    i32 Run(Raster* image, u32 width, u32 height)
    {
        CurrentWriterHost().progress.clear();
        CurrentWriterHost().messages.clear();
        const i32 result = plugin.ScaleImage(image, width, height, WriterCallbacks());
        image->UnlockAll();
        return result;
    }
    Pixels Resize(u32 fromWidth, u32 fromHeight, const Samples& samples, u32 width, u32 height)
    {
        Raster image;
        Fill(&image, fromWidth, fromHeight, 24, samples);
        EXPECT_EQ(Run(&image, width, height), 1);
        EXPECT_TRUE(CurrentWriterHost().messages.empty());
        return PixelsOf(&image);
    }
    void ExpectRight(u32 fromWidth, u32 fromHeight, u32 width, u32 height)
    {
        const Pixels got = Resize(fromWidth, fromHeight, Wild, width, height);
        ASSERT_EQ(got.width, width);
        ASSERT_EQ(got.height, height);
        const Pixels in = PixelsOf(fromWidth, fromHeight, Wild);
        EXPECT_LE(LargestError(got, Scaled(GetParam(), in, width, height)), allowed)
            << fromWidth << "x" << fromHeight << " to " << width << "x" << height;
    }

    // Half a step of rounding and a thousandth of the floats.
    static constexpr double allowed = 0.501;
};

INSTANTIATE_TEST_SUITE_P(Each, Scale, testing::ValuesIn(scalers), [](const auto& entry) {
    const std::string file = entry.param.file;
    return file.substr(0, file.find('.'));
});

} // namespace

TEST_P(Scale, MakesPicturesLargerExactButForOneRounding)
{
    ExpectRight(40, 30, 60, 45);
    ExpectRight(40, 30, 41, 31);
    ExpectRight(23, 31, 160, 37);
    ExpectRight(23, 31, 29, 200);
}

TEST_P(Scale, MakesPicturesSmallerExactButForOneRounding)
{
    ExpectRight(90, 75, 30, 25);
    ExpectRight(90, 75, 89, 74);
    ExpectRight(90, 75, 31, 7);
    ExpectRight(200, 150, 3, 2);
}

TEST_P(Scale, ChangesOneSideAloneOrBothAgainstEachOther)
{
    ExpectRight(50, 40, 50, 17);
    ExpectRight(50, 40, 23, 40);
    ExpectRight(50, 40, 120, 9);
    ExpectRight(50, 40, 11, 90);
}

TEST_P(Scale, WorksOnPicturesOfOnePixelOneLineAndOneColumn)
{
    struct Size {
        u32 width;
        u32 height;
    };
    const Size sizes[] = {{1, 1}, {1, 2}, {2, 1}, {2, 2}, {3, 5}, {1, 40}, {40, 1}, {7, 1}};
    for (const Size from : sizes)
        for (const Size to : sizes)
            ExpectRight(from.width, from.height, to.width, to.height);
}

TEST_P(Scale, ReachesTheLongestSidesThatPicturesHave)
{
    ExpectRight(3, 1, 65535, 1);
    ExpectRight(1, 3, 1, 65535);
    ExpectRight(65535, 1, 5, 2);
    ExpectRight(1, 65535, 2, 5);
}

TEST_P(Scale, JoinsTheStripsOfColumnsInWhichALongWayDownIsGone)
{
    ExpectRight(300, 4000, 300, 3);
}

TEST_P(Scale, LeavesPicturesOfOneColourOfThatColour)
{
    for (const u8 level : {u8{0}, u8{1}, u8{128}, u8{255}}) {
        const auto flat = [level](u32, u32, int channel) {
            return channel == 2 ? static_cast<u8>(255 - level) : level;
        };
        EXPECT_TRUE(Resize(37, 29, flat, 101, 83) == PixelsOf(101, 83, flat));
        EXPECT_TRUE(Resize(37, 29, flat, 11, 5) == PixelsOf(11, 5, flat));
        EXPECT_TRUE(Resize(1, 1, flat, 9, 4) == PixelsOf(9, 4, flat));
    }
}

TEST_P(Scale, ToTheSameSizeTouchesNoPixelAndAsksNobody)
{
    CurrentWriterHost().refuseFrom = 0;
    EXPECT_TRUE(Resize(31, 20, Wild, 31, 20) == PixelsOf(31, 20, Wild));
}

TEST_P(Scale, HoldsABandOfLinesAloneHoweverManyTheFilterSpans)
{
    // The kernel spans all 800 lines, which as floats are 17 megabytes; line by line it is another
    // road to the same sums.
    const Pixels in = PixelsOf(1800, 800, Wild);
    for (const u32 height : {1u, 3u}) {
        Raster image;
        Fill(&image, 1800, 800, 24, Wild);
        MemoryPeak peak;
        CurrentWriterHost().onProgress = [&peak] { peak.Look(); };
        EXPECT_EQ(Run(&image, 9, height), 1);
        EXPECT_GT(peak.Most(), 0u);
        EXPECT_LT(peak.Most(), 4u << 20);
        EXPECT_LE(LargestError(PixelsOf(&image), Scaled(GetParam(), in, 9, height)), allowed)
            << height;
    }
}

TEST_P(Scale, FewLinesWideEnoughAreReducedLineByLineToo)
{
    // 65,535 pixels are 786 kilobytes a line. Wide blocks, whose lines do not come to the same
    // grey.
    Raster image;
    Fill(&image, 65535, 26, 24,
         [](u32 x, u32 y, int channel) { return Wild(x / 8192, y, channel); });
    const Pixels in = PixelsOf(&image);
    ASSERT_EQ(Run(&image, 40, 2), 1);
    EXPECT_LE(LargestError(PixelsOf(&image), Scaled(GetParam(), in, 40, 2)), allowed);
}

TEST_P(Scale, MakesTheSameOfAPictureWhoseLinesLieInFiles)
{
    for (const u32 height : {31u, 200u}) {
        PretendMemory(u64{1} << 30);
        const Pixels whole = Resize(64, 90, Wild, 77, height);
        PretendMemory(1000);
        Raster paged;
        Fill(&paged, 64, 90, 24, Wild);
        EXPECT_GT(LineFiles(), 80u);
        EXPECT_EQ(Run(&paged, 77, height), 1);
        EXPECT_TRUE(PixelsOf(&paged) == whole);
    }
}

TEST_P(Scale, RefusalOfAnyReportLeavesThePictureAsItWas)
{
    const Pixels before = PixelsOf(50, 60, Wild);
    (void)Resize(50, 60, Wild, 70, 45);
    const auto reports = static_cast<int>(CurrentWriterHost().progress.size());
    EXPECT_EQ(CurrentWriterHost().progress.back(), (std::pair<uint32_t, uint32_t>(1000, 1000)));
    EXPECT_GE(reports, 50);
    EXPECT_LE(reports, 102);
    Raster image;
    Fill(&image, 50, 60, 24, Wild);
    for (int refused = 0; refused < reports; ++refused) {
        CurrentWriterHost().refuseFrom = refused;
        ASSERT_EQ(Run(&image, 70, 45), -9) << refused;
        EXPECT_EQ(CurrentWriterHost().progress.size(), static_cast<size_t>(refused) + 1);
        EXPECT_TRUE(CurrentWriterHost().messages.empty()) << "he knows";
        ASSERT_TRUE(PixelsOf(&image) == before) << refused;
    }
}

TEST_P(Scale, SizesWithoutPixelsOrBeyondAllMeasureAreRefusedBeforeAnythingIsMade)
{
    Raster image;
    Fill(&image, 20, 10, 24, Wild);
    struct Size {
        u32 width;
        u32 height;
    };
    MemoryPeak peak;
    for (const Size size :
         {Size{0, 0}, Size{0, 5}, Size{5, 0}, Size{65536, 1}, Size{1, 65536},
          Size{4294967295u, 4294967295u}, Size{65535, 65535}, Size{32768, 32769}}) {
        EXPECT_EQ(Run(&image, size.width, size.height), -1) << size.width << "x" << size.height;
        EXPECT_EQ(OnlyMessage(), u"The new size must be from 1 to 65535 pixels a side, and 1024 "
                                 u"megapixels at the most.");
        EXPECT_TRUE(CurrentWriterHost().progress.empty());
    }
    peak.Look();
    EXPECT_LT(peak.Most(), 100'000u);
    EXPECT_TRUE(PixelsOf(&image) == PixelsOf(20, 10, Wild));
    Load(GetParam().file, 17);
    EXPECT_EQ(Run(&image, 0, 1), -1);
    EXPECT_EQ(OnlyMessage(), u"新しい大きさは 1 辺 1 から 65535 ピクセル、全体で 1024 "
                             u"メガピクセルまでです。");
    EXPECT_EQ(CurrentWriterHost().captions.back(), GetParam().japaneseName);
}

TEST_P(Scale, WhereLinesCannotGoToTheirFilesItIsToldAndThePictureIsAsItWas)
{
    // The source is in memory, the result in files; the disk takes none of them from some line on.
    const Pixels before = PixelsOf(50, 60, Wild);
    for (const u32 language : {9u, 17u})
        for (const int attempt : {0, 5, 40}) {
            PretendMemory(u64{1} << 30);
            Load(GetParam().file, language);
            Raster image;
            Fill(&image, 50, 60, 24, Wild);
            PretendMemory(1000);
            FailLineFilesFrom(attempt);
            EXPECT_LT(Run(&image, 70, 80), 0) << attempt;
            tavrix::testing::SetFileFault(nullptr);
            EXPECT_EQ(OnlyMessage(), language == 17 ? noLineTextJapanese : noLineText) << attempt;
            EXPECT_EQ(CurrentWriterHost().messageFlags.back(), 16u);
        }
}

TEST_P(Scale, OtherDepthsAndPicturesWithoutPixelsAreRefusedUntouched)
{
    for (const u32 depth : {8u, 16u, 32u}) {
        Raster image;
        ASSERT_EQ(image.Create(9, 7, depth, nullptr, nullptr), 1);
        EXPECT_EQ(Run(&image, 4, 4), -1);
        EXPECT_EQ(OnlyMessage(), u"Only pictures of 24 bits a pixel can be changed.");
        RasterInfo info = {};
        info.size = sizeof info;
        ASSERT_EQ(image.GetInfo(&info), 1);
        EXPECT_EQ(info.width, 9u);
        EXPECT_EQ(info.depth, depth);
    }
    Raster empty;
    EXPECT_EQ(Run(&empty, 4, 4), -1);
    EXPECT_EQ(OnlyMessage(), u"The picture has no pixels.");
}

TEST_P(Scale, IsAsNearToAnotherProgramAsThatOneRounds)
{
    // The other program rounds between its passes and treats edges its own way.
    Raster image;
    Fill(&image, 160, 120, 24, Soft);
    ASSERT_EQ(Run(&image, 100, 75), 1);
    const Pixels ours = PixelsOf(&image);
    WriteBytes(folder / "in.ppm", Ppm(160, 120, Soft));
    const std::string theirs = OutputOf("convert " + (folder / "in.ppm").string() + " " +
                                        GetParam().others + " 100x75! -depth 8 rgb:-");
    ASSERT_EQ(theirs.size(), ours.bytes.size());
    for (u32 y = 5; y < 70; ++y)
        for (u32 x = 5; x < 95; ++x)
            for (u32 channel = 0; channel < 3; ++channel)
                ASSERT_NEAR(ours.At(x, y, channel),
                            static_cast<u8>(theirs[(size_t{y} * 100 + x) * 3 + channel]), 2)
                    << x << "," << y;
}

namespace
{

class AreaScale : public Scale
{
protected:
    /// Each pixel as a square of its own colour.
    static Samples Squares(u32 side)
    {
        return [side](u32 x, u32 y, int channel) { return Wild(x / side, y / side, channel); };
    }
};

INSTANTIATE_TEST_SUITE_P(Alone, AreaScale, testing::Values(scalers[3]));

/// The sum of whole shares, divided once, a half up.
Pixels WholeMeans(const Pixels& in, u32 width, u32 height)
{
    const auto shares = [](u64 pixel, u64 from, u64 to, u64 at) {
        const u64 first = std::max(pixel * from, at * to);
        const u64 end = std::min((pixel + 1) * from, (at + 1) * to);
        return end > first ? end - first : 0;
    };
    Pixels out{width, height, {}};
    const u64 area = u64{in.width} * in.height;
    for (u32 y = 0; y < height; ++y)
        for (u32 x = 0; x < width; ++x)
            for (u32 channel = 0; channel < 3; ++channel) {
                u64 sum = 0;
                for (u32 v = 0; v < in.height; ++v)
                    for (u32 u = 0; u < in.width; ++u)
                        sum += shares(x, in.width, width, u) * shares(y, in.height, height, v) *
                               in.At(u, v, channel);
                out.bytes.push_back(static_cast<u8>((2 * sum + area) / (2 * area)));
            }
    return out;
}

} // namespace

TEST_P(AreaScale, IsTheMeanOfWhatEachPixelCoversRoundedAHalfUp)
{
    struct Size {
        u32 width;
        u32 height;
    };
    const Size sizes[] = {{1, 1}, {2, 1}, {3, 5}, {7, 4}, {16, 9}, {10, 21}};
    for (const Size from : sizes)
        for (const Size to : sizes) {
            const Pixels in = PixelsOf(from.width, from.height, Wild);
            EXPECT_EQ(Resize(from.width, from.height, Wild, to.width, to.height),
                      WholeMeans(in, to.width, to.height))
                << from.width << "x" << from.height << " to " << to.width << "x" << to.height;
        }
}

TEST_P(AreaScale, EnlargesByWholeNumbersIntoSquaresAndBackWithoutLoss)
{
    for (const u32 side : {2u, 3u, 7u}) {
        EXPECT_EQ(Resize(13, 9, Wild, 13 * side, 9 * side),
                  PixelsOf(13 * side, 9 * side, Squares(side)));
        EXPECT_EQ(Resize(13 * side, 9 * side, Squares(side), 13, 9), PixelsOf(13, 9, Wild));
    }
}

TEST_P(AreaScale, AddsUpTheLongestSidesAndTheLightestColourExactly)
{
    const auto white = [](u32, u32, int) -> u8 { return 255; };
    EXPECT_EQ(Resize(65535, 9, white, 1, 1), PixelsOf(1, 1, white));
    EXPECT_EQ(Resize(65535, 2, white, 65534, 1), PixelsOf(65534, 1, white));
}
