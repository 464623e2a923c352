// The PNG writer: what it writes, as other programs read it.

#include "foundation/ColorTable.h"
#include "foundation/CountingStream.h"
#include "foundation/MemoryStream.h"
#include "standard-plugins/tests/support/MemoryInUse.h"
#include "standard-plugins/tests/support/Writing.h"

using namespace plugintest;

namespace
{

constexpr u32 largestSide = 17;

class PngWriter : public WriterTest
{
protected:
    PngWriter() { Load("PNG.dll"); }

    void SetForm(u32 compression, bool interlaced)
    {
        Set(u"PngOutputCompression", compression);
        Set(u"PngOutputInterlaced", interlaced);
    }
};

std::string TwoDigits(u32 number)
{
    return {static_cast<char>('0' + number / 10), static_cast<char>('0' + number % 10)};
}

} // namespace

TEST_F(PngWriter, EverySmallSizeIsReadBackWithoutADifferentPixel)
{
    for (const auto& [depth, interlaced] :
         {std::pair<u32, bool>{24, false}, {24, true}, {32, true}}) {
        SetForm(6, interlaced);
        const std::filesystem::path here =
            folder / (std::to_string(depth) + (interlaced ? "i" : ""));
        std::filesystem::create_directory(here);
        std::string expected;
        for (u32 height = 1; height <= largestSide; ++height)
            for (u32 width = 1; width <= largestSide; ++width) {
                Raster image;
                Fill(&image, width, height, depth, Wild);
                ASSERT_EQ(Write(&image, here / (TwoDigits(height) + TwoDigits(width) + ".png")), 1);
                expected += Rgb(width, height, Wild);
            }
        const std::string all = " " + here.string() + "/*.png";
        EXPECT_TRUE(OutputOf("convert" + all + " -depth 8 rgb:-") == expected);
        EXPECT_EQ(AnswerOf("pngcheck -q" + all), "");
        // Every file is of the form that was asked for.
        EXPECT_EQ(AnswerOf("pngcheck" + all + " | grep -c '24-bit RGB, " +
                           (interlaced ? "" : "non-") + "interlaced'"),
                  std::to_string(largestSide * largestSide));
    }
}

TEST_F(PngWriter, AnotherProgramCountsNoDifferentPixelAtAnyCompression)
{
    constexpr u32 width = 203;
    constexpr u32 height = 151;
    Raster image;
    Fill(&image, width, height, 24, Soft);
    WriteBytes(folder / "reference.ppm", Ppm(width, height, Soft));
    std::vector<uintmax_t> sizes;
    for (u32 compression = 0; compression <= 9; ++compression)
        for (const bool interlaced : {false, true}) {
            SetForm(compression, interlaced);
            ASSERT_EQ(Write(&image, folder / "a.png"), 1);
            EXPECT_EQ(AnswerOf("compare -metric AE " + (folder / "a.png").string() + " " +
                               (folder / "reference.ppm").string() + " null:"),
                      "0");
            if (!interlaced)
                sizes.push_back(std::filesystem::file_size(folder / "a.png"));
        }
    // A level of 0 stores; the most work gives less than the least.
    EXPECT_GT(sizes[0], width * height * 3u);
    EXPECT_LT(sizes[1], sizes[0] / 2);
    EXPECT_LT(sizes[9], sizes[1]);
}

TEST_F(PngWriter, WithoutStoredSettingsItCompressesAsBySixAndDoesNotInterlace)
{
    Raster image;
    Fill(&image, 100, 80, 24, Soft);
    ASSERT_EQ(Write(&image, folder / "standard.png"), 1);
    SetForm(6, false);
    ASSERT_EQ(Write(&image, folder / "chosen.png"), 1);
    EXPECT_TRUE(FileBytes(folder / "standard.png") == FileBytes(folder / "chosen.png"));
    SetForm(1, false);
    ASSERT_EQ(Write(&image, folder / "quick.png"), 1);
    EXPECT_FALSE(FileBytes(folder / "standard.png") == FileBytes(folder / "quick.png"));
}

TEST_F(PngWriter, WildStoredSettingsAreBroughtIntoTheirRange)
{
    Raster image;
    Fill(&image, 100, 80, 24, Soft);
    SetForm(9, true);
    ASSERT_EQ(Write(&image, folder / "nine.png"), 1);
    Set(u"PngOutputCompression", 4294967295u);
    Set(u"PngOutputInterlaced", 4711);
    ASSERT_EQ(Write(&image, folder / "wild.png"), 1);
    EXPECT_TRUE(FileBytes(folder / "nine.png") == FileBytes(folder / "wild.png"));
}

