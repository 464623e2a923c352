// Every command that changes or exchanges the picture, on pictures as no decoder should leave them,
// after plugins that do wrong, with each kind of selection: nothing crashes, each flow ends, and a
// good picture opens and changes rightly afterwards.

#include "foundation/Result.h"
#include "platform/testing/core/TestHome.h"
#include "resources/Ids.h"
#include "tests/support/Program.h"
#include "tests/support/TestPicture.h"

#include <gtest/gtest.h>

#include <fstream>

#include "platform/testing/core/TestPaths.h"

using namespace tavrix::testing;

namespace
{

/// Whoever reads "a.bad", and whoever works on what it read.
struct Wrongdoers {
    const char* input;
    const char* effect;
    const char* adjust;
    const char* scale;
};

std::ostream& operator<<(std::ostream& out, const Wrongdoers& row)
{
    return out << row.input << " " << row.effect << " " << row.adjust << " " << row.scale;
}

constexpr Wrongdoers Rows[] = {
    {"depth_8", "effect_depth_8", "adjust_throws_run", "scale_returns_garbage"},
    {"depth_16", "effect_depth_16", "adjust_wipes_tables", "scale_throws_run"},
    {"depth_32", "effect_depth_32", "adjust_locks_lines", "scale_wipes_tables"},
    {"no_lines", "effect_no_lines", "adjust_never_frees", "scale_locks_lines"},
    {"no_width", "effect_no_width", "adjust_own_thread", "scale_own_thread"},
    {"other_size", "effect_other_size", "adjust_configure_cancels", "scale_configure_cancels"},
    {"absurd_size", "effect_absurd_size", "adjust_configure_fails", "scale_configure_fails"},
    {"odd_depth", "effect_odd_depth", "adjust_throws_configure", "scale_throws_configure"},
    {"frees_picture", "effect_frees_picture", "adjust_returns_garbage", "scale_never_frees"},
    {"locks_lines", "effect_locks_lines", "adjust_without_processing", "scale_without_processing"},
    {"throws_run", "effect_throws_run", "adjust_keeps_tables", "scale_keeps_tables"},
    {"never_reports", "effect_configure_cancels", "adjust_without_configure", "good_scale"},
};

/// Corners in picture coordinates, and whether they count.
struct Corners {
    u32 active;
    f64 left, top, right, bottom;
};

constexpr Corners Selections[] = {
    {0, 0, 0, 0, 0},     {1, 0, 0, 39, 29}, {1, 2.5, 1.25, 9.75, 6.5}, {1, 39, 29, 39, 29},
    {0, 35, 25, 60, 60}, // dropped, and the picture was another one then
    {1, 35, 25, 60, 60}, {1, 9, 9, 3, 3},   {1, -1, -1, -1, -1},       {1, -4e9, -4e9, 4e9, 4e9},
};

constexpr u32 Commands[] = {
    CommandCopyToMemory,
    CommandPasteFromMemory,
    CommandCopyToClipboard,
    CommandPasteFromClipboard,
    CommandText,
    CommandFirstEffect,
    CommandFirstAdjust,
    CommandReverseHorizontal,
    CommandReverseVertical,
    CommandRotate180,
    CommandRotateClockwise,
    CommandRotateCounterClockwise,
    CommandSize,
    CommandResolution,
    CommandUndo,
    CommandRotateClockwise,
    CommandSize,
    CommandUndo,
    CommandUndo,
    CommandSelectAll,
    CommandPasteFromMemory,
    CommandPasteFromClipboard,
    CommandNew,
    CommandRotateCounterClockwise,
    CommandReverseHorizontal,
};

/// What a person does who agrees with everything: the first button of each dialog, Yes in each box.
void Agree(HWND dialog, bool box)
{
    if (box)
        EndDialog(dialog, IDYES);
    else if (GetDlgItem(dialog, ControlProgressBar) == nullptr)
        PostMessageW(dialog, WM_COMMAND, IDOK, 0);
}

/// A job's own dialog, which ends by itself, and every other closed at once.
void Decline(HWND dialog, bool box)
{
    if (box)
        EndDialog(dialog, IDNO);
    else if (GetDlgItem(dialog, ControlProgressBar) == nullptr)
        PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
}

class OddPicture : public ::testing::TestWithParam<Wrongdoers>
{
protected:
    OddPicture()
    {
        const Wrongdoers& row = GetParam();
        const std::string fixtures = tavrix::testing::InBuild("/tests/plugins/fixtures/");
        InstallPluginAs(fixtures + row.input + ".dll", "INPUT", "X.dll");
        InstallPlugin(tavrix::testing::InBuild("/bin/PLUGINS/INPUT/PNG.dll"));
        InstallPluginAs(fixtures + row.effect + ".dll", "EFFECT", "X.dll");
        InstallPluginAs(fixtures + row.adjust + ".dll", "ADJUST", "X.dll");
        InstallPluginAs(fixtures + row.scale + ".dll", "SCALE", "X.dll");
        WriteSettings(u"[Tavrix]\r\nEnableUndo=1\r\n");
        bad = TestHome() + "/a.bad";
        std::ofstream(bad) << "anything";
        good = WriteTestPng(100, 80);
    }

