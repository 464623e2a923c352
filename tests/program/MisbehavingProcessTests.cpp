// Plugins that change a picture and misbehave, one misdeed a row, started by their menu entries on
// a real picture: what is told, that undo and a selection are survived, and that a good plugin and
// a good picture work right afterwards.

#include "platform/testing/core/TestHome.h"
#include "resources/Ids.h"
#include "tests/support/DeviceCalls.h"
#include "tests/support/Program.h"
#include "tests/support/TestPicture.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "platform/testing/core/TestPaths.h"

using namespace tavrix::testing;
namespace fs = std::filesystem;

namespace
{

constexpr u32 Width = 100;
constexpr u32 Height = 80;

enum Told : unsigned {
    Silence = 0,
    Warning = 1,  // the settings failed
    Failure = 2,  // the run failed
    Cancelled = 4 // nothing is run and nothing told
};

struct Misdeed {
    const char* name;
    bool adjusts; // the kind ADJUST, else EFFECT
    unsigned told;
    // What it makes of the picture as a whole.
    u32 width = Width;
    u32 height = Height;
    u32 depth = 24;
    LANGID second = 1041; // the language at its second start
};

std::ostream& operator<<(std::ostream& out, const Misdeed& row)
{
    return out << row.name;
}

const Misdeed misdeeds[] = {
    {"effect_throws_run", false, Failure},
    {"effect_wipes_tables", false, Silence},
    {"effect_locks_lines", false, Silence},
    {"effect_never_frees", false, Silence},
    {"effect_returns_garbage", false, Failure, Width, Height, 24, 1033},
    {"effect_own_thread", false, Silence, 40, 30, 24},
    {"effect_keeps_tables", false, Silence, 40, 30, 24},
    {"effect_without_processing", false, Failure},
    {"effect_without_configure", false, Warning},
    {"effect_throws_configure", false, Warning},
    {"effect_configure_cancels", false, Cancelled},
    {"effect_configure_fails", false, Warning},
    {"effect_depth_8", false, Silence, 40, 30, 8},
    {"effect_depth_16", false, Silence, 40, 30, 16},
    {"effect_depth_32", false, Silence, 40, 30, 32},
    {"effect_no_lines", false, Silence, 40, 0, 24},
    {"effect_no_width", false, Silence, 0, 30, 24},
    {"effect_other_size", false, Silence, 3, 2, 24},
    {"effect_absurd_size", false, Silence, 0, 0, 0},
    {"effect_odd_depth", false, Silence, 0, 0, 0},
    {"effect_frees_picture", false, Silence, 0, 0, 0},
    {"adjust_throws_run", true, Failure},
    {"adjust_locks_lines", true, Silence},
    {"adjust_never_frees", true, Silence},
    {"adjust_without_processing", true, Failure},
    {"adjust_without_configure", true, Warning},
    {"adjust_throws_configure", true, Warning},
    {"adjust_configure_cancels", true, Cancelled},
};

class MisbehavingProcess : public ::testing::TestWithParam<Misdeed>
{
protected:
    MisbehavingProcess()
    {
        const std::string kind = row.adjusts ? "ADJUST" : "EFFECT";
        InstallPluginAs(tavrix::testing::InBuild("/tests/plugins/fixtures/") +
                            std::string(row.name) + ".dll",
                        kind, "A.dll");
        InstallPluginAs(tavrix::testing::InBuild("/tests/shell-fixtures/") +
                            std::string(row.adjusts ? "halving" : "inverting") + ".dll",
                        kind, "B.dll");
        InstallPlugin(tavrix::testing::InBuild("/bin/PLUGINS/INPUT/PNG.dll"));
        const fs::path folder = TestHome() + "/config/tavrix/Configuration Files";
        fs::create_directories(folder);
        const std::u16string settings = u"\uFEFF[Tavrix]\r\nEnableUndo=1\r\nShowToolbox=0\r\n"
                                        u"ShowColorbox=0\r\n";
        std::ofstream(folder / "Tavrix.ini", std::ios::binary)
            .write(reinterpret_cast<const char*>(settings.data()),
                   static_cast<std::streamsize>(settings.size() * 2));
        picture = WriteTestPng(Width, Height);
        OnModal([](HWND dialog, bool box) {
            if (box)
                EndDialog(dialog, IDOK);
        });
    }

    static RasterInfo InfoOf(MainFrame& frame)
    {
        RasterInfo info = {};
        info.size = sizeof info;
        EXPECT_EQ(frame.image->GetInfo(&info), Done);
        return info;
    }

