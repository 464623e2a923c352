// What the plugins say about themselves, and how they come and go.

#include "standard-plugins/tests/support/Decoding.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>

#include "platform/testing/core/TestPaths.h"

using plugintest::ByteStream;
using plugintest::Canvas;
using plugintest::IsMapped;
using plugintest::LibraryFile;
using plugintest::PluginLibrary;

namespace
{

struct Plugin {
    const char* file;
    const char16_t* name;
    const char16_t* japaneseName;
    // Null for a plugin of no format.
    const char16_t* format;
    const char16_t* japaneseFormat;
    const char16_t* patterns;
    // As the linker lists them, in order.
    const char* exports;

    bool IsReader() const { return std::string(file).starts_with("INPUT/"); }
    std::u16string Identity() const
    {
        std::u16string identity = u"TX_";
        for (const char* at = file; *at != '/'; ++at)
            identity += static_cast<char16_t>(*at);
        return identity;
    }
};

constexpr const char* readerExports =
    "Configure\nGetImage\nGetImageInfo\nGetPluginInfo\nSetLanguage\n";
constexpr const char* quickReaderExports =
    "Configure\nGetImage\nGetImageFast\nGetImageInfo\nGetPluginInfo\nSetLanguage\n";
constexpr const char* writerExports = "Configure\nGetPluginInfo\nPutImage\nSetLanguage\n";
constexpr const char* effectExports = "Configure\nEffect\nGetPluginInfo\nSetLanguage\n";
constexpr const char* adjustExports = "AdjustImage\nConfigure\nGetPluginInfo\nSetLanguage\n";
constexpr const char* scaleExports = "GetPluginInfo\nScaleImage\nSetLanguage\n";
constexpr const char* subtractExports = "GetPluginInfo\nSetLanguage\nSubtractImage\n";
constexpr const char* printerExports = "Configure\nGetPluginInfo\nPrint\nSetLanguage\n";

const Plugin plugins[] = {
    {"INPUT/JPEG", u"JPEG reader", u"JPEG 読み込み", u"JPEG image (*.jpg)", u"JPEG 画像 (*.jpg)",
     u"*.jpg;*.jpeg;*.jpe;*.jfif", quickReaderExports},
    {"INPUT/PNG", u"PNG reader", u"PNG 読み込み", u"PNG image (*.png)", u"PNG 画像 (*.png)",
     u"*.png", readerExports},
    {"INPUT/BMP", u"BMP reader", u"BMP 読み込み", u"Bitmap image (*.bmp)",
     u"ビットマップ画像 (*.bmp)", u"*.bmp;*.dib", readerExports},
    {"INPUT/PNM", u"PNM reader", u"PNM 読み込み", u"Portable anymap (*.pnm)", u"PNM 画像 (*.pnm)",
     u"*.pbm;*.pgm;*.ppm;*.pnm;*.pam", readerExports},
    {"INPUT/TGA", u"TGA reader", u"TGA 読み込み", u"Targa image (*.tga)", u"Targa 画像 (*.tga)",
     u"*.tga;*.icb;*.vda;*.vst", readerExports},
    {"INPUT/PCX", u"PCX reader", u"PCX 読み込み", u"PCX image (*.pcx)", u"PCX 画像 (*.pcx)",
     u"*.pcx", readerExports},
    {"INPUT/ICO", u"ICO reader", u"ICO 読み込み", u"Icon or cursor (*.ico)",
     u"アイコンとカーソル (*.ico)", u"*.ico;*.cur", readerExports},
    {"OUTPUT/BMP", u"BMP writer", u"BMP 書き込み", u"Bitmap image (*.bmp)",
     u"ビットマップ画像 (*.bmp)", u"*.bmp;*.dib", writerExports},
    {"OUTPUT/PNM", u"PNM writer", u"PNM 書き込み", u"Portable pixmap (*.ppm)", u"PPM 画像 (*.ppm)",
     u"*.ppm;*.pnm", writerExports},
    {"INPUT/AVIF", u"AVIF reader", u"AVIF 読み込み", u"AVIF image (*.avif)", u"AVIF 画像 (*.avif)",
     u"*.avif", readerExports},
    {"INPUT/JXL", u"JPEG XL reader", u"JPEG XL 読み込み", u"JPEG XL image (*.jxl)",
     u"JPEG XL 画像 (*.jxl)", u"*.jxl", readerExports},
    {"INPUT/HEIF", u"HEIF reader", u"HEIF 読み込み", u"HEIF image (*.heic)", u"HEIF 画像 (*.heic)",
     u"*.heic;*.heif", readerExports},
    {"INPUT/GIF", u"GIF reader", u"GIF 読み込み", u"GIF image (*.gif)", u"GIF 画像 (*.gif)",
     u"*.gif", readerExports},
    {"INPUT/TIFF", u"TIFF reader", u"TIFF 読み込み", u"TIFF image (*.tif)", u"TIFF 画像 (*.tif)",
     u"*.tif;*.tiff", readerExports},
    {"INPUT/WebP", u"WebP reader", u"WebP 読み込み", u"WebP image (*.webp)", u"WebP 画像 (*.webp)",
     u"*.webp", readerExports},
    {"OUTPUT/JPEG", u"JPEG writer", u"JPEG 書き込み", u"JPEG image (*.jpg)", u"JPEG 画像 (*.jpg)",
     u"*.jpg;*.jpeg;*.jpe", writerExports},
    {"OUTPUT/PNG", u"PNG writer", u"PNG 書き込み", u"PNG image (*.png)", u"PNG 画像 (*.png)",
     u"*.png", writerExports},
    {"OUTPUT/GIF", u"GIF writer", u"GIF 書き込み", u"GIF image (*.gif)", u"GIF 画像 (*.gif)",
     u"*.gif", writerExports},
    {"OUTPUT/TIFF", u"TIFF writer", u"TIFF 書き込み", u"TIFF image (*.tif)", u"TIFF 画像 (*.tif)",
     u"*.tif;*.tiff", writerExports},
    {"OUTPUT/WebP", u"WebP writer", u"WebP 書き込み", u"WebP image (*.webp)", u"WebP 画像 (*.webp)",
     u"*.webp", writerExports},
    {"OUTPUT/JXL", u"JPEG XL writer", u"JPEG XL 書き込み", u"JPEG XL image (*.jxl)",
     u"JPEG XL 画像 (*.jxl)", u"*.jxl", writerExports},
    {"PRINT/PDF", u"PDF file", u"PDF ファイル", nullptr, nullptr, nullptr, printerExports},
    {"PRINT/CUPS", u"Printer", u"プリンタ", nullptr, nullptr, nullptr, printerExports},
    {"EFFECT/GaussianBlur", u"Gaussian Blur...", u"ガウスぼかし...", nullptr, nullptr, nullptr,
     effectExports},
    {"EFFECT/Sharpen", u"Sharpen...", u"シャープ...", nullptr, nullptr, nullptr, effectExports},
    {"EFFECT/Emboss", u"Emboss...", u"エンボス...", nullptr, nullptr, nullptr, effectExports},
    {"EFFECT/Edges", u"Edges...", u"輪郭抽出...", nullptr, nullptr, nullptr, effectExports},
    {"EFFECT/Mosaic", u"Mosaic...", u"モザイク...", nullptr, nullptr, nullptr, effectExports},
    {"EFFECT/Median", u"Median...", u"メディアン...", nullptr, nullptr, nullptr, effectExports},
    {"EFFECT/Noise", u"Noise...", u"ノイズ...", nullptr, nullptr, nullptr, effectExports},
    {"EFFECT/OldPhoto", u"Old Photo...", u"古い写真...", nullptr, nullptr, nullptr, effectExports},
    {"EFFECT/Oil", u"Oil Painting...", u"油絵...", nullptr, nullptr, nullptr, effectExports},
    {"EFFECT/Posterise", u"Posterise...", u"ポスタリゼーション...", nullptr, nullptr, nullptr,
     effectExports},
    {"ADJUST/BrightnessContrast", u"Brightness and Contrast...", u"明るさとコントラスト...",
     nullptr, nullptr, nullptr, adjustExports},
    {"ADJUST/Levels", u"Levels...", u"レベル補正...", nullptr, nullptr, nullptr, adjustExports},
    {"ADJUST/Curves", u"Curves...", u"トーンカーブ...", nullptr, nullptr, nullptr, adjustExports},
    {"ADJUST/HueSaturation", u"Hue and Saturation...", u"色相と彩度...", nullptr, nullptr, nullptr,
     adjustExports},
    {"ADJUST/ColorBalance", u"Color Balance...", u"カラーバランス...", nullptr, nullptr, nullptr,
     adjustExports},
    {"ADJUST/WhiteBalance", u"White Balance...", u"ホワイトバランス...", nullptr, nullptr, nullptr,
     adjustExports},
    {"ADJUST/AutoLevels", u"Automatic Levels...", u"自動レベル補正...", nullptr, nullptr, nullptr,
     adjustExports},
    {"ADJUST/Invert", u"Invert", u"階調の反転", nullptr, nullptr, nullptr, adjustExports},
    {"ADJUST/Greyscale", u"Greyscale...", u"グレースケール...", nullptr, nullptr, nullptr,
     adjustExports},
    {"ADJUST/Threshold", u"Threshold...", u"2 階調化...", nullptr, nullptr, nullptr, adjustExports},
    {"SCALE/Bilinear", u"Bilinear", u"バイリニア", nullptr, nullptr, nullptr, scaleExports},
    {"SCALE/Bicubic", u"Bicubic", u"バイキュービック", nullptr, nullptr, nullptr, scaleExports},
    {"SCALE/Area", u"Area Average", u"面積平均", nullptr, nullptr, nullptr, scaleExports},
    {"SCALE/Lanczos", u"Lanczos", u"ランチョス", nullptr, nullptr, nullptr, scaleExports},
    {"SUBTRACT/Optimal", u"Optimal Colours", u"最適な色", nullptr, nullptr, nullptr,
     subtractExports},
    {"SUBTRACT/FixedPalette", u"Fixed Palette", u"固定パレット", nullptr, nullptr, nullptr,
     subtractExports},
};

void PrintTo(const Plugin& plugin, std::ostream* out)
{
    *out << plugin.file;
}

std::vector<Plugin> Readers()
{
    std::vector<Plugin> readers;
    for (const Plugin& plugin : plugins)
        if (plugin.IsReader())
            readers.push_back(plugin);
    return readers;
}

std::string NameOf(const testing::TestParamInfo<Plugin>& entry)
{
    std::string name = entry.param.file;
    std::replace(name.begin(), name.end(), '/', '_');
    return name;
}

class PluginInfo : public testing::TestWithParam<Plugin>
{
protected:
    PluginLibrary plugin{GetParam().file};
};

class ReaderUse : public PluginInfo
{
};

INSTANTIATE_TEST_SUITE_P(All, PluginInfo, testing::ValuesIn(plugins), NameOf);
INSTANTIATE_TEST_SUITE_P(All, ReaderUse, testing::ValuesIn(Readers()), NameOf);

std::string OutputOf(const std::string& command)
{
    std::string text;
    FILE* pipe = popen(command.c_str(), "r");
    std::array<char, 512> part;
    while (pipe && fgets(part.data(), part.size(), pipe))
        text += part.data();
    if (pipe)
        pclose(pipe);
    return text;
}

} // namespace

