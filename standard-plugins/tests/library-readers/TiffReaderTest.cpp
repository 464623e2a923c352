// The TIFF reader's pixels, against libtiff's own programs, netpbm and ImageMagick.

#include "standard-plugins/tests/library-readers/References.h"

using plugintest::ByteStream;
using plugintest::Canvas;
using plugintest::CurrentHost;
using plugintest::Decode;
using plugintest::Pixel;
using plugintest::PluginLibrary;
using plugintest::Reference;

namespace
{

class TiffReader : public plugintest::ReaderTest
{
protected:
    TiffReader()
    {
        Write("in.ppm", plugintest::MakePpm(93, 71, plugintest::SoftSample));
        Run("convert in.ppm -compress none in.tif");
    }
    int32_t DecodeFile(const std::string& name, Canvas& canvas) const
    {
        ByteStream stream(Read(name));
        return Decode(plugin, stream, canvas);
    }

    PluginLibrary plugin{"INPUT/TIFF"};
};

const char* const forms[] = {
    "-s -r 1",        "-s -r 16",       "-s -r 1000",          "-t -w 16 -l 16",
    "-t -w 32 -l 48", "-t -w 96 -l 80", "-p separate -s -r 7", "-p separate -t -w 32 -l 16",
    "-8 -s -r 9",     "-B -s -r 9",     "-L -8 -t -w 16 -l 32"};

} // namespace

TEST_F(TiffReader, ReadsEveryLosslessCompressionInStripsAndTiles)
{
    for (const std::string compression :
         {"none", "packbits", "lzw", "lzw:2", "zip", "zip:2", "lzma", "zstd", "zstd:2"})
        for (const std::string form : forms) {
            Run("tiffcp -c " + compression + " " + form + " in.tif out.tif");
            SCOPED_TRACE(compression + " " + form);
            ExpectLike(plugin, "out.tif", "cat in.ppm");
        }
}

TEST_F(TiffReader, ReadsGreyOfEveryDepthInBothSenses)
{
    for (const int depth : {1, 2, 4, 8, 16})
        for (const std::string sense : {"min-is-black", "min-is-white"}) {
            Run("convert in.ppm -colorspace Gray -depth " + std::to_string(depth) +
                " -define tiff:bits-per-sample=" + std::to_string(depth) +
                " -define quantum:polarity=" + sense + " -type Grayscale -compress none g.tif");
            for (const std::string form : {"-s -r 5", "-t -w 16 -l 16", "-B -s -r 100"})
                for (const std::string compression : {"none", "lzw", "packbits"}) {
                    Run("tiffcp -c " + compression + " " + form + " g.tif out.tif");
                    SCOPED_TRACE(std::to_string(depth) + sense + form + compression);
                    // Of 16 bits netpbm's program gives only the upper 8.
                    ExpectLike(plugin, "out.tif",
                               depth == 16 ? "convert out.tif -depth 16 ppm:-"
                                           : "tifftopnm -quiet out.tif");
                }
        }
}

TEST_F(TiffReader, ReadsFaxCompressions)
{
    Run("convert in.ppm -colorspace Gray -threshold 50% -monochrome -compress group4 bw.tif");
    for (const std::string compression : {"g3:1d", "g3:2d", "g3:1d:fill", "g4", "none", "lzw"})
        for (const std::string form : {"-s -r 10", "-s -r 1000", "-f lsb2msb", "-t -w 32 -l 32"}) {
            if (form[1] == 't' && compression[1] == '3')
                continue; // its programs write no such tiles
            SCOPED_TRACE(compression + form);
            Run("tiffcp -c " + compression + " " + form + " bw.tif out.tif");
            ExpectLike(plugin, "out.tif", "tifftopnm -quiet bw.tif");
        }
}

TEST_F(TiffReader, ReadsPalettesOfOneToEightBits)
{
    for (const int bits : {1, 2, 4, 8}) {
        Run("convert in.ppm -colors " + std::to_string(1 << bits) +
            " -type Palette -define tiff:bits-per-sample=" + std::to_string(bits) +
            " -compress none p.tif");
        for (const std::string form : {"-s -r 5", "-t -w 16 -l 16"}) {
            Run("tiffcp -c lzw " + form + " p.tif out.tif");
            ExpectLike(plugin, "out.tif", "convert p.tif -depth 16 ppm:-");
        }
    }
}

