// What the writers of GIF, TIFF, WebP and JPEG XL have in common.

#include "foundation/ColorTable.h"
#include "foundation/CountingStream.h"
#include "foundation/MemoryStream.h"
#include "platform/testing/Thorough.h"
#include "standard-plugins/tests/writers/ReadingBack.h"

using namespace plugintest;

namespace
{

struct Setting {
    const char16_t* key;
    u32 value;
};

/// A form without loss, and two programs that read it.
struct Form {
    const char* name;
    const char* file;
    std::vector<Setting> settings;
    std::vector<const char*> readers;
    bool goesToStreams = true;
    bool isOfPalette = false;
    bool isSlow = false; // some 100 kB a second
};

const std::vector<const char*> gifReaders = {giftopnm, imageMagick, graphicsMagick};
const std::vector<const char*> tiffReaders = {tifftopnm, imageMagick, graphicsMagick};
const std::vector<const char*> webpReaders = {dwebp, imageMagick};

const Form forms[] = {
    {"Gif", "GIF.dll", {}, gifReaders, true, true},
    {"PlainGif", "GIF.dll", {{u"GifOutputDiffusion", 0}}, gifReaders, true, true},
    {"InterlacedGif", "GIF.dll", {{u"GifOutputInterlaced", 1}}, gifReaders, true, true},
    {"PlainInterlacedGif",
     "GIF.dll",
     {{u"GifOutputInterlaced", 1}, {u"GifOutputDiffusion", 0}},
     gifReaders,
     true,
     true},
    {"UncompressedTiff", "TIFF.dll", {{u"TiffOutputCompression", 0}}, tiffReaders, false},
    {"PackBitsTiff", "TIFF.dll", {{u"TiffOutputCompression", 1}}, tiffReaders, false},
    {"LzwTiff", "TIFF.dll", {}, tiffReaders, false},
    {"PlainLzwTiff", "TIFF.dll", {{u"TiffOutputPredictor", 0}}, tiffReaders, false},
    {"DeflateTiff", "TIFF.dll", {{u"TiffOutputCompression", 3}}, tiffReaders, false},
    {"PlainDeflateTiff",
     "TIFF.dll",
     {{u"TiffOutputCompression", 3}, {u"TiffOutputPredictor", 0}},
     tiffReaders,
     false},
    {"WebP", "WebP.dll", {{u"WebpOutputLossless", 1}}, webpReaders},
    {"QuickWebP", "WebP.dll", {{u"WebpOutputLossless", 1}, {u"WebpOutputEffort", 0}}, webpReaders},
    {"ThoroughWebP",
     "WebP.dll",
     {{u"WebpOutputLossless", 1}, {u"WebpOutputEffort", 6}},
     webpReaders,
     true,
     false,
     true},
    {"Jxl", "JXL.dll", {{u"JxlOutputLossless", 1}}, {djxl}},
    {"QuickJxl", "JXL.dll", {{u"JxlOutputLossless", 1}, {u"JxlOutputEffort", 1}}, {djxl}},
    {"ThoroughJxl", "JXL.dll", {{u"JxlOutputLossless", 1}, {u"JxlOutputEffort", 7}}, {djxl}},
};

void PrintTo(const Form& form, std::ostream* out)
{
    *out << form.name;
}

std::string NameOf(const testing::TestParamInfo<Form>& entry)
{
    return entry.param.name;
}

class EveryWriter : public WriterTest, public testing::WithParamInterface<Form>
{
protected:
    EveryWriter()
    {
        Load(GetParam().file);
        for (const Setting& setting : GetParam().settings)
            Set(setting.key, setting.value);
    }
    static std::string NameOfForm() { return GetParam().name; }
    /// Samples that the form can hold.
    static Samples Fitting(const Samples& samples)
    {
        return GetParam().isOfPalette ? FewColors(samples) : samples;
    }
    /// The part of a larger picture's sides that is written.
    static u32 Shrinking()
    {
        return GetParam().isSlow && !tavrix::testing::AreTestsThorough() ? 4 : 1;
    }
    void ExpectReadBack(const std::filesystem::path& file, const Pixels& expected)
    {
        for (const char* reader : GetParam().readers) {
            // It takes a pass without rows for a fault, in the files of other programs too.
            const bool hasEmptyPass =
                expected.height < 5 && NameOfForm().ends_with("InterlacedGif");
            if (reader == graphicsMagick && hasEmptyPass)
                continue;
            EXPECT_TRUE(ReadBack(reader, file) == expected)
                << reader << " " << expected.width << " x " << expected.height;
        }
    }
    void ExpectWritten(u32 width, u32 height, u32 depth, const Samples& samples)
    {
        Raster image;
        Fill(&image, width, height, depth, samples);
        ASSERT_EQ(Write(&image, folder / "a"), 1) << width << " x " << height;
        ExpectReadBack(folder / "a", PixelsOf(width, height, samples));
    }
};

class EveryStreamWriter : public EveryWriter
{
};

std::vector<Form> FormsForStreams()
{
    std::vector<Form> found;
    for (const Form& form : forms)
        if (form.goesToStreams)
            found.push_back(form);
    return found;
}

INSTANTIATE_TEST_SUITE_P(Each, EveryWriter, testing::ValuesIn(forms), NameOf);
INSTANTIATE_TEST_SUITE_P(Each, EveryStreamWriter, testing::ValuesIn(FormsForStreams()), NameOf);

} // namespace

