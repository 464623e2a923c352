// The command line, the exit statuses, and what does not concern one check alone.

#include "kit/check/tests/CheckProgram.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>

#include "platform/testing/core/TestPaths.h"

using namespace checktest;

namespace
{

std::string DocumentText()
{
    std::ostringstream text;
    text << std::ifstream(tavrix::testing::InSource("/docs/plugin-check.md")).rdbuf();
    return text.str();
}

} // namespace

TEST(Usage, HelpAndVersionAreAnswered)
{
    const CheckRun help = RunCheck({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.output.rfind("Usage: tavrix-plugin-check", 0), 0U) << help.output;
    const CheckRun version = RunCheck({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.output, "tavrix-plugin-check " TAVRIX_VERSION "\n");
}

TEST(Usage, EveryCheckIsListedOnceAndDescribedWordForWord)
{
    const CheckRun list = RunCheck({"--list"});
    EXPECT_EQ(list.status, 0);
    EXPECT_GT(list.lines.size(), 60U);
    std::set<std::string> keys;
    const std::string document = DocumentText();
    for (const std::string& line : list.lines) {
        const size_t colon = line.find(": ");
        ASSERT_NE(colon, std::string::npos) << line;
        const std::string key = line.substr(0, colon);
        EXPECT_TRUE(keys.insert(key).second) << key;
        const std::string row = "| `" + key + "` | " + line.substr(colon + 2) + " |";
        EXPECT_NE(document.find(row), std::string::npos) << row;
    }
    EXPECT_EQ(static_cast<size_t>(std::count(document.begin(), document.end(), '\n')) > keys.size(),
              true);
}

TEST(Usage, AWrongCommandLineIsStatus2AndChecksNothing)
{
    const std::string good = Fixture("good_effect");
    for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
             {},
             {"--nonsense", good},
             {"--kind", "STREAM", good},
             {"--kind", "input", good},
             {good, "--kind"},
             {"--time-limit", "soon", good},
             {"--time-limit", "0", good},
             {"--sample", "/no/such/sample", good},
             {"/no/such/plugin.dll"},
             {good, "/no/such/plugin.dll"},
             {tavrix::testing::InBuild()},
         }) {
        const CheckRun run = RunCheck(words);
        EXPECT_EQ(run.status, 2) << run.output;
        EXPECT_EQ(run.output.rfind("tavrix-plugin-check: ", 0), 0U) << run.output;
        EXPECT_EQ(run.output.find("passed"), std::string::npos) << run.output;
    }
}

TEST(Usage, AFileNameMayBeginWithADash)
{
    const Folder folder;
    fs::copy_file(Fixture("good_effect"), folder.File("-e.dll"));
    const CheckRun run = RunCheck({"--", "-e.dll"}, "cd " + Quote(folder.Path().string()) + " &&");
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_EQ(run.output, "-e.dll: TX_EFFECT, all checks passed\n");
}

TEST(Usage, OneBadFileAmongGoodOnesIsStatus1)
{
    const CheckRun run = RunCheck({Fixture("good_effect"), Fixture("effect_fails")});
    EXPECT_EQ(run.status, 1) << run.output;
    EXPECT_NE(run.output.find("good_effect.dll: TX_EFFECT, all checks passed"), std::string::npos);
}

TEST(Usage, AFileThatIsNoLibraryViolatesTheFirstRule)
{
    const Folder folder;
    const CheckRun text = RunCheck({folder.Write("text.dll", "no library\n")});
    EXPECT_EQ(text.status, 1);
    EXPECT_EQ(text.output, "text.dll: [loads] The host cannot load it: it is no library of this "
                           "machine.\n");
    fs::copy_file(Fixture("good_effect"), folder.File("effect.so"));
    const CheckRun named = RunCheck({folder.File("effect.so")});
    EXPECT_EQ(named.status, 1);
    EXPECT_EQ(named.Keys(), std::set<std::string>{"loads"}) << named.output;
}

TEST(Usage, TheKindOfANamelessLibraryIsTakenFromTheCommandLine)
{
    const CheckRun unknown = RunCheck({Fixture("small_identity")});
    EXPECT_EQ(unknown.lines.size(), 1U) << unknown.output;
    const CheckRun known = RunCheck({"--kind", "EFFECT", Fixture("small_identity")});
    EXPECT_EQ(known.Keys().count("processing"), 1U) << known.output;
}

TEST(Usage, ThePathMayBeRelative)
{
    const fs::path plugin = Fixture("good_effect");
    const CheckRun run = RunCheck({plugin.filename().string()},
                                  "cd " + Quote(plugin.parent_path().string()) + " &&");
    EXPECT_EQ(run.output, "good_effect.dll: TX_EFFECT, all checks passed\n");
    EXPECT_EQ(run.status, 0) << run.output;
}

TEST(Doubles, TwoPluginsOfOneKindAndNameAreBothNamed)
{
    const CheckRun run = RunCheck({Fixture("good_effect"), Fixture("effect_silent")});
    EXPECT_EQ(run.status, 1) << run.output;
    EXPECT_EQ(run.Keys(), std::set<std::string>{"duplicate"}) << run.output;
    EXPECT_NE(run.output.find("effect_silent.dll and good_effect.dll are both EFFECT plugins"),
              std::string::npos)
        << run.output;
}

TEST(Doubles, TheSameNameInAnotherKindIsFine)
{
    const CheckRun run = RunCheck({Fixture("good_effect"), Fixture("good_adjust")});
    EXPECT_EQ(run.lines.size(), 2U) << run.output;
    EXPECT_EQ(run.status, 0) << run.output;
}

TEST(Notes, DoNotChangeTheStatus)
{
    struct Case {
        const char* fixture;
        const char* key;
    };
    for (const Case& noted : {Case{"asks_always", "quiet"}, Case{"effect_silent", "progress"},
                              Case{"no_formats", "formats"}}) {
        const CheckRun run = RunCheck({Fixture(noted.fixture)});
        EXPECT_EQ(run.status, 0) << run.output;
        EXPECT_EQ(run.Keys(true), std::set<std::string>{noted.key}) << run.output;
        EXPECT_NE(run.output.find("all checks passed\n"), std::string::npos) << run.output;
    }
}

TEST(Surroundings, NothingOfTheUsersIsTouchedAndNothingStaysBehind)
{
    const Folder folder;
    const std::string before = "HOME=" + Quote(folder.Path().string()) +
                               " TMPDIR=" + Quote(folder.Path().string()) +
                               " XDG_CONFIG_HOME= XDG_DATA_HOME= DISPLAY=:77 TAVRIX_MEMORY=1";
    const CheckRun run = RunCheck({Fixture("asks_rightly"), Fixture("crashes_on_garbage")}, before);
    EXPECT_EQ(run.Keys(), std::set<std::string>{"crash"}) << run.output;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder.Path()))
        EXPECT_EQ(entry.path().filename(), ".cache") << "left: " << entry.path();
}
