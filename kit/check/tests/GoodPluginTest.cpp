// Plugins that keep the contract pass: one of every kind, and those that come with the program.

#include "kit/check/tests/CheckProgram.h"

#include <gtest/gtest.h>

#include <TestPaths.h>

using namespace checktest;

namespace
{

void ExpectPass(const CheckRun& run, const std::string& line)
{
    EXPECT_EQ(run.status, 0) << run.output;
    ASSERT_FALSE(run.lines.empty());
    EXPECT_EQ(run.lines.back(), line) << run.output;
}

} // namespace

class GoodOf : public testing::TestWithParam<const char*>
{
};

TEST_P(GoodOf, ItsKindPassesInOneLine)
{
    std::string small = GetParam();
    for (char& letter : small)
        letter = static_cast<char>(letter - 'A' + 'a');
    const Folder folder;
    const std::string sample = folder.Write("sample.fix", SampleBytes());
    const CheckRun run = RunCheck({"--sample", sample, Fixture("good_" + small)});
    ExpectPass(run, "good_" + small + ".dll: TX_" + GetParam() + ", all checks passed");
    EXPECT_EQ(run.lines.size(), 1U) << run.output;
}

INSTANTIATE_TEST_SUITE_P(Kind, GoodOf,
                         testing::Values("INPUT", "OUTPUT", "PRINT", "EFFECT", "ADJUST", "SCALE",
                                         "SUBTRACT"),
                         [](const auto& kind) { return std::string(kind.param); });

TEST(GoodPlugins, WithoutASampleAReaderPassesToo)
{
    ExpectPass(RunCheck({Fixture("good_input")}), "good_input.dll: TX_INPUT, all checks passed");
}

TEST(GoodPlugins, AWriterThatRefusesStreamsPasses)
{
    ExpectPass(RunCheck({Fixture("output_refuses_streams")}),
               "output_refuses_streams.dll: TX_OUTPUT, all checks passed");
}

TEST(GoodPlugins, ADialogThatIsAnsweredRightlyPasses)
{
    ExpectPass(RunCheck({Fixture("asks_rightly")}),
               "asks_rightly.dll: TX_OUTPUT, all checks passed");
}

TEST(BundledPlugins, ThePngReaderPassesWithItsSamples)
{
    const std::string inputs = TAVRIX_SOURCE_DIR "/tests/inputs/png/";
    ExpectPass(RunCheck({"--sample", inputs + "good-colour.png", "--sample",
                         inputs + "good-interlaced.png", "--sample",
                         inputs + "good-16-bits-with-alpha.png",
                         TAVRIX_BINARY_DIR "/bin/PLUGINS/INPUT/PNG.dll"}),
               "PNG.dll: TX_INPUT, all checks passed");
}

TEST(BundledPlugins, TheJpegReaderPassesWithItsSamples)
{
    const std::string inputs = TAVRIX_SOURCE_DIR "/tests/inputs/jpeg/";
    ExpectPass(RunCheck({"--sample", inputs + "good-baseline.jpg", "--sample",
                         inputs + "good-progressive.jpg", "--sample", inputs + "good-four-inks.jpg",
                         TAVRIX_BINARY_DIR "/bin/PLUGINS/INPUT/JPEG.dll"}),
               "JPEG.dll: TX_INPUT, all checks passed");
}

TEST(BundledPlugins, ThePdfPrinterPasses)
{
    ExpectPass(RunCheck({TAVRIX_BINARY_DIR "/bin/PLUGINS/PRINT/PDF.dll"}),
               "PDF.dll: TX_PRINT, all checks passed");
}

TEST(BundledPlugins, ThoseThatChangePicturesPass)
{
    ExpectPass(RunCheck({TAVRIX_BINARY_DIR "/bin/PLUGINS/EFFECT/GaussianBlur.dll"}),
               "GaussianBlur.dll: TX_EFFECT, all checks passed");
    ExpectPass(RunCheck({TAVRIX_BINARY_DIR "/bin/PLUGINS/ADJUST/BrightnessContrast.dll"}),
               "BrightnessContrast.dll: TX_ADJUST, all checks passed");
    for (const std::string name : {"Bilinear.dll", "Lanczos.dll"})
        ExpectPass(RunCheck({TAVRIX_BINARY_DIR "/bin/PLUGINS/SCALE/" + name}),
                   name + ": TX_SCALE, all checks passed");
}
