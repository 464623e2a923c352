// The WebP writer: quality, effort and limits, as other programs see them.

#include "platform/testing/Thorough.h"
#include "standard-plugins/tests/writers/ReadingBack.h"
#include "standard-plugins/webp-output/WebPMemory.h"

using namespace plugintest;

namespace
{

constexpr u32 width = 220;
constexpr u32 height = 150;

class WebPWriter : public WriterTest
{
protected:
    WebPWriter() { Load("WebP.dll"); }

    /// The file's bytes.
    std::string Written(bool lossless, u32 quality, u32 effort, const Samples& samples = Soft)
    {
        Set(u"WebpOutputLossless", lossless);
        Set(u"WebpOutputQuality", quality);
        Set(u"WebpOutputEffort", effort);
        Raster image;
        Fill(&image, width, height, 24, samples);
        EXPECT_EQ(Write(&image, folder / "a.webp"), 1);
        return FileBytes(folder / "a.webp");
    }
    double Signal(const Samples& samples = Soft)
    {
        return SignalToNoise(ReadBack(dwebp, folder / "a.webp"), PixelsOf(width, height, samples));
    }
    std::string Info() { return AnswerOf("webpinfo " + (folder / "a.webp").string()); }
};

} // namespace

TEST_F(WebPWriter, QualityIsPaidForInBytesAndSeenInTheSignal)
{
    const size_t coarse = Written(false, 5, 4).size();
    const double coarseSignal = Signal();
    const size_t middle = Written(false, 60, 4).size();
    const double middleSignal = Signal();
    const size_t fine = Written(false, 100, 4).size();
    const double fineSignal = Signal();
    EXPECT_LT(coarse, middle);
    EXPECT_LT(middle, fine);
    EXPECT_GT(coarseSignal, 20);
    EXPECT_GT(middleSignal, coarseSignal + 2);
    EXPECT_GT(fineSignal, middleSignal + 2);
    EXPECT_GT(fineSignal, 38);
}

TEST_F(WebPWriter, StandardQualityIsGood)
{
    Written(false, 90, 4);
    EXPECT_GT(Signal(), 34);
    EXPECT_LT(Signal(), 1000);
}

TEST_F(WebPWriter, OtherToolSeesTheFormat)
{
    Written(false, 90, 4);
    EXPECT_NE(Info().find("Format: Lossy (1)"), std::string::npos) << Info();
    EXPECT_NE(Info().find("Width: 220"), std::string::npos) << Info();
    EXPECT_NE(Info().find("Height: 150"), std::string::npos) << Info();
    EXPECT_NE(Info().find("No error detected."), std::string::npos) << Info();
    Written(true, 90, 4);
    EXPECT_NE(Info().find("Format: Lossless (2)"), std::string::npos) << Info();
    EXPECT_NE(Info().find("Alpha: 0"), std::string::npos) << Info();
    EXPECT_NE(Info().find("No error detected."), std::string::npos) << Info();
}

TEST_F(WebPWriter, MoreEffortGivesSmallerFilesWithoutLossAndTheQualityDoesNotMatterThere)
{
    const std::string quick = Written(true, 90, 0);
    const std::string thorough = Written(true, 90, 6);
    EXPECT_LT(thorough.size(), quick.size());
    EXPECT_TRUE(Written(true, 1, 6) == thorough);
    EXPECT_EQ(Signal(), 1000);
}

TEST_F(WebPWriter, EachEffortGivesAnotherFileWithLossOfLikeQuality)
{
    const std::string standard = Written(false, 90, 4);
    const double signal = Signal();
    for (const u32 effort : {0u, 2u, 6u}) {
        EXPECT_FALSE(Written(false, 90, effort) == standard) << effort;
        EXPECT_NEAR(Signal(), signal, 3) << effort;
    }
}

TEST_F(WebPWriter, WithoutStoredSettingsItIsNinetyWithLossAndWildOnesComeIntoRange)
{
    Raster image;
    Fill(&image, width, height, 24, Soft);
    ASSERT_EQ(Write(&image, folder / "standard"), 1);
    EXPECT_TRUE(Written(false, 90, 4) == FileBytes(folder / "standard"));
    const std::string most = Written(false, 100, 6);
    EXPECT_TRUE(Written(false, 4294967295u, 1000) == most);
}

