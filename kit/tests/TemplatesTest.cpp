// The templates at work, each in the hands of the program's class of its kind.

#include "foundation/CountingStream.h"
#include "foundation/MemoryStream.h"
#include "kit/tests/Loaded.h"
#include "plugin/AdjustPlugin.h"
#include "plugin/EffectPlugin.h"
#include "plugin/InputPlugin.h"
#include "plugin/OutputPlugin.h"
#include "plugin/PrintPlugin.h"
#include "plugin/ScalePlugin.h"
#include "plugin/SubtractPlugin.h"

using namespace kittest;

namespace
{

using Templates = KitTest;

/// 3 by 2 pixels in the format of the reader and the writer, typed by hand.
const std::string plainFile = std::string("TLP1\3\0\0\0\2\0\0\0", 12) + "abcdefghi"
                                                                        "jklmnopqr";
const std::vector<Bytes> plainLines = {{'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h', 'i'},
                                       {'j', 'k', 'l', 'm', 'n', 'o', 'p', 'q', 'r'}};

i32 ReadPlain(const std::string& bytes, Raster* image)
{
    Loaded<InputPlugin> reader("PlainInput");
    std::string copy = bytes;
    MemoryStream stream;
    EXPECT_EQ(stream.Open(copy.data(), static_cast<u32>(copy.size()), 1, u"picture"), 1);
    return reader->GetImage(nullptr, &stream, image, Callbacks());
}

TEST_F(Templates, TheReaderReadsItsFormat)
{
    Raster image;
    EXPECT_EQ(ReadPlain(plainFile, &image), 1);
    EXPECT_EQ(Lines(&image), plainLines);
    EXPECT_EQ(CurrentTold().progress, (std::vector<std::pair<u32, u32>>{{1, 2}, {2, 2}}));
}

TEST_F(Templates, TheReaderReportsWhatItCannotRead)
{
    Raster image;
    EXPECT_LT(ReadPlain("XLP1" + plainFile.substr(4), &image), 0) << "another format";
    EXPECT_LT(ReadPlain(plainFile.substr(0, 11), &image), 0) << "half a header";
    EXPECT_LT(ReadPlain(std::string("TLP1\0\0\0\0\2\0\0\0", 12), &image), 0) << "no width";
    EXPECT_LT(ReadPlain(std::string("TLP1\1\0\0\0\0\0\1\0", 12), &image), 0) << "65,536 lines";
    EXPECT_LT(ReadPlain(std::string("TLP1\xFF\xFF\0\0\xFF\xFF\0\0", 12), &image), 0) << "too large";
    RasterInfo info = {};
    info.size = sizeof info;
    EXPECT_EQ(image.GetInfo(&info), 1);
    EXPECT_EQ(info.height, 0u) << "nothing was allocated for them";
    EXPECT_LT(ReadPlain(plainFile.substr(0, plainFile.size() - 1), &image), 0) << "a short line";
    EXPECT_EQ(Lines(&image)[0], plainLines[0]) << "the good line stays";
}

TEST_F(Templates, TheReaderStopsWhenTheUserDoes)
{
    CurrentTold().refusedFrom = 0;
    Raster image;
    EXPECT_LT(ReadPlain(plainFile, &image), 0);
    EXPECT_EQ(CurrentTold().progress.size(), 1u);
}

TEST_F(Templates, TheReaderTellsTheSizeFromTheHeader)
{
    Loaded<InputPlugin> reader("PlainInput");
    std::string bytes = plainFile.substr(0, 12);
    MemoryStream stream;
    ASSERT_EQ(stream.Open(bytes.data(), 12, 1, u"picture"), 1);
    RasterInfo info = {};
    EXPECT_EQ(reader->GetImageInfo(nullptr, &stream, &info), -4) << "no size given";
    info.size = sizeof info;
    EXPECT_EQ(reader->GetImageInfo(nullptr, &stream, &info), 1);
    EXPECT_EQ(info.width, 3u);
    EXPECT_EQ(info.height, 2u);
    EXPECT_EQ(info.depth, 24u);
    EXPECT_EQ(info.stride, 12u);
}

class PlainWriter : public KitTest
{
protected:
    PlainWriter() { Fill(&image, 24, plainLines); }

