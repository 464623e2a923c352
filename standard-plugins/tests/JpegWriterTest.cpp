// The JPEG writer: what it writes, as other programs read it, held against what other encoders make
// of the same picture.

#include "foundation/CountingStream.h"
#include "foundation/MemoryStream.h"
#include "standard-plugins/tests/support/MemoryInUse.h"
#include "standard-plugins/tests/support/Writing.h"

#include <algorithm>
#include <cstdlib>

using namespace plugintest;

namespace
{

constexpr u32 largestSide = 17;
constexpr int blockSize = 16; // the largest that a colour's block covers

/// A choice of the dialog, and how other programs name it.
struct Sampling {
    u32 number;
    const char* factor;     // of cjpeg and convert
    const char* identified; // by identify
};
const Sampling samplings[] = {
    {1, "1x1", "1x1,1x1,1x1"}, {2, "2x1", "2x1,1x1,1x1"}, {3, "2x2", "2x2,1x1,1x1"}};

class JpegWriter : public WriterTest
{
protected:
    JpegWriter() { Load("JPEG.dll"); }

    void SetForm(u32 quality, u32 sampling, bool progressive)
    {
        Set(u"JpegOutputQuality", quality);
        Set(u"JpegOutputSampling", sampling);
        Set(u"JpegOutputProgressive", progressive);
    }
    std::string File(const std::string& name) const { return (folder / name).string(); }
    std::string Form(const std::string& name) const
    {
        return AnswerOf("identify -format '%[jpeg:sampling-factor] %[interlace] %Q' " + File(name));
    }
};

u64 SquaredError(const std::string& a, const std::string& b)
{
    EXPECT_EQ(a.size(), b.size());
    u64 sum = 0;
    for (size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
        const int difference = static_cast<u8>(a[i]) - static_cast<u8>(b[i]);
        sum += static_cast<u64>(difference * difference);
    }
    return sum;
}

std::string TwoDigits(u32 number)
{
    return {static_cast<char>('0' + number / 10), static_cast<char>('0' + number % 10)};
}

} // namespace

TEST_F(JpegWriter, EverySmallSizeComesAsCloseAsFromAnotherEncoder)
{
    for (u32 height = 1; height <= largestSide; ++height)
        for (u32 width = 1; width <= largestSide; ++width)
            WriteBytes(folder / ("in" + TwoDigits(height) + TwoDigits(width) + ".ppm"),
                       Ppm(width, height, Soft));
    for (const Sampling& sampling : samplings)
        for (const bool progressive : {false, true}) {
            SetForm(85, sampling.number, progressive);
            for (u32 height = 1; height <= largestSide; ++height)
                for (u32 width = 1; width <= largestSide; ++width) {
                    Raster image;
                    Fill(&image, width, height, 24, Soft);
                    ASSERT_EQ(Write(&image, folder / ("our" + TwoDigits(height) + TwoDigits(width) +
                                                      ".jpg")),
                              1);
                }
            EXPECT_EQ(AnswerOf("convert " + File("in*.ppm") + " -quality 85 -sampling-factor " +
                               sampling.factor + (progressive ? " -interlace Plane " : " ") +
                               File("other%03d.jpg")),
                      "");
            const std::string ours = OutputOf("convert " + File("our*.jpg") + " rgb:-");
            const std::string others = OutputOf("convert " + File("other*.jpg") + " rgb:-");
            size_t at = 0;
            for (u32 height = 1; height <= largestSide; ++height)
                for (u32 width = 1; width <= largestSide; ++width) {
                    const std::string original = Rgb(width, height, Soft);
                    ASSERT_LE(at + original.size(), ours.size());
                    const u64 error = SquaredError(ours.substr(at, original.size()), original);
                    const u64 most = SquaredError(others.substr(at, original.size()), original);
                    EXPECT_LE(error, most + most / 20 + 2 * blockSize)
                        << width << "x" << height << " " << sampling.factor << progressive;
                    at += original.size();
                }
            EXPECT_EQ(at, ours.size());
            EXPECT_EQ(Form("our0909.jpg"),
                      std::string(sampling.identified) + (progressive ? " JPEG 85" : " None 85"));
        }
}

