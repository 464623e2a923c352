// The WebP reader's pixels, against dwebp's.

#include "standard-plugins/tests/library-readers/References.h"

using plugintest::ByteStream;
using plugintest::Canvas;
using plugintest::CurrentHost;
using plugintest::Decode;
using plugintest::FirstDifference;
using plugintest::Pixel;
using plugintest::PluginLibrary;
using plugintest::Reference;

namespace
{

class WebpReader : public plugintest::ReaderTest
{
protected:
    WebpReader() { Write("in.ppm", plugintest::MakePpm(93, 71, plugintest::SoftSample)); }
    // A picture with alpha of every amount.
    void MakeAlpha() const
    {
        Run("convert in.ppm \\( -size 71x93 gradient: -rotate 90 -resize '93x71!' \\) "
            "-alpha off -compose CopyOpacity -composite PNG32:alpha.png");
    }

    PluginLibrary plugin{"INPUT/WebP"};
};

// The picture of four samples a pixel over a ground.
Reference Over(const std::string& rgba, uint32_t width, uint32_t height, const uint8_t (&ground)[3])
{
    Reference reference = {width, height, {}};
    for (size_t i = 0; i < size_t{width} * height; ++i) {
        const auto* at = reinterpret_cast<const uint8_t*>(rgba.data()) + 4 * i;
        for (int c = 0; c < 3; ++c)
            reference.rgb +=
                static_cast<char>((at[3] * at[c] + (255 - at[3]) * ground[c] + 127) / 255);
    }
    return reference;
}

constexpr uint8_t white[3] = {255, 255, 255};

std::string Number32(uint32_t value)
{
    std::string bytes;
    for (int i = 0; i < 4; ++i)
        bytes += static_cast<char>(value >> 8 * i);
    return bytes;
}

std::string Chunk(const std::string& name, const std::string& data)
{
    return name + Number32(static_cast<uint32_t>(data.size())) + data +
           std::string(data.size() & 1, '\0');
}

std::string Riff(const std::string& chunks)
{
    return "RIFF" + Number32(static_cast<uint32_t>(chunks.size() + 4)) + "WEBP" + chunks;
}

std::string Extended(uint8_t flags, uint32_t width, uint32_t height)
{
    return Chunk("VP8X", static_cast<char>(flags) + std::string(3, '\0') +
                             Number32(width - 1).substr(0, 3) + Number32(height - 1).substr(0, 3));
}

// EXIF data of one entry.
std::string Exif(uint32_t orientation)
{
    return std::string("II*\0\x08\0\0\0\x01\0\x12\x01\x03\0\x01\0\0\0", 18) +
           Number32(orientation) + Number32(0);
}

} // namespace

TEST_F(WebpReader, ReadsLossyAndLosslessAsTheLibrarysProgramDoes)
{
    const char* options[] = {
        "-q 75",       "-q 5",           "-q 100 -m 6",    "-q 40 -segments 1",
        "-partitions", "-lossless -z 9", "-lossless -z 0", "-near_lossless 40"};
    int number = 0;
    for (std::string option : options) {
        if (option == "-partitions")
            option = "-q 60 -mt -m 2 -sns 0";
        const std::string name = "o" + std::to_string(number++) + ".webp";
        Run("cwebp -quiet " + option + " in.ppm -o " + name);
        ExpectLike(plugin, name, "dwebp -quiet -nodither -ppm " + name + " -o -");
    }
    Run("convert in.ppm -quality 80 magick.webp");
    ExpectLike(plugin, "magick.webp", "dwebp -quiet -nodither -ppm magick.webp -o -");
}

TEST_F(WebpReader, ReadsSmallSizes)
{
    for (const char* size : {"1x1", "2x1", "1x7", "16x16", "17x15", "33x2"})
        for (const char* option : {"-q 80", "-lossless"}) {
            Run("convert in.ppm -crop " + std::string(size) +
                "+3+4 +repage s.ppm && cwebp -quiet " + option + " s.ppm -o s.webp");
            ExpectLike(plugin, "s.webp", "dwebp -quiet -nodither -ppm s.webp -o -");
        }
}

TEST_F(WebpReader, LaysAlphaOverTheBackground)
{
    MakeAlpha();
    for (const char* option :
         {"-q 70", "-q 70 -alpha_q 20", "-q 60 -alpha_method 0", "-lossless", "-lossless -exact"})
        for (const bool colored : {false, true}) {
            Run("cwebp -quiet " + std::string(option) + " alpha.png -o a.webp");
            const std::string rgba = Run("dwebp -quiet -nodither -pam a.webp -o - | tail -c " +
                                         std::to_string(4 * 93 * 71));
            uint8_t ground[3] = {255, 255, 255};
            CurrentHost().settings.clear();
            if (colored) {
                ground[0] = 1;
                ground[2] = 200;
                CurrentHost().settings = {{u"WebpInputBackgroundRed", 1},
                                          {u"WebpInputBackgroundBlue", 200}};
            }
            ExpectLike(plugin, "a.webp", Over(rgba, 93, 71, ground));
        }
}