TEST_F(WebPWriter, LongestSideIsWrittenAndOneMoreIsRefusedInBothLanguages)
{
    for (const auto& [across, down] : {std::pair<u32, u32>{16383, 1}, {1, 16383}}) {
        Raster image;
        Fill(&image, across, down, 24, Soft);
        Set(u"WebpOutputLossless", 1);
        ASSERT_EQ(Write(&image, folder / "a.webp"), 1);
        EXPECT_TRUE(ReadBack(dwebp, folder / "a.webp") == PixelsOf(across, down, Soft));
        std::filesystem::remove(folder / "a.webp");
    }
    for (const auto& [across, down] : {std::pair<u32, u32>{16384, 1}, {1, 16384}})
        for (const u32 language : {9u, 17u}) {
            Load("WebP.dll", language);
            Raster image;
            Fill(&image, across, down, 24, Soft);
            CurrentWriterHost().messages.clear();
            EXPECT_EQ(Write(&image, folder / "a.webp"), -1);
            EXPECT_EQ(CurrentWriterHost().messages,
                      (std::vector<std::u16string>{
                          language == 9 ? u"A WebP picture holds at most 16,383 pixels a side."
                                        : u"WebP 画像の 1 辺は最大 16,383 画素です。"}));
        }
    EXPECT_EQ(NamesIn(folder), "");
}

TEST_F(WebPWriter, PictureBeyondTheLimitOfMemoryIsRefusedAndTheSettingNamed)
{
    Raster image;
    Fill(&image, 1000, 300, 24, Soft); // 11 MB with loss, 21 without
    Set(u"WebpOutputMemory", 12);
    EXPECT_EQ(Write(&image, folder / "lossy"), 1);
    for (const u32 language : {9u, 17u}) {
        Load("WebP.dll", language);
        Set(u"WebpOutputLossless", 1);
        CurrentWriterHost().messages.clear();
        EXPECT_EQ(Write(&image, folder / "a.webp"), -2);
        ASSERT_EQ(CurrentWriterHost().messages.size(), 1u);
        const std::u16string& told = CurrentWriterHost().messages[0];
        EXPECT_NE(told.find(u"WebpOutputMemory"), std::u16string::npos);
        EXPECT_EQ(told.starts_with(u"A WebP of this picture takes more memory"), language == 9);
        EXPECT_TRUE(CurrentWriterHost().progress.empty());
    }
    EXPECT_EQ(NamesIn(folder), "lossy");
    Set(u"WebpOutputMemory", 21);
    EXPECT_EQ(Write(&image, folder / "a.webp"), 1);
}

TEST_F(WebPWriter, TakesTheQuickWayWhereItsMemoryIsAllowed)
{
    Set(u"WebpOutputQuality", 100);
    Raster image;
    Fill(&image, 600, 500, 24, Wild);
    const uint64_t most[] = {WebPMemoryNeeded(600, 500, {false, 100, 4, 0}),
                             WebPMemoryOfQuickWay(600, 500)};
    size_t taken[2] = {};
    for (int quick = 0; quick < 2; ++quick) {
        Set(u"WebpOutputMemory", static_cast<u32>((most[quick] >> 20) + 1));
        MemoryPeak peak;
        CurrentWriterHost().onProgress = [&peak] { peak.Look(); };
        ASSERT_EQ(Write(&image, folder / (quick ? "quick.webp" : "slow.webp")), 1);
        CurrentWriterHost().onProgress = nullptr;
        taken[quick] = peak.Most();
        EXPECT_LT(taken[quick], most[quick]);
    }
    EXPECT_GT(taken[1], taken[0] + 600u * 500 * 4); // it is the other way
}

TEST_F(WebPWriter, TakesNoMoreMemoryThanWasReckoned)
{
    for (const bool lossless : {false, true})
        for (const u32 effort : {0u, 4u, 6u})
            for (const Samples& samples : {Samples(Wild), Samples(Soft)}) {
                if (effort == 6 && lossless && !tavrix::testing::AreTestsThorough())
                    continue; // takes as long as the rest of the suite
                Set(u"WebpOutputLossless", lossless);
                Set(u"WebpOutputMemory", lossless ? 31 : 15); // too little for the quick way
                Set(u"WebpOutputEffort", effort);
                Raster image;
                Fill(&image, 600, 500, 24, samples);
                MemoryPeak peak;
                CurrentWriterHost().onProgress = [&peak] { peak.Look(); };
                ASSERT_EQ(Write(&image, folder / "a.webp"), 1);
                CurrentWriterHost().onProgress = nullptr;
                EXPECT_GT(peak.Most(), 600u * 500 * 4);
                EXPECT_LT(peak.Most(), WebPMemoryNeeded(600, 500, {lossless, 90, effort, 0}));
            }
}
