// The TIFF writer: its forms, as other programs see them, and where it cannot go.

#include "foundation/CountingStream.h"
#include "foundation/MemoryStream.h"
#include "standard-plugins/tests/writers/ReadingBack.h"
#include "standard-plugins/tiff-output/TiffLayout.h"

using namespace plugintest;

namespace
{

class TiffWriter : public WriterTest
{
protected:
    TiffWriter() { Load("TIFF.dll"); }

    void SetForm(u32 compression, bool predictor)
    {
        Set(u"TiffOutputCompression", compression);
        Set(u"TiffOutputPredictor", predictor);
    }
    std::string Path() const { return (folder / "a.tif").string(); }
};

constexpr const char* schemes[] = {"None", "PackBits", "LZW", "AdobeDeflate"};

} // namespace

TEST_F(TiffWriter, LibrarysOwnToolSeesWhatWasChosen)
{
    Raster image;
    Fill(&image, 301, 200, 24, Soft);
    for (u32 compression = 0; compression < 4; ++compression)
        for (const bool predictor : {false, true}) {
            SetForm(compression, predictor);
            ASSERT_EQ(Write(&image, folder / "a.tif"), 1);
            // Little-endian, and with offsets of 32 bits, which more programs read.
            EXPECT_EQ(FileBytes(folder / "a.tif").substr(0, 4), std::string("II*\0", 4));
            const std::string text = AnswerOf("tiffinfo " + Path());
            for (const std::string& line :
                 {std::string("Image Width: 301 Image Length: 200"), std::string("Bits/Sample: 8"),
                  std::string("Compression Scheme: ") + schemes[compression],
                  std::string("Photometric Interpretation: RGB color"),
                  std::string("Samples/Pixel: 3"), std::string("Rows/Strip: 72"),
                  std::string("Planar Configuration: single image plane"),
                  std::string("Orientation: row 0 top, col 0 lhs")})
                EXPECT_NE(text.find(line), std::string::npos) << line << " in\n" << text;
            const bool predicts = predictor && compression >= 2;
            EXPECT_EQ(text.find("Predictor: horizontal differencing") != std::string::npos,
                      predicts)
                << text;
            EXPECT_EQ(text.find("arning"), std::string::npos) << text;
        }
}

TEST_F(TiffWriter, PicturesOfManyStripsAreReadBackWithoutADifferentPixel)
{
    for (const auto& [width, height] :
         {std::pair<u32, u32>{1500, 400}, {21845, 5}, {21846, 5}, {65535, 3}, {3, 65535}})
        for (u32 compression = 0; compression < 4; ++compression) {
            SetForm(compression, true);
            Raster image;
            Fill(&image, width, height, 24, Soft);
            ASSERT_EQ(Write(&image, folder / "a.tif"), 1);
            EXPECT_TRUE(ReadBack(tifftopnm, Path()) == PixelsOf(width, height, Soft))
                << width << " " << compression;
        }
}

TEST_F(TiffWriter, CompressionSavesAndThePredictorSavesMore)
{
    const auto size = [this](u32 compression, bool predictor) {
        SetForm(compression, predictor);
        Raster image;
        Fill(&image, 400, 300, 24, Soft);
        EXPECT_EQ(Write(&image, folder / "a.tif"), 1);
        return std::filesystem::file_size(folder / "a.tif");
    };
    const auto none = size(0, false);
    EXPECT_GT(none, 400u * 300 * 3);
    EXPECT_LT(size(2, true), none / 2);
    EXPECT_LT(size(3, true), none / 2);
    EXPECT_LT(size(2, true), size(2, false));
    EXPECT_LT(size(3, true), size(3, false));
}

TEST_F(TiffWriter, WithoutStoredSettingsItTakesLzwWithDifferencesAndWildOnesComeIntoRange)
{
    Raster image;
    Fill(&image, 100, 80, 24, Soft);
    ASSERT_EQ(Write(&image, folder / "standard"), 1);
    SetForm(2, true);
    ASSERT_EQ(Write(&image, folder / "chosen"), 1);
    EXPECT_TRUE(FileBytes(folder / "standard") == FileBytes(folder / "chosen"));
    SetForm(3, true);
    ASSERT_EQ(Write(&image, folder / "deflate"), 1);
    Set(u"TiffOutputCompression", 4294967295u);
    Set(u"TiffOutputPredictor", 17);
    ASSERT_EQ(Write(&image, folder / "wild"), 1);
    EXPECT_TRUE(FileBytes(folder / "deflate") == FileBytes(folder / "wild"));
}

TEST_F(TiffWriter, StreamIsRefusedWithASentenceBeforeAnythingIsWritten)
{
    Raster image;
    Fill(&image, 100, 80, 24, Soft);
    for (const u32 language : {9u, 17u}) {
        Load("TIFF.dll", language);
        CurrentWriterHost().messages.clear();
        CountingStream counting;
        EXPECT_EQ(WriteStream(&image, &counting), -1);
        u64 size = 1;
        ASSERT_EQ(counting.GetSize(&size), 1);
        EXPECT_EQ(size, 0u);
        std::string bytes(1000, 'x');
        MemoryStream memory;
        ASSERT_EQ(memory.Open(bytes.data(), 1000, 0, TEXT("")), 1);
        EXPECT_EQ(WriteStream(&image, &memory), -1);
        EXPECT_EQ(bytes, std::string(1000, 'x'));
        EXPECT_TRUE(CurrentWriterHost().progress.empty());
        const char16_t* expected = language == 9
                                       ? u"Pictures of this format can only be written to files."
                                       : u"この形式の画像はファイルにのみ書き込めます。";
        EXPECT_EQ(CurrentWriterHost().messages, (std::vector<std::u16string>{expected, expected}));
    }
    EXPECT_EQ(NamesIn(folder), "");
}

TEST_F(TiffWriter, HoldsNoPictureBesideTheHosts)
{
    Raster image;
    Fill(&image, 2000, 1000, 24, Soft); // 6 MB
    for (u32 compression = 0; compression < 4; ++compression) {
        SetForm(compression, true);
        MemoryPeak peak;
        CurrentWriterHost().onProgress = [&peak] { peak.Look(); };
        ASSERT_EQ(Write(&image, folder / "a.tif"), 1);
        CurrentWriterHost().onProgress = nullptr;
        EXPECT_GT(peak.Most(), 64u * 1024);
        EXPECT_LT(peak.Most(), 2u << 20);
    }
}

TEST(TiffLayout, StripsHoldSixtyFourKilobytesAndAtLeastOneRow)
{
    EXPECT_EQ(RowsPerStrip(1), 21845u);
    EXPECT_EQ(RowsPerStrip(301), 72u);
    EXPECT_EQ(RowsPerStrip(21845), 1u);
    EXPECT_EQ(RowsPerStrip(21846), 1u);
    EXPECT_EQ(RowsPerStrip(65535), 1u);
}

TEST(TiffLayout, PictureThatCouldGrowBeyondFourGigabytesNeedsABigTiff)
{
    EXPECT_FALSE(NeedsBigTiff(1, 1, true));
    EXPECT_FALSE(NeedsBigTiff(30000, 30000, true));  // 2.7 GB, 4.05 at the worst
    EXPECT_FALSE(NeedsBigTiff(37000, 37000, false)); // 4.1 GB
    EXPECT_TRUE(NeedsBigTiff(37000, 37000, true));
    EXPECT_TRUE(NeedsBigTiff(37838, 37838, false)); // 4.295 GB and a little
    EXPECT_TRUE(NeedsBigTiff(65535, 65535, false));
}
