// The writers of bitmaps and portable pixmaps: what they write, as other programs read it.

#include "foundation/CountingStream.h"
#include "foundation/MemoryStream.h"
#include "platform/testing/WindowTesting.h"
#include "standard-plugins/pnm-output/PnmOutputIds.h"
#include "standard-plugins/tests/support/Canvas.h"
#include "standard-plugins/tests/support/MemoryInUse.h"
#include "standard-plugins/tests/support/Writing.h"

#include <dlfcn.h>

#include "platform/testing/core/TestPaths.h"

using namespace plugintest;

namespace
{

/// A writer and how it is set; two programs that print what they read of FILES as raw samples.
struct Form {
    const char* name;
    const char* plugin;
    const char* extension;
    bool plain;
    std::vector<const char*> readers;
};

const Form forms[] = {
    {"Bmp",
     "BMP.dll",
     ".bmp",
     false,
     {"convert FILES -depth 8 rgb:-",
      "for f in FILES; do bmptopnm $f | pnmtopnm | tail -c +12; done"}},
    {"Ppm",
     "PNM.dll",
     ".ppm",
     false,
     {"convert FILES -depth 8 rgb:-", "for f in FILES; do ppmtoppm < $f | tail -c +12; done"}},
    {"PlainPpm",
     "PNM.dll",
     ".ppm",
     true,
     {"convert FILES -depth 8 rgb:-", "for f in FILES; do ppmtoppm < $f | tail -c +12; done"}},
};

void PrintTo(const Form& form, std::ostream* out)
{
    *out << form.name;
}

class SimpleWriter : public WriterTest, public testing::WithParamInterface<Form>
{
protected:
    SimpleWriter()
    {
        Load(GetParam().plugin);
        Set(u"PnmOutputPlain", GetParam().plain);
    }
    std::filesystem::path Target() const
    {
        return folder / (std::string("a") + GetParam().extension);
    }
};

INSTANTIATE_TEST_SUITE_P(Each, SimpleWriter, testing::ValuesIn(forms),
                         [](const auto& entry) { return std::string(entry.param.name); });

} // namespace

TEST_P(SimpleWriter, EverySmallSizeIsReadBackByTwoProgramsWithoutADifferentPixel)
{
    // Sides of one digit each, so that the others' headers are eleven bytes.
    for (const u32 depth : {24u, 32u}) {
        const std::filesystem::path here = folder / std::to_string(depth);
        std::filesystem::create_directory(here);
        std::string expected;
        for (u32 height = 1; height <= 6; ++height)
            for (u32 width = 1; width <= 9; ++width) {
                Raster image;
                Fill(&image, width, height, depth, Wild);
                WriteQuickly(&image, here / (std::to_string(height) + std::to_string(width) +
                                             GetParam().extension));
                expected += Rgb(width, height, Wild);
            }
        for (std::string reader : GetParam().readers) {
            reader.replace(reader.find("FILES"), 5, here.string() + "/*");
            EXPECT_TRUE(OutputOf("( " + reader + " ) 2>/dev/null") == expected) << reader;
        }
    }
}

TEST_P(SimpleWriter, LargerPicturesAreReadBackByTwoProgramsToo)
{
    Raster image;
    Fill(&image, 203, 151, 24, Wild);
    ASSERT_EQ(Write(&image, Target()), 1);
    EXPECT_TRUE(OutputOf("convert " + Target().string() + " -depth 8 rgb:-") ==
                Rgb(203, 151, Wild));
    EXPECT_TRUE(OutputOf("gm convert " + Target().string() + " -depth 8 rgb:-") ==
                Rgb(203, 151, Wild));
}