    static void Select(MainFrame& frame, const Corners& corners)
    {
        frame.selectionActive = corners.active;
        frame.selectionLeft = corners.left;
        frame.selectionTop = corners.top;
        frame.selectionRight = corners.right;
        frame.selectionBottom = corners.bottom;
    }

    void DoEverything(MainFrame& frame, const Corners& corners, void (*answer)(HWND, bool)) const
    {
        OnModal(Agree);
        frame.OpenFile(DevicePath(bad).c_str());
        OnModal(answer);
        Select(frame, corners);
        for (const u32 command : Commands)
            SendMessageW(frame.window, WM_COMMAND, command, 0);
        SendMessageW(frame.window, WM_COMMAND, CommandClearMemory, 0);
        InvalidateRect(frame.window, nullptr, FALSE);
        UpdateWindow(frame.window);
        EXPECT_TRUE(IsWindowEnabled(frame.window));
        EXPECT_EQ(frame.clipImage, nullptr);
        // A work copy of settings that were cancelled would go with the process.
        frame.DropWorkImage();
    }

    static u32 PixelOf(MainFrame& frame, i32 x, i32 y)
    {
        u32 color = 0;
        EXPECT_EQ(frame.image->GetPixel(x, y, &color), Done) << x << ", " << y;
        return color >> 8;
    }

    Scope scope;
    std::string bad;
    std::string good;
};

TEST_P(OddPicture, SurvivesEveryCommandWithEverySelection)
{
    const int result = RunProgramOn(
        bad, {[&](MainFrame& frame) {
                  EXPECT_EQ(frame.undoEnabled, 1u);
                  for (const Corners& corners : Selections)
                      DoEverything(frame, corners, Agree);
                  for (const Corners& corners : {Selections[0], Selections[2]})
                      DoEverything(frame, corners, Decline);
              },
              [&](MainFrame& frame) {
                  OnModal(Agree);
                  frame.OpenFile(DevicePath(good).c_str());
                  Select(frame, {0, 0, 0, 0, 0});
                  SendMessageW(frame.window, WM_COMMAND, CommandRotateCounterClockwise, 0);
                  EXPECT_EQ(PixelOf(frame, 0, 0), static_cast<u32>(TestColor(99, 0)));
                  EXPECT_EQ(PixelOf(frame, 79, 99), static_cast<u32>(TestColor(0, 79)));
                  EXPECT_EQ(PixelOf(frame, 7, 60), static_cast<u32>(TestColor(39, 7)));
              }});
    EXPECT_EQ(result, 0);
}

INSTANTIATE_TEST_SUITE_P(After, OddPicture, ::testing::ValuesIn(Rows),
                         [](const ::testing::TestParamInfo<Wrongdoers>& row) {
                             return std::string(row.param.input);
                         });

} // namespace