TEST_F(JpegWriter, EveryQualityIsThatOfTheCodecsOwnProgram)
{
    constexpr u32 width = 203;
    constexpr u32 height = 151;
    Raster image;
    Fill(&image, width, height, 24, Soft);
    WriteBytes(folder / "in.ppm", Ppm(width, height, Soft));
    const std::string original = Rgb(width, height, Soft);
    u64 before = ~u64{0};
    for (const u32 quality : {1u, 30u, 75u, 90u, 100u})
        for (const Sampling& sampling : samplings) {
            SetForm(quality, sampling.number, false);
            ASSERT_EQ(Write(&image, folder / "our.jpg"), 1);
            (void)OutputOf("cjpeg -quality " + std::to_string(quality) + " -sample " +
                           sampling.factor + " -baseline -dct int -outfile " + File("other.jpg") +
                           " " + File("in.ppm"));
            const std::string ours = OutputOf("djpeg -dct int -ppm " + File("our.jpg"));
            const std::string others = OutputOf("djpeg -dct int -ppm " + File("other.jpg"));
            EXPECT_TRUE(ours == others) << quality << " " << sampling.factor;
            EXPECT_GT(ours.size(), original.size()); // it was read at all
            if (sampling.number != 1)
                continue;
            const u64 error = SquaredError(ours.substr(ours.size() - original.size()), original);
            EXPECT_LT(error, before) << quality;
            before = error;
        }
}

TEST_F(JpegWriter, ProgressiveFileHasThePixelsOfTheBaselineOne)
{
    Raster image;
    Fill(&image, 203, 151, 24, Soft);
    SetForm(70, 3, false);
    ASSERT_EQ(Write(&image, folder / "plain.jpg"), 1);
    SetForm(70, 3, true);
    ASSERT_EQ(Write(&image, folder / "progressive.jpg"), 1);
    EXPECT_TRUE(OutputOf("djpeg -ppm " + File("plain.jpg")) ==
                OutputOf("djpeg -ppm " + File("progressive.jpg")));
    EXPECT_EQ(Form("progressive.jpg"), "2x2,1x1,1x1 JPEG 70");
}

TEST_F(JpegWriter, WithoutStoredSettingsItIsOfQualityNinetyAndEveryPixelHasItsColour)
{
    Raster image;
    Fill(&image, 40, 30, 24, Soft);
    ASSERT_EQ(Write(&image, folder / "a.jpg"), 1);
    EXPECT_EQ(Form("a.jpg"), "1x1,1x1,1x1 None 90");
}

TEST_F(JpegWriter, AutomaticallyPixelsShareTheirColourBelowQualityNinety)
{
    Raster image;
    Fill(&image, 40, 30, 24, Soft);
    SetForm(89, 0, false);
    ASSERT_EQ(Write(&image, folder / "a.jpg"), 1);
    EXPECT_EQ(Form("a.jpg"), "2x2,1x1,1x1 None 89");
    SetForm(100, 0, false);
    ASSERT_EQ(Write(&image, folder / "a.jpg"), 1);
    EXPECT_EQ(Form("a.jpg"), "1x1,1x1,1x1 None 100");
}

TEST_F(JpegWriter, WildStoredSettingsAreBroughtIntoTheirRange)
{
    Raster image;
    Fill(&image, 40, 30, 24, Soft);
    SetForm(0, 99, true);
    ASSERT_EQ(Write(&image, folder / "a.jpg"), 1);
    EXPECT_EQ(Form("a.jpg"), "2x2,1x1,1x1 JPEG 1");
    SetForm(4294967295u, 4294967295u, false);
    Set(u"JpegOutputMemory", 4294967295u);
    ASSERT_EQ(Write(&image, folder / "a.jpg"), 1);
    EXPECT_EQ(Form("a.jpg"), "2x2,1x1,1x1 None 100");
}

TEST_F(JpegWriter, OtherDepthsGiveTheSameFile)
{
    Raster image;
    Fill(&image, 61, 47, 24, Soft);
    ASSERT_EQ(Write(&image, folder / "24.jpg"), 1);
    Raster deep;
    Fill(&deep, 61, 47, 32, Soft);
    ASSERT_EQ(Write(&deep, folder / "32.jpg"), 1);
    EXPECT_TRUE(FileBytes(folder / "24.jpg") == FileBytes(folder / "32.jpg"));
}

TEST_F(JpegWriter, StreamGetsTheBytesOfTheFileAndAMeasuringOneTheirNumber)
{
    Raster image;
    Fill(&image, 211, 173, 24, Wild);
    for (const bool progressive : {false, true}) {
        SetForm(100, 1, progressive);
        ASSERT_EQ(Write(&image, folder / "a.jpg"), 1);
        const std::string bytes = FileBytes(folder / "a.jpg");
        std::string written(bytes.size(), '\0');
        MemoryStream memory;
        ASSERT_EQ(memory.Open(written.data(), static_cast<u32>(written.size()), 0, TEXT("")), 1);
        EXPECT_EQ(WriteStream(&image, &memory), 1);
        EXPECT_TRUE(written == bytes);
        CountingStream counting;
        EXPECT_EQ(WriteStream(&image, &counting), 1);
        u64 size = 0;
        ASSERT_EQ(counting.GetSize(&size), 1);
        EXPECT_EQ(size, bytes.size());
    }
}

