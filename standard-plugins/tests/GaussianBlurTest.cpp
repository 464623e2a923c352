// The Gaussian blur against sums written out plainly in doubles, and what it leaves when it cannot
// go on.

#include "standard-plugins/tests/support/Changing.h"

#include <algorithm>
#include <cmath>

using namespace plugintest;

namespace
{

/// The kernel of the header, over both directions at once in exact order, with nothing rounded:
/// out(x, y) = sum over i, j of g(i) g(j) in(x + i, y + j), of the nearest pixel outside.
std::vector<double> Blurred(const Pixels& in, double sigma)
{
    const int reach = static_cast<int>(std::ceil(3 * sigma - 1e-9));
    std::vector<double> kernel;
    double total = 0;
    for (int k = -reach; k <= reach; ++k) {
        kernel.push_back(std::exp(-k * k / (2 * sigma * sigma)));
        total += kernel.back();
    }
    const auto nearest = [](int at, u32 count) {
        return static_cast<u32>(std::clamp(at, 0, static_cast<int>(count) - 1));
    };
    std::vector<double> across(in.bytes.size());
    std::vector<double> out(in.bytes.size());
    for (u32 y = 0; y < in.height; ++y)
        for (u32 x = 0; x < in.width; ++x)
            for (u32 channel = 0; channel < 3; ++channel) {
                double sum = 0;
                for (int k = -reach; k <= reach; ++k)
                    sum += kernel[static_cast<size_t>(k + reach)] *
                           in.At(nearest(static_cast<int>(x) + k, in.width), y, channel);
                across[(size_t{y} * in.width + x) * 3 + channel] = sum / total;
            }
    for (u32 y = 0; y < in.height; ++y)
        for (size_t i = 0; i < size_t{3} * in.width; ++i) {
            double sum = 0;
            for (int k = -reach; k <= reach; ++k)
                sum +=
                    kernel[static_cast<size_t>(k + reach)] *
                    across[nearest(static_cast<int>(y) + k, in.height) * size_t{3} * in.width + i];
            out[size_t{y} * 3 * in.width + i] = sum / total;
        }
    return out;
}

class GaussianBlur : public ChangeTest<EffectPlugin>
{
protected:
    GaussianBlur() { Load("GaussianBlur.dll"); }

    Pixels Blur(u32 width, u32 height, const Samples& samples, u32 tenths)
    {
        Set(u"GaussianBlurRadius", tenths);
        Raster image;
        Fill(&image, width, height, 24, samples);
        EXPECT_EQ(Process(&image), 1);
        EXPECT_TRUE(CurrentWriterHost().messages.empty());
        return PixelsOf(&image);
    }
};

// Half a step of rounding, 1/512 of the rows between, a hundredth of the floats.
constexpr double allowed = 0.51;

} // namespace

TEST_F(GaussianBlur, IsTheSumWithTheWeightsOfTheCurveRoundedToTheNearest)
{
    for (const u32 tenths : {1u, 3u, 5u, 10u, 20u, 37u, 80u}) {
        const Pixels in = PixelsOf(53, 41, Wild);
        EXPECT_LE(LargestError(Blur(53, 41, Wild, tenths), Blurred(in, tenths / 10.0)), allowed)
            << tenths;
    }
}

TEST_F(GaussianBlur, ReallyBlursAtEveryRadius)
{
    // A white pixel on black: what is left of it in its place is g(0) g(0), which shrinks.
    const auto point = [](u32 x, u32 y, int) -> u8 { return x == 20 && y == 15 ? 255 : 0; };
    EXPECT_EQ(Blur(41, 31, point, 1).At(20, 15, 0), 255);
    // sigma 1: 1 / (1 + 2 (e^-1/2 + e^-2 + e^-9/2)) = 0.39905, squared 0.15924, of 255: 40.6.
    EXPECT_EQ(Blur(41, 31, point, 10).At(20, 15, 1), 41);
    // And beside it e^-1/2 of that: 24.6; at the corner of the reach e^-9 of it: 0.
    EXPECT_EQ(Blur(41, 31, point, 10).At(21, 15, 2), 25);
    EXPECT_EQ(Blur(41, 31, point, 10).At(20, 14, 2), 25);
    EXPECT_EQ(Blur(41, 31, point, 10).At(24, 15, 2), 0);
}

TEST_F(GaussianBlur, LeavesPicturesOfOneColourAsTheyAre)
{
    for (const u32 tenths : {1u, 8u, 33u, 1000u})
        for (const u8 level : {u8{0}, u8{1}, u8{127}, u8{254}, u8{255}}) {
            const auto flat = [level](u32, u32, int channel) {
                return channel == 1 ? static_cast<u8>(255 - level) : level;
            };
            EXPECT_TRUE(Blur(31, 17, flat, tenths) == PixelsOf(31, 17, flat))
                << tenths << " " << int{level};
        }
}

TEST_F(GaussianBlur, WorksOnPicturesSmallerThanItsRadius)
{
    struct Size {
        u32 width;
        u32 height;
    };
    for (const Size size : {Size{1, 1}, Size{1, 60}, Size{60, 1}, Size{2, 3}, Size{300, 2}})
        for (const u32 tenths : {5u, 40u, 250u, 1000u}) {
            const Pixels in = PixelsOf(size.width, size.height, Wild);
            EXPECT_LE(LargestError(Blur(size.width, size.height, Wild, tenths),
                                   Blurred(in, tenths / 10.0)),
                      allowed)
                << size.width << "x" << size.height << " " << tenths;
        }
}