    /// Starts the bad plugin and looks at what was told, in the language.
    void Start(MainFrame& frame, LANGID language) const
    {
        SetLanguage(language);
        const bool japanese = language == 1041;
        const size_t boxes = BoxCalls().size();
        const unsigned beeps = tavrix::platform::Hooks().beeps;
        SendMessageW(frame.window, WM_COMMAND, First(), 0);
        ASSERT_EQ(BoxCalls().size(), boxes + (row.told & Warning ? 1u : 0u));
        if (row.told & Warning) {
            const BoxCall& box = BoxCalls().back();
            EXPECT_EQ(box.text,
                      japanese
                          ? u"プラグイン設定の初期化に失敗しました。強行します。"
                          : u"Failed to initialize plugin settings, but enforce next process...");
            EXPECT_EQ(box.flags, japanese ? 48u : 16u);
        }
        const char16_t* const effect = japanese ? u"画像効果処理中にエラーが発生しました。"
                                                : u"Error occurred during effecting an image.";
        const char16_t* const adjust = japanese ? u"画像調整中にエラーが発生しました。"
                                                : u"Error occurred during adjusting an image.";
        // A run that fails beeps, and so does the hundredth save, which has the number of the first
        // effect.
        const unsigned expected = (row.told & Failure ? 1u : 0u) + (row.adjusts ? 0u : 1u);
        ASSERT_EQ(tavrix::platform::Hooks().beeps, beeps + expected);
        if (row.told & Failure) {
            EXPECT_EQ(StatusTexts().back(), row.adjusts ? adjust : effect);
        }
        EXPECT_TRUE(IsWindowEnabled(frame.window));
        EXPECT_FALSE(row.adjusts ? frame.adjustPlugins->IsLoaded()
                                 : frame.effectPlugins->IsLoaded());
    }

    u32 First() const { return row.adjusts ? CommandFirstAdjust : CommandFirstEffect; }

    const Misdeed& row = GetParam();
    Scope scope;
    std::string picture;
};

TEST_P(MisbehavingProcess, LeavesAProgramThatWorks)
{
    const int result = RunProgramOn(picture, [&](MainFrame& frame) {
        const bool cancelled = (row.told & Cancelled) != 0;
        Start(frame, 1033);
        RasterInfo info = InfoOf(frame);
        EXPECT_EQ(info.width, row.width);
        EXPECT_EQ(info.height, row.height);
        EXPECT_EQ(info.depth, row.depth);
        const bool undoable =
            (GetMenuState(frame.editMenu, CommandUndo, MF_BYCOMMAND) & MF_GRAYED) == 0;
        EXPECT_EQ(undoable, !cancelled);
        SendMessageW(frame.window, WM_COMMAND, CommandUndo, 0);
        info = InfoOf(frame);
        EXPECT_EQ(info.width, row.width) << "it goes back over the picture as that now is";

        // On a good picture again, and then on a part of it, whose size is nobody's to change.
        frame.OpenFile(DevicePath(picture).c_str());
        SendMessageW(frame.window, WM_COMMAND, CommandSelectAll, 0);
        frame.selectionLeft = 10;
        frame.selectionBottom = 59;
        Start(frame, row.second);
        info = InfoOf(frame);
        EXPECT_EQ(info.width, Width);
        EXPECT_EQ(info.height, Height);
        EXPECT_EQ(info.depth, 24u);
        EXPECT_EQ(frame.workImage != nullptr, cancelled) << "it stays where the settings end it";
        SendMessageW(frame.window, WM_COMMAND, CommandUndo, 0);
        frame.DropWorkImage();

        frame.OpenFile(DevicePath(picture).c_str());
        SetLanguage(1033);
        const size_t boxes = BoxCalls().size();
        SendMessageW(frame.window, WM_COMMAND, First() + 1, 0);
        EXPECT_EQ(BoxCalls().size(), boxes);
        const int bar = static_cast<int>(frame.clientOriginY);
        const int left = (640 - static_cast<int>(Width)) / 2;
        const int top = bar + (480 - bar - 1 - static_cast<int>(Height)) / 2;
        const Picture screen = ScreenPixels();
        for (int y = bar; y < 480; ++y)
            for (int x = 0; x < 640; ++x) {
                const bool inside = x >= left && x < left + static_cast<int>(Width) && y >= top &&
                                    y < top + static_cast<int>(Height);
                const u32 color = inside ? TestColor(x - left, y - top) : 0;
                const u32 changed = row.adjusts ? color >> 1 & 0x7F7F7F : 0xFFFFFF - color;
                ASSERT_EQ(screen.At(x, y), inside ? changed : 0u) << x << ", " << y;
            }
    });
    EXPECT_EQ(result, 0);
}

INSTANTIATE_TEST_SUITE_P(Of, MisbehavingProcess, ::testing::ValuesIn(misdeeds),
                         [](const ::testing::TestParamInfo<Misdeed>& row) {
                             return std::string(row.param.name);
                         });

} // namespace