TEST_P(PluginInfo, IdentifiesItselfAsOneOfItsFolder)
{
    ASSERT_TRUE(plugin.IsLoaded());
    EXPECT_EQ(plugin.Text(0), GetParam().Identity());
}

TEST_P(PluginInfo, TellsNameVersionOwnerDateAndPurpose)
{
    EXPECT_EQ(plugin.Text(1), GetParam().name);
    EXPECT_FALSE(plugin.Text(2).empty());
    EXPECT_EQ(plugin.Text(3), u"Copyright (c) 2026 The Tavrix authors");
    EXPECT_EQ(plugin.Text(4).size(), 10u); // year-month-day
    EXPECT_GT(plugin.Text(5).size(), 10u);
}

TEST_P(PluginInfo, OffersItsFormatAndNoOther)
{
    uint32_t index = 0x10000;
    if (GetParam().format) {
        EXPECT_EQ(plugin.Text(index++), GetParam().format);
        EXPECT_EQ(plugin.Text(index++), GetParam().patterns);
    }
    TavrixChar buffer[64];
    EXPECT_LT(plugin.getPluginInfo(index, buffer, 64), 0);
    EXPECT_LT(plugin.getPluginInfo(index + 1, buffer, 64), 0);
}

TEST_P(PluginInfo, RefusesIndexesThatItDoesNotKnow)
{
    for (const uint32_t index : {6u, 7u, 0xffffu, 0x10004u, 0x7fffffffu, 0xffffffffu}) {
        TavrixChar buffer[8] = {u'u', 0};
        EXPECT_LT(plugin.getPluginInfo(index, buffer, 8), 0) << index;
        EXPECT_EQ(buffer[0], u'u') << index;
    }
}

