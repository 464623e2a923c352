// The GIF writer: its palette and its forms, as other programs see them.

#include "standard-plugins/common/reducing/ColorReducer.h"
#include "standard-plugins/common/reducing/PaletteSurvey.h"
#include "standard-plugins/tests/writers/ReadingBack.h"

#include <memory>

using namespace plugintest;

namespace
{

constexpr u32 width = 121;
constexpr u32 height = 83;

class GifWriter : public WriterTest
{
protected:
    GifWriter() { Load("GIF.dll"); }

    void SetForm(u32 colors, bool diffuses, bool interlaced)
    {
        Set(u"GifOutputColors", colors);
        Set(u"GifOutputDiffusion", diffuses);
        Set(u"GifOutputInterlaced", interlaced);
    }
    std::string Path() const { return (folder / "a.gif").string(); }
    /// By the pieces that have tests of their own.
    static Pixels Expected(const Pixels& before, u32 colors, bool diffuses)
    {
        PaletteSurvey* survey = OpenPaletteSurvey();
        for (u32 y = 0; y < before.height; ++y)
            SurveyRow(survey, before.bytes.data() + size_t{3} * before.width * y, before.width);
        ReducedPalette palette = {};
        TakePalette(survey, colors, &palette);
        ClosePaletteSurvey(survey);
        auto reducer = std::make_unique<ColorReducer>();
        EXPECT_TRUE(OpenReducer(reducer.get(), palette, before.width, diffuses));
        Pixels after{before.width, before.height, {}};
        std::vector<u8> row(before.width);
        for (u32 y = 0; y < before.height; ++y) {
            ReduceRow(reducer.get(), before.bytes.data() + size_t{3} * before.width * y,
                      row.data());
            for (const u8 entry : row)
                after.bytes.insert(after.bytes.end(), palette.colors[entry],
                                   palette.colors[entry] + 3);
        }
        CloseReducer(reducer.get());
        return after;
    }
};

} // namespace

TEST_F(GifWriter, ReducesToAsManyColoursAsWereChosenInEveryForm)
{
    const Pixels before = PixelsOf(width, height, Wild);
    Raster image;
    Fill(&image, width, height, 24, Wild);
    for (const u32 colors : {2u, 3u, 16u, 33u, 255u, 256u})
        for (const bool diffuses : {false, true})
            for (const bool interlaced : {false, true}) {
                SetForm(colors, diffuses, interlaced);
                ASSERT_EQ(Write(&image, folder / "a.gif"), 1);
                EXPECT_TRUE(ReadBack(giftopnm, Path()) == Expected(before, colors, diffuses))
                    << colors << " " << diffuses << " " << interlaced;
                const int seen = std::stoi(AnswerOf("identify -format %k " + Path()));
                EXPECT_LE(seen, static_cast<int>(colors));
                EXPECT_GE(seen, static_cast<int>(colors) * 3 / 4);
            }
}

TEST_F(GifWriter, LibrarysOwnToolsSeeThePaletteTheOrderAndThePixels)
{
    Raster image;
    Fill(&image, width, height, 24, FewColors(Soft));
    for (const bool interlaced : {false, true}) {
        SetForm(256, true, interlaced);
        ASSERT_EQ(Write(&image, folder / "a.gif"), 1);
        const std::string text = AnswerOf("giftext " + Path());
        EXPECT_EQ(FileBytes(folder / "a.gif").substr(0, 6), "GIF87a");
        EXPECT_NE(text.find("BitsPerPixel = 8"), std::string::npos) << text;
        EXPECT_NE(text.find("Width = 121, Height = 83"), std::string::npos) << text;
        EXPECT_EQ(text.find("Image is Non Interlaced") == std::string::npos, interlaced) << text;
        EXPECT_EQ(OutputOf("gif2rgb -1 " + Path()), Rgb(width, height, FewColors(Soft)));
        EXPECT_EQ(AnswerOf("giftool -f '%v %s %p' < " + Path()).substr(0, 14), "GIF87a 121,83 ");
    }
}

TEST_F(GifWriter, PaletteOfTheFileIsTheNextPowerOfTwo)
{
    Raster image;
    Fill(&image, width, height, 24, Wild);
    for (const auto& [colors, bits] :
         {std::pair<u32, int>{2, 1}, {3, 2}, {4, 2}, {5, 3}, {128, 7}, {129, 8}, {256, 8}}) {
        SetForm(colors, false, false);
        ASSERT_EQ(Write(&image, folder / "a.gif"), 1);
        const std::string bytes = FileBytes(folder / "a.gif");
        EXPECT_EQ(bytes[10] & 7, bits - 1) << colors;
        // Behind header, screen and palette the image begins.
        EXPECT_EQ(bytes[13 + 3 * (size_t{1} << bits)], ',') << colors;
        EXPECT_EQ(bytes.back(), ';');
    }
    Fill(&image, 9, 9, 24, [](u32, u32, int) -> u8 { return 77; });
    ASSERT_EQ(Write(&image, folder / "a.gif"), 1);
    EXPECT_EQ(FileBytes(folder / "a.gif")[10] & 7, 0) << "one colour";
}

TEST_F(GifWriter, WithoutStoredSettingsItTakesMostColoursDiffusesAndDoesNotInterlace)
{
    Raster image;
    Fill(&image, width, height, 24, Wild);
    ASSERT_EQ(Write(&image, folder / "standard"), 1);
    SetForm(256, true, false);
    ASSERT_EQ(Write(&image, folder / "chosen"), 1);
    EXPECT_TRUE(FileBytes(folder / "standard") == FileBytes(folder / "chosen"));
    Set(u"GifOutputColors", 4294967295u);
    Set(u"GifOutputDiffusion", 4711);
    ASSERT_EQ(Write(&image, folder / "wild"), 1);
    EXPECT_TRUE(FileBytes(folder / "standard") == FileBytes(folder / "wild"));
    SetForm(0, true, false);
    ASSERT_EQ(Write(&image, folder / "few"), 1);
    EXPECT_EQ(AnswerOf("identify -format %k " + (folder / "few").string()), "2");
}

TEST_F(GifWriter, LongestSidesAreWrittenWhole)
{
    for (const auto& [across, down] : {std::pair<u32, u32>{65535, 2}, {2, 65535}})
        for (const bool interlaced : {false, true}) {
            SetForm(256, true, interlaced);
            const Samples samples = FewColors(Soft);
            Raster image;
            Fill(&image, across, down, 24, samples);
            ASSERT_EQ(Write(&image, folder / "a.gif"), 1);
            EXPECT_TRUE(ReadBack(giftopnm, Path()) == PixelsOf(across, down, samples));
        }
}

TEST_F(GifWriter, HoldsNoPictureBesideTheHosts)
{
    Raster image;
    Fill(&image, 2000, 1000, 24, Soft); // 6 MB
    for (const bool interlaced : {false, true}) {
        SetForm(256, true, interlaced);
        MemoryPeak peak;
        CurrentWriterHost().onProgress = [&peak] { peak.Look(); };
        ASSERT_EQ(Write(&image, folder / "a.gif"), 1);
        CurrentWriterHost().onProgress = nullptr;
        EXPECT_GT(peak.Most(), 64u * 1024);
        EXPECT_LT(peak.Most(), 2u << 20);
    }
}
