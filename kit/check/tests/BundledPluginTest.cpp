// Every plugin that comes with the program passes.

#include "kit/check/tests/CheckProgram.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "platform/testing/core/TestPaths.h"

using namespace checktest;

namespace
{

struct Bundled {
    const char* kind;
    const char* name;
    // Of a reader: the folder of its kept files.
    const char* inputs = nullptr;
};

const Bundled plugins[] = {
    {"INPUT", "AVIF", "avif"},
    {"INPUT", "BMP", "bmp"},
    {"INPUT", "GIF", "gif"},
    {"INPUT", "HEIF", "heif"},
    {"INPUT", "ICO", "ico"},
    {"INPUT", "JPEG", "jpeg"},
    {"INPUT", "JXL", "jxl"},
    {"INPUT", "PCX", "pcx"},
    {"INPUT", "PNG", "png"},
    {"INPUT", "PNM", "pnm"},
    {"INPUT", "TGA", "tga"},
    {"INPUT", "TIFF", "tiff"},
    {"INPUT", "WebP", "webp"},
    {"OUTPUT", "BMP"},
    {"OUTPUT", "GIF"},
    {"OUTPUT", "JPEG"},
    {"OUTPUT", "JXL"},
    {"OUTPUT", "PNG"},
    {"OUTPUT", "PNM"},
    {"OUTPUT", "TIFF"},
    {"OUTPUT", "WebP"},
    {"PRINT", "CUPS"},
    {"PRINT", "PDF"},
    {"EFFECT", "Edges"},
    {"EFFECT", "Emboss"},
    {"EFFECT", "GaussianBlur"},
    {"EFFECT", "Median"},
    {"EFFECT", "Mosaic"},
    {"EFFECT", "Noise"},
    {"EFFECT", "Oil"},
    {"EFFECT", "OldPhoto"},
    {"EFFECT", "Posterise"},
    {"EFFECT", "Sharpen"},
    {"ADJUST", "AutoLevels"},
    {"ADJUST", "BrightnessContrast"},
    {"ADJUST", "ColorBalance"},
    {"ADJUST", "Curves"},
    {"ADJUST", "Greyscale"},
    {"ADJUST", "HueSaturation"},
    {"ADJUST", "Invert"},
    {"ADJUST", "Levels"},
    {"ADJUST", "Threshold"},
    {"ADJUST", "WhiteBalance"},
    {"SCALE", "Area"},
    {"SCALE", "Bicubic"},
    {"SCALE", "Bilinear"},
    {"SCALE", "Lanczos"},
    {"SUBTRACT", "FixedPalette"},
    {"SUBTRACT", "Optimal"},
};

void PrintTo(const Bundled& plugin, std::ostream* out)
{
    *out << plugin.kind << "/" << plugin.name;
}

const std::filesystem::path builtPlugins = tavrix::testing::InBuild("/bin/PLUGINS");

// Three of the sound files of a format, the smallest.
std::vector<std::string> SamplesOf(const Bundled& plugin)
{
    std::vector<std::pair<uintmax_t, std::string>> found;
    if (plugin.inputs)
        for (const auto& entry : std::filesystem::directory_iterator(
                 tavrix::testing::InSource("/tests/inputs/") + plugin.inputs))
            if (entry.path().filename().string().starts_with("good-"))
                found.emplace_back(entry.file_size(), entry.path());
    std::sort(found.begin(), found.end());
    std::vector<std::string> samples;
    for (size_t i = 0; i < found.size() && i < 3; ++i)
        samples.push_back(found[i].second);
    return samples;
}

class BundledPlugins : public testing::TestWithParam<Bundled>
{
};

INSTANTIATE_TEST_SUITE_P(Each, BundledPlugins, testing::ValuesIn(plugins), [](const auto& entry) {
    return std::string(entry.param.kind) + "_" + entry.param.name;
});

} // namespace

TEST_P(BundledPlugins, PassesEveryCheck)
{
    const Bundled& plugin = GetParam();
    const std::string file = std::string(plugin.name) + ".dll";
    std::vector<std::string> arguments;
    for (const std::string& sample : SamplesOf(plugin)) {
        arguments.push_back("--sample");
        arguments.push_back(sample);
    }
    EXPECT_EQ(arguments.size(), plugin.inputs ? 6u : 0u);
    arguments.push_back(builtPlugins / plugin.kind / file);
    const CheckRun run = RunCheck(arguments);
    EXPECT_EQ(run.status, 0) << run.output;
    ASSERT_FALSE(run.lines.empty());
    EXPECT_EQ(run.lines.back(), file + ": TX_" + plugin.kind + ", all checks passed") << run.output;
}

TEST(BundledPluginList, HoldsWhatIsBuiltAndNothingElse)
{
    std::set<std::string> built;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(builtPlugins))
        if (entry.path().extension() == ".dll")
            built.insert(entry.path().parent_path().filename() / entry.path().stem());
    std::set<std::string> listed;
    for (const Bundled& plugin : plugins)
        listed.insert(std::string(plugin.kind) + "/" + plugin.name);
    EXPECT_EQ(built, listed);
}