TEST_F(GaussianBlur, MakesTheSameOfAPictureWhoseLinesLieInFiles)
{
    const Pixels whole = Blur(64, 90, Wild, 45);
    PretendMemory(1000);
    Raster paged;
    Fill(&paged, 64, 90, 24, Wild);
    EXPECT_GT(LineFiles(), 80u);
    EXPECT_EQ(Process(&paged), 1);
    EXPECT_GT(LineFiles(), 80u) << "no more than a line stays in memory";
    EXPECT_TRUE(PixelsOf(&paged) == whole);
}

TEST_F(GaussianBlur, BandOfAPictureComesOutAsInTheWhole)
{
    // Rows whose neighbourhood is there in full do not depend on what lies beyond it.
    const Pixels whole = Blur(40, 120, Wild, 30);
    const auto band = [](u32 x, u32 y, int channel) { return Wild(x, y + 50, channel); };
    const Pixels part = Blur(40, 40, band, 30);
    for (u32 y = 9; y < 31; ++y)
        for (u32 x = 0; x < 40; ++x)
            for (u32 channel = 0; channel < 3; ++channel)
                ASSERT_EQ(part.At(x, y, channel), whole.At(x, y + 50, channel)) << x << "," << y;
}

TEST_F(GaussianBlur, HoldsABandOfRowsAlone)
{
    // 13 rows of 8 bytes a pixel, and three rows of floats: not the 1,000 rows of the picture.
    Set(u"GaussianBlurRadius", 20);
    Raster image;
    Fill(&image, 500, 1000, 24, [](u32 x, u32, int) { return static_cast<u8>(x); });
    MemoryPeak peak;
    CurrentWriterHost().onProgress = [&peak] { peak.Look(); };
    EXPECT_EQ(Process(&image), 1);
    EXPECT_GT(peak.Most(), 13u * 500 * 6);
    EXPECT_LT(peak.Most(), 200'000u);
}

TEST_F(GaussianBlur, TellsItsProgressUpToTheEnd)
{
    (void)Blur(10, 350, Wild, 20);
    const auto& progress = CurrentWriterHost().progress;
    EXPECT_GE(progress.size(), 90u);
    EXPECT_LE(progress.size(), 102u);
    EXPECT_EQ(progress.back(), (std::pair<uint32_t, uint32_t>(350, 350)));
}

TEST_F(GaussianBlur, RefusalLeavesTheLinesThatAreDoneAndThoseThatAreNot)
{
    const Pixels whole = Blur(20, 100, Wild, 25);
    const Pixels before = PixelsOf(20, 100, Wild);
    for (const int refused : {0, 1, 40, 98}) {
        Raster image;
        Fill(&image, 20, 100, 24, Wild);
        CurrentWriterHost().refuseFrom = refused;
        EXPECT_EQ(Process(&image), -9);
        EXPECT_EQ(CurrentWriterHost().progress.size(), static_cast<size_t>(refused) + 1);
        EXPECT_TRUE(CurrentWriterHost().messages.empty()) << "he knows";
        const Pixels after = PixelsOf(&image);
        const u32 done = CurrentWriterHost().progress.back().first;
        for (u32 y = 0; y < 100; ++y)
            for (u32 x = 0; x < 20; ++x)
                ASSERT_EQ(after.At(x, y, 0), (y < done ? whole : before).At(x, y, 0)) << y;
    }
}

TEST_F(GaussianBlur, LineThatCannotBeHadIsToldInBothLanguages)
{
    for (const u32 language : {9u, 17u})
        for (const int attempt : {0, 1, 50}) {
            Load("GaussianBlur.dll", language);
            PretendMemory(1000);
            Raster paged;
            Fill(&paged, 30, 60, 24, Wild);
            FailLineFilesFrom(attempt);
            EXPECT_EQ(Process(&paged), -101) << attempt;
            tavrix::testing::SetFileFault(nullptr);
            EXPECT_EQ(OnlyMessage(), language == 17 ? noLineTextJapanese : noLineText);
            EXPECT_EQ(CurrentWriterHost().captions.back(),
                      language == 17 ? u"ガウスぼかし" : u"Gaussian Blur");
            EXPECT_EQ(CurrentWriterHost().messageFlags.back(), 16u);
        }
}

TEST_F(GaussianBlur, OtherDepthsAndPicturesWithoutPixelsAreRefusedUntouched)
{
    for (const u32 depth : {8u, 16u, 32u}) {
        Raster image;
        ASSERT_EQ(image.Create(9, 7, depth, nullptr, nullptr), 1);
        EXPECT_EQ(Process(&image), -1);
        EXPECT_EQ(OnlyMessage(), u"Only pictures of 24 bits a pixel can be changed.");
    }
    Raster empty;
    EXPECT_EQ(Process(&empty), -1);
    EXPECT_EQ(OnlyMessage(), u"The picture has no pixels.");
}

TEST_F(GaussianBlur, WildStoredRadiusesAreBroughtIntoTheRange)
{
    const auto point = [](u32 x, u32 y, int) -> u8 { return x == 4 && y == 4 ? 255 : 0; };
    EXPECT_TRUE(Blur(9, 9, point, 0) == Blur(9, 9, point, 1));
    EXPECT_TRUE(Blur(9, 9, point, 4000000000u) == Blur(9, 9, point, 1000));
    CurrentWriterHost().settings.clear();
    Raster image;
    Fill(&image, 9, 9, 24, point);
    EXPECT_EQ(Process(&image), 1);
    EXPECT_TRUE(PixelsOf(&image) == Blur(9, 9, point, 20)) << "two pixels at first";
}