    i32 Write(Stream* stream)
    {
        Loaded<OutputPlugin> writer("PlainOutput");
        return writer->PutImage(DevicePath(file).c_str(), stream, &image, Callbacks());
    }
    Raster image;
    std::filesystem::path file =
        std::filesystem::path(tavrix::testing::FreshFolder()) / "picture.tlp";
};

TEST_F(PlainWriter, WritesItsFormatToADevicePath)
{
    EXPECT_EQ(Write(nullptr), 1);
    EXPECT_EQ(FileBytes(file), plainFile);
    EXPECT_EQ(Lines(&image), plainLines) << "the picture is as it was";
}

TEST_F(PlainWriter, WritesTheSameToAStreamAndMakesNoFile)
{
    std::string bytes(plainFile.size(), '?');
    MemoryStream stream;
    ASSERT_EQ(stream.Open(bytes.data(), static_cast<u32>(bytes.size()), 0, u"picture"), 1);
    EXPECT_EQ(Write(&stream), 1);
    EXPECT_EQ(bytes, plainFile);
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(PlainWriter, WorksOnAStreamThatKeepsNothing)
{
    CountingStream stream;
    EXPECT_EQ(Write(&stream), 1);
    u64 size = 0;
    EXPECT_EQ(stream.GetSize(&size), 1);
    EXPECT_EQ(size, 12u + 2 * 9);
}

TEST_F(PlainWriter, FailsWhereTheStreamEnds)
{
    std::string bytes(plainFile.size() - 1, '?');
    MemoryStream stream;
    ASSERT_EQ(stream.Open(bytes.data(), static_cast<u32>(bytes.size()), 0, u"picture"), 1);
    EXPECT_LT(Write(&stream), 0);
}

TEST_F(PlainWriter, LeavesNoHalfFileBehind)
{
    tavrix::testing::SetDiskSpace(15);
    EXPECT_LT(Write(nullptr), 0);
    EXPECT_FALSE(std::filesystem::exists(file)) << "a full disk";
    tavrix::testing::Reset();
    CurrentTold().refusedFrom = 1;
    EXPECT_LT(Write(nullptr), 0);
    EXPECT_FALSE(std::filesystem::exists(file)) << "given up after a line";
}

TEST_F(PlainWriter, MakesNoFileForAPictureThatItCannotHold)
{
    Fill(&image, 8, {{1, 2, 3}});
    EXPECT_LT(Write(nullptr), 0);
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(Templates, ThePrinterPrintsLettersByBrightness)
{
    // 160 by 8 pixels become 80 by 2 letters: black, a grey of 128 from the middle on, a white
    // edge.
    Bytes line(160 * 3, 0);
    std::fill(line.begin() + 80 * 3, line.end(), u8{128});
    std::fill(line.end() - 2 * 3, line.end(), u8{255});
    Raster image;
    Fill(&image, 24, std::vector<Bytes>(8, line));
    const std::filesystem::path file = std::filesystem::path(tavrix::testing::FreshFolder()) / "p";
    CurrentTold().texts[u"TextPrintFile"] = DevicePath(file);
    Loaded<PrintPlugin> printer("TextPrint");
    EXPECT_EQ(printer->Print(&image, nullptr, 0, 0, 0, 0, u"Tavrix -image-", Callbacks()), 1);
    const std::string row = std::string(40, '@') + std::string(39, '=') + " \n";
    EXPECT_EQ(FileBytes(file), row + row);
    EXPECT_EQ(CurrentTold().progress, (std::vector<std::pair<u32, u32>>{{1, 2}, {2, 2}}));
    EXPECT_TRUE(CurrentTold().messages.empty());
}

TEST_F(Templates, ThePrinterSaysWhatWentWrongSinceTheHostDoesNot)
{
    Raster image;
    Fill(&image, 24, plainLines);
    CurrentTold().texts[u"TextPrintFile"] = u"\\Computer\\no such folder\\p";
    Loaded<PrintPlugin> printer("TextPrint", 17);
    EXPECT_LT(printer->Print(&image, nullptr, 0, 0, 0, 0, u"t", Callbacks()), 0);
    EXPECT_EQ(CurrentTold().messages,
              std::vector<std::u16string>{u"テキストファイルを書き込めませんでした。"});
}

TEST_F(Templates, ThePrinterTellsWhereItPrintsTo)
{
    Loaded<PrintPlugin> printer("TextPrint");
    EXPECT_EQ(printer->Configure(nullptr, Callbacks()), 1);
    EXPECT_EQ(CurrentTold().messages,
              std::vector<std::u16string>{u"\\My Documents\\Tavrix print.txt"});
}

TEST_F(Templates, TheEffectInvertsEveryColourAtFirst)
{
    Raster image;
    Fill(&image, 24, {{0, 100, 255, 1, 2, 3}});
    Loaded<EffectPlugin> effect("Invert");
    EXPECT_EQ(effect->Process(&image, Callbacks()), 1);
    EXPECT_EQ(Lines(&image), (std::vector<Bytes>{{255, 155, 0, 254, 253, 252}}));
}

TEST_F(Templates, TheEffectInvertsWhatTheSettingsNameAndNeverTheFourthByte)
{
    CurrentTold().numbers[u"InvertChannels"] = 5; // blue and red
    Raster image;
    Fill(&image, 32, {{0, 100, 255, 40}});
    Loaded<EffectPlugin> effect("Invert");
    EXPECT_EQ(effect->Process(&image, Callbacks()), 1);
    EXPECT_EQ(Lines(&image), (std::vector<Bytes>{{255, 100, 0, 40}}));
}

TEST_F(Templates, TheEffectLeavesDepthsThatItDoesNotKnow)
{
    Raster image;
    Fill(&image, 8, {{1, 2, 3}});
    Loaded<EffectPlugin> effect("Invert");
    EXPECT_LT(effect->Process(&image, Callbacks()), 0);
    EXPECT_EQ(Lines(&image), (std::vector<Bytes>{{1, 2, 3}}));
}

TEST_F(Templates, TheAdjustmentSpreadsFromBlackToWhite)
{
    // From 50 to 200: (v - 50) * 255 / 150.
    Raster image;
    Fill(&image, 24, {{50, 60, 100}, {125, 199, 200}});
    Loaded<AdjustPlugin> adjust("Contrast");
    EXPECT_EQ(adjust->Configure(nullptr, &image, Callbacks()), 1);
    EXPECT_EQ(adjust->Process(&image, Callbacks()), 1);
    EXPECT_EQ(Lines(&image), (std::vector<Bytes>{{0, 17, 85}, {127, 253, 255}}));
    EXPECT_EQ(CurrentTold().progress,
              (std::vector<std::pair<u32, u32>>{{1, 4}, {2, 4}, {3, 4}, {4, 4}}));
}

TEST_F(Templates, TheAdjustmentLeavesAPictureOfOneColour)
{
    Raster image;
    Fill(&image, 32, {{9, 9, 9, 200}});
    Loaded<AdjustPlugin> adjust("Contrast");
    EXPECT_EQ(adjust->Process(&image, Callbacks()), 1);
    EXPECT_EQ(Lines(&image), (std::vector<Bytes>{{9, 9, 9, 200}}));
}

TEST_F(Templates, TheScalerRepeatsAndDropsPixels)
{
    Raster image;
    Fill(&image, 24, {{1, 2, 3, 4, 5, 6}, {7, 8, 9, 10, 11, 12}});
    Loaded<ScalePlugin> scale("NearestScale");
    EXPECT_EQ(scale->ScaleImage(&image, 4, 6, Callbacks()), 1);
    const Bytes first = {1, 2, 3, 1, 2, 3, 4, 5, 6, 4, 5, 6};
    const Bytes second = {7, 8, 9, 7, 8, 9, 10, 11, 12, 10, 11, 12};
    EXPECT_EQ(Lines(&image), (std::vector<Bytes>{first, first, first, second, second, second}));
    EXPECT_EQ(CurrentTold().progress.size(), 6u);
    EXPECT_EQ(scale->ScaleImage(&image, 2, 2, Callbacks()), 1);
    EXPECT_EQ(Lines(&image), (std::vector<Bytes>{{1, 2, 3, 4, 5, 6}, {7, 8, 9, 10, 11, 12}}));
}

TEST_F(Templates, TheScalerLeavesThePictureWhenItDoesNotGetThrough)
{
    const std::vector<Bytes> lines = {{1, 2, 3, 4, 5, 6}, {7, 8, 9, 10, 11, 12}};
    Raster image;
    Fill(&image, 24, lines);
    Loaded<ScalePlugin> scale("NearestScale");
    EXPECT_LT(scale->ScaleImage(&image, 0, 5, Callbacks()), 0);
    EXPECT_LT(scale->ScaleImage(&image, 65536, 1, Callbacks()), 0);
    CurrentTold().refusedFrom = 1;
    EXPECT_LT(scale->ScaleImage(&image, 4, 4, Callbacks()), 0);
    EXPECT_EQ(Lines(&image), lines);
}

TEST_F(Templates, TheReducerGivesIndexesIntoAnEvenPalette)
{
    // Steps of 51: 25 is nearest to 0, 26 to 51, 229 to 204, 230 to 255.
    Raster image;
    Fill(&image, 24, {{0, 0, 0, 255, 255, 255}, {25, 26, 229, 230, 0, 51}});
    Loaded<SubtractPlugin> subtract("ColourCube");
    EXPECT_EQ(subtract->SubtractImage(&image, 7, Callbacks()), 1);
    EXPECT_EQ(Lines(&image), (std::vector<Bytes>{{0, 215}, {4 * 36 + 6, 36 + 5}}));
    ColorTable* palette = nullptr;
    ASSERT_EQ(image.GetPalette(&palette), 1);
    ASSERT_EQ(palette->Count(), 216u);
    std::vector<PaletteEntry> entries(216);
    ASSERT_EQ(palette->GetEntries(entries.data()), 1);
    EXPECT_EQ(entries[4 * 36 + 6].red, 204u);
    EXPECT_EQ(entries[4 * 36 + 6].green, 51u);
    EXPECT_EQ(entries[4 * 36 + 6].blue, 0u);
    EXPECT_EQ(entries[215].blue, 255u);
}

TEST_F(Templates, TheReducerLeavesThePictureWhenTheUserGivesUp)
{
    Raster image;
    Fill(&image, 24, plainLines);
    CurrentTold().refusedFrom = 1;
    Loaded<SubtractPlugin> subtract("ColourCube");
    EXPECT_LT(subtract->SubtractImage(&image, 0, Callbacks()), 0);
    EXPECT_EQ(Lines(&image), plainLines);
}

// Lines that go to files while the plugin works.
TEST_F(Templates, TheyWorkByLinesWhereMemoryIsShort)
{
    std::vector<Bytes> lines;
    std::vector<Bytes> inverted;
    for (u8 y = 0; y < 20; ++y) {
        lines.push_back(Bytes(30, y));
        inverted.push_back(Bytes(30, static_cast<u8>(255 - y)));
    }
    Raster image;
    Fill(&image, 24, lines);
    Loaded<EffectPlugin> effect("Invert");
    tavrix::testing::SetFreeMemory(0xA0000);
    MemoryGauge::Sample();
    EXPECT_EQ(effect->Process(&image, Callbacks()), 1);
    EXPECT_EQ(Lines(&image), inverted);
}

} // namespace