TEST_P(PluginInfo, CutsTextToTheCapacityWithAFinalZero)
{
    TavrixChar buffer[6] = {9, 9, 9, 9, 9, 9};
    EXPECT_EQ(plugin.getPluginInfo(0, buffer, 4), 1);
    EXPECT_EQ(std::u16string(buffer), u"TX_");
    EXPECT_EQ(buffer[4], 9);
    EXPECT_EQ(plugin.getPluginInfo(0, buffer, 1), 1);
    EXPECT_EQ(buffer[0], 0);
    EXPECT_EQ(buffer[1], u'X');
    const std::u16string identity = GetParam().Identity();
    TavrixChar exact[16];
    EXPECT_EQ(plugin.getPluginInfo(0, exact, static_cast<uint32_t>(identity.size() + 1)), 1);
    EXPECT_EQ(std::u16string(exact), identity);
}

TEST_P(PluginInfo, RefusesABufferThatIsNone)
{
    TavrixChar buffer[1] = {7};
    EXPECT_LT(plugin.getPluginInfo(0, nullptr, 100), 0);
    EXPECT_LT(plugin.getPluginInfo(0, buffer, 0), 0);
    EXPECT_EQ(buffer[0], 7);
}

TEST_P(PluginInfo, SpeaksJapaneseWhenToldAndOnlyThen)
{
    const std::u16string english = plugin.Text(5);
    EXPECT_GE(plugin.setLanguage(17), 0);
    EXPECT_EQ(plugin.Text(1), GetParam().japaneseName);
    if (GetParam().format) {
        EXPECT_EQ(plugin.Text(0x10000), GetParam().japaneseFormat);
        EXPECT_EQ(plugin.Text(0x10001), GetParam().patterns);
    }
    EXPECT_EQ(plugin.Text(0), GetParam().Identity());
    EXPECT_NE(plugin.Text(5), english);
    EXPECT_GE(plugin.setLanguage(9), 0);
    EXPECT_EQ(plugin.Text(1), GetParam().name);
}