TEST_F(TiffReader, Reads16BitsOfEitherByteOrder)
{
    Run("convert -size 93x71 gradient:'#1234abcd9876'-'#fedc00017fff' -depth 16 w.tif");
    for (const std::string compression : {"none", "lzw", "zip"}) {
        Run("convert w.tif -interlace plane -compress " + compression + " out.tif");
        ExpectLike(plugin, "out.tif", "tifftopnm -quiet w.tif");
    }
    for (const std::string form : forms)
        for (const std::string compression : {"none", "lzw:2", "zip"}) {
            if (form.find("separate") != std::string::npos)
                continue; // tiffcp makes no such planes
            Run("tiffcp -c " + compression + " " + form + " w.tif out.tif");
            SCOPED_TRACE(compression + form);
            ExpectLike(plugin, "out.tif", "tifftopnm -quiet w.tif");
        }
}

TEST_F(TiffReader, ReadsJpegAndWebpCompressionAsOthersDo)
{
    for (const std::string compression : {"jpeg:r:90", "jpeg:90", "webp:90"})
        for (const std::string form : {"-s -r 16", "-s -r 1000", "-t -w 32 -l 32"}) {
            SCOPED_TRACE(compression + form);
            Run("tiffcp -c " + compression + " " + form + " in.tif out.tif");
            ExpectLike(plugin, "out.tif", "convert out.tif ppm:-");
            Run("tiff2rgba -c none -n out.tif rgba.tif");
            ExpectLike(plugin, "out.tif", "tifftopnm -quiet rgba.tif");
        }
    Run("convert in.ppm -colorspace Gray g.tif && tiffcp -c jpeg:80 g.tif out.tif");
    ExpectLike(plugin, "out.tif", "convert out.tif ppm:-");
}

TEST_F(TiffReader, ConvertsColourDifferencesAndLabByTheLibrary)
{
    Run("convert in.ppm -colorspace YCbCr -compress lzw y.tif");
    Run("tiff2rgba -c none -n y.tif rgba.tif");
    ExpectLike(plugin, "y.tif", "tifftopnm -quiet rgba.tif");
    Run("convert in.ppm -colorspace Lab -depth 8 -compress lzw l.tif");
    Run("tiff2rgba -c none -n l.tif rgba.tif");
    ExpectLike(plugin, "l.tif", "tifftopnm -quiet rgba.tif");
    Run("tiffcp -t -w 32 -l 32 l.tif lt.tif");
    ExpectLike(plugin, "lt.tif", "tifftopnm -quiet rgba.tif");
}

TEST_F(TiffReader, ReadsInks)
{
    Run("convert in.ppm -colorspace CMYK -depth 8 -compress none c.tif && convert c.tif "
        "cmyk:c.raw");
    const std::string inks = Read("c.raw");
    ASSERT_EQ(inks.size(), 4u * 93 * 71);
    Reference expected = {93, 71, {}};
    for (size_t i = 0; i < inks.size(); i += 4)
        for (size_t c = 0; c < 3; ++c) {
            const uint32_t light = 255 - static_cast<uint8_t>(inks[i + c]);
            const uint32_t black = 255 - static_cast<uint8_t>(inks[i + 3]);
            expected.rgb += static_cast<char>((light * black + 127) / 255);
        }
    ExpectLike(plugin, "c.tif", expected);
    for (const std::string form : forms) {
        Run("tiffcp -c lzw " + form + " c.tif out.tif");
        ExpectLike(plugin, "out.tif", expected);
    }
    // What the other program makes of it may round otherwise.
    ExpectLike(plugin, "c.tif", "convert c.tif -colorspace sRGB -depth 8 ppm:-", 1);
    Run("convert in.ppm -colorspace CMYK -depth 16 -define tiff:bits-per-sample=16 c16.tif");
    ExpectLike(plugin, "c16.tif", "convert c16.tif -colorspace sRGB -depth 8 ppm:-", 1);
}

