// Pictures with which others test their own decoders, read as the formats' own programs read them,
// or as the pictures are from which they were made.

#include "standard-plugins/tests/library-readers/References.h"

#include <map>

using namespace plugintest;
namespace fs = std::filesystem;

namespace
{

const fs::path standardLibrary = "/usr/share/go-1.19/src/image";
const fs::path imageLibrary = "/usr/share/gocode/src/golang.org/x/image/testdata";

/// Some files of a folder and what they must come out as.
struct Suite {
    const char* name;
    const char* plugin;
    fs::path folder;
    /// Files whose names end in one of these.
    std::vector<std::string> endings;
    size_t count;
    /// Prints the picture of a file FILE as PNM; STEM is its name without the ending.
    const char* reference;
    int tolerance = 0;
};

constexpr const char* onWhite = "convert FILE -background white -flatten -depth 8 ppm:-";

const Suite suites[] = {
    {"PngOfEveryTypeAndDepth",
     "INPUT/PNG",
     standardLibrary / "png/testdata/pngsuite",
     {".png"},
     35,
     "pngtopnm -quiet -mix -background=white FILE",
     1},
    {"PngLarger",
     "INPUT/PNG",
     standardLibrary / "png/testdata",
     {"Gray.png", "opaque.png", "Paletted.png", "RGB-interlace.png", "RGB.png",
      "gradient.interlaced.png", "gray-gradient.png"},
     7,
     "pngtopnm -quiet FILE"},
    {"Gif",
     "INPUT/GIF",
     standardLibrary / "testdata",
     {"video-001.gif", "5bpp.gif", "interlaced.gif", "gray.gif"},
     4,
     "giftopnm -quiet FILE"},
    {"GifThatIsTransparent",
     "INPUT/GIF",
     standardLibrary / "testdata",
     {"triangle-001.gif"},
     1,
     onWhite},
    {"Jpeg",
     "INPUT/JPEG",
     standardLibrary / "testdata",
     {"video-001.jpeg", "progressive.jpeg", "gray.jpeg", "2x2.jpeg", "q50.jpeg", "q50.410.jpeg",
      "q50.411.jpeg", "q50.420.jpeg", "q50.422.jpeg", "q50.440.jpeg", "q50.444.jpeg", "221212.jpeg",
      "truncated.jpeg", "rgb.jpeg", "progression.jpeg"},
     24,
     "djpeg FILE"},
    {"JpegOfInks",
     "INPUT/JPEG",
     standardLibrary / "testdata",
     {".cmyk.jpeg"},
     1,
     "convert FILE -colorspace sRGB -depth 8 ppm:-",
     1},
    {"Bmp",
     "INPUT/BMP",
     imageLibrary,
     {"colormap.bmp", "video-001.bmp", "yellow_rose-small.bmp"},
     3,
     "pngtopnm -quiet $(basename FILE .bmp).png"},
    {"BmpThatIsTransparent", "INPUT/BMP", imageLibrary, {"small-v5.bmp"}, 1, onWhite, 1},
    {"TiffInStripsAndTiles",
     "INPUT/TIFF",
     imageLibrary,
     {"video-001.tiff", "strip-64.tiff", "tile-64x64.tiff", "video-001-uncompressed.tiff"},
     4,
     "pngtopnm -quiet video-001.png"},
    {"TiffOfLzw",
     "INPUT/TIFF",
     imageLibrary,
     {"pink.lzwcompressed.tiff"},
     1,
     "pngtopnm -quiet blue-purple-pink.png"},
    {"TiffOfTwoLevels",
     "INPUT/TIFF",
     imageLibrary,
     {"bw-deflate.tiff", "Group3.tiff", "Group4.tiff", "bw-packbits.tiff", "bw-uncompressed.tiff"},
     5,
     "pngtopnm -quiet bw-gopher.png"},
    {"TiffOfOtherDepths",
     "INPUT/TIFF",
     imageLibrary,
     {"gray.tiff", "16bit.tiff", "paletted.tiff"},
     4,
     "tifftopnm -quiet -byrow FILE"},
    {"TiffThatIsTransparent",
     "INPUT/TIFF",
     imageLibrary,
     {"no_compress.tiff", "no_rps.tiff"},
     2,
     onWhite,
     1},
    {"WebpLossless",
     "INPUT/WebP",
     imageLibrary,
     {".lossless.webp"},
     8,
     "pngtopnm -quiet -mix -background=white STEM.png",
     1},
    {"WebpLossy", "INPUT/WebP", imageLibrary, {".lossy.webp"}, 6, "dwebp -quiet -ppm FILE -o -"},
    {"WebpThatIsTransparent",
     "INPUT/WebP",
     imageLibrary,
     {".lossy-with-alpha.webp"},
     1,
     onWhite,
     1},
};

void PrintTo(const Suite& suite, std::ostream* out)
{
    *out << suite.name;
}

class PublicSuite : public ReaderTest, public testing::WithParamInterface<Suite>
{
protected:
    /// The files with what their commands are.
    std::map<fs::path, std::string> Commands() const
    {
        std::map<fs::path, std::string> commands;
        for (const auto& entry : fs::directory_iterator(GetParam().folder))
            for (const std::string& ending : GetParam().endings)
                if (const std::string name = entry.path().filename(); name.ends_with(ending))
                    commands[entry.path()] =
                        "cd '" + GetParam().folder.string() + "' && " +
                        Replaced(Replaced(GetParam().reference, "FILE", name), "STEM",
                                 name.substr(0, name.size() - ending.size()));
        return commands;
    }
    static std::string Replaced(std::string text, const std::string& what, const std::string& with)
    {
        const size_t at = text.find(what);
        return at == text.npos ? text : text.replace(at, what.size(), with);
    }
};

INSTANTIATE_TEST_SUITE_P(Of, PublicSuite, testing::ValuesIn(suites),
                         [](const auto& entry) { return std::string(entry.param.name); });

using PublicBrokenFiles = ReaderTest;

} // namespace

TEST_P(PublicSuite, IsReadPixelForPixel)
{
    const PluginLibrary plugin(GetParam().plugin);
    const std::map<fs::path, std::string> commands = Commands();
    EXPECT_EQ(commands.size(), GetParam().count);
    for (const auto& [file, command] : commands) {
        SCOPED_TRACE(file.filename());
        ByteStream stream(BytesOf(file));
        Canvas canvas;
        EXPECT_EQ(Decode(plugin, stream, canvas), 1);
        EXPECT_LE(GreatestDistance(canvas, ReadPnm(Run(command))), GetParam().tolerance);
    }
}

TEST_F(PublicBrokenFiles, AreNeverTakenForWholeOnes)
{
    const PluginLibrary png("INPUT/PNG");
    for (const char* fault : {"crc32", "noend", "palette", "trunc", "zlib"}) {
        ByteStream stream(
            BytesOf(standardLibrary / "png/testdata" / ("invalid-" + std::string(fault) + ".png")));
        Canvas canvas;
        EXPECT_LT(Decode(png, stream, canvas), 0) << fault;
    }
}
