// The JPEG XL writer: quality, effort and limits, as other programs see them.

#include "standard-plugins/jxl-output/JxlMemory.h"
#include "standard-plugins/tests/writers/ReadingBack.h"

using namespace plugintest;

namespace
{

constexpr u32 width = 140;
constexpr u32 height = 100;

/// Slopes with some noise on them, which a coarser quality loses.
u8 Busy(u32 x, u32 y, int channel)
{
    return static_cast<u8>(Soft(x, y, channel) / 2 + Wild(x, y, channel) / 8);
}

class JxlWriter : public WriterTest
{
protected:
    JxlWriter() { Load("JXL.dll"); }

    void SetForm(bool lossless, u32 quality, u32 effort)
    {
        Set(u"JxlOutputLossless", lossless);
        Set(u"JxlOutputQuality", quality);
        Set(u"JxlOutputEffort", effort);
    }
    /// The file's bytes.
    std::string Written(bool lossless, u32 quality, u32 effort)
    {
        SetForm(lossless, quality, effort);
        Raster image;
        Fill(&image, width, height, 24, Busy);
        EXPECT_EQ(Write(&image, folder / "a.jxl"), 1);
        return FileBytes(folder / "a.jxl");
    }
    double Signal()
    {
        return SignalToNoise(ReadBack(djxl, folder / "a.jxl"), PixelsOf(width, height, Busy));
    }
};

} // namespace

TEST_F(JxlWriter, QualityIsPaidForInBytesAndSeenInTheSignal)
{
    const size_t coarse = Written(false, 1, 3).size();
    const double coarseSignal = Signal();
    const size_t middle = Written(false, 70, 3).size();
    const double middleSignal = Signal();
    const size_t fine = Written(false, 100, 3).size();
    const double fineSignal = Signal();
    EXPECT_LT(coarse, middle);
    EXPECT_LT(middle, fine);
    EXPECT_GT(coarseSignal, 20);
    EXPECT_GT(fineSignal, coarseSignal + 2);
    EXPECT_GT(fineSignal, middleSignal + 2);
    EXPECT_GT(fineSignal, 38);
}

TEST_F(JxlWriter, QualityIsTheDistanceOfTheLibrarysOwnTool)
{
    // A tenth of what is missing to 100.
    const std::string path = (folder / "a").string();
    WriteBytes(path + ".ppm", Ppm(width, height, Busy));
    for (const auto& [quality, distance] : {std::pair{90u, "1"}, {70u, "3"}, {30u, "7"}}) {
        const auto size = static_cast<double>(Written(false, quality, 3).size());
        const double signal = Signal();
        const std::string answer = AnswerOf("cjxl -e 3 -d " + std::string(distance) + " " + path +
                                            ".ppm " + path + ".jxl");
        EXPECT_NEAR(size, static_cast<double>(FileBytes(path + ".jxl").size()), size / 10)
            << answer;
        EXPECT_NEAR(signal, Signal(), 0.5) << answer;
    }
}

TEST_F(JxlWriter, EachEffortGivesAnotherFile)
{
    for (const bool lossless : {false, true}) {
        const std::string standard = Written(lossless, 90, 3);
        for (const u32 effort : {1u, 5u, 7u})
            EXPECT_FALSE(Written(lossless, 90, effort) == standard) << lossless << " " << effort;
    }
}

TEST_F(JxlWriter, EveryEffortGivesAFileThatIsReadBack)
{
    for (u32 effort = 1; effort <= 9; ++effort) {
        Written(false, 90, effort);
        EXPECT_GT(Signal(), 28) << effort;
        Written(true, 90, effort);
        EXPECT_EQ(Signal(), 1000) << effort;
    }
}

TEST_F(JxlWriter, OtherToolSeesThePictureAndItsColours)
{
    Written(true, 90, 3);
    const std::string text = AnswerOf("jxlinfo " + (folder / "a.jxl").string());
    EXPECT_NE(text.find("140x100"), std::string::npos) << text;
    EXPECT_NE(text.find("8-bit"), std::string::npos) << text;
    EXPECT_NE(text.find("sRGB"), std::string::npos) << text;
}

