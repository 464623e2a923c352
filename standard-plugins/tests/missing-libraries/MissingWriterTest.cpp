// The writers, the scalers and the printer on a machine without their library: the user is told
// which one is missing, and nothing is begun.

#include "standard-plugins/tests/missing-libraries/Loader.h"
#include "standard-plugins/tests/pdf/Printing.h"
#include "standard-plugins/tests/support/Changing.h"

using missingtest::Lack;
using missingtest::WithoutLibrary;

namespace
{

struct Sentences {
    const char* file;
    const char* library;
    const char16_t* english;
    const char16_t* japanese;
};

void PrintTo(const Sentences& sentences, std::ostream* out)
{
    *out << sentences.file;
}

std::string NameOf(const testing::TestParamInfo<Sentences>& entry)
{
    const std::string file = entry.param.file;
    return file.substr(0, file.find('.'));
}

const Sentences writers[] = {
    {"GIF.dll", "libgif.so.7", u"The library giflib, which writes GIF pictures, is not installed.",
     u"GIF 画像の書き込みに必要なライブラリ giflib がインストールされていません。"},
    {"TIFF.dll", "libtiff.so.6",
     u"The library libtiff, which writes TIFF pictures, is not installed.",
     u"TIFF 画像の書き込みに必要なライブラリ libtiff がインストールされていません。"},
    {"WebP.dll", "libwebp.so.7",
     u"The library libwebp, which writes WebP pictures, is not installed.",
     u"WebP 画像の書き込みに必要なライブラリ libwebp がインストールされていません。"},
    {"JXL.dll", "libjxl.so.0.7",
     u"The library libjxl, which writes JPEG XL pictures, is not installed.",
     u"JPEG XL 画像の書き込みに必要なライブラリ libjxl がインストールされていません。"},
};

class MissingWriterLibrary : public plugintest::WriterTest,
                             public testing::WithParamInterface<Sentences>
{
};

INSTANTIATE_TEST_SUITE_P(Each, MissingWriterLibrary, testing::ValuesIn(writers), NameOf);

constexpr const char16_t* zimgEnglish =
    u"The library zimg, which does the scaling, is not installed.";
constexpr const char16_t* zimgJapanese =
    u"伸縮に必要なライブラリ zimg がインストールされていません。";

const Sentences scalers[] = {
    {"Bilinear.dll", "libzimg.so.2", zimgEnglish, zimgJapanese},
    {"Bicubic.dll", "libzimg.so.2", zimgEnglish, zimgJapanese},
    {"Lanczos.dll", "libzimg.so.2", zimgEnglish, zimgJapanese},
};

class MissingScalerLibrary : public plugintest::ChangeTest<ScalePlugin>,
                             public testing::WithParamInterface<Sentences>
{
};

INSTANTIATE_TEST_SUITE_P(Each, MissingScalerLibrary, testing::ValuesIn(scalers), NameOf);

class MissingPrinterLibrary : public pdftest::PrintTest
{
protected:
    MissingPrinterLibrary() : PrintTest("CUPS") {}
};

} // namespace

TEST_P(MissingWriterLibrary, IsToldInBothLanguagesAndTheOldFileStays)
{
    using namespace plugintest;
    Raster image;
    Fill(&image, 20, 10, 24, Soft);
    for (const u32 language : {9u, 17u})
        for (const Lack lack : {Lack::Library, Lack::Functions}) {
            Load(GetParam().file, language);
            WriteBytes(folder / "a", "the old file");
            CurrentWriterHost().messages.clear();
            {
                const WithoutLibrary without(GetParam().library, lack);
                EXPECT_EQ(Write(&image, folder / "a"), -1);
                EXPECT_EQ(without.Asked(), 1);
            }
            EXPECT_EQ(CurrentWriterHost().messages,
                      (std::vector<std::u16string>{language == 9 ? GetParam().english
                                                                 : GetParam().japanese}));
            EXPECT_TRUE(CurrentWriterHost().progress.empty());
            EXPECT_EQ(FileBytes(folder / "a"), "the old file");
            EXPECT_EQ(NamesIn(folder), "a");
        }
    CurrentWriterHost().messages.clear();
    EXPECT_EQ(Write(&image, folder / "a"), 1);
    EXPECT_TRUE(CurrentWriterHost().messages.empty());
}

TEST_P(MissingScalerLibrary, IsToldInBothLanguagesAndThePictureStays)
{
    using namespace plugintest;
    for (const u32 language : {9u, 17u})
        for (const Lack lack : {Lack::Library, Lack::Functions}) {
            Load(GetParam().file, language);
            Raster image;
            Fill(&image, 20, 10, 24, Wild);
            CurrentWriterHost().messages.clear();
            CurrentWriterHost().progress.clear();
            {
                const WithoutLibrary without(GetParam().library, lack);
                EXPECT_EQ(plugin.ScaleImage(&image, 7, 30, WriterCallbacks()), -1);
                EXPECT_EQ(without.Asked(), 1);
            }
            image.UnlockAll();
            EXPECT_EQ(OnlyMessage(), language == 9 ? GetParam().english : GetParam().japanese);
            EXPECT_TRUE(CurrentWriterHost().progress.empty());
            EXPECT_TRUE(PixelsOf(&image) == PixelsOf(20, 10, Wild));
            CurrentWriterHost().messages.clear();
            EXPECT_EQ(plugin.ScaleImage(&image, 7, 30, WriterCallbacks()), 1);
            image.UnlockAll();
            EXPECT_TRUE(CurrentWriterHost().messages.empty());
        }
}

using AreaScaling = plugintest::ChangeTest<ScalePlugin>;

TEST_F(AreaScaling, NeedsNoLibrary)
{
    using namespace plugintest;
    Load("Area.dll");
    Raster image;
    Fill(&image, 20, 10, 24, Wild);
    const WithoutLibrary without("libzimg.so.2");
    EXPECT_EQ(plugin.ScaleImage(&image, 7, 30, WriterCallbacks()), 1);
    image.UnlockAll();
    EXPECT_EQ(without.Asked(), 0);
}

TEST_F(MissingPrinterLibrary, IsToldInBothLanguagesByThePrintAndByTheSettings)
{
    using namespace pdftest;
    for (const u32 language : {0u, 17u})
        for (const Lack lack : {Lack::Library, Lack::Functions})
            for (const bool prints : {false, true}) {
                const WithoutLibrary without("libcups.so.2", lack);
                Load(language);
                CurrentTold() = {};
                EXPECT_EQ(prints ? Print(10, 10, Noise) : plugin.Configure(nullptr, Callbacks()),
                          prints ? -1 : 0);
                EXPECT_EQ(without.Asked(), 1);
                ASSERT_EQ(CurrentTold().messages.size(), 1u);
                EXPECT_EQ(CurrentTold().messages[0].text,
                          language == 0 ? u"The library cups, which speaks to the printing system, "
                                          u"is not installed."
                                        : u"印刷システムを使うためのライブラリ cups "
                                          u"がインストールされていません。");
                EXPECT_TRUE(CurrentTold().progress.empty());
            }
}
