// Brightness and contrast against their formula, for every value, and at the ends of the scales.

#include "standard-plugins/tests/support/Changing.h"

#include <algorithm>
#include <cmath>

using namespace plugintest;

namespace
{

/// M + (v + 2.55 b - M) * gain, in doubles, of contrasts below 100.
double Tone(int value, int brightness, int contrast)
{
    const double gain = contrast <= 0 ? 1 + contrast / 100.0 : 1 / (1 - contrast / 100.0);
    return 127.5 + (value + 2.55 * brightness - 127.5) * gain;
}

class BrightnessContrast : public ChangeTest<AdjustPlugin>
{
protected:
    BrightnessContrast() { Load("BrightnessContrast.dll"); }

    void SetTones(int brightness, int contrast)
    {
        Set(u"BrightnessContrastBrightness", static_cast<u32>(brightness + 100));
        Set(u"BrightnessContrastContrast", static_cast<u32>(contrast + 100));
    }
    /// What becomes of the values 0 to 255; in green and blue of others, to tell channels apart.
    std::vector<u8> Adjusted(int brightness, int contrast)
    {
        SetTones(brightness, contrast);
        Raster image;
        Fill(&image, 256, 1, 24, ramp);
        EXPECT_EQ(Process(&image), 1);
        const Pixels pixels = PixelsOf(&image);
        std::vector<u8> values;
        for (u32 x = 0; x < 256; ++x) {
            values.push_back(pixels.At(x, 0, 0));
            EXPECT_EQ(pixels.At((x + 7) % 256, 0, 1), values[x]);
            EXPECT_EQ(pixels.At(255 - x, 0, 2), values[x]);
        }
        return values;
    }

    Samples ramp = [](u32 x, u32, int channel) {
        const u32 values[] = {x, x + 249, 255 - x};
        return static_cast<u8>(values[channel]);
    };
};

} // namespace

TEST_F(BrightnessContrast, IsTheFormulaRoundedForEveryValue)
{
    std::vector<std::pair<int, int>> pairs;
    for (int tone = -100; tone < 100; ++tone) {
        pairs.emplace_back(tone, 0);
        pairs.emplace_back(0, tone);
        pairs.emplace_back(tone, (tone * 7 + 1000) % 200 - 100);
    }
    for (const auto& [brightness, contrast] : pairs) {
        const std::vector<u8> values = Adjusted(brightness, contrast);
        for (int value = 0; value < 256; ++value)
            ASSERT_LE(std::abs(std::clamp(Tone(value, brightness, contrast), 0.0, 255.0) -
                               values[static_cast<size_t>(value)]),
                      0.5 + 1e-9)
                << value << " at " << brightness << ", " << contrast;
    }
}

TEST_F(BrightnessContrast, RoundsAHalfUp)
{
    // 20 x 2.55 = 51; 10 x 2.55 = 25.5; at contrast -50 the step is a half: M + 0.5 * 0.5 = 127.75,
    // M + 1.5 / 2 = 128.25, M - 127.5 / 2 = 63.75.
    EXPECT_EQ(Adjusted(20, 0)[0], 51);
    EXPECT_EQ(Adjusted(20, 0)[204], 255);
    EXPECT_EQ(Adjusted(10, 0)[0], 26);
    EXPECT_EQ(Adjusted(10, 0)[100], 126);
    EXPECT_EQ(Adjusted(-10, 0)[100], 75) << "74.5";
    EXPECT_EQ(Adjusted(0, -50)[0], 64);
    EXPECT_EQ(Adjusted(0, -50)[128], 128);
    EXPECT_EQ(Adjusted(0, 50)[128], 129) << "128.5";
    EXPECT_EQ(Adjusted(0, 50)[127], 127) << "126.5";
}

TEST_F(BrightnessContrast, LeavesEveryValueAloneInTheMiddleAndWithoutSettings)
{
    std::vector<u8> same(256);
    for (size_t i = 0; i < 256; ++i)
        same[i] = static_cast<u8>(i);
    EXPECT_EQ(Adjusted(0, 0), same);
    CurrentWriterHost().settings.clear();
    Raster image;
    Fill(&image, 256, 1, 24, ramp);
    EXPECT_EQ(Process(&image), 1);
    EXPECT_TRUE(PixelsOf(&image) == PixelsOf(256, 1, ramp));
}