TEST_F(JxlWriter, WithoutStoredSettingsItIsNinetyWithLossAndWildOnesComeIntoRange)
{
    Raster image;
    Fill(&image, width, height, 24, Busy);
    ASSERT_EQ(Write(&image, folder / "standard"), 1);
    EXPECT_TRUE(Written(false, 90, 3) == FileBytes(folder / "standard"));
    EXPECT_FALSE(Written(false, 80, 3) == FileBytes(folder / "standard"));
    EXPECT_FALSE(Written(true, 90, 3) == FileBytes(folder / "standard"));
    const std::string least = Written(false, 1, 1);
    EXPECT_TRUE(Written(false, 0, 0) == least);
    const std::string most = Written(true, 100, 9);
    EXPECT_TRUE(Written(true, 4294967295u, 1000) == most);
}

TEST_F(JxlWriter, RefusalOfEachReportEndsItAtEveryEffort)
{
    Raster image;
    Fill(&image, 40, 33, 24, Soft);
    for (const bool lossless : {false, true})
        for (const u32 effort : {1u, 3u, 5u, 7u, 8u, 9u}) {
            SetForm(lossless, 90, effort);
            CurrentWriterHost().refuseFrom = -1;
            ASSERT_EQ(Write(&image, folder / "a.jxl"), 1);
            const auto reports = static_cast<int>(CurrentWriterHost().progress.size());
            std::filesystem::remove(folder / "a.jxl");
            // The rows are the first half; all of the library's, and some of the rows'.
            for (int refused = 48; refused < reports; ++refused) {
                CurrentWriterHost().refuseFrom = refused;
                EXPECT_EQ(Write(&image, folder / "a.jxl"), -9) << refused;
                EXPECT_EQ(CurrentWriterHost().progress.size(), static_cast<size_t>(refused) + 1);
                EXPECT_EQ(NamesIn(folder), "");
            }
        }
    EXPECT_TRUE(CurrentWriterHost().messages.empty());
}

TEST_F(JxlWriter, PictureBeyondTheLimitOfMemoryIsRefusedAndTheSettingNamed)
{
    Raster image;
    Fill(&image, 500, 300, 24, Soft); // 43 MB with loss, 47 without
    Set(u"JxlOutputMemory", 44);
    EXPECT_EQ(Write(&image, folder / "lossy"), 1);
    for (const u32 language : {9u, 17u}) {
        Load("JXL.dll", language);
        Set(u"JxlOutputLossless", 1);
        CurrentWriterHost().messages.clear();
        EXPECT_EQ(Write(&image, folder / "a.jxl"), -2);
        ASSERT_EQ(CurrentWriterHost().messages.size(), 1u);
        const std::u16string& told = CurrentWriterHost().messages[0];
        EXPECT_NE(told.find(u"JxlOutputMemory"), std::u16string::npos);
        EXPECT_EQ(told.starts_with(u"A JPEG XL of this picture takes more memory"), language == 9);
        EXPECT_TRUE(CurrentWriterHost().progress.empty());
    }
    EXPECT_EQ(NamesIn(folder), "lossy");
    Set(u"JxlOutputMemory", 48);
    EXPECT_EQ(Write(&image, folder / "a.jxl"), 1);
}

TEST_F(JxlWriter, TakesNoMoreMemoryThanWasReckoned)
{
    for (const bool lossless : {false, true})
        for (const u32 effort : {1u, 3u, 7u, 9u})
            for (const Samples& samples : {Samples(Wild), Samples(Soft)}) {
                SetForm(lossless, 90, effort);
                Raster image;
                Fill(&image, 200, 150, 24, samples);
                MemoryPeak peak;
                CurrentWriterHost().onProgress = [&peak] { peak.Look(); };
                ASSERT_EQ(Write(&image, folder / "a.jxl"), 1);
                CurrentWriterHost().onProgress = nullptr;
                EXPECT_GT(peak.Most(), 200u * 150 * 3);
                EXPECT_LT(peak.Most(), JxlMemoryNeeded(200, 150, {lossless, 90, effort, 0}));
            }
}
