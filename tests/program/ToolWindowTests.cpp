// Toolbox and colorbox in the whole program: shown and hidden, what a click on them opens, and what
// the frame has of it, by a person's pointer.

#include "resources/Ids.h"
#include "tests/support/Program.h"
#include "tests/support/TestPicture.h"
#include "view/tests/ToolWindowTesting.h"

#include "platform/testing/core/TestPaths.h"
#include <commctrl.h>
#include <gtest/gtest.h>

using namespace toolwindowtest;

namespace
{

/// A run with no command line and one plugin, without which the program would tell of it.
int RunAlone(const Step& step)
{
    InstallPlugin(tavrix::testing::InBuild("/tests/shell-fixtures/quick.dll"));
    return RunProgram(u"", step);
}

/// The dialogs that came up during a run, each answered by the script.
struct Modals {
    explicit Modals(std::function<void(HWND)> theScript) : script(std::move(theScript))
    {
        OnModal([this](HWND dialog, bool box) {
            EXPECT_FALSE(box);
            if (GetDlgItem(dialog, ControlProgressBar) != nullptr)
                return;
            ++count;
            Pump(40);
            script(dialog);
        });
    }

    std::function<void(HWND)> script;
    int count = 0;
};

void Set(HWND dialog, int bar, LPARAM position)
{
    SendMessageW(GetDlgItem(dialog, bar), TBM_SETPOS, TRUE, position);
}

bool ShowsCell(HWND toolbox, int column)
{
    const Picture picture = WindowPixels(toolbox);
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 20; ++x)
            if (picture.At(x, 11 + y) != StripColor(20 * column + x, y))
                return false;
    return true;
}

bool IsChecked(HMENU menu, u32 command)
{
    return (GetMenuState(menu, command, MF_BYCOMMAND) & MF_CHECKED) != 0;
}

/// Closes the main window while the dialog that `open` brings about is there.
void ExpectEnd(const Step& open)
{
    MainFrame* running = nullptr;
    Modals modals([&](HWND) {
        SendMessageW(running->window, WM_CLOSE, 0, 0);
        Pump(30);
    });
    EXPECT_EQ(RunAlone([&](MainFrame& frame) {
                  running = &frame;
                  open(frame);
                  EXPECT_EQ(frame.faceColor, 0u);
              }),
              0);
    EXPECT_EQ(modals.count, 1);
    EXPECT_EQ(FindWindowW(nullptr, TEXT("Tavrix Toolbox")), nullptr) << "gone with the frame";
    EXPECT_EQ(FindWindowW(nullptr, TEXT("Tavrix Colorbox")), nullptr);
}

/// Opens the chooser and the brush settings.
void ExpectCaptions(LANGID language, const std::vector<std::u16string>& expected)
{
    Scope scope;
    SetLanguage(language);
    std::vector<std::u16string> captions;
    Modals modals([&](HWND dialog) {
        WCHAR caption[40] = {};
        GetWindowTextW(dialog, caption, 40);
        captions.push_back(caption);
        TypeKey(VK_ESCAPE);
    });
    RunAlone([](MainFrame& frame) {
        ClickControl(frame.colorbox, 1053);
        frame.tool = 32;
        ClickIn(frame.toolbox, 5, 15);
    });
    EXPECT_EQ(captions, expected);
}

} // namespace

TEST(ToolWindows, TheyStandAtTheTopRightOneBelowTheOther)
{
    RunAlone([](MainFrame& frame) {
        const int bar = static_cast<int>(frame.clientOriginY);
        ExpectCorner(frame.toolbox, 640 - 44, bar);
        ExpectCorner(frame.colorbox, 640 - 44, bar + 31);
        EXPECT_TRUE(IsWindowVisible(frame.toolbox));
        EXPECT_TRUE(IsWindowVisible(frame.colorbox));
        EXPECT_EQ(GetParent(frame.toolbox), frame.window);
        EXPECT_EQ(GetParent(frame.colorbox), frame.window);
        EXPECT_TRUE(ShowsCell(frame.toolbox, 4)) << "the scroll tool's";
        EXPECT_EQ(MiddleOf(GetDlgItem(frame.colorbox, 1053)), 0x000000u);
        EXPECT_EQ(MiddleOf(GetDlgItem(frame.colorbox, 1052)), 0xFFFFFFu);
        EXPECT_EQ(GetFocus(), frame.window) << "the keyboard stays the main window's";
    });
}

TEST(ToolWindows, TheirCommandsHideAndShowThemAndSetTheirMarks)
{
    RunAlone([](MainFrame& frame) {
        const struct {
            u32 command;
            HWND window;
            HWND other;
            u32& shown;
        } entries[] = {{40118, frame.toolbox, frame.colorbox, frame.showToolbox},
                       {40153, frame.colorbox, frame.toolbox, frame.showColorbox}};
        for (const auto& entry : entries) {
            SendMessageW(frame.window, WM_COMMAND, entry.command, 0);
            EXPECT_EQ(entry.shown, 0u);
            EXPECT_FALSE(IsWindowVisible(entry.window));
            EXPECT_TRUE(IsWindowVisible(entry.other));
            EXPECT_FALSE(IsChecked(frame.windowMenu, entry.command));
            SendMessageW(frame.window, WM_COMMAND, entry.command, 0);
            EXPECT_EQ(entry.shown, 1u);
            EXPECT_TRUE(IsWindowVisible(entry.window));
            EXPECT_TRUE(IsChecked(frame.windowMenu, entry.command));
        }
        frame.ToggleToolWindow(CommandExit);
        EXPECT_EQ(frame.showToolbox, 1u);
        EXPECT_EQ(frame.showColorbox, 1u);
    });
}

