// Plugins that keep the contract pass: one of every kind.

#include "kit/check/tests/CheckProgram.h"

#include <gtest/gtest.h>

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

TEST(GoodPlugins, OneThatTellsWhyItCannotBeUsedPasses)
{
    ExpectPass(RunCheck({Fixture("tells_why")}), "tells_why.dll: TX_OUTPUT, all checks passed");
}