TEST_F(BrightnessContrast, EndsOfTheScalesAreBlackWhiteLevelAndUpright)
{
    EXPECT_EQ(Adjusted(100, 0), std::vector<u8>(256, 255));
    EXPECT_EQ(Adjusted(-100, 0), std::vector<u8>(256, 0));
    EXPECT_EQ(Adjusted(0, -100), std::vector<u8>(256, 128));
    EXPECT_EQ(Adjusted(37, -100), std::vector<u8>(256, 128));
    std::vector<u8> upright(256, 0);
    std::fill(upright.begin() + 128, upright.end(), u8{255});
    EXPECT_EQ(Adjusted(0, 100), upright);
    // Half the brightness lifts black to the very middle, which stays there.
    std::vector<u8> lifted(256, 255);
    lifted[0] = 128;
    EXPECT_EQ(Adjusted(50, 100), lifted);
    EXPECT_EQ(Adjusted(100, 100), std::vector<u8>(256, 255));
    EXPECT_EQ(Adjusted(-100, 100), std::vector<u8>(256, 0));
}

TEST_F(BrightnessContrast, WildStoredSettingsAreBroughtIntoTheRange)
{
    Set(u"BrightnessContrastBrightness", 4000000000u);
    Raster image;
    Fill(&image, 4, 2, 24, Wild);
    EXPECT_EQ(Process(&image), 1);
    EXPECT_EQ(PixelsOf(&image).bytes, std::vector<u8>(24, 255));
}

TEST_F(BrightnessContrast, ChangesEveryLineOfAPictureWhoseLinesLieInFiles)
{
    SetTones(-20, 30);
    Raster whole;
    Fill(&whole, 37, 50, 24, Wild);
    ASSERT_EQ(Process(&whole), 1);
    PretendMemory(1000);
    Raster paged;
    Fill(&paged, 37, 50, 24, Wild);
    EXPECT_GT(LineFiles(), 40u);
    EXPECT_EQ(Process(&paged), 1);
    EXPECT_TRUE(PixelsOf(&paged) == PixelsOf(&whole));
    EXPECT_FALSE(PixelsOf(&whole) == PixelsOf(37, 50, Wild));
    EXPECT_EQ(CurrentWriterHost().progress.back(), (std::pair<uint32_t, uint32_t>(50, 50)));
}

TEST_F(BrightnessContrast, RefusalLeavesTheLinesThatAreDone)
{
    SetTones(-100, 0);
    Raster image;
    Fill(&image, 5, 100, 24, [](u32, u32, int) -> u8 { return 200; });
    CurrentWriterHost().refuseFrom = 29;
    EXPECT_EQ(Process(&image), -9);
    EXPECT_TRUE(CurrentWriterHost().messages.empty());
    const Pixels pixels = PixelsOf(&image);
    for (u32 y = 0; y < 100; ++y)
        EXPECT_EQ(pixels.At(2, y, 1), y < 30 ? 0 : 200) << y;
}

TEST_F(BrightnessContrast, FailuresAreTold)
{
    Raster deep;
    ASSERT_EQ(deep.Create(9, 7, 32, nullptr, nullptr), 1);
    EXPECT_EQ(Process(&deep), -1);
    EXPECT_EQ(OnlyMessage(), u"Only pictures of 24 bits a pixel can be changed.");
    Load("BrightnessContrast.dll", 17);
    EXPECT_EQ(Process(&deep), -1);
    EXPECT_EQ(OnlyMessage(), u"変更できるのは 24 ビットの画像だけです。");
    EXPECT_EQ(CurrentWriterHost().captions.back(), u"明るさとコントラスト");
    PretendMemory(1000);
    Raster paged;
    Fill(&paged, 30, 60, 24, Wild);
    FailLineFilesFrom(20);
    EXPECT_EQ(Process(&paged), -101);
    tavrix::testing::SetFileFault(nullptr);
    EXPECT_EQ(OnlyMessage(), noLineTextJapanese);
}

TEST_F(BrightnessContrast, LineThatCannotGoBackToItsFileButStaysInMemoryIsChangedLikeTheOthers)
{
    SetTones(-100, 0);
    PretendMemory(1000);
    Raster paged;
    Fill(&paged, 30, 60, 24, [](u32, u32, int) -> u8 { return 200; });
    FailLineFilesFrom(20, false);
    EXPECT_EQ(Process(&paged), 1);
    tavrix::testing::SetFileFault(nullptr);
    EXPECT_TRUE(CurrentWriterHost().messages.empty());
    const Pixels pixels = PixelsOf(&paged);
    for (u32 y = 0; y < 60; ++y)
        EXPECT_EQ(pixels.At(29, y, 2), 0) << y;
}
