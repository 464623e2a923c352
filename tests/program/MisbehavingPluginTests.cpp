// Plugins that misbehave, one misdeed a row: the program starts with the plugin installed, opens a
// file by it twice, does every command that it has, and shows a good picture right afterwards.

#include "platform/testing/core/TestHome.h"
#include "resources/Ids.h"
#include "tests/support/DeviceCalls.h"
#include "tests/support/Program.h"
#include "tests/support/TestPicture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "platform/testing/core/TestPaths.h"

using namespace tavrix::testing;
namespace fs = std::filesystem;

namespace
{

constexpr const char16_t* EnglishWarning =
    u"Failed to initialize plugin settings, but enforce next process...";
constexpr const char16_t* JapaneseWarning = u"プラグイン設定の初期化に失敗しました。強行します。";
constexpr const char16_t* EnglishError =
    u"Failed to load an image file, might be broken or unknown-format.";

/// What the user is told at each of the two opens.
enum Told : unsigned {
    Silence = 0,
    Warning = 1,        // the settings failed
    Failure = 2,        // the run failed
    NeverOpened = 4,    // no plugin is found for the file, and nothing is told
    Cancelled = 8,      // the settings were, and nothing is told
    JapaneseSystem = 16 // the warning is in Japanese
};

struct Library {
    const char* fixture; // null stands for a text file
    const char* file;    // its name in the folder of the kind
    const char* kind = "INPUT";
};

struct Misdeed {
    const char* name;
    std::vector<Library> libraries;
    const char* opened; // the file that is opened
    i32 names;          // plugins of the kind INPUT that have a name
    u32 formats;        // what they know to read
    unsigned told;
    // The picture that it leaves.
    u32 width = 0;
    u32 height = 0;
    u32 depth = 0;
    bool refuses = false; // progress is told that the user gave up
};

std::ostream& operator<<(std::ostream& out, const Misdeed& row)
{
    return out << row.name;
}

/// A row for a misdeed of a reader that makes a picture of its own and has the pattern *.bad.
Misdeed Reader(const char* fixture, unsigned told, u32 width, u32 height, u32 depth,
               bool refuses = false)
{
    return {fixture, {{fixture, "X.dll"}}, "a.bad", 1, 1, told, width, height, depth, refuses};
}

/// A row for a misdeed of another kind, which no file is opened by.
Misdeed Other(const char* kind, const char* fixture)
{
    return {fixture, {{fixture, "X.dll", kind}}, "a.bad", 0, 0, NeverOpened};
}

std::vector<Misdeed> Misdeeds()
{
    std::vector<Misdeed> rows = {
        // What the start meets in the folder.
        {"no_exports", {{"no_exports", "X.dll"}}, "a.bad", 0, 0, NeverOpened},
        {"text_file", {{nullptr, "X.DLL"}}, "a.bad", 0, 0, NeverOpened},
        {"another_kind", {{"kind_OUTPUT", "X.dll"}}, "a.one", 0, 0, NeverOpened},
        {"zero_identity", {{"zero_identity", "X.dll"}}, "a.bad", 0, 0, NeverOpened},
        {"throws_identity", {{"throws_identity", "X.dll"}}, "a.bad", 0, 0, NeverOpened},
        {"throws_everywhere", {{"throws", "X.dll"}}, "a.bad", 0, 0, NeverOpened},
        {"two_of_one_name",
         {{"never_reports", "X.dll"}, {"never_reports", "Y.dll"}},
         "a.bad",
         1,
         2,
         Silence,
         40,
         30,
         24},
        {"nameless", {{"nameless", "X.dll"}}, "a.nam", 0, 1, Warning | Failure},
        {"fifty_one_formats", {{"many_formats", "X.dll"}}, "a.49", 1, 50, Warning | Failure},
        {"the_fifty_first_format", {{"many_formats", "X.dll"}}, "a.50", 1, 50, NeverOpened},
        {"no_patterns", {{"empty_pattern", "X.dll"}}, "a.two", 1, 2, Warning | Failure},
        {"silent_answers", {{"silent_answers", "X.dll"}}, "a.one", 1, 1, Warning | Failure},
        {"unterminated", {{"unterminated", "X.dll"}}, "a.unt", 1, 1, NeverOpened},
        // What an open meets.
        Reader("without_configure", Warning, 40, 30, 24),
        Reader("without_processing", Failure, 0, 0, 0),
        Reader("configure_cancels", Cancelled, 0, 0, 0),
        Reader("configure_fails", Warning, 40, 30, 24),
        Reader("throws_configure", Warning, 40, 30, 24),
        Reader("throws_run", Failure, 40, 30, 24),
        Reader("returns_garbage", Failure, 0, 0, 0),
        Reader("returns_most", Silence, 0, 0, 0),
        Reader("returns_least", Warning | Failure, 0, 0, 0),
        Reader("never_reports", Silence, 40, 30, 24),
        Reader("ignores_refusal", Silence, 40, 30, 24, true),
        Reader("odd_reports", Silence, 40, 30, 24),
        Reader("odd_messages", Silence, 40, 30, 24),
        Reader("locks_lines", Silence, 40, 30, 24),
        Reader("wipes_tables", Silence, 40, 30, 24),
        Reader("never_frees", Silence, 40, 30, 24),
        Reader("depth_8", Silence, 40, 30, 8),
        Reader("depth_16", Silence, 40, 30, 16),
        Reader("depth_32", Silence, 40, 30, 32),
        Reader("no_lines", Silence, 40, 0, 24),
        Reader("no_width", Silence, 0, 30, 24),
        Reader("other_size", Silence, 3, 2, 24),
        Reader("absurd_size", Silence, 0, 0, 0),
        Reader("odd_depth", Silence, 0, 0, 0),
        Reader("frees_picture", Silence, 0, 0, 0),
        Reader("own_thread", Silence, 40, 30, 24),
        Reader("keeps_tables", Silence, 40, 30, 24),
        // The other kinds, whose commands the walk through all of them starts.
        Other("EFFECT", "effect_throws_run"),
        Other("EFFECT", "effect_wipes_tables"),
        Other("EFFECT", "effect_locks_lines"),
        Other("EFFECT", "effect_never_frees"),
        Other("EFFECT", "effect_depth_8"),
        Other("EFFECT", "effect_no_lines"),
        Other("EFFECT", "effect_other_size"),
        Other("EFFECT", "effect_keeps_tables"),
        Other("OUTPUT", "output_throws_run"),
        Other("OUTPUT", "output_frees_picture"),
        Other("PRINT", "print_throws_run"),
        Other("ADJUST", "adjust_throws_configure"),
        Other("SCALE", "scale_returns_garbage"),
        Other("SUBTRACT", "subtract_own_thread"),
    };
    Misdeed japanese = Reader("configure_fails", Warning | JapaneseSystem, 40, 30, 24);
    japanese.name = "configure_fails_in_Japanese";
    rows.push_back(japanese);
    return rows;
}

/// The commands that end the program or start another.
bool Leaves(u32 id)
{
    return id == CommandExit || id == CommandNothingQuit || id == CommandLaunchViewer;
}

class MisbehavingPlugin : public ::testing::TestWithParam<Misdeed>
{
protected:
    MisbehavingPlugin()
    {
        SetLanguage(GetParam().told & JapaneseSystem ? 1041 : 1033);
        const fs::path plugins = fs::path(TestHome()) / "data" / "tavrix" / "PLUGINS";
        for (const Library& library : GetParam().libraries) {
            fs::create_directories(plugins / library.kind);
            const fs::path file = plugins / library.kind / library.file;
            if (library.fixture == nullptr)
                std::ofstream(file) << "no library\n";
            else
                fs::copy_file(tavrix::testing::InBuild("/tests/plugins/fixtures/") +
                                  std::string(library.fixture) + ".dll",
                              file);
        }
        InstallPlugin(tavrix::testing::InBuild("/bin/PLUGINS/INPUT/PNG.dll"));
        bad = TestHome() + "/" + GetParam().opened;
        std::ofstream(bad) << "anything";
        good = WriteTestPng(100, 80);
        OnModal([this](HWND dialog, bool box) {
            const bool job = !box && GetDlgItem(dialog, ControlProgressBar) != nullptr;
            if (job)
                mainFrame->abortRequested = refuses ? 1 : 0;
            else
                EndDialog(dialog, box ? IDOK : IDCANCEL);
        });
    }