TEST_F(JpegWriter, SidesBeyondTheFormatsAreRefusedAndNothingIsMade)
{
    for (const auto& [width, height] : {std::pair<u32, u32>{65501, 1}, {1, 65501}}) {
        Raster image;
        Fill(&image, width, height, 24, Soft);
        EXPECT_EQ(Write(&image, folder / "a.jpg"), -1);
        EXPECT_EQ(NamesIn(folder), "");
    }
    ASSERT_EQ(CurrentWriterHost().messages.size(), 2u);
    EXPECT_EQ(CurrentWriterHost().messages[0],
              u"A JPEG picture holds at most 65,500 pixels a side.");
    Load("JPEG.dll", 17);
    Raster image;
    Fill(&image, 1, 65535, 24, Soft);
    EXPECT_EQ(Write(&image, folder / "a.jpg"), -1);
    EXPECT_EQ(CurrentWriterHost().messages[2], u"JPEG 画像の 1 辺は最大 65,500 画素です。");
    CurrentWriterHost().messages.clear();
    Raster largest;
    Fill(&largest, 65500, 1, 24, Soft);
    EXPECT_EQ(Write(&largest, folder / "a.jpg"), 1);
    EXPECT_EQ(OutputOf("djpeg -ppm " + File("a.jpg") + " | head -c 11"), "P6\n65500 1\n");
    EXPECT_TRUE(CurrentWriterHost().messages.empty());
}

TEST_F(JpegWriter, ProgressiveFileThatTakesTooMuchIsRefusedByTheSettingsName)
{
    // A unit of 16 by 16 pixels has six blocks of 128 bytes: 1365 of them fit into a megabyte.
    Set(u"JpegOutputMemory", 1);
    Raster fits;
    Fill(&fits, 16 * 65, 16 * 21, 24, Soft); // 1365 units
    SetForm(90, 3, true);
    EXPECT_EQ(Write(&fits, folder / "a.jpg"), 1);
    Raster large;
    Fill(&large, 16 * 65 + 1, 16 * 21, 24, Soft); // 1386 units
    EXPECT_EQ(Write(&large, folder / "b.jpg"), -2);
    EXPECT_EQ(NamesIn(folder), "a.jpg");
    ASSERT_EQ(CurrentWriterHost().messages.size(), 1u);
    EXPECT_NE(CurrentWriterHost().messages[0].find(u"JpegOutputMemory"), std::u16string::npos);
    EXPECT_EQ(CurrentWriterHost().captions[0], u"JPEG writer");
    SetForm(90, 3, false);
    EXPECT_EQ(Write(&large, folder / "b.jpg"), 1) << "a baseline file needs no such memory";
}

TEST_F(JpegWriter, ProgressGrowsToItsTotal)
{
    Raster image;
    Fill(&image, 100, 500, 24, Soft);
    for (const bool progressive : {false, true}) {
        SetForm(90, 3, progressive);
        ASSERT_EQ(Write(&image, folder / "a.jpg"), 1);
        const auto& told = CurrentWriterHost().progress;
        EXPECT_GE(told.size(), 60u);
        EXPECT_LE(told.size(), 101u);
        for (size_t i = 1; i < told.size(); ++i) {
            EXPECT_GT(told[i].first, told[i - 1].first);
            EXPECT_EQ(told[i].second, told[0].second);
        }
        EXPECT_EQ(told.back().first, told.back().second);
        // The rows of a progressive file are half of the work.
        EXPECT_EQ(told.back().second, progressive ? 1000u : 500u);
    }
}

TEST_F(JpegWriter, BaselineFileNeedsNoPictureBesideTheHosts)
{
    Raster image;
    Fill(&image, 2000, 1500, 24, Soft); // 9 MB
    SetForm(75, 3, false);
    MemoryPeak peak;
    CurrentWriterHost().onProgress = [&peak] { peak.Look(); };
    ASSERT_EQ(Write(&image, folder / "a.jpg"), 1);
    EXPECT_GT(peak.Most(), 64u * 1024);
    EXPECT_LT(peak.Most(), 1024u * 1024);
}
