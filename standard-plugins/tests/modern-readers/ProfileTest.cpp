// Colour profiles that are none, too large or for other colours: the pixels come as they are.

#include "standard-plugins/tests/modern-readers/Boxes.h"
#include "standard-plugins/tests/modern-readers/Formats.h"
#include "standard-plugins/tests/support/ColorProfiles.h"

#include <cstdlib>
#include <fstream>

using moderntest::formats;
using plugintest::ByteStream;
using plugintest::Canvas;
using plugintest::CurrentHost;
using plugintest::Decode;
using plugintest::FirstDifference;
using plugintest::Pixel;
using plugintest::PluginLibrary;

namespace
{

class OddProfile : public testing::Test
{
protected:
    OddProfile() { CurrentHost() = {}; }
    ~OddProfile() override { CurrentHost() = {}; }

    tavrix::testing::Scope scope;
};

std::string Difference(const Canvas& canvas, const Canvas& expected)
{
    return FirstDifference(canvas, expected.width, expected.height,
                           [&](uint32_t x, uint32_t y) { return expected.At(x, y); });
}

std::vector<std::string> OddProfiles()
{
    const std::string wide = plugintest::WideRgbProfile();
    std::string broken = wide;
    broken.replace(128, 8, std::string(8, '\xff'));
    return {std::string(5000, '\xff'),    broken,
            wide.substr(0, 300),          plugintest::InkProfile(),
            plugintest::GreyProfile(1.0), plugintest::WithPadding(wide, 5u << 20)};
}

// A picture in JPEG XL with a profile as its own program puts it in; empty where it puts none in.
std::string JxlWith(const std::string& profile, const std::string& options)
{
    const std::string folder = tavrix::testing::FreshFolder();
    std::ofstream picture(folder + "/in.ppm", std::ios::binary);
    picture << "P6\n24 20\n255\n";
    for (int i = 0; i < 24 * 20 * 3; ++i)
        picture << static_cast<char>(i * 7 + i / 72 * 5);
    picture.close();
    std::string command = "cjxl " + options + " " + folder + "/in.ppm " + folder + "/out.jxl";
    if (!profile.empty()) {
        std::ofstream(folder + "/profile", std::ios::binary) << profile;
        command += " -x icc_pathname=" + folder + "/profile";
    }
    if (std::system((command + " > /dev/null 2>&1").c_str()) != 0)
        return {};
    return moderntest::Contents(folder + "/out.jxl");
}

} // namespace

TEST_F(OddProfile, InABoxChangesNoColour)
{
    for (const moderntest::Format* format : {&formats[0], &formats[2]}) {
        const PluginLibrary plugin(format->plugin);
        const std::string file = moderntest::Input(*format, "good-profile");
        const auto plain = moderntest::Decoded(file, format->extension, format->reference);
        ASSERT_GT(plain.width, 0u);
        // Moved about, a sound one still counts.
        ByteStream first(file);
        Canvas converted;
        ASSERT_EQ(Decode(plugin, first, converted), 1);
        EXPECT_GT(moderntest::LargestStep(converted, plain), 5) << format->name;
        const std::string wide = plugintest::WideRgbProfile();
        for (const size_t padding : {1u, 3000u}) {
            ByteStream stream(
                moderntest::WithProfile(file, plugintest::WithPadding(wide, padding)));
            Canvas canvas;
            EXPECT_EQ(Decode(plugin, stream, canvas), 1) << format->name;
            EXPECT_GT(moderntest::LargestStep(canvas, plain), 5) << format->name;
        }
        for (const std::string& profile : OddProfiles()) {
            ByteStream stream(moderntest::WithProfile(file, profile));
            Canvas canvas;
            EXPECT_EQ(Decode(plugin, stream, canvas), 1) << format->name << " " << profile.size();
            EXPECT_EQ(moderntest::LargestStep(canvas, plain), 0)
                << format->name << " " << profile.size();
            EXPECT_LT(canvas.peak.Most(), 64u << 20);
        }
    }
}

TEST_F(OddProfile, InAJpegXlChangesNoColourAndOneTooLargeIsRefused)
{
    const PluginLibrary plugin("INPUT/JXL");
    ByteStream plain(JxlWith("", "-d 0"));
    Canvas expected;
    ASSERT_EQ(Decode(plugin, plain, expected), 1);
    ByteStream wide(JxlWith(plugintest::WideRgbProfile(), "-d 0"));
    Canvas converted;
    EXPECT_EQ(Decode(plugin, wide, converted), 1);
    EXPECT_NE(Difference(converted, expected), "") << "a sound one changes them";
    ByteStream inks(JxlWith(plugintest::InkProfile(), "-d 0"));
    ASSERT_FALSE(inks.bytes.empty());
    Canvas canvas;
    EXPECT_EQ(Decode(plugin, inks, canvas), 1);
    EXPECT_EQ(Difference(canvas, expected), "");
    // Five megabytes in some kilobytes: the codec itself takes that for a broken file.
    ByteStream large(
        JxlWith(plugintest::WithPadding(plugintest::WideRgbProfile(), 5u << 20), "-d 0"));
    ASSERT_FALSE(large.bytes.empty());
    EXPECT_LT(large.bytes.size(), 20000u);
    Canvas none;
    EXPECT_LT(Decode(plugin, large, none), 0);
    EXPECT_EQ(none.allocations, 0);
    EXPECT_LT(none.peak.Most(), 64u << 20);
}

TEST_F(OddProfile, InAJpegXlThatIsSpoiledIsSurvived)
{
    // Coded as the pixels are: what is spoiled may break the file or make another profile.
    const PluginLibrary plugin("INPUT/JXL");
    const std::string file = JxlWith(plugintest::WideRgbProfile(), "-d 0");
    ASSERT_GT(file.size(), 400u);
    int refused = 0;
    for (size_t at = 2; at < 400; at += 4) {
        std::string spoiled = file;
        spoiled[at] = static_cast<char>(spoiled[at] ^ 0x55);
        ByteStream stream(spoiled);
        Canvas canvas;
        canvas.forgets = true;
        const int32_t result = Decode(plugin, stream, canvas);
        EXPECT_NE(result, 0) << at;
        refused += result < 0;
    }
    EXPECT_GT(refused, 30);
}