    static RasterInfo InfoOf(MainFrame& frame)
    {
        RasterInfo info = {};
        info.size = sizeof info;
        EXPECT_EQ(frame.image->GetInfo(&info), Done);
        return info;
    }
    /// What one open by the plugin brings about; `opens` of them have been.
    static void ExpectOutcome(MainFrame& frame, size_t opens)
    {
        const Misdeed& row = GetParam();
        const bool opened = (row.told & (NeverOpened | Cancelled)) == 0;
        EXPECT_EQ(frame.imagePresent, opened ? 1u : 0u);
        const RasterInfo info = InfoOf(frame);
        EXPECT_EQ(info.width, row.width);
        EXPECT_EQ(info.height, row.height);
        EXPECT_EQ(info.depth, row.depth);
        ASSERT_EQ(BoxCalls().size(), row.told & Warning ? opens : 0u);
        if (row.told & Warning) {
            const BoxCall& box = BoxCalls().back();
            const bool japanese = row.told & JapaneseSystem;
            EXPECT_EQ(box.text, japanese ? JapaneseWarning : EnglishWarning);
            EXPECT_EQ(box.caption, japanese ? u"警告" : u"WARNING");
            EXPECT_EQ(box.flags, japanese ? 48u : 16u);
            EXPECT_EQ(box.owner, frame.window);
        }
        const auto errors = std::count(StatusTexts().begin(), StatusTexts().end(), EnglishError);
        EXPECT_EQ(errors > 0, (row.told & Failure) != 0);
        // What own_thread says and stores where it must not.
        EXPECT_EQ(std::count(StatusTexts().begin(), StatusTexts().end(), u"from elsewhere"), 0);
        u32 value = 0;
        EXPECT_LT(frame.settings->GetUInt(TEXT("Global"), TEXT("OwnThread"), &value), 0);
    }
    /// The good picture stands centred in the view, black around it.
    static void ExpectGoodPicture(MainFrame& frame)
    {
        const Picture screen = ScreenPixels();
        const int bar = static_cast<int>(frame.clientOriginY);
        const int left = (640 - 100) / 2;
        const int top = bar + (480 - bar - 1 - 80) / 2;
        for (int y = bar; y < 480; ++y)
            for (int x = 0; x < 640; ++x) {
                const bool inside = x >= left && x < left + 100 && y >= top && y < top + 80;
                ASSERT_EQ(screen.At(x, y), inside ? TestColor(x - left, y - top) : 0u)
                    << x << ", " << y;
            }
    }
    static void DoEveryCommand(MainFrame& frame)
    {
        for (u32 id = 0; id < 42000; ++id)
            if (!Leaves(id))
                SendMessageW(frame.window, WM_COMMAND, id, 0);
        // Every zoom came to its turn in that; here some in the two screen modes and dithered.
        for (const u32 screen : {CommandScreenMono, CommandScreenColor}) {
            SendMessageW(frame.window, WM_COMMAND, screen, 0);
            for (const u32 command : {CommandZoom50, CommandZoom400, CommandDitherOn})
                SendMessageW(frame.window, WM_COMMAND, command, 0);
            InvalidateRect(frame.window, nullptr, FALSE);
            UpdateWindow(frame.window);
        }
    }
    /// What a second start of the program does to the first.
    static void HandOver(MainFrame& frame, const std::string& hostPath)
    {
        std::u16string path = DevicePath(hostPath);
        COPYDATASTRUCT record = {};
        record.cbData = static_cast<DWORD>((path.size() + 1) * sizeof(WCHAR));
        record.lpData = path.data();
        EXPECT_EQ(SendMessageW(frame.window, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&record)), 1);
    }