TEST_P(EveryWriter, SmallAndThinPicturesAreReadBackWithoutADifferentPixel)
{
    for (const auto& [width, height] : {std::pair<u32, u32>{1, 1},
                                        {1, 2},
                                        {2, 1},
                                        {3, 3},
                                        {5, 4},
                                        {8, 9},
                                        {16, 17},
                                        {1, 300},
                                        {300, 1},
                                        {257, 2},
                                        {2, 259}})
        ExpectWritten(width, height, 24, Fitting(Wild));
}

TEST_P(EveryWriter, LargerPictureIsReadBackWithoutADifferentPixel)
{
    const u32 part = Shrinking();
    ExpectWritten(517 / part, 293 / part, 24, Fitting(Wild));
    ExpectWritten(517 / part, 293 / part, 24, Fitting(Soft));
    ExpectWritten(300 / part, 301 / part, 32, Fitting(Soft));
    ExpectWritten(100, 90, 24, [](u32, u32, int channel) { return static_cast<u8>(channel * 99); });
}

TEST_P(EveryWriter, PaletteGivesThePixelsOfEightBitsTheirColours)
{
    Raster image;
    ASSERT_EQ(image.Create(20, 12, 8, nullptr, nullptr), 1);
    ColorTable* colors = nullptr;
    ASSERT_EQ(image.GetPalette(&colors), 1);
    std::vector<PaletteEntry> entries;
    for (u32 i = 0; i < 240; ++i)
        entries.push_back({i, 255 - i, i * i % 256, 0});
    ASSERT_EQ(colors->SetEntries(entries.data(), 240), 1);
    for (u32 y = 0; y < 12; ++y) {
        u8* line = nullptr;
        ASSERT_EQ(image.LockLines(static_cast<i32>(y), &line, nullptr), 1);
        for (u32 x = 0; x < 20; ++x)
            line[x] = static_cast<u8>(y * 20 + x);
    }
    image.UnlockAll();
    ASSERT_EQ(Write(&image, folder / "a"), 1);
    ExpectReadBack(folder / "a", PixelsOf(20, 12, [&](u32 x, u32 y, int channel) {
                       const PaletteEntry& entry = entries[y * 20 + x];
                       return static_cast<u8>(channel == 0   ? entry.red
                                              : channel == 1 ? entry.green
                                                             : entry.blue);
                   }));
}

TEST_P(EveryStreamWriter, StreamGetsTheBytesOfTheFileAndAMeasuringOneTheirNumber)
{
    Raster image;
    Fill(&image, 211 / Shrinking(), 173 / Shrinking(), 24, Wild);
    ASSERT_EQ(Write(&image, folder / "a"), 1);
    const std::string bytes = FileBytes(folder / "a");
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

TEST_P(EveryWriter, ProgressGrowsToItsTotalAndIsToldOncePerHundredthAtMost)
{
    Raster image;
    Fill(&image, 40, 500, 24, Soft);
    ASSERT_EQ(Write(&image, folder / "a"), 1);
    const auto& told = CurrentWriterHost().progress;
    EXPECT_GE(told.size(), 60u);
    EXPECT_LE(told.size(), 101u);
    for (size_t i = 1; i < told.size(); ++i) {
        EXPECT_GT(told[i].first, told[i - 1].first);
        EXPECT_EQ(told[i].second, told[0].second);
    }
    EXPECT_EQ(told.back().first, told.back().second);
}

TEST_P(EveryWriter, PictureStaysAsItWas)
{
    Raster image;
    Fill(&image, 33, 21, 24, Wild);
    ASSERT_EQ(Write(&image, folder / "a"), 1);
    EXPECT_EQ(PixelsOf(&image), PixelsOf(33, 21, Wild));
}

TEST_P(EveryWriter, WorkOfManySavesLeavesNoMemoryBehind)
{
    Raster image;
    Fill(&image, 60, 50, 24, Soft);
    ASSERT_EQ(Write(&image, folder / "a"), 1);
    CurrentWriterHost().progress = {};
    const size_t before = MemoryInUse();
    for (int i = 0; i < 5; ++i)
        ASSERT_EQ(Write(&image, folder / "a"), 1);
    CurrentWriterHost().progress = {};
    EXPECT_LT(MemoryInUse(), before + 4096);
}