TEST_F(TiffReader, LaysAlphaOverTheBackground)
{
    CurrentHost().settings = {{u"TiffInputBackgroundRed", 10}, {u"TiffInputBackgroundGreen", 200}};
    const std::string alpha =
        "convert in.ppm \\( -size 71x93 gradient: -rotate 90 -resize '93x71!' "
        "\\) -alpha off -compose CopyOpacity -composite ";
    Run(alpha + "-depth 8 rgba:a.raw");
    const std::string rgba = Read("a.raw");
    const uint8_t ground[3] = {10, 200, 255};
    Reference expected = {93, 71, {}};
    for (size_t i = 0; i < rgba.size(); i += 4)
        for (size_t c = 0; c < 3; ++c) {
            const auto a = static_cast<uint8_t>(rgba[i + 3]);
            const auto value = static_cast<uint8_t>(rgba[i + c]);
            expected.rgb += static_cast<char>((a * value + (255 - a) * ground[c] + 127) / 255);
        }
    Run(alpha + "-depth 8 -define tiff:alpha=unassociated -compress none u.tif");
    Run(alpha + "-depth 8 -define tiff:alpha=associated -compress none p.tif");
    ExpectLike(plugin, "u.tif", expected);
    ExpectLike(plugin, "p.tif", expected, 1); // rounded once more when it was written
    for (const std::string form : forms) {
        SCOPED_TRACE(form);
        Run("tiffcp -c zip " + form + " u.tif out.tif");
        ExpectLike(plugin, "out.tif", expected);
        Run("tiffcp -c zip " + form + " p.tif out.tif");
        ExpectLike(plugin, "out.tif", expected, 1);
    }
    Run(alpha + "-depth 16 -define tiff:alpha=unassociated -compress lzw u16.tif");
    ExpectLike(plugin, "u16.tif", expected, 1);
    Run(alpha + "-depth 16 -define tiff:alpha=associated -compress lzw p16.tif");
    ExpectLike(plugin, "p16.tif", expected, 1);
    Run(alpha + "-colorspace Gray -depth 8 -define tiff:alpha=unassociated ga.tif");
    Run("convert ga.tif -depth 8 graya:g.raw");
    const std::string greys = Run("convert ga.tif -depth 8 rgba:-");
    ASSERT_EQ(greys.size(), rgba.size());
    expected.rgb.clear();
    for (size_t i = 0; i < greys.size(); i += 4)
        for (size_t c = 0; c < 3; ++c) {
            const auto a = static_cast<uint8_t>(greys[i + 3]);
            const auto value = static_cast<uint8_t>(greys[i]);
            expected.rgb += static_cast<char>((a * value + (255 - a) * ground[c] + 127) / 255);
        }
    ExpectLike(plugin, "ga.tif", expected);
}

TEST_F(TiffReader, FollowsTheOrientation)
{
    const char* turns[] = {"",           "",           "-flop",       "-rotate 180", "-flip",
                           "-transpose", "-rotate 90", "-transverse", "-rotate 270"};
    for (int orientation = 1; orientation <= 8; ++orientation)
        for (const std::string form : {"-c none", "-c lzw -t -w 16 -l 32"}) {
            Run("tiffcp " + form + " in.tif out.tif && tiffset -s 274 " +
                std::to_string(orientation) + " out.tif");
            SCOPED_TRACE(orientation);
            ExpectLike(plugin, "out.tif",
                       "convert in.ppm " + std::string(turns[orientation]) + " ppm:-");
        }
    // The library's own conversion turns nothing either.
    Run("convert in.ppm -colorspace YCbCr -compress lzw y.tif && tiff2rgba -c none -n y.tif r.tif "
        "&& tiffset -s 274 6 y.tif");
    ExpectLike(plugin, "y.tif", "tifftopnm -quiet r.tif | pamflip -rotate270");
}

TEST_F(TiffReader, ConvertsAColourProfile)
{
    const std::string profiles = "/usr/share/color/icc/ghostscript/";
    const auto expect = [&](const std::string& made, const std::string& profile, int tolerance) {
        SCOPED_TRACE(made);
        Run("convert in.ppm " + made + " -compress none plain.tif");
        Run("convert plain.tif -set profile:icc " + profiles + profile + " with.tif || true");
        Run("convert plain.tif -profile " + profiles + profile + " with.tif");
        ExpectLike(plugin, "with.tif",
                   "convert with.tif -black-point-compensation -intent Perceptual -profile " +
                       profiles + "srgb.icc -depth 8 ppm:-",
                   tolerance);
    };
    expect("-depth 8", "a98.icc", 2);
    // The library that converts is less exact for 16 bits near the edge of what can be shown.
    expect("-depth 16", "a98.icc", 6);
    expect("-colorspace CMYK -depth 8", "default_cmyk.icc", 4);
    // Of another space, broken, too large: the picture as it stands.
    for (const std::string profile : {"default_cmyk.icc", "sgray.icc"}) {
        Run("convert in.ppm -compress none in2.tif && tiffset -sf 34675 " + profiles + profile +
            " in2.tif 2>/dev/null || true");
        ExpectLike(plugin, "in2.tif", "cat in.ppm");
    }
}

TEST_F(TiffReader, ReadsFloatGreysFromNoughtToOne)
{
    Run("convert in.ppm -colorspace Gray -depth 32 -define quantum:format=floating-point "
        "-compress zip f.tif");
    Run("convert in.ppm -colorspace Gray -depth 8 g.pgm");
    ExpectLike(plugin, "f.tif", "cat g.pgm", 1);
}

