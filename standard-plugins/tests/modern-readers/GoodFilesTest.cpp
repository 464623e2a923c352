// Every kept file that is sound, read whole and held against what the codec's own program makes of
// it.

#include "standard-plugins/tests/modern-readers/Formats.h"

#include <cmath>
#include <filesystem>
#include <functional>
#include <map>
#include <set>

using moderntest::Format;
using moderntest::formats;
using moderntest::Picture;
using moderntest::Sample;
using plugintest::ByteStream;
using plugintest::Canvas;
using plugintest::CurrentHost;
using plugintest::Decode;
using plugintest::PluginLibrary;

namespace
{

// How the program's picture of a file becomes the expected one, where that is not the same.
struct Rule {
    /// Steps that a channel may lie off, with the reason where the table has the file.
    int steps = 0;
    /// In place of the format's own.
    std::string command;
    std::function<Picture(const Picture&)> change;
};

double Screen(double linear)
{
    linear = std::min(std::max(linear, 0.0), 1.0);
    return linear <= 0.0031308 ? 12.92 * linear : 1.055 * std::pow(linear, 1 / 2.4) - 0.055;
}

double Linear(double screen)
{
    return screen <= 0.04045 ? screen / 12.92 : std::pow((screen + 0.055) / 1.055, 2.4);
}

// From the primaries of SMPTE EG 432-1 to those of sRGB, both with the white D65.
void NarrowDisplayP3(Sample& sample)
{
    const double r = Linear(sample.red);
    const double g = Linear(sample.green);
    const double b = Linear(sample.blue);
    sample.red = Screen(1.2249401763 * r - 0.2249401763 * g);
    sample.green = Screen(-0.0420569547 * r + 1.0420569547 * g);
    sample.blue = Screen(-0.0196375546 * r - 0.0786360456 * g + 1.0982736002 * b);
}

// SMPTE ST 2084, 1 for the white of 203 cd/m2, cut there.
double Perceptual(double signal)
{
    const double root = std::pow(signal, 32 / 2523.0);
    const double top = std::max(root - 3424 / 4096.0, 0.0);
    const double light = std::pow(top / (2413 / 128.0 - 2392 / 128.0 * root), 16384 / 2610.0);
    return std::min(light * 10000 / 203, 1.0);
}

// From ITU-R BT.2020 to sRGB (ITU-R BT.2407, 2).
void NarrowHighRange(Sample& sample)
{
    const double r = Perceptual(sample.red);
    const double g = Perceptual(sample.green);
    const double b = Perceptual(sample.blue);
    sample.red = Screen(1.6605 * r - 0.5876 * g - 0.0728 * b);
    sample.green = Screen(-0.1246 * r + 1.1329 * g - 0.0083 * b);
    sample.blue = Screen(-0.0182 * r - 0.1006 * g + 1.1187 * b);
}

// Of 10 bits, which the library cuts to 8.
void NarrowCutHighRange(Sample& sample)
{
    for (double* color : {&sample.red, &sample.green, &sample.blue})
        *color = std::floor(std::floor(*color * 65535 / 64) / 4) / 255;
    NarrowHighRange(sample);
}

std::function<Picture(const Picture&)> Turn(int turns, int mirror)
{
    return [=](const Picture& picture) { return moderntest::Turned(picture, turns, mirror); };
}

std::function<Picture(const Picture&)> Convert(void (*change)(Sample&))
{
    return [=](const Picture& picture) { return moderntest::Changed(picture, change); };
}

Picture Part(const Picture& picture)
{
    return moderntest::CutOut(picture, 10, 6, 40, 32);
}

const std::string convertProfile = " && convert OUT -intent perceptual -profile "
                                   "/usr/share/color/icc/ghostscript/srgb.icc PNG24:OUT";

// The library converts through tables of its own and rounds twice.
constexpr int profileSteps = 2;
// Samples are made bytes before they are laid over the background, there behind it.
constexpr int wideAlphaSteps = 1;
// The library's own bytes come of rounding in another order, which differs at a half.
constexpr int halfSteps = 1;
// The library cuts 10 and 12 bits to 8; its program keeps them in a file of 16.
constexpr int cutSteps = 1;

void DivideByAlpha(Sample& sample)
{
    for (double* color : {&sample.red, &sample.green, &sample.blue})
        *color = sample.alpha > 0 ? std::min(*color / sample.alpha, 1.0) : 0;
}

const std::map<std::string, Rule> rules = {
    {"good-turned-1.avif", {0, "", Turn(1, 0)}},
    {"good-turned-2.avif", {0, "", Turn(2, 0)}},
    {"good-turned-3.avif", {0, "", Turn(3, 0)}},
    {"good-mirrored-0.avif", {0, "", Turn(0, 1)}},
    {"good-mirrored-1.avif", {0, "", Turn(0, 2)}},
    {"good-turned-1-mirrored-0.avif", {0, "", Turn(1, 1)}},
    {"good-turned-3-mirrored-0.avif", {0, "", Turn(3, 1)}},
    {"good-cut-out.avif", {0, "", Part}},
    {"good-cut-out-turned-mirrored.avif",
     {0, "", [](const Picture& picture) { return moderntest::Turned(Part(picture), 1, 2); }}},
    {"good-profile.avif", {profileSteps, "avifdec -d 8 IN OUT" + convertProfile, nullptr}},
    {"good-wide-colours.avif", {profileSteps, "", Convert(NarrowDisplayP3)}},
    {"good-high-range.avif", {profileSteps, "", Convert(NarrowHighRange)}},
    {"good-16-bits-alpha.jxl", {wideAlphaSteps, "", nullptr}},
    {"good-upsampled.jxl", {halfSteps, "", nullptr}},
    {"good-float.jxl", {0, "djxl --bits_per_sample=16 IN OUT", nullptr}},
    {"good-groups.jxl", {halfSteps, "", nullptr}},
    {"good-progressive.jxl", {halfSteps, "", nullptr}},
    {"good-progressive-dc.jxl", {halfSteps, "", nullptr}},
    {"good-profile-lossless.jxl", {profileSteps, "djxl IN OUT" + convertProfile, nullptr}},
    {"good-profile-lossy.jxl", {0, "djxl --color_space=RGB_D65_SRG_Rel_SRG IN OUT", nullptr}},
    {"good-high-range.jxl", {0, "djxl --color_space=RGB_D65_SRG_Rel_SRG IN OUT", nullptr}},
    {"good-10-bits.heic", {cutSteps, "", nullptr}},
    {"good-12-bits.heic", {cutSteps, "", nullptr}},
    {"good-alpha-10-bits.heic", {cutSteps, "", nullptr}},
    {"good-alpha-premultiplied.heic", {1, "", Convert(DivideByAlpha)}},
    {"good-profile.heic", {profileSteps, "heif-convert IN OUT" + convertProfile, nullptr}},
    {"good-wide-colours.heic", {profileSteps, "", Convert(NarrowDisplayP3)}},
    {"good-high-range.heic", {profileSteps, "", Convert(NarrowCutHighRange)}},
    // Its program writes a file for each.
    {"good-two-pictures.heic",
     {0, "heif-convert IN OUT && mv $(dirname OUT)/out-1.png OUT", nullptr}},
};

struct GoodFile {
    Format format;
    std::string name;
};

std::vector<GoodFile> GoodFiles()
{
    std::vector<GoodFile> files;
    for (const Format& format : formats) {
        std::set<std::string> names;
        for (const auto& entry :
             std::filesystem::directory_iterator(moderntest::InputFolder(format)))
            if (entry.path().filename().string().starts_with("good-"))
                names.insert(entry.path().filename());
        for (const std::string& name : names)
            files.push_back({format, name});
    }
    return files;
}

void PrintTo(const GoodFile& file, std::ostream* out)
{
    *out << file.name;
}

std::string NameOfFile(const testing::TestParamInfo<GoodFile>& entry)
{
    std::string name;
    for (const char c : entry.param.name)
        name += std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
    return name;
}

class GoodInput : public testing::TestWithParam<GoodFile>
{
protected:
    GoodInput() { CurrentHost() = {}; }
    std::string bytes =
        moderntest::Contents(moderntest::InputFolder(GetParam().format) + GetParam().name);
    PluginLibrary plugin{GetParam().format.plugin};
};

INSTANTIATE_TEST_SUITE_P(Kept, GoodInput, testing::ValuesIn(GoodFiles()), NameOfFile);

} // namespace

