// The readers on a machine without their library.

#include "standard-plugins/tests/missing-libraries/Loader.h"
#include "standard-plugins/tests/support/ColorProfiles.h"
#include "standard-plugins/tests/support/Decoding.h"
#include "standard-plugins/tests/support/JpegMaking.h"
#include "standard-plugins/tests/support/PngMaking.h"
#include "standard-plugins/tests/support/Writing.h"

#include "platform/testing/core/TestPaths.h"

using missingtest::Lack;
using missingtest::WithoutLibrary;
using namespace plugintest;

namespace
{

struct Reader {
    const char* plugin;
    const char* library;
    /// A sound file under tests/inputs.
    const char* file;
};

const Reader readers[] = {
    {"INPUT/GIF", "libgif.so.7", "gif/good-64-colours.gif"},
    {"INPUT/TIFF", "libtiff.so.6", "tiff/good-strips.tif"},
    {"INPUT/WebP", "libwebp.so.7", "webp/good-lossy.webp"},
    {"INPUT/AVIF", "libavif.so.15", "avif/good-420-8-bits.avif"},
    {"INPUT/JXL", "libjxl.so.0.7", "jxl/good-lossy.jxl"},
    {"INPUT/HEIF", "libheif.so.1", "heif/good-420.heic"},
};

void PrintTo(const Reader& reader, std::ostream* out)
{
    *out << reader.plugin;
}

std::string Kept(const char* name)
{
    return FileBytes(std::filesystem::path(tavrix::testing::InSource("/tests/inputs")) / name);
}

class MissingReaderLibrary : public testing::TestWithParam<Reader>
{
protected:
    MissingReaderLibrary() { CurrentHost() = {}; }
    ~MissingReaderLibrary() override { CurrentHost() = {}; }

    int32_t Read(Canvas& canvas)
    {
        ByteStream stream(Kept(GetParam().file));
        return Decode(plugin, stream, canvas);
    }
    int32_t ReadSize()
    {
        ByteStream stream(Kept(GetParam().file));
        RasterInfo info = {};
        info.size = sizeof info;
        return plugin.getImageInfo(nullptr, &stream.record, &info);
    }

    tavrix::testing::Scope scope;
    PluginLibrary plugin{GetParam().plugin};
};

INSTANTIATE_TEST_SUITE_P(Each, MissingReaderLibrary, testing::ValuesIn(readers),
                         [](const auto& entry) {
                             return std::string(entry.param.plugin).substr(6);
                         });

// The pixels of a file, as red, green and blue.
std::string PixelsOf(const PluginLibrary& plugin, const std::string& file)
{
    ByteStream stream(file);
    Canvas canvas;
    EXPECT_EQ(Decode(plugin, stream, canvas), 1);
    std::string rgb;
    for (uint32_t y = 0; y < canvas.height; ++y)
        for (uint32_t x = 0; x < canvas.width; ++x) {
            const Pixel pixel = canvas.At(x, y);
            rgb += {static_cast<char>(pixel.red), static_cast<char>(pixel.green),
                    static_cast<char>(pixel.blue)};
        }
    return rgb;
}

} // namespace

TEST_P(MissingReaderLibrary, IsAFailureBeforeAPictureIsMadeAndTheNextReadingIsAsEver)
{
    for (const Lack lack : {Lack::Library, Lack::Functions}) {
        {
            const WithoutLibrary without(GetParam().library, lack);
            Canvas canvas;
            EXPECT_LT(Read(canvas), 0);
            EXPECT_EQ(without.Asked(), 1);
            EXPECT_EQ(canvas.allocations, 0);
        }
        Canvas canvas;
        EXPECT_EQ(Read(canvas), 1);
        EXPECT_GT(canvas.height, 0u);
    }
}

TEST_P(MissingReaderLibrary, NeverMakesTheHeadersSizeUp)
{
    ASSERT_EQ(ReadSize(), 1);
    for (const Lack lack : {Lack::Library, Lack::Functions}) {
        const WithoutLibrary without(GetParam().library, lack);
        const int32_t result = ReadSize();
        // Those that find the size by themselves need no library for it.
        EXPECT_EQ(result<0, without.Asked()> 0) << result;
    }
}

TEST(MissingColorLibrary, LeavesThePixelsAsTheFileHasThem)
{
    CurrentHost() = {};
    const std::string profile = WideRgbProfile();
    auto parts = SplitPng(MakePng({.width = 24, .height = 20}, Wild));
    const std::string plainPng = JoinPng(parts);
    parts.insert(parts.begin() + 1, {"iCCP", std::string("p\0\0", 3) + Deflate(profile)});
    const std::string png = JoinPng(parts);
    const std::string plainJpeg = MakeJpeg({.width = 24, .height = 20}, Soft);
    std::string jpeg = plainJpeg;
    jpeg.insert(2, JpegSegment(0xe2, std::string("ICC_PROFILE\0\1\1", 14) + profile));
    for (const auto& [name, plain, colored] :
         {std::tuple{"INPUT/PNG", plainPng, png}, {"INPUT/JPEG", plainJpeg, jpeg}}) {
        const PluginLibrary plugin(name);
        const std::string expected = PixelsOf(plugin, plain);
        EXPECT_NE(PixelsOf(plugin, colored), expected) << name;
        for (const Lack lack : {Lack::Library, Lack::Functions}) {
            const WithoutLibrary without("liblcms2.so.2", lack);
            EXPECT_EQ(PixelsOf(plugin, colored), expected) << name;
            EXPECT_EQ(without.Asked(), 1) << name;
            EXPECT_TRUE(CurrentHost().messages.empty()) << name;
        }
    }
}

TEST(MissingColorLibrary, LetsThePicturesOfWideColoursBeReadAllTheSame)
{
    CurrentHost() = {};
    const tavrix::testing::Scope scope;
    for (const auto& [name, file] : {std::pair{"INPUT/TIFF", "tiff/good-strips.tif"},
                                     {"INPUT/WebP", "webp/good-lossy.webp"},
                                     {"INPUT/AVIF", "avif/good-profile.avif"},
                                     {"INPUT/AVIF", "avif/good-high-range.avif"},
                                     {"INPUT/JXL", "jxl/good-profile-lossless.jxl"},
                                     {"INPUT/JXL", "jxl/good-high-range.jxl"},
                                     {"INPUT/HEIF", "heif/good-profile.heic"},
                                     {"INPUT/HEIF", "heif/good-wide-colours.heic"}}) {
        const PluginLibrary plugin(name);
        const WithoutLibrary without("liblcms2.so.2");
        ByteStream stream(Kept(file));
        Canvas canvas;
        EXPECT_EQ(Decode(plugin, stream, canvas), 1) << file;
        ASSERT_GT(canvas.height, 0u) << file;
        for (uint32_t y = 0; y < canvas.height; ++y)
            EXPECT_TRUE(canvas.WasWritten(y)) << file << " " << y;
    }
}