TEST_P(SimpleWriter, StreamGetsTheBytesOfTheFileAndAMeasuringOneTheirNumber)
{
    Raster image;
    Fill(&image, 211, 173, 24, Wild);
    ASSERT_EQ(Write(&image, Target()), 1);
    const std::string bytes = FileBytes(Target());
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

TEST_P(SimpleWriter, RefusalOfEachProgressReportEndsItAndLeavesNothing)
{
    Raster image;
    Fill(&image, 9, 500, 24, Soft);
    ASSERT_EQ(Write(&image, Target()), 1);
    const auto told = CurrentWriterHost().progress;
    EXPECT_GE(told.size(), 100u);
    EXPECT_LE(told.size(), 101u);
    EXPECT_EQ(told.back().first, told.back().second);
    std::filesystem::remove(Target());
    for (size_t refused = 0; refused < told.size(); ++refused) {
        CurrentWriterHost().refuseFrom = static_cast<int>(refused);
        EXPECT_EQ(Write(&image, Target()), -9) << refused;
        EXPECT_EQ(CurrentWriterHost().progress.size(), refused + 1);
        EXPECT_EQ(NamesIn(folder), "");
    }
}

TEST_P(SimpleWriter, HoldsNoPictureBesideTheHosts)
{
    Raster image;
    Fill(&image, 1000, 1500, 24, Soft);
    MemoryPeak peak;
    CurrentWriterHost().onProgress = [&peak] { peak.Look(); };
    ASSERT_EQ(Write(&image, Target()), 1);
    EXPECT_GT(peak.Most(), 64u * 1024);
    EXPECT_LT(peak.Most(), 256u * 1024);
}

TEST_F(WriterTest, PlainPixmapHasLinesOf70CharactersAtTheMost)
{
    Load("PNM.dll");
    Set(u"PnmOutputPlain", 1);
    Raster image;
    Fill(&image, 40, 3, 24, [](u32, u32, int) -> u8 { return 255; });
    ASSERT_EQ(Write(&image, folder / "a.ppm"), 1);
    EXPECT_EQ(AnswerOf("wc -L < " + (folder / "a.ppm").string()), "59");
    EXPECT_TRUE(FileBytes(folder / "a.ppm").starts_with("P3\n40 3\n255\n255 255"));
}

TEST_F(WriterTest, PixmapDialogAsksForTheTextForm)
{
    using namespace tavrix::testing;
    for (const u32 language : {9u, 17u}) {
        Load("PNM.dll", language);
        int dialogs = 0;
        OnModal([&](HWND dialog, bool) {
            ++dialogs;
            EXPECT_EQ(SendDlgItemMessageW(dialog, ControlPlain, BM_GETCHECK, 0, 0), BST_UNCHECKED);
            ClickControl(dialog, ControlPlain);
            PostMessageW(dialog, WM_COMMAND, IDOK,
                         reinterpret_cast<LPARAM>(GetDlgItem(dialog, IDOK)));
        });
        CurrentWriterHost().settings.clear();
        EXPECT_EQ(plugin.Configure(nullptr, WriterCallbacks()), 1);
        EXPECT_EQ(dialogs, 1);
        EXPECT_EQ(CurrentWriterHost().settings[u"PnmOutputPlain"], 1u);
    }
}

TEST_F(WriterTest, BitmapAsksNothing)
{
    Load("BMP.dll");
    EXPECT_EQ(plugin.Configure(nullptr, WriterCallbacks()), 1);
}

TEST_F(WriterTest, BitmapOf4GigabytesIsRefusedWithASentenceBeforeALineIsRead)
{
    void* library =
        dlopen(tavrix::testing::InBuild("/bin/PLUGINS/OUTPUT/BMP.dll").c_str(), RTLD_NOW);
    ASSERT_TRUE(library);
    const auto put = reinterpret_cast<TavrixImageFunction>(dlsym(library, "PutImage"));
    const auto setLanguage =
        reinterpret_cast<TavrixSetLanguageFunction>(dlsym(library, "SetLanguage"));
    Canvas canvas;
    canvas.Table()->RasterGetInfo = [](TavrixImageHandle image, RasterInfo* info) -> int32_t {
        const auto* self = reinterpret_cast<Canvas*>(image);
        *info = {sizeof *info, self->width, self->height, 24, self->stride, 0};
        return 1;
    };
    canvas.Table()->RasterGetPalette = [](TavrixImageHandle, TavrixPaletteHandle) -> int32_t {
        return 0;
    };
    const auto write = [&](u32 width, u32 height) {
        canvas.width = width;
        canvas.height = height;
        canvas.stride = (3 * (width + 1)) & ~3u;
        const PluginCallbacks host = WriterCallbacks();
        return put(DevicePath(folder / "a.bmp").c_str(), nullptr, canvas.Handle(), canvas.Table(),
                   nullptr, host.progress, host.message, host.put, host.get);
    };
    for (const u32 language : {9u, 17u}) {
        (void)setLanguage(language);
        // 65535 pixels are 196608 bytes with their filling: 21845 rows have room, 21846 have not.
        EXPECT_EQ(write(65535, 21846), -1);
        EXPECT_EQ(write(65535, 65535), -1);
        EXPECT_EQ(canvas.locks, 0);
        ASSERT_EQ(CurrentWriterHost().messages.size(), 2u);
        EXPECT_EQ(CurrentWriterHost().messages[0],
                  language == 9 ? u"A bitmap file cannot be larger than 4 gigabytes."
                                : u"ビットマップファイルは 4 ギガバイトを超えられません。");
        CurrentWriterHost().messages.clear();
    }
    // One row less is begun, and ends at its first line, which this picture does not have.
    EXPECT_EQ(write(65535, 21845), -101);
    EXPECT_EQ(canvas.locks, 1);
    EXPECT_EQ(NamesIn(folder), "");
    dlclose(library);
}