TEST_P(GoodInput, IsReadAsItsOwnProgramReadsIt)
{
    const auto found = rules.find(GetParam().name);
    const Rule rule = found == rules.end() ? Rule() : found->second;
    const std::string command = rule.command.empty() ? GetParam().format.reference : rule.command;
    Picture expected = moderntest::Decoded(bytes, GetParam().format.extension, command);
    ASSERT_GT(expected.width, 0u) << command;
    if (rule.change)
        expected = rule.change(expected);
    ByteStream stream(bytes);
    Canvas canvas;
    EXPECT_EQ(Decode(plugin, stream, canvas), 1);
    EXPECT_EQ(canvas.depth, 24u);
    const int steps = moderntest::LargestStep(canvas, expected);
    EXPECT_GE(steps, 0) << canvas.width << "x" << canvas.height << " and not " << expected.width
                        << "x" << expected.height;
    EXPECT_LE(steps, rule.steps);
    EXPECT_EQ(stream.seeks, 0);
    EXPECT_EQ(stream.sizesAsked, 0);
}

TEST_P(GoodInput, TellsTheSizeThatItIsShownWith)
{
    ByteStream stream(bytes);
    Canvas canvas;
    ASSERT_EQ(Decode(plugin, stream, canvas), 1);
    ByteStream again(bytes, 1000);
    RasterInfo info = {};
    info.size = sizeof info;
    EXPECT_EQ(plugin.getImageInfo(nullptr, &again.record, &info), 1);
    EXPECT_EQ(info.width, canvas.width);
    EXPECT_EQ(info.height, canvas.height);
    EXPECT_EQ(info.depth, 24u);
}