TEST_P(PluginInfo, ForgetsTheLanguageWhenItIsUnloaded)
{
    {
        PluginLibrary other(GetParam().file == std::string("INPUT/PNG") ? "INPUT/JPEG"
                                                                        : "INPUT/PNG");
        EXPECT_GE(other.setLanguage(17), 0);
        EXPECT_EQ(plugin.Text(1), GetParam().name); // each library has a language of its own
    }
    PluginLibrary again(GetParam().file);
    EXPECT_EQ(again.Text(1), GetParam().name);
}

TEST_P(ReaderUse, ConfigureAsksNothingAndGoesOn)
{
    EXPECT_EQ(plugin.configure(nullptr, nullptr, nullptr, nullptr), 1);
}

TEST_P(PluginInfo, ExportsTheFunctionsOfItsKindAndNothingElse)
{
    EXPECT_EQ(OutputOf("nm -D --defined-only --format=just-symbols " +
                       LibraryFile(GetParam().file) + " | LC_ALL=C sort"),
              GetParam().exports);
}

TEST_P(PluginInfo, NeedsNeitherTheToolkitNorTheCxxLibraryNorWhatTheProgramHas)
{
    const std::string needed =
        OutputOf("objdump -p " + LibraryFile(GetParam().file) + " | grep NEEDED");
    EXPECT_NE(needed.find("NEEDED"), std::string::npos); // the tool answered at all
    for (const char* library : {"libQt", "libstdc++", "liblcms2", "libzimg", "libcups", "libgif",
                                "libtiff", "libwebp", "libavif", "libjxl", "libheif"})
        EXPECT_EQ(needed.find(library), std::string::npos) << library << " in\n" << needed;
    // The program has it, and the loader is spared the way through the toolkit's libraries.
    EXPECT_EQ(needed.find("libtavrix-platform.so"), std::string::npos);
}