TEST_F(WebpReader, ShowsTheFirstFrameOfAnAnimationOnItsCanvas)
{
    MakeAlpha();
    Run("cwebp -quiet -q 70 in.ppm -o lossy.webp && cwebp -quiet -lossless alpha.png -o less.webp "
        "&& cwebp -quiet -q 50 alpha.png -o mixed.webp");
    for (const char* frame : {"lossy", "less", "mixed"}) {
        const std::string name = frame + std::string(".webp");
        Run("webpmux -frame " + name +
            " +100+10+6+0-b -frame lossy.webp +100+0+20 -bgcolor "
            "255,9,9,9 -o anim.webp 2>/dev/null");
        const std::string rgba = Run("dwebp -quiet -nodither -pam " + name + " -o - | tail -c " +
                                     std::to_string(4 * 93 * 71));
        const Reference first = Over(rgba, 93, 71, white);
        // The canvas is what the frames need.
        Reference canvas = {103, 91, std::string(size_t{3} * 103 * 91, '\xff')};
        for (uint32_t y = 0; y < 71; ++y)
            canvas.rgb.replace(size_t{3} * ((y + 6) * 103 + 10), size_t{3} * 93, first.rgb,
                               size_t{3} * 93 * y, size_t{3} * 93);
        ExpectLike(plugin, "anim.webp", canvas);
    }
}

TEST_F(WebpReader, TurnsThePictureAsItsExifDataSay)
{
    Run("cwebp -quiet -lossless in.ppm -o in.webp");
    const std::string sound = Read("in.webp");
    const char* turns[] = {"",           "",           "-flop",       "-rotate 180", "-flip",
                           "-transpose", "-rotate 90", "-transverse", "-rotate 270"};
    for (uint32_t orientation = 1; orientation <= 8; ++orientation)
        for (const bool behind : {true, false}) {
            const std::string exif = Chunk("EXIF", Exif(orientation));
            const std::string picture = sound.substr(12);
            Write("turned.webp",
                  Riff(Extended(8, 93, 71) + (behind ? picture + exif : exif + picture)));
            ExpectLike(plugin, "turned.webp",
                       "convert in.ppm " + std::string(turns[orientation]) + " ppm:-");
        }
    Write("named.webp", Riff(Extended(8, 93, 71) + sound.substr(12) +
                             Chunk("EXIF", std::string("Exif\0\0", 6) + Exif(6))));
    ExpectLike(plugin, "named.webp", "convert in.ppm -rotate 90 ppm:-");
}

TEST_F(WebpReader, PassesOverOrientationsThatAreNone)
{
    Run("cwebp -quiet -lossless in.ppm -o in.webp");
    const std::string picture = Read("in.webp").substr(12);
    const std::string exif = Exif(1);
    // One whose directory is its own next, one that has no data, one that lies beyond its end.
    const std::string loop = exif.substr(0, exif.size() - 4) + Number32(8);
    for (const std::string& data : {Exif(0), Exif(9), Exif(65535), loop, std::string(),
                                    std::string("II*\0\xff\xff\xff\x7f", 8), std::string("x")}) {
        Write("odd.webp", Riff(Extended(8, 93, 71) + picture + Chunk("EXIF", data)));
        ExpectLike(plugin, "odd.webp", "cat in.ppm");
    }
    // Announced, and not there.
    Write("none.webp", Riff(Extended(8, 93, 71) + picture));
    ExpectLike(plugin, "none.webp", "cat in.ppm");
}

TEST_F(WebpReader, ConvertsAColourProfileAndPassesOverABrokenOne)
{
    Run("cwebp -quiet -lossless in.ppm -o in.webp");
    const std::string picture = Read("in.webp").substr(12);
    const std::string profiles = "/usr/share/color/icc/ghostscript/";
    Write("wide.webp", Riff(Extended(0x20, 93, 71) +
                            Chunk("ICCP", plugintest::BytesOf(profiles + "a98.icc")) + picture));
    ExpectLike(plugin, "wide.webp",
               "convert in.ppm -intent Perceptual -profile " + profiles + "a98.icc -profile " +
                   profiles + "srgb.icc ppm:-",
               2);
    ByteStream stream(Read("wide.webp"));
    Canvas canvas;
    ASSERT_EQ(Decode(plugin, stream, canvas), 1);
    EXPECT_GT(plugintest::GreatestDistance(canvas, plugintest::ReadPnm(Read("in.ppm"))), 5);
    for (const std::string& profile :
         {std::string("no profile"), std::string(), std::string(5u << 20, 'x'),
          plugintest::BytesOf(profiles + "default_cmyk.icc"),
          plugintest::BytesOf(profiles + "a98.icc").substr(0, 200)}) {
        Write("odd.webp", Riff(Extended(0x20, 93, 71) + Chunk("ICCP", profile) + picture));
        ExpectLike(plugin, "odd.webp", "cat in.ppm");
    }
}

