// The dialog before a picture is printed, over the real controls and with plugins that have
// settings or not.

#include "shell/PrintDialog.h"

#include "shell/tests/FlowTesting.h"
#include "view/tests/DialogTesting.h"

using namespace flowtest;
using dialogtest::Dialog;
using dialogtest::ExpectTabOrder;
using Text = std::u16string;
using Texts = std::vector<Text>;

namespace
{

constexpr int ConfigureButton = 1106;
constexpr int Status = 1108;

const Text unset = u"Configuration might not be set correctly.";
const Text set = u"Configuration is set correctly.";

/// A run with that PRINT plugin.
void RunWith(const std::string& plugin, const Step& step)
{
    InstallFixture("quick");
    InstallFixture(plugin, "PRINT");
    EXPECT_EQ(RunProgram(u"", step), 0);
}

/// The dialog over the frame's PRINT plugin, which is loaded meanwhile.
i32 Show(MainFrame& frame, const std::function<void(const Dialog&)>& script)
{
    EXPECT_EQ(frame.printPlugins->LoadByIndex(0, 0), Done);
    PrintArguments arguments = {frame.printPlugins, frame.window, frame.image};
    const JobRecord record = {JobPrint, &arguments};
    i32 result = Failed;
    EXPECT_EQ(dialogtest::Open(
                  [&] { result = ShowPrintDialog(frame.window, frame.instance, &record); }, script),
              1);
    frame.printPlugins->Unload();
    return result;
}

/// The status line behind "Configure..." with settings of that result.
Text StatusAfter(MainFrame& frame, u32 result)
{
    Ask(frame, TEXT("FixtureResult"), result);
    Text text;
    Show(frame, [&](const Dialog& dialog) {
        ClickControl(dialog.window, ConfigureButton);
        text = dialog.Of(Status);
        dialog.Close();
    });
    return text;
}

Texts Words(const Dialog& dialog)
{
    return {dialog.Caption(), dialog.Of(1106), dialog.Of(1107), dialog.Of(1108),
            dialog.Of(1109),  dialog.Of(1),    dialog.Of(2)};
}

} // namespace

TEST(PrintDialog, EachLanguageHasItsWords)
{
    RunWith("configuring", [](MainFrame& frame) {
        SetLanguage(1033);
        Show(frame, [](const Dialog& dialog) {
            EXPECT_EQ(Words(dialog),
                      (Texts{u"Print", u"Configure...", u"1/0 dithering [for thermal papers]",
                             u"First, configure your printer.", u"stretch to fit the paper",
                             u"Print", u"Cancel"}));
            dialog.Close();
        });
        SetLanguage(1041);
        Show(frame, [](const Dialog& dialog) {
            EXPECT_EQ(Words(dialog), (Texts{u"印刷", u"印刷設定...", u"二値ディザリング [感熱紙用]",
                                            u"まず初めに、印刷設定を行ってください",
                                            u"用紙に合わせて伸縮する", u"印刷", u"キャンセル"}));
            for (const int id : {1107, 1109})
                EXPECT_FALSE(IsWindowEnabled(dialog.Control(id))) << id;
            dialog.Close();
        });
        EXPECT_EQ(StatusAfter(frame, 1), u"印刷設定が正しく行われました。");
        EXPECT_EQ(StatusAfter(frame, 0), u"印刷設定が正しく行われました。");
        EXPECT_EQ(StatusAfter(frame, 0xFFFFFFFF),
                  u"印刷設定が正しく行われなかった可能性があります。");
    });
}

TEST(PrintDialog, TheTwoBoxesCannotBeTicked)
{
    RunWith("configuring", [](MainFrame& frame) {
        Show(frame, [](const Dialog& dialog) {
            for (const int id : {1107, 1109}) {
                EXPECT_FALSE(IsWindowEnabled(dialog.Control(id))) << id;
                EXPECT_TRUE(IsWindowVisible(dialog.Control(id))) << id;
                ClickControl(dialog.window, id);
                EXPECT_EQ(SendMessageW(dialog.Control(id), BM_GETCHECK, 0, 0), BST_UNCHECKED);
            }
            dialog.Close();
        });
    });
}

TEST(PrintDialog, TheStatusLineTellsWhatTheSettingsGave)
{
    RunWith("configuring", [](MainFrame& frame) {
        EXPECT_EQ(StatusAfter(frame, 1), set);
        EXPECT_EQ(StatusAfter(frame, 0), set) << "cancelled settings count as set";
        EXPECT_EQ(StatusAfter(frame, 77), set);
        EXPECT_EQ(StatusAfter(frame, 0xFFFFFFFF), unset);
        EXPECT_EQ(StatusAfter(frame, 0xFFFFFFFD), unset);
        EXPECT_EQ(Stored(frame, TEXT("FixtureCalls")), 5U);
        // Again and again, and the last result stands.
        Show(frame, [&](const Dialog& dialog) {
            EXPECT_EQ(dialog.Of(Status), u"First, configure your printer.");
            ClickControl(dialog.window, ConfigureButton);
            EXPECT_EQ(dialog.Of(Status), unset);
            Ask(frame, TEXT("FixtureResult"), 1);
            ClickControl(dialog.window, ConfigureButton);
            EXPECT_EQ(dialog.Of(Status), set);
            EXPECT_EQ(Stored(frame, TEXT("FixtureOwner")),
                      static_cast<u32>(reinterpret_cast<uintptr_t>(dialog.window)));
            dialog.Close();
        });
        EXPECT_EQ(Stored(frame, TEXT("FixtureCalls")), 7U);
    });
}