TEST_P(ReaderUse, RefusesMissingArguments)
{
    Canvas canvas;
    ByteStream stream("not a picture");
    const auto call = [this](const TavrixChar* path, PluginStreamRecord* record,
                             TavrixImageHandle image, RasterFunctionTable* table) {
        return plugin.getImage(path, record, image, table, nullptr, nullptr, nullptr, nullptr,
                               nullptr);
    };
    EXPECT_LT(call(u"\\picture", nullptr, canvas.Handle(), canvas.Table()), 0);
    EXPECT_LT(call(nullptr, nullptr, canvas.Handle(), canvas.Table()), 0);
    EXPECT_LT(call(nullptr, &stream.record, nullptr, canvas.Table()), 0);
    EXPECT_LT(call(nullptr, &stream.record, canvas.Handle(), nullptr), 0);
    PluginStreamRecord small = stream.record;
    small.size = sizeof small - 1;
    EXPECT_LT(call(nullptr, &small, canvas.Handle(), canvas.Table()), 0);
    PluginStreamRecord deaf = stream.record;
    deaf.read = nullptr;
    EXPECT_LT(call(nullptr, &deaf, canvas.Handle(), canvas.Table()), 0);
    RasterFunctionTable table = *canvas.Table();
    table.RasterLockLines = nullptr;
    EXPECT_LT(call(nullptr, &stream.record, canvas.Handle(), &table), 0);
    table = *canvas.Table();
    table.size = sizeof table - 1;
    EXPECT_LT(call(nullptr, &stream.record, canvas.Handle(), &table), 0);
    EXPECT_EQ(canvas.allocations, 0);
    EXPECT_EQ(stream.reads, 0);
}

TEST(PluginLibraries, AreReallyUnmappedWhenTheyAreUnloaded)
{
    for (const Plugin& each : plugins) {
        const std::string tail = std::string(each.file) + ".dll";
        {
            PluginLibrary plugin(each.file);
            ASSERT_TRUE(plugin.IsLoaded());
            EXPECT_TRUE(IsMapped(tail));
            if (each.IsReader()) {
                Canvas canvas;
                ByteStream stream("\xff\xd8 or nothing at all");
                EXPECT_LT(plugintest::Decode(plugin, stream, canvas), 0);
            }
        }
        EXPECT_FALSE(IsMapped(tail)) << tail;
    }
}

TEST(PluginLibraries, AnswerWithinAMillisecondOfLoading)
{
    // What a writer needs of the device is in the process already, there as here.
    const std::string tool = "LD_LIBRARY_PATH=" + tavrix::testing::InBuild("/bin ") +
                             tavrix::testing::InBuild("/tools/load-plugin ");
    constexpr double most = 1;
    for (const Plugin& each : plugins) {
        const std::string told = OutputOf(tool + LibraryFile(each.file));
        ASSERT_FALSE(told.empty()) << each.file;
        const double best = std::stod(told);
        EXPECT_GT(best, 0);
        RecordProperty(std::string(each.file).substr(std::string(each.file).find('/') + 1) +
                           "_milliseconds",
                       std::to_string(best));
        EXPECT_LT(best, most) << each.file;
    }
}