TEST_F(WebpReader, RefusesALossyPictureThatItsDataCannotHold)
{
    // 16383 x 16383 pixels are a million macroblocks, and here are 100 bytes.
    const std::string start("\x10\x10\0\x9d\x01\x2a\xff\x3f\xff\x3f", 10);
    ByteStream stream(Riff(Chunk("VP8 ", start + std::string(90, '\0'))));
    Canvas canvas;
    EXPECT_LT(Decode(plugin, stream, canvas), 0);
    EXPECT_EQ(canvas.allocations, 0);
    EXPECT_LT(stream.peak.Most(), 1u << 20);
    EXPECT_TRUE(CurrentHost().messages.empty());
}

TEST_F(WebpReader, NamesTheSettingWhereALosslessPictureTakesTooMuch)
{
    Run("convert -size 4000x4000 'xc:#203040' big.ppm && cwebp -quiet -lossless -z 0 big.ppm -o "
        "big.webp");
    const std::string file = Read("big.webp");
    ASSERT_LT(file.size(), 2000u); // 16 million pixels
    CurrentHost().settings = {{u"WebpInputMemory", 100}};
    ByteStream stream(file);
    Canvas canvas;
    EXPECT_EQ(Decode(plugin, stream, canvas), -2);
    EXPECT_EQ(canvas.allocations, 0);
    EXPECT_LT(stream.peak.Most(), 1u << 20);
    ASSERT_EQ(CurrentHost().messages.size(), 1u);
    EXPECT_NE(CurrentHost().messages[0].find(u"WebpInputMemory"), std::u16string::npos);
    CurrentHost().settings = {{u"WebpInputMemory", 120}};
    ByteStream again(file);
    canvas.forgets = true;
    EXPECT_EQ(Decode(plugin, again, canvas), 1);
}

TEST_F(WebpReader, FollowsTheContainerToItsEnd)
{
    Run("cwebp -quiet -lossless in.ppm -o in.webp");
    const std::string picture = Read("in.webp").substr(12);
    const auto decode = [&](const std::string& file, Canvas& canvas) {
        ByteStream stream(file);
        return Decode(plugin, stream, canvas);
    };
    Canvas canvas;
    EXPECT_EQ(decode(Riff(picture + Chunk("XYZ ", "unknown")), canvas), 1);
    EXPECT_EQ(decode(Riff(picture) + "garbage behind", canvas), 1);
    const std::string unknown = Riff(picture + Chunk("XYZ ", "unknown"));
    EXPECT_LT(decode(unknown.substr(0, unknown.size() - 3), canvas), 0);
    EXPECT_TRUE(canvas.WasWritten(70));
    EXPECT_LT(decode(Riff(picture + "odd"), canvas), 0);
    EXPECT_LT(decode(Riff(""), canvas), 0);
    EXPECT_LT(decode(Riff(Extended(0, 93, 71)), canvas), 0);
    // The container's own account of its length is wrong.
    std::string lies = Riff(picture);
    lies[4] = static_cast<char>(lies[4] + 2);
    EXPECT_LT(decode(lies, canvas), 0);
    lies[4] = static_cast<char>(lies[4] - 4);
    EXPECT_LT(decode(lies, canvas), 0);
    // A canvas that is not the picture's size.
    EXPECT_LT(decode(Riff(Extended(0, 94, 71) + picture), canvas), 0);
    EXPECT_LT(decode(Riff(picture + picture).replace(20, 4, "zzzz"), canvas), 0);
}

TEST_F(WebpReader, TellsTheSizeFromTheHeader)
{
    RasterInfo info = {};
    for (const char* option : {"-q 70", "-lossless", "-q 70 -metadata all"}) {
        Run("cwebp -quiet " + std::string(option) + " in.ppm -o in.webp");
        ByteStream stream(Read("in.webp").substr(0, 64));
        info = {};
        info.size = sizeof info;
        EXPECT_EQ(plugin.getImageInfo(nullptr, &stream.record, &info), 1);
        EXPECT_EQ(info.width, 93u);
        EXPECT_EQ(info.height, 71u);
    }
    ByteStream extended(Riff(Extended(0, 300, 200)));
    EXPECT_EQ(plugin.getImageInfo(nullptr, &extended.record, &info), 1);
    EXPECT_EQ(info.width, 300u);
}