TEST(PrintDialog, APluginWithoutSettingsMightNotBeSet)
{
    RunWith("printing", [](MainFrame& frame) { EXPECT_EQ(StatusAfter(frame, 1), unset); });
}

TEST(PrintDialog, WordsOfThePluginComeAsABoxAndTheDialogIsThereBehindIt)
{
    RunWith("configuring", [](MainFrame& frame) {
        Ask(frame, TEXT("FixtureResult"), 2);
        ASSERT_EQ(frame.printPlugins->LoadByIndex(0, 0), Done);
        PrintArguments arguments = {frame.printPlugins, frame.window, frame.image};
        const JobRecord record = {JobPrint, &arguments};
        Texts boxes;
        OnModal([&](HWND window, bool box) {
            if (box) {
                boxes.push_back(BoxText(window));
                EndDialog(window, IDOK);
                return;
            }
            ClickControl(window, ConfigureButton);
            EXPECT_EQ(ControlText(window, Status), set);
            EXPECT_TRUE(IsWindowEnabled(window));
            ClickControl(window, IDCANCEL);
        });
        EXPECT_EQ(ShowPrintDialog(frame.window, frame.instance, &record), NothingDone);
        OnModal({});
        EXPECT_EQ(boxes, Texts{u"Out of paper"});
        frame.printPlugins->Unload();
    });
}

TEST(PrintDialog, EachWayOutHasItsResultAndNothingForcesTheSettings)
{
    RunWith("configuring", [](MainFrame& frame) {
        const struct {
            std::function<void(const Dialog&)> way;
            i32 result;
        } ways[] = {
            {[](const Dialog& dialog) { ClickControl(dialog.window, 1); }, Done},
            {[](const Dialog& dialog) { PostMessageW(dialog.window, WM_COMMAND, 1, 0); }, Done},
            {[](const Dialog& dialog) {
                 SetFocus(dialog.Control(1));
                 TypeKey(VK_RETURN);
             },
             Done},
            {[](const Dialog& dialog) { ClickControl(dialog.window, 2); }, NothingDone},
            {[](const Dialog& dialog) { PostMessageW(dialog.window, WM_COMMAND, 2, 0); },
             NothingDone},
            {[](const Dialog&) { TypeKey(VK_ESCAPE); }, NothingDone},
            {[](const Dialog& dialog) { PostMessageW(dialog.window, WM_CLOSE, 0, 0); },
             NothingDone},
        };
        for (size_t way = 0; way < std::size(ways); ++way)
            EXPECT_EQ(Show(frame,
                           [&](const Dialog& dialog) {
                               for (const WPARAM id : {0, 3, 1107, 1108, 1109})
                                   dialog.Command(id);
                               ways[way].way(dialog);
                           }),
                      ways[way].result)
                << way;
        EXPECT_FALSE(IsStored(frame, TEXT("FixtureCalls")));
    });
}

TEST(PrintDialog, TheKeysConfigureFirstAndThenPrint)
{
    RunWith("configuring", [](MainFrame& frame) {
        Ask(frame, TEXT("FixtureResult"), 1);
        EXPECT_EQ(Show(frame,
                       [&](const Dialog& dialog) {
                           Pump(20);
                           ExpectTabOrder(dialog, {ConfigureButton, 1, 2});
                           TypeKey(VK_TAB);
                           TypeKey(VK_RETURN);
                           EXPECT_EQ(dialog.Of(Status), set);
                           EXPECT_EQ(GetFocus(), dialog.Control(ConfigureButton));
                           TypeKey(VK_SPACE);
                           EXPECT_EQ(Stored(frame, TEXT("FixtureCalls")), 2U);
                           TypeKey(VK_TAB);
                           TypeKey(VK_RETURN);
                       }),
                  Done);
    });
}

TEST(PrintDialog, WithoutARecordOrItsTemplateThereIsNone)
{
    RegisterProgramResources();
    const JobRecord empty = {JobPrint, nullptr};
    PrintPlugin host;
    PrintArguments arguments = {&host, nullptr, nullptr};
    const JobRecord record = {JobPrint, &arguments};
    EXPECT_EQ(ShowPrintDialog(nullptr, GetModuleHandleW(nullptr), nullptr), BadArgument);
    EXPECT_EQ(ShowPrintDialog(nullptr, GetModuleHandleW(nullptr), &empty), BadArgument);
    const HMODULE other = LoadLibraryW(TEXT("ceshell.dll"));
    EXPECT_EQ(ShowPrintDialog(nullptr, other, &record), Failed);
    FreeLibrary(other);
}

TEST(PrintDialog, AnOwnerThatGoesEndsItWithoutPrinting)
{
    RegisterProgramResources();
    pentest::PenFrame frame;
    PrintPlugin host;
    PrintArguments arguments = {&host, frame.window, frame.image};
    const JobRecord record = {JobPrint, &arguments};
    OnModal([&](HWND, bool) { DestroyWindow(frame.window); });
    EXPECT_LT(ShowPrintDialog(frame.window, frame.instance, &record), Done);
    OnModal({});
}