TEST(ToolWindows, HiddenBySettingsTheyStandWhereTheyWouldAndCanBeShown)
{
    WriteSettings(u"[Tavrix]\r\nShowToolbox=0\r\nShowColorbox=0\r\nFaceColor=16909311\r\n");
    RunAlone([](MainFrame& frame) {
        EXPECT_FALSE(IsWindowVisible(frame.toolbox));
        EXPECT_FALSE(IsWindowVisible(frame.colorbox));
        SendMessageW(frame.window, WM_COMMAND, 40153, 0);
        Pump(60);
        ExpectCorner(frame.colorbox, 640 - 44, static_cast<int>(frame.clientOriginY) + 31);
        EXPECT_EQ(MiddleOf(GetDlgItem(frame.colorbox, 1053)), 0x010203u) << "16909311 is 010203FF";
    });
}

TEST(ToolWindows, AClickOnTheToolboxOpensTheBrushSettingsWithTheBrushAlone)
{
    Modals modals([](HWND dialog) {
        EXPECT_EQ(SendMessageW(GetDlgItem(dialog, 1054), TBM_GETPOS, 0, 0), 5);
        EXPECT_EQ(SendMessageW(GetDlgItem(dialog, 1053), TBM_GETPOS, 0, 0), 256);
        EXPECT_EQ(SendMessageW(GetDlgItem(dialog, 1055), TBM_GETPOS, 0, 0), 1);
        Set(dialog, 1054, 33);
        ClickControl(dialog, 1);
    });
    InstallBundledPlugins();
    RunProgramOn(WriteTestPng(60, 40), [&](MainFrame& frame) {
        for (const u32 tool : {1u, 18u, 48u, 49u, 64u, 0u, 33u}) {
            frame.tool = tool;
            ClickIn(frame.toolbox, 5, 12);
        }
        EXPECT_EQ(modals.count, 0);
        frame.tool = 32;
        ClickIn(frame.toolbox, 5, 11);
        EXPECT_EQ(modals.count, 0) << "the title drags";
        ClickIn(frame.toolbox, 5, 12);
        EXPECT_EQ(modals.count, 1);
        BrushInfo info = {};
        info.size = sizeof info;
        (void)frame.brush->GetInfo(&info);
        EXPECT_EQ(info.radius, 33u);
        EXPECT_EQ(info.strength, 256u);
    });
}

TEST(ToolWindows, APickAndOkLeavesTheColourWithAnAlphaOfNone)
{
    Modals modals([](HWND dialog) {
        Set(dialog, 1200, 0x12);
        Set(dialog, 1201, 0x34);
        Set(dialog, 1202, 0x56);
        ClickControl(dialog, 1);
    });
    RunAlone([&](MainFrame& frame) {
        ClickControl(frame.colorbox, 1053);
        Pump(60);
        EXPECT_EQ(frame.faceColor, 0x12345600u);
        EXPECT_EQ(frame.backgroundColor, 0xFFFFFFFFu);
        EXPECT_EQ(MiddleOf(GetDlgItem(frame.colorbox, 1053)), 0x123456u);
        ClickControl(frame.colorbox, 1052);
        Pump(60);
        EXPECT_EQ(frame.backgroundColor, 0x12345600u);
        EXPECT_EQ(modals.count, 2);
    });
}

TEST(ToolWindows, OkWithoutAChangeTakesTheAlphaToo)
{
    Modals modals([](HWND dialog) { ClickControl(dialog, 1); });
    RunAlone([](MainFrame& frame) {
        frame.backgroundColor = 0xA1B2C3D4;
        ClickControl(frame.colorbox, 1052);
        EXPECT_EQ(frame.backgroundColor, 0xA1B2C300u);
    });
}

TEST(ToolWindows, GivingAPickUpKeepsTheColour)
{
    Modals modals([](HWND dialog) {
        EXPECT_EQ(SendMessageW(GetDlgItem(dialog, 1200), TBM_GETPOS, 0, 0), 0xA1);
        EXPECT_EQ(SendMessageW(GetDlgItem(dialog, 1201), TBM_GETPOS, 0, 0), 0xB2);
        EXPECT_EQ(SendMessageW(GetDlgItem(dialog, 1202), TBM_GETPOS, 0, 0), 0xC3);
        Set(dialog, 1200, 0x12);
        TypeKey(VK_ESCAPE);
    });
    RunAlone([&](MainFrame& frame) {
        frame.faceColor = 0xA1B2C3D4;
        ClickControl(frame.colorbox, 1053);
        EXPECT_EQ(frame.faceColor, 0xA1B2C3D4u);
        EXPECT_EQ(modals.count, 1);
    });
}

