// Each plugin of fixtures/ does one thing wrong, and the program says that and nothing else.

#include "kit/check/tests/CheckProgram.h"

#include <gtest/gtest.h>

using namespace checktest;

namespace
{

struct Case {
    const char* fixture;
    const char* key;      // of the one violation; empty: none
    const char* sentence; // what the line says among other things
};

void PrintTo(const Case& wrong, std::ostream* out)
{
    *out << wrong.fixture;
}

const Case Cases[] = {
    {"linked_to_toolkit", "toolkit", "linked to libQt6Core"},
    {"library_missing", "loads", "libcheck_missing.so: cannot open shared object file"},
    {"crashes_loading", "crash", "It crashed (a segmentation fault) while it was loaded"},
    {"without_questions", "questions", "does not export GetPluginInfo"},
    {"small_identity", "identity", "\"tx_input\""},
    {"identity_0", "identity", "answers 0 with its identification"},
    {"without_work", "processing", "does not export GetImage"},
    {"surplus", "surplus", "1 symbol that no INPUT plugin has (Doubled)"},
    {"slow", "quick", "milliseconds from its load to its first answer"},
    {"never_unmapped", "unmapped", "stays in memory"},
    {"grows", "growth", "200 times leaves"},
    {"empty_name", "name", "Its name is an empty text"},
    {"unterminated", "terminated", "text 2 and leaves no zero in the 2 characters"},
    {"without_zero", "terminated", "text 0 and leaves no zero"},
    {"overruns", "overrun", "asked for text 0x5 in 5 characters"},
    {"repeats_not", "repeated", "\"1\", then \"2\""},
    {"knows_all", "unknown", "the unknown text 0xFFFF"},
    {"loses_name", "language", "Behind SetLanguage(255)"},
    {"formats_51", "formats", "do not end behind the 50th"},
    {"formats_of_effect", "formats", "EFFECT plugins have none"},
    {"bad_pattern", "patterns", "\"fix\" is not of the form *.ext"},
    {"without_configure", "configure", "does not export Configure"},
    {"configure_cancels", "confirmed", "without having asked anybody"},
    {"configure_fails", "confirmed", "Configure fails (result -3)"},
    {"cancel_ignored", "cancelled", "Configure answers 1 to a dialog that was cancelled"},
    {"changed_though_cancelled", "cancelled", "changes the picture though"},
    {"needs_picture", "crash", "Configure crashed (a segmentation fault) with a picture that was"},
    {"needs_settings", "crash", "Configure crashed (abort()) while no setting could be"},
    {"refuses_sample", "samples", "refuses the sample sample.fix (result -9)"},
    {"reads_nothing", "empty", "reports success (result 1) for a stream without a byte"},
    {"crashes_on_garbage", "crash", "GetImage crashed (a segmentation fault) while it read"},
    {"counts_on_whole_reads", "short", "when the stream gives 1 byte at a time"},
    {"ignores_failure", "failing", "though the stream failed in the middle of the sample"},
    {"counts_on_all_data", "crash", "while it read the first"},
    {"header_overrun", "header", "GetImageInfo writes past the record"},
    {"fast_success", "fast", "for a file that is not there"},
    {"second_fails", "twice", "when it is called a second time"},
    {"no_progress", "progress", "never calls the progress callback"},
    {"stop_ignored", "refusal", "though the progress callback told it to stop"},
    {"stop_late", "refusal", "behind the one at which the progress callback told it to stop"},
    {"no_line_ignored", "locks", "though RasterLockLines gave it no line"},
    {"no_lines_ignored", "memory", "though RasterAlloc failed"},
    {"needs_stored", "settings", "where no setting can be read or stored"},
    {"line_kept", "paging", "makes another picture where memory is short"},
    {"no_height", "picture", "leaves a picture of 30 x 0 pixels"},
    {"depth_8", "depth", "leaves a picture of 8 bits a pixel"},
    {"seeks", "forward", "seeks in it"},
    {"asks_size", "forward", "asks the stream for its size"},
    {"line_locked", "locked", "left 20 lines of a picture locked"},
    {"picture_left", "left", "left 1 picture or palette"},
    {"palette_left", "left", "left 1 picture or palette"},
    {"table_spoiled", "tables", "wrote into the function tables"},
    {"table_kept", "kept", "used RasterGetInfo that belonged to an earlier call"},
    {"callback_kept", "kept", "used the progress callback after it had returned"},
    {"foreign_thread", "foreign", "used the progress callback from another thread"},
    {"foreign_key", "keys", "under the key \"Quality\""},
    {"empty_text", "texts", "an empty text under the key \"FixtureFolder\""},
    {"thread_left", "threads", "leaves 1 thread running"},
    {"file_left", "descriptors", "leaves 1 file open"},
    {"heap_left", "heap", "leaves 100 bytes of the device's heaps"},
    {"handle_left", "handles", "leaves 1 handle of the device open"},
    {"exits", "exit", "GetImage ended the process of its host (exit status 3) while it read"},
    {"hangs", "hang", "GetImage did not return within 3 seconds while it read"},
    {"throws", "exceptions", "GetImage let a C++ exception (std::length_error) out"},
    {"effect_fails", "works", "Effect fails (result -9)"},
    {"adjust_crashes_at_8_bits", "crash", "while it worked on an 8-bit picture"},
    {"effect_shrinks", "picture", "Effect reports success and leaves a picture of 0 x 0"},
    {"effect_no_line", "locks", "Effect reports success"},
    {"scale_size", "size", "leaves a picture of 75 x 46 where 74 x 46 pixels were asked for"},
    {"scale_stop_ignored", "refusal", "ScaleImage reports success"},
    {"subtract_crashes", "crash", "with the argument 0x7FFFFFFF"},
    {"print_needs_owner", "crash", "Print crashed (a segmentation fault)"},
    {"output_changes", "unchanged", "PutImage changes the picture that it writes"},
    {"output_no_file", "stream", "reports success and makes no file"},
    {"output_no_stream", "stream", "reports success and writes nothing to its stream"},
    {"output_reads_back", "counting", "though it could not read back"},
    {"output_write_ignored", "unwritten", "though write 1 of its stream failed"},
    {"output_cut_ignored", "full", "though its stream was full"},
    {"output_path_ignored", "path", "where no file can be made"},
};

class Wrong : public testing::TestWithParam<Case>
{
};

const Folder& Samples()
{
    static const Folder folder;
    return folder;
}

} // namespace

TEST_P(Wrong, IsToldInOneSentenceAndNoOther)
{
    const Case& wrong = GetParam();
    const std::string sample = Samples().Write("sample.fix", SampleBytes());
    const CheckRun run = RunCheck({"--time-limit", std::string(wrong.key) == "hang" ? "3" : "60",
                                   "--sample", sample, Fixture(wrong.fixture)});
    EXPECT_EQ(run.status, 1) << run.output;
    EXPECT_EQ(run.Keys(), std::set<std::string>{wrong.key}) << run.output;
    EXPECT_NE(run.output.find(wrong.sentence), std::string::npos) << run.output;
    for (const std::string& line : run.lines)
        EXPECT_EQ(line.rfind(std::string(wrong.fixture) + ".dll: ", 0), 0U) << line;
    EXPECT_EQ(run.output.find("passed"), std::string::npos) << run.output;
}

INSTANTIATE_TEST_SUITE_P(Plugin, Wrong, testing::ValuesIn(Cases),
                         [](const auto& wrong) { return std::string(wrong.param.fixture); });
