// Files that other programs wrote, read as those and others read them.

#include "standard-plugins/tests/simple-formats/Pictures.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace plugintest;

namespace
{

/// How a file is made of "in.ppm", a picture of many colours, or "few.ppm", one of 13.
struct Making {
    const char* plugin;
    /// Writes the file OUT.
    const char* make;
    /// Prints a raw PPM of the file OUT; the pixels of every one of them count.
    std::vector<const char*> readers;
};

const Making makings[] = {
    {"INPUT/BMP", "convert in.ppm bmp3:OUT", {"convert bmp:OUT -depth 8 ppm:-", "bmptopnm OUT"}},
    {"INPUT/BMP", "convert in.ppm bmp2:OUT", {"convert bmp:OUT -depth 8 ppm:-", "bmptopnm OUT"}},
    {"INPUT/BMP", "convert in.ppm bmp:OUT", {"convert bmp:OUT -depth 8 ppm:-"}},
    {"INPUT/BMP",
     "convert few.ppm -type palette bmp3:OUT",
     {"convert bmp:OUT -depth 8 ppm:-", "bmptopnm OUT"}},
    {"INPUT/BMP",
     "convert few.ppm -type palette bmp2:OUT",
     {"convert bmp:OUT -depth 8 ppm:-", "bmptopnm OUT"}},
    {"INPUT/BMP",
     "convert in.ppm -colors 200 -type palette bmp3:OUT",
     {"convert bmp:OUT -depth 8 ppm:-", "gm convert bmp:OUT -depth 8 ppm:-"}},
    {"INPUT/BMP",
     "convert in.ppm -colors 200 -type palette -compress rle bmp:OUT",
     {"convert bmp:OUT -depth 8 ppm:-"}},
    {"INPUT/BMP",
     "gm convert few.ppm -type palette -compress rle bmp:OUT",
     {"convert bmp:OUT -depth 8 ppm:-", "gm convert bmp:OUT -depth 8 ppm:-"}},
    {"INPUT/BMP",
     "convert in.ppm -monochrome bmp3:OUT",
     {"convert bmp:OUT -depth 8 ppm:-", "bmptopnm OUT | ppmtoppm"}},
    {"INPUT/BMP",
     "ppmtobmp -windows few.ppm > OUT",
     {"convert bmp:OUT -depth 8 ppm:-", "bmptopnm OUT"}},
    {"INPUT/BMP",
     "ppmtobmp -os2 few.ppm > OUT",
     {"convert bmp:OUT -depth 8 ppm:-", "bmptopnm OUT"}},
    {"INPUT/BMP",
     "ppmtobmp -windows in.ppm > OUT",
     {"convert bmp:OUT -depth 8 ppm:-", "bmptopnm OUT"}},
    {"INPUT/BMP",
     "convert in.ppm -alpha set -channel A -evaluate set 60% bmp:OUT",
     {"rgba convert bmp:OUT -depth 8 rgba:-"}},

    {"INPUT/PNM", "cat in.ppm > OUT", {"cat in.ppm"}},
    {"INPUT/PNM", "pnmtoplainpnm in.ppm > OUT", {"cat in.ppm"}},
    {"INPUT/PNM", "ppmtopgm in.ppm > OUT", {"convert pgm:OUT -depth 8 ppm:-"}},
    {"INPUT/PNM", "ppmtopgm in.ppm | pnmtoplainpnm > OUT", {"convert pgm:OUT -depth 8 ppm:-"}},
    {"INPUT/PNM", "ppmtopgm in.ppm | pgmtopbm > OUT", {"convert pbm:OUT -depth 8 ppm:-"}},
    {"INPUT/PNM",
     "ppmtopgm in.ppm | pgmtopbm | pnmtoplainpnm > OUT",
     {"convert pbm:OUT -depth 8 ppm:-"}},
    {"INPUT/PNM", "pamdepth 65535 in.ppm > OUT", {"cat in.ppm"}},
    {"INPUT/PNM", "pamdepth 1000 in.ppm > OUT", {"pamdepth 255 OUT"}},
    {"INPUT/PNM", "pamdepth 31 in.ppm > OUT", {"pamdepth 255 OUT"}},
    {"INPUT/PNM", "pamtopam < in.ppm > OUT", {"cat in.ppm", "convert pam:OUT -depth 8 ppm:-"}},
    {"INPUT/PNM", "ppmtopgm in.ppm | pamtopam > OUT", {"convert pam:OUT -depth 8 ppm:-"}},
    {"INPUT/PNM",
     "convert in.ppm -alpha set -channel A -evaluate set 60% pam:OUT",
     {"rgba convert pam:OUT -depth 8 rgba:-"}},

    {"INPUT/TGA", "convert in.ppm tga:OUT", {"tgatoppm OUT"}},
    {"INPUT/TGA", "convert in.ppm -compress rle tga:OUT", {"tgatoppm OUT"}},
    {"INPUT/TGA", "convert few.ppm -compress rle tga:OUT", {"tgatoppm OUT"}},
    {"INPUT/TGA", "convert few.ppm -type palette tga:OUT", {"tgatoppm OUT"}},
    {"INPUT/TGA", "convert few.ppm -type palette -compress rle tga:OUT", {"tgatoppm OUT"}},
    {"INPUT/TGA",
     "convert in.ppm -colorspace gray tga:OUT",
     {"convert tga:OUT -auto-orient -depth 8 ppm:-"}},
    {"INPUT/TGA", "convert in.ppm -orient top-left tga:OUT", {"tgatoppm OUT"}},
    {"INPUT/TGA", "pamtotga -rgb in.ppm > OUT", {"cat in.ppm", "tgatoppm OUT"}},
    {"INPUT/TGA", "pamtotga -rgb -norle in.ppm > OUT", {"cat in.ppm", "tgatoppm OUT"}},
    {"INPUT/TGA", "pamtotga -cmap few.ppm > OUT", {"cat few.ppm", "tgatoppm OUT"}},
    {"INPUT/TGA", "pamtotga -cmap -norle few.ppm > OUT", {"cat few.ppm", "tgatoppm OUT"}},
    {"INPUT/TGA",
     "ppmtopgm in.ppm | pamtotga -mono > OUT",
     {"convert tga:OUT -auto-orient -depth 8 ppm:-"}},
    {"INPUT/TGA",
     "convert in.ppm -alpha set -channel A -evaluate set 60% tga:OUT",
     {"rgba convert tga:OUT -auto-orient -depth 8 rgba:-"}},
    {"INPUT/TGA", "gm convert in.ppm -compress rle tga:OUT", {"cat in.ppm"}},

    {"INPUT/PCX", "convert in.ppm pcx:OUT", {"cat in.ppm", "pcxtoppm OUT"}},
    {"INPUT/PCX", "convert few.ppm -type palette pcx:OUT", {"cat few.ppm", "pcxtoppm OUT"}},
    {"INPUT/PCX",
     "convert in.ppm -monochrome pcx:OUT",
     {"convert pcx:OUT -depth 8 ppm:-", "gm convert pcx:OUT -depth 8 ppm:-"}},
    {"INPUT/PCX",
     "convert in.ppm -alpha set -channel A -evaluate set 60% pcx:OUT",
     {"rgba convert pcx:OUT -depth 8 rgba:-"}},
    {"INPUT/PCX",
     "gm convert in.ppm -colors 200 -type palette pcx:OUT",
     {"gm convert pcx:OUT -depth 8 ppm:-", "pcxtoppm OUT"}},
    {"INPUT/PCX", "ppmtopcx -24bit in.ppm > OUT", {"cat in.ppm", "pcxtoppm OUT"}},
    {"INPUT/PCX", "ppmtopcx -8bit in.ppm > OUT", {"cat in.ppm", "pcxtoppm OUT"}},
    {"INPUT/PCX", "ppmtopcx few.ppm > OUT", {"cat few.ppm", "pcxtoppm OUT"}},
    {"INPUT/PCX", "ppmtopcx -packed few.ppm > OUT", {"cat few.ppm", "pcxtoppm OUT"}},
    {"INPUT/PCX", "ppmtopcx -packed four.ppm > OUT", {"cat four.ppm", "pcxtoppm OUT"}},
    {"INPUT/PCX", "ppmtopcx four.ppm > OUT", {"cat four.ppm", "pcxtoppm OUT"}},
    {"INPUT/PCX",
     "pnmquant 7 few.ppm > seven.ppm && ppmtopcx seven.ppm > OUT",
     {"cat seven.ppm", "pcxtoppm OUT"}},

    {"INPUT/ICO", "convert in.ppm ico:OUT", {"cat in.ppm"}},
    {"INPUT/ICO", "convert few.ppm -type palette ico:OUT", {"cat few.ppm"}},
    {"INPUT/ICO", "ppmtowinicon few.ppm > OUT", {"cat few.ppm"}},
    {"INPUT/ICO",
     "ppmtowinicon square.ppm > OUT",
     {"cat square.ppm", "icotool -x -o x.png OUT && convert x.png -depth 8 ppm:-"}},
    {"INPUT/ICO", "convert in.ppm in.png && icotool -c -o OUT in.png", {"cat in.ppm"}},
    {"INPUT/ICO", "convert in.ppm in.png && icotool -c --cursor -o OUT in.png", {"cat in.ppm"}},
    {"INPUT/ICO", "convert in.ppm in.png && icotool -c -o OUT -r in.png", {"cat in.ppm"}},
    {"INPUT/ICO",
     "convert in.ppm -alpha set -channel A -evaluate set 60% png32:in.png && icotool -c -b 32 -o "
     "OUT in.png",
     {"rgba convert in.png -depth 8 rgba:-"}},
    {"INPUT/ICO",
     "convert few.ppm small.png && convert in.ppm -resize '64x48!' -depth 8 large.ppm && convert "
     "large.ppm large.png && icotool -c -o OUT small.png large.png",
     {"cat large.ppm"}},
};

class OtherPrograms : public testing::TestWithParam<Making>
{
protected:
    OtherPrograms()
    {
        // Noise in soft slopes, so that runs of every length come.
        WriteBytes(folder / "in.ppm", Ppm(23, 17, [](u32 x, u32 y, int channel) -> u8 {
                       return y % 3 == 0 ? Wild(x, y, channel) : Soft(x / 4, y, channel);
                   }));
        WriteBytes(folder / "few.ppm", Ppm(29, 13, [](u32 x, u32 y, int channel) -> u8 {
                       return static_cast<u8>((x / 3 + y) % 13 * 19 + static_cast<u32>(channel));
                   }));
        WriteBytes(folder / "four.ppm", Ppm(30, 11, [](u32 x, u32 y, int channel) -> u8 {
                       return static_cast<u8>((x + y / 2) % 4 * 71 + static_cast<u32>(channel));
                   }));
        WriteBytes(folder / "square.ppm", Ppm(32, 32, [](u32 x, u32 y, int channel) -> u8 {
                       return static_cast<u8>((x / 3 + y) % 13 * 19 + static_cast<u32>(channel));
                   }));
    }
    // A reader behind "rgba " prints the samples of in.ppm's size with alpha, which are laid over
    // white here: the others' own sums are not all rounded to the nearest.
    Picture Answer(const std::string& reader) const
    {
        if (!reader.starts_with("rgba "))
            return FromCommand(InFolder(reader));
        const std::string samples = OutputOf(InFolder(reader.substr(5)));
        Picture picture = {23, 17};
        EXPECT_EQ(samples.size(), 23u * 17 * 4);
        for (size_t i = 0; i + 4 <= samples.size(); i += 4) {
            const auto over = [&](size_t channel) {
                const double alpha = static_cast<uint8_t>(samples[i + 3]) / 255.0;
                const double sample = static_cast<uint8_t>(samples[i + channel]);
                return static_cast<uint8_t>(std::lround(alpha * sample + (1 - alpha) * 255));
            };
            picture.pixels.push_back({over(0), over(1), over(2)});
        }
        return picture;
    }
    std::string InFolder(std::string command) const
    {
        for (size_t at; (at = command.find("OUT")) != std::string::npos;)
            command.replace(at, 3, "out");
        return "cd " + folder.string() + " && ( " + command + " ) 2>/dev/null";
    }

    std::filesystem::path folder = tavrix::testing::FreshFolder();
};

INSTANTIATE_TEST_SUITE_P(Each, OtherPrograms, testing::ValuesIn(makings));

void PrintTo(const Making& making, std::ostream* out)
{
    *out << making.make;
}

} // namespace

TEST_P(OtherPrograms, AgreeOnEveryPixelOfTheFilesTheyWrite)
{
    PluginLibrary plugin(GetParam().plugin);
    ASSERT_TRUE(plugin.IsLoaded());
    (void)OutputOf(InFolder(GetParam().make));
    const std::string file = FileBytes(folder / "out");
    ASSERT_FALSE(file.empty());
    ASSERT_FALSE(GetParam().readers.empty());
    for (const char* reader : GetParam().readers)
        EXPECT_EQ(DifferenceFrom(plugin, file, Answer(reader)), "")
            << GetParam().make << ", by " << reader;
}