TEST(ToolWindows, AfterAPickThePipetteGivesAnOpaqueColourAgain)
{
    Modals modals([](HWND dialog) { ClickControl(dialog, 1); });
    InstallBundledPlugins();
    RunProgramOn(WriteTestPng(900, 700), [](MainFrame& frame) {
        ClickControl(frame.colorbox, 1053);
        EXPECT_EQ(frame.faceColor & 0xFF, 0u);
        frame.ChooseTool(CommandPipette);
        ClickScreen(100, 200);
        Pump(60);
        EXPECT_TRUE(ShowsCell(frame.toolbox, 7));
        const uint32_t color = TestColor(100, 200 - static_cast<int>(frame.clientOriginY));
        EXPECT_EQ(frame.faceColor, color << 8 | 0xFF);
        EXPECT_EQ(MiddleOf(GetDlgItem(frame.colorbox, 1053)), color);
    });
}

TEST(ToolWindows, WhileADialogIsOpenTheyAnswerNothing)
{
    MainFrame* running = nullptr;
    Modals modals([&](HWND dialog) {
        MainFrame& frame = *running;
        const POINT toolbox = CornerOf(frame.toolbox);
        ClickControl(frame.colorbox, 1052);
        ClickControl(frame.colorbox, 1053);
        ClickIn(frame.toolbox, 5, 15);
        DragScreen(toolbox.x + 5, toolbox.y + 5, 100, 300);
        Pump(60);
        EXPECT_EQ(modals.count, 1);
        ExpectCorner(frame.toolbox, toolbox.x, toolbox.y);
        // Not even by a message does a second chooser open.
        SendMessageW(frame.colorbox, WM_COMMAND, 1053, 0);
        EXPECT_EQ(modals.count, 1);
        PostMessageW(dialog, WM_COMMAND, 2, 0);
    });
    RunAlone([&](MainFrame& frame) {
        running = &frame;
        frame.tool = 32;
        ClickControl(frame.colorbox, 1053);
        EXPECT_EQ(modals.count, 1);
        EXPECT_EQ(frame.faceColor, 0u);
        Pump(60);
        EXPECT_EQ(modals.count, 1) << "nothing was kept for afterwards";
    });
}

TEST(ToolWindows, TheColorboxMayBeHiddenUnderItsChooser)
{
    MainFrame* running = nullptr;
    Modals modals([&](HWND dialog) {
        SendMessageW(running->window, WM_COMMAND, 40153, 0);
        EXPECT_FALSE(IsWindowVisible(running->colorbox));
        Pump(60);
        EXPECT_TRUE(IsWindowVisible(dialog));
        Set(dialog, 1200, 9);
        ClickControl(dialog, 1);
    });
    RunAlone([&](MainFrame& frame) {
        running = &frame;
        ClickControl(frame.colorbox, 1053);
        EXPECT_EQ(frame.faceColor, 0x09000000u);
        SendMessageW(frame.window, WM_COMMAND, 40153, 0);
        Pump(60);
        EXPECT_EQ(MiddleOf(GetDlgItem(frame.colorbox, 1053)), 0x090000u);
    });
}

TEST(ToolWindows, TheProgramEndsUnderTheChooser)
{
    ExpectEnd([](MainFrame& frame) { ClickControl(frame.colorbox, 1053); });
}

TEST(ToolWindows, TheProgramEndsUnderTheBrushSettings)
{
    ExpectEnd([](MainFrame& frame) {
        frame.tool = 32;
        ClickIn(frame.toolbox, 5, 15);
    });
}

TEST(ToolWindows, DraggedAwayTheyUncoverThePictureAndKeepTheirPlaceWhileHidden)
{
    InstallBundledPlugins();
    RunProgramOn(WriteTestPng(900, 700), [](MainFrame& frame) {
        const POINT corner = CornerOf(frame.toolbox);
        const int bar = static_cast<int>(frame.clientOriginY);
        DragScreen(corner.x + 8, corner.y + 3, corner.x + 8 - 300, corner.y + 3 + 200);
        Pump(60);
        ExpectCorner(frame.toolbox, corner.x - 300, corner.y + 200);
        EXPECT_TRUE(ShowsCell(frame.toolbox, 4));
        const Picture screen = ScreenPixels();
        for (int y = 0; y < 31; ++y)
            for (int x = 0; x < 44; ++x)
                ASSERT_EQ(screen.At(corner.x + x, corner.y + y),
                          TestColor(corner.x + x, corner.y + y - bar));
        SendMessageW(frame.window, WM_COMMAND, 40118, 0);
        SendMessageW(frame.window, WM_COMMAND, 40118, 0);
        ExpectCorner(frame.toolbox, corner.x - 300, corner.y + 200);
    });
}

TEST(ToolWindows, InEnglishTheirDialogsAreEnglish)
{
    ExpectCaptions(1033, {u"Color", u"Brush"});
}

TEST(ToolWindows, InJapaneseTheirDialogsAreJapanese)
{
    ExpectCaptions(1041, {u"カラー", u"ブラシ"});
}
