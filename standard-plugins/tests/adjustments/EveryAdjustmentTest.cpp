// What holds for each adjustment: lines in files, refusals, failures, wild settings.

#include "standard-plugins/tests/adjustments/Adjusting.h"

using namespace plugintest;
using tavrix::testing::Utf8;

namespace
{

struct Range {
    const char16_t* key;
    u32 least;
    u32 most;
};

struct Adjustment {
    const char* name;
    const char16_t* japaneseCaption;
    /// Settings by which it changes something; the first keys with their values.
    std::vector<std::pair<const char16_t*, u32>> settings;
    /// All of them, with their ranges.
    std::vector<Range> ranges;
};

const Adjustment adjustments[] = {
    {"Levels",
     u"レベル補正",
     {{u"LevelsGamma", 170}},
     {{u"LevelsInputBlack", 0, 255},
      {u"LevelsInputWhite", 0, 255},
      {u"LevelsGamma", 10, 1000},
      {u"LevelsOutputBlack", 0, 255},
      {u"LevelsOutputWhite", 0, 255}}},
    {"Curves",
     u"トーンカーブ",
     {{u"Curves128", 180}},
     {{u"Curves0", 0, 255},
      {u"Curves64", 0, 255},
      {u"Curves128", 0, 255},
      {u"Curves192", 0, 255},
      {u"Curves255", 0, 255},
      {u"CurvesChannel", 0, 3}}},
    {"HueSaturation",
     u"色相と彩度",
     {{u"HueSaturationHue", 230}},
     {{u"HueSaturationHue", 0, 360},
      {u"HueSaturationSaturation", 0, 200},
      {u"HueSaturationLightness", 0, 200}}},
    {"ColorBalance",
     u"カラーバランス",
     {{u"ColorBalanceRedMidtones", 170}},
     {{u"ColorBalanceRedShadows", 0, 200},
      {u"ColorBalanceRedMidtones", 0, 200},
      {u"ColorBalanceRedHighlights", 0, 200},
      {u"ColorBalanceGreenShadows", 0, 200},
      {u"ColorBalanceGreenMidtones", 0, 200},
      {u"ColorBalanceGreenHighlights", 0, 200},
      {u"ColorBalanceBlueShadows", 0, 200},
      {u"ColorBalanceBlueMidtones", 0, 200},
      {u"ColorBalanceBlueHighlights", 0, 200},
      {u"ColorBalanceKeepLightness", 0, 1}}},
    {"WhiteBalance",
     u"ホワイトバランス",
     {{u"WhiteBalanceBlue", 180}},
     {{u"WhiteBalanceRed", 0, 255},
      {u"WhiteBalanceGreen", 0, 255},
      {u"WhiteBalanceBlue", 0, 255},
      {u"WhiteBalanceAutomatic", 0, 1}}},
    {"AutoLevels",
     u"自動レベル補正",
     {{u"AutoLevelsClip", 300}},
     {{u"AutoLevelsClip", 0, 500}, {u"AutoLevelsPerChannel", 0, 1}}},
    {"Greyscale", u"グレースケール", {}, {{u"GreyscaleLuma", 0, 2}}},
    {"Threshold", u"2 階調化", {}, {{u"ThresholdLevel", 1, 255}, {u"ThresholdAutomatic", 0, 1}}},
    {"Invert", u"階調の反転", {}, {}},
};

void PrintTo(const Adjustment& adjustment, std::ostream* out)
{
    *out << adjustment.name;
}

class EveryAdjustment : public AdjustTest, public testing::WithParamInterface<Adjustment>
{
protected:
    EveryAdjustment()
    {
        Load(File());
        for (const auto& [key, value] : GetParam().settings)
            Set(key, value);
    }
    static std::string File() { return GetParam().name + std::string(".dll"); }
};

INSTANTIATE_TEST_SUITE_P(Each, EveryAdjustment, testing::ValuesIn(adjustments),
                         [](const auto& entry) { return std::string(entry.param.name); });

} // namespace

TEST_P(EveryAdjustment, ChangesEveryLineOfAPictureWhoseLinesLieInFiles)
{
    const Pixels whole = Adjusted(37, 50, Wild);
    PretendMemory(1000);
    Raster paged;
    Fill(&paged, 37, 50, 24, Wild);
    EXPECT_GT(LineFiles(), 40u);
    EXPECT_EQ(Process(&paged), 1);
    EXPECT_EQ(Difference(PixelsOf(&paged), whole), "");
    EXPECT_NE(Difference(whole, PixelsOf(37, 50, Wild)), "");
}

TEST_P(EveryAdjustment, RefusalLeavesTheLinesBelowAsTheyWere)
{
    const Pixels whole = Adjusted(5, 100, Wild);
    const auto reports = static_cast<int>(CurrentWriterHost().progress.size());
    EXPECT_GE(reports, 100);
    Raster image;
    Fill(&image, 5, 100, 24, Wild);
    CurrentWriterHost().refuseFrom = reports - 71;
    EXPECT_EQ(Process(&image), -9);
    EXPECT_TRUE(CurrentWriterHost().messages.empty());
    const Pixels got = PixelsOf(&image);
    const Pixels before = PixelsOf(5, 100, Wild);
    const size_t row = 15;
    EXPECT_TRUE(
        std::equal(got.bytes.begin() + 90 * row, got.bytes.end(), before.bytes.begin() + 90 * row));
}

TEST_P(EveryAdjustment, TakesWildStoredNumbersAsTheNearestOfTheRange)
{
    for (const Range& range : GetParam().ranges) {
        const auto at = [&](u32 value) {
            Set(range.key, value);
            return Adjusted(33, 3, Soft);
        };
        EXPECT_EQ(Difference(at(4294967295u), at(range.most)), "") << Utf8(range.key);
        EXPECT_EQ(Difference(at(range.most + 1), at(range.most)), "") << Utf8(range.key);
        EXPECT_EQ(Difference(at(0), at(range.least)), "") << Utf8(range.key);
    }
}

TEST_P(EveryAdjustment, ChangesEachPixelByItselfWhereverItLies)
{
    // The same colours in another order; what an adjustment finds out from all of them is alike.
    const Pixels row = Adjusted(24, 1, Wild);
    const Pixels column =
        Adjusted(1, 24, [](u32 x, u32 y, int channel) { return Wild(y, x, channel); });
    EXPECT_EQ(row.bytes, column.bytes);
}

TEST_P(EveryAdjustment, FailuresAreTold)
{
    Raster deep;
    ASSERT_EQ(deep.Create(9, 7, 32, nullptr, nullptr), 1);
    EXPECT_EQ(Process(&deep), -1);
    EXPECT_EQ(OnlyMessage(), u"Only pictures of 24 bits a pixel can be changed.");
    Load(File(), 17);
    EXPECT_EQ(Process(&deep), -1);
    EXPECT_EQ(OnlyMessage(), u"変更できるのは 24 ビットの画像だけです。");
    EXPECT_EQ(CurrentWriterHost().captions.back(), GetParam().japaneseCaption);
}