TEST_F(PngWriter, PaletteGivesThePixelsOfEightBitsTheirColours)
{
    constexpr u32 width = 19;
    constexpr u32 height = 16;
    const auto value = [](u32 x, u32 y) { return static_cast<u8>(x * 13 + y * 7); };
    for (const u32 count : {0u, 3u, 256u, 300u}) {
        Raster image;
        ASSERT_EQ(image.Create(width, height, 8, nullptr, nullptr), 1);
        ColorTable* colors = nullptr;
        ASSERT_EQ(image.GetPalette(&colors), 1);
        std::vector<PaletteEntry> entries;
        for (u32 i = 0; i < count; ++i)
            entries.push_back({i * 3 % 256, 255 - i % 256, i * i % 256, 7});
        if (count != 0) {
            ASSERT_EQ(colors->SetEntries(entries.data(), count), 1);
        }
        for (u32 y = 0; y < height; ++y) {
            u8* line = nullptr;
            ASSERT_EQ(image.LockLines(static_cast<i32>(y), &line, nullptr), 1);
            for (u32 x = 0; x < width; ++x)
                line[x] = value(x, y);
        }
        image.UnlockAll();
        ASSERT_EQ(Write(&image, folder / "a.png"), 1);
        const Samples expected = [&](u32 x, u32 y, int channel) -> u8 {
            const u8 index = value(x, y);
            if (count == 0)
                return index; // grey
            if (index >= count)
                return 0; // black
            const PaletteEntry& entry = entries[index];
            return static_cast<u8>(channel == 0   ? entry.red
                                   : channel == 1 ? entry.green
                                                  : entry.blue);
        };
        EXPECT_TRUE(OutputOf("convert " + (folder / "a.png").string() + " -depth 8 rgb:-") ==
                    Rgb(width, height, expected))
            << count;
    }
}

TEST_F(PngWriter, StreamGetsTheBytesOfTheFileAndAMeasuringOneTheirNumber)
{
    Raster image;
    Fill(&image, 211, 173, 24, Wild);
    for (const bool interlaced : {false, true}) {
        SetForm(6, interlaced);
        ASSERT_EQ(Write(&image, folder / "a.png"), 1);
        const std::string bytes = FileBytes(folder / "a.png");
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

TEST_F(PngWriter, ProgressGrowsToItsTotalAndIsToldOncePerHundredth)
{
    Raster image;
    Fill(&image, 9, 500, 24, Soft);
    for (const bool interlaced : {false, true}) {
        SetForm(6, interlaced);
        ASSERT_EQ(Write(&image, folder / "a.png"), 1);
        const auto& told = CurrentWriterHost().progress;
        EXPECT_GE(told.size(), 100u);
        EXPECT_LE(told.size(), 101u);
        for (size_t i = 1; i < told.size(); ++i) {
            EXPECT_GT(told[i].first, told[i - 1].first);
            EXPECT_EQ(told[i].second, told[0].second);
        }
        EXPECT_EQ(told.back().first, told.back().second);
    }
}

TEST_F(PngWriter, HoldsNoPictureBesideTheHosts)
{
    constexpr u32 width = 2000;
    constexpr u32 height = 1500; // 9 MB
    Raster image;
    Fill(&image, width, height, 24, Soft);
    for (const bool interlaced : {false, true}) {
        SetForm(1, interlaced);
        MemoryPeak peak;
        CurrentWriterHost().onProgress = [&peak] { peak.Look(); };
        ASSERT_EQ(Write(&image, folder / "a.png"), 1);
        EXPECT_GT(peak.Most(), 64u * 1024);
        EXPECT_LT(peak.Most(), 1024u * 1024);
    }
}

TEST_F(PngWriter, PictureStaysAsItWas)
{
    Raster image;
    Fill(&image, 33, 21, 32, Wild);
    const auto lines = [&image] {
        std::string bytes;
        for (i32 y = 0; y < 21; ++y) {
            u8* line = nullptr;
            EXPECT_EQ(image.LockLines(y, &line, nullptr), 1);
            bytes.append(reinterpret_cast<const char*>(line), 33 * 4);
        }
        image.UnlockAll();
        return bytes;
    };
    const std::string before = lines();
    ASSERT_EQ(Write(&image, folder / "a.png"), 1);
    EXPECT_TRUE(lines() == before);
}