    Scope scope;
    bool refuses = GetParam().refuses; // as long as the bad file is opened
    std::string bad;
    std::string good;
};

TEST_P(MisbehavingPlugin, LeavesAProgramThatWorks)
{
    const int result = RunProgramOn(
        bad, {[&](MainFrame& frame) {
                  EXPECT_EQ(frame.inputNames->Count(), GetParam().names + 1); // and PNG
                  EXPECT_EQ(frame.inputExtensions->Count(), GetParam().formats + 1);
                  ExpectOutcome(frame, 1);
                  HandOver(frame, bad);
                  ExpectOutcome(frame, 2);
                  // What it says of itself is asked at any time.
                  for (i32 i = 0; i < frame.inputPlugins->Count(); ++i) {
                      WCHAR text[64 + 1] = {};
                      EXPECT_GT(frame.inputPlugins->LoadByIndex(static_cast<u32>(i), 0), 0);
                      for (u32 index = 0; index < 6; ++index)
                          (void)frame.inputPlugins->Info(index, text, 64);
                      frame.inputPlugins->Unload();
                  }
              },
              [](MainFrame& frame) { DoEveryCommand(frame); },
              [](MainFrame&) {
                  for (const int key : {VK_LEFT, VK_RIGHT, VK_UP, VK_DOWN})
                      TypeKey(key);
              },
              [&](MainFrame& frame) {
                  EXPECT_TRUE(IsWindowEnabled(frame.window));
                  if (frame.dither != 0)
                      SendMessageW(frame.window, WM_COMMAND, CommandDitherOn, 0);
                  SendMessageW(frame.window, WM_COMMAND, CommandScreenColor, 0);
                  SendMessageW(frame.window, WM_COMMAND, CommandZoom100, 0);
                  refuses = false;
                  HandOver(frame, good);
                  const RasterInfo info = InfoOf(frame);
                  EXPECT_EQ(info.width, 100u);
                  EXPECT_EQ(info.height, 80u);
                  ExpectGoodPicture(frame);
                  if (GetParam().refuses) {
                      u32 refused = 0;
                      EXPECT_EQ(frame.settings->GetUInt(TEXT("Global"), TEXT("refused"), &refused),
                                Done);
                      EXPECT_EQ(refused, 20u);
                  }
              }});
    EXPECT_EQ(result, 0);
}

INSTANTIATE_TEST_SUITE_P(Of, MisbehavingPlugin, ::testing::ValuesIn(Misdeeds()),
                         [](const ::testing::TestParamInfo<Misdeed>& row) {
                             return std::string(row.param.name);
                         });

} // namespace