TEST_F(TiffReader, ReadsTheFirstPage)
{
    Run("convert in.ppm -negate n.tif && tiffcp in.tif n.tif n.tif pages.tif");
    ExpectLike(plugin, "pages.tif", "cat in.ppm");
}

TEST_F(TiffReader, KeepsTheRowsBeforeABrokenPlaceInAStripAndReadsNoneBehindIt)
{
    // Three strips; bytes of the second are wrong. The directory stands behind them all.
    Run("ppm2tiff -c zip -r $((($(pamfile -machine in.ppm | cut -d' ' -f4) + 2) / 3)) in.ppm "
        "s.tif");
    Canvas sound;
    ASSERT_EQ(DecodeFile("s.tif", sound), 1);
    std::string bytes = Read("s.tif");
    for (size_t at = bytes.size() / 2; at < bytes.size() / 2 + 20; ++at)
        bytes[at] = static_cast<char>(bytes[at] ^ 0x5a);
    ByteStream broken(bytes);
    Canvas canvas;
    EXPECT_LT(Decode(plugin, broken, canvas), 0);
    ASSERT_EQ(canvas.height, sound.height);
    uint32_t same = 0;
    for (bool is = true; is && same < canvas.height; same += is)
        for (uint32_t x = 0; x < canvas.width; ++x)
            is = is && canvas.At(x, same) == sound.At(x, same);
    EXPECT_GT(same, sound.height / 3); // some of the second strip
    EXPECT_LT(same, sound.height * 2 / 3);
    EXPECT_FALSE(canvas.WasWritten(sound.height - 1));
}

TEST_F(TiffReader, LeavesNoTemporaryFileBehind)
{
    Canvas canvas;
    EXPECT_EQ(DecodeFile("in.tif", canvas), 1);
    ByteStream broken(Read("in.tif").substr(0, 3000));
    EXPECT_LT(Decode(plugin, broken, canvas), 0);
    CurrentHost().refuseFrom = 3;
    EXPECT_LT(DecodeFile("in.tif", canvas), 0);
    size_t left = 0;
    const std::string temporary = tavrix::testing::HostPath(u"\\Temp\\");
    for (const auto& entry : std::filesystem::directory_iterator(temporary))
        left += entry.path().filename().string().find("~tavrix") == 0;
    EXPECT_EQ(left, 0u) << temporary;
}

TEST_F(TiffReader, CopiesNothingThatIsNoTiff)
{
    ByteStream page("<!DOCTYPE html><html>not found</html>");
    page.garbageBehind = 50u << 20;
    Canvas canvas;
    EXPECT_LT(Decode(plugin, page, canvas), 0);
    EXPECT_LE(page.given, 65536u);
}

TEST_F(TiffReader, FailsWhereTheDiskIsFull)
{
    tavrix::testing::SetDiskSpace(1000);
    Canvas canvas;
    EXPECT_LT(DecodeFile("in.tif", canvas), 0);
    EXPECT_EQ(canvas.allocations, 0);
}

TEST_F(TiffReader, TakesNoMoreMemoryForMoreLines)
{
    // In strips, in tiles, and without compression in one strip.
    const char* forms[] = {"-c lzw -r 16", "-c lzw -t -w 64 -l 64", "-c none -r 100000",
                           "-c none -r 100000 -p separate"};
    for (const std::string form : forms) {
        SCOPED_TRACE(form);
        size_t most[2] = {};
        int i = 0;
        for (const int height : {400, 3200}) {
            Run("ppmmake -quiet rgb:80/70/60 1000 " + std::to_string(height) +
                " | pnmtotiff -quiet -truecolor -rowsperstrip 16 > flat.tif 2>/dev/null && "
                "tiffcp " +
                form + " flat.tif big.tif");
            ByteStream stream(Read("big.tif"));
            Canvas canvas;
            canvas.forgets = true;
            EXPECT_EQ(Decode(plugin, stream, canvas), 1);
            EXPECT_EQ(canvas.height, static_cast<uint32_t>(height));
            most[i++] = canvas.peak.Most();
        }
        EXPECT_GT(most[0], 64u * 1024); // it does measure
        // The library keeps the place and the length of each strip.
        EXPECT_LT(most[1], most[0] + 16 * 1024);
        EXPECT_LT(most[1], 1u << 20);
    }
}

TEST_F(TiffReader, TellsTheSizeAsItIsShown)
{
    Run("tiffset -s 274 6 in.tif");
    ByteStream stream(Read("in.tif"));
    RasterInfo info = {};
    info.size = sizeof info;
    EXPECT_EQ(plugin.getImageInfo(nullptr, &stream.record, &info), 1);
    EXPECT_EQ(info.width, 71u);
    EXPECT_EQ(info.height, 93u);
}
