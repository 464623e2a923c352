// The plugins that misbehave in the tests of the host: the program finds what each is named after.
// Most of them do nothing else of the contract either, so that other sentences stand beside it.

#include "kit/check/tests/CheckProgram.h"

#include <gtest/gtest.h>

using namespace checktest;

namespace
{

struct Case {
    const char* fixture;
    const char* key;
    const char* sentence;
};

void PrintTo(const Case& bad, std::ostream* out)
{
    *out << bad.fixture;
}

const Case Cases[] = {
    {"no_exports", "questions", "does not export GetPluginInfo"},
    {"zero_identity", "identity", "answers 0 with its identification"},
    {"small_letters", "identity", "\"tx_input\""},
    {"longer_identity", "identity", "\"TX_INPUTS\""},
    {"nameless", "name", "has no name"},
    {"many_formats", "formats", "do not end behind the 50th"},
    {"empty_pattern", "patterns", "\"No pattern\", has no pattern of file names"},
    {"silent_answers", "unknown", "for the unknown text 0x6"},
    {"unterminated", "terminated", "leaves no zero"},
    {"kind_INPUT", "processing", "does not export GetImage"},
    {"kind_OUTPUT", "processing", "does not export PutImage"},
    {"kind_PRINT", "processing", "does not export Print"},
    {"kind_EFFECT", "processing", "does not export Effect"},
    {"kind_ADJUST", "processing", "does not export AdjustImage"},
    {"kind_SCALE", "processing", "does not export ScaleImage"},
    {"kind_SUBTRACT", "processing", "does not export SubtractImage"},
    {"configure_only", "processing", "does not export GetImage"},
    {"no_configure", "configure", "does not export Configure"},
    {"throws", "exceptions", "GetImage let a C++ exception (std::runtime_error) out"},
    {"throws_identity", "exceptions", "GetPluginInfo let a C++ exception (std::out_of_range) out"},
    {"spoils", "tables", "wrote into the function tables"},
    {"leaves_locked", "locked", "left 3 lines of a picture locked"},
    {"forgets", "left", "left 6 pictures and palettes"},
    {"configure_cancels", "confirmed", "without having asked anybody"},
    {"configure_fails", "confirmed", "Configure fails (result -5)"},
    {"returns_garbage", "unknown", "for the unknown text 0x6"},
    {"never_reports", "progress", "never calls the progress callback"},
    {"ignores_refusal", "refusal", "though the progress callback told it to stop"},
    {"depth_8", "depth", "of 8 bits a pixel"},
    {"depth_16", "depth", "of 16 bits a pixel"},
    {"depth_32", "depth", "of 32 bits a pixel"},
    {"no_lines", "picture", "of 40 x 0 pixels"},
    {"no_width", "picture", "of 0 x 30 pixels"},
    {"own_thread", "foreign", "from another thread"},
    {"keeps_tables", "kept", "that belonged to an earlier call"},
    {"throws_run", "exceptions", "GetImage let a C++ exception"},
    {"wipes_tables", "tables", "wrote into the function tables"},
    {"locks_lines", "locked", "of a picture locked"},
    {"never_frees", "left", "undestroyed"},
    {"without_processing", "processing", "does not export GetImage"},
    {"without_configure", "configure", "does not export Configure"},
    {"throws_configure", "exceptions", "Configure let a C++ exception"},
    {"effect_depth_8", "depth", "Effect reports success"},
    {"effect_no_lines", "picture", "Effect reports success"},
    {"output_depth_8", "unchanged", "PutImage changes the picture"},
    {"output_other_size", "unchanged", "PutImage changes the picture"},
    {"print_own_thread", "foreign", "from another thread"},
    {"scale_never_frees", "left", "ScaleImage left"},
    {"adjust_wipes_tables", "tables", "AdjustImage wrote"},
    {"subtract_throws_run", "exceptions", "SubtractImage let a C++ exception"},
};

class Misbehaving : public testing::TestWithParam<Case>
{
};

} // namespace

TEST_P(Misbehaving, IsFound)
{
    const Case& bad = GetParam();
    const CheckRun run = RunCheck({HostFixture(bad.fixture)});
    EXPECT_EQ(run.status, 1) << run.output;
    EXPECT_EQ(run.Keys().count(bad.key), 1U) << run.output;
    EXPECT_NE(run.output.find(bad.sentence), std::string::npos) << run.output;
}

INSTANTIATE_TEST_SUITE_P(Plugin, Misbehaving, testing::ValuesIn(Cases),
                         [](const auto& bad) { return std::string(bad.param.fixture); });
