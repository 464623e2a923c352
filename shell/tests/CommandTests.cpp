// The dispatch of commands: the ranges of the plugins' entries and the way to the flows behind
// them.

#include "shell/tests/FlowTesting.h"

using namespace flowtest;

namespace
{

struct Call {
    std::string flow;
    u32 position;
    bool operator==(const Call&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Call& call)
{
    return out << call.flow << ' ' << call.position;
}

/// A frame without a window that notes which flows are started.
class NotingFrame : public MainFrame
{
public:
    void OpenAs(u32 position) override { calls.push_back({"open", position}); }
    void SaveAs(u32 position) override { calls.push_back({"save", position}); }
    void Print(u32 position) override { calls.push_back({"print", position}); }
    void Effect(u32 position) override { calls.push_back({"effect", position}); }
    void Adjust(u32 position) override { calls.push_back({"adjust", position}); }

    std::vector<Call> After(u32 id)
    {
        calls.clear();
        EXPECT_EQ(OnCommand(0, id, nullptr), 0);
        return calls;
    }

private:
    std::vector<Call> calls;
};

} // namespace

TEST(Commands, ARangeGivesItsFlowThePositionAndTwoEndsBelongToTwoFlows)
{
    RegisterProgramResources();
    NotingFrame frame;
    using Calls = std::vector<Call>;
    const struct {
        u32 id;
        Calls calls;
    } rows[] = {
        {40999, {}},
        {41000, {{"open", 0}}},
        {41057, {{"open", 57}}},
        {41099, {{"open", 99}}},
        {41100, {{"open", 100}, {"save", 0}}},
        {41101, {{"save", 1}}},
        {41199, {{"save", 99}}},
        {41200, {{"save", 100}, {"effect", 0}}},
        {41201, {{"effect", 1}}},
        {41299, {{"effect", 99}}},
        {41300, {{"adjust", 0}}},
        {41399, {{"adjust", 99}}},
        {41400, {}},
        {41450, {}},
        {41499, {}},
        {41500, {{"print", 0}}},
        {41501, {{"print", 0}}},
        {41502, {{"print", 1}}},
        {41599, {{"print", 98}}},
        // The hundredth plugin that prints has an entry and nothing behind it.
        {41600, {}},
        {41601, {}},
        {65535, {}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(frame.After(row.id), row.calls) << row.id;
}

TEST(Commands, EveryIdAnswersZeroWithoutAPictureAndLeavesItAbsent)
{
    InstallKinds();
    InstallFixture("inverting", "EFFECT");
    RunProgram(u"", [](MainFrame& frame) {
        OnModal([](HWND dialog, bool box) {
            if (box || GetDlgItem(dialog, ControlProgressBar) == nullptr)
                EndDialog(dialog, IDCANCEL);
        });
        for (u32 id = 0; id <= 0xFFFF; ++id)
            if (id != CommandExit && id != CommandLaunchViewer) {
                ASSERT_EQ(SendMessageW(frame.window, WM_COMMAND, id, 0), 0) << id;
                ASSERT_EQ(frame.imagePresent, 0u) << id;
            }
        OnModal(nullptr);
        EXPECT_TRUE(IsWindowEnabled(frame.window));
        EXPECT_EQ(frame.workImage, nullptr);
    });
}

TEST(Commands, TheNotifyCodeAndTheControlDoNotCount)
{
    InstallFixture("quick", "INPUT");
    RunProgram(u"", [](MainFrame& frame) {
        const LPARAM control = reinterpret_cast<LPARAM>(frame.commandBar);
        EXPECT_EQ(SendMessageW(frame.window, WM_COMMAND, MAKEWPARAM(40115, 7), control), 0);
        EXPECT_EQ(frame.zoomCommand, 40115u);
    });
}

TEST(Commands, SelectAllTakesTheWholePictureAndDeselectKeepsTheCorners)
{
    RunOnPicture([](MainFrame& frame) {
        frame.FetchMenus();
        EXPECT_TRUE(IsGray(frame.editMenu, 40074));
        Send(frame, 40056);
        EXPECT_EQ(frame.selectionActive, 1u);
        EXPECT_EQ(frame.selectionLeft, 0);
        EXPECT_EQ(frame.selectionTop, 0);
        EXPECT_EQ(frame.selectionRight, PictureWidth - 1);
        EXPECT_EQ(frame.selectionBottom, PictureHeight - 1);
        EXPECT_FALSE(IsGray(frame.editMenu, 40074));
        Send(frame, 40074);
        EXPECT_EQ(frame.selectionActive, 0u);
        EXPECT_EQ(frame.selectionRight, PictureWidth - 1);
        EXPECT_TRUE(IsGray(frame.editMenu, 40074));
    });
}

TEST(Commands, TheKeysOfSelectingReachIt)
{
    RunOnPicture({[](MainFrame&) { TypeKey('A', MK_CONTROL); },
                  [](MainFrame& frame) {
                      EXPECT_EQ(frame.selectionActive, 1u);
                      TypeKey('D', MK_CONTROL);
                  },
                  [](MainFrame& frame) { EXPECT_EQ(frame.selectionActive, 0u); }});
}

TEST(Commands, EachToolIsTakenByItsCommand)
{
    RunOnPicture([](MainFrame& frame) {
        const struct {
            u32 command;
            u32 tool;
        } rows[] = {{40105, 18}, {40119, 32}, {40126, 48}, {40129, 49}, {40161, 64}, {40125, 1}};
        for (const auto& row : rows) {
            Send(frame, row.command);
            EXPECT_EQ(frame.tool, row.tool) << row.command;
        }
    });
}

TEST(Commands, TheToolWindowsGoAndComeWithTheirMarks)
{
    RunOnPicture([](MainFrame& frame) {
        frame.FetchMenus();
        const struct {
            u32 command;
            u32 MainFrame::*shown;
            HWND MainFrame::*toolWindow;
        } rows[] = {{40118, &MainFrame::showToolbox, &MainFrame::toolbox},
                    {40153, &MainFrame::showColorbox, &MainFrame::colorbox}};
        for (const auto& row : rows)
            for (const u32 shown : {0u, 1u}) {
                Send(frame, row.command);
                EXPECT_EQ(frame.*row.shown, shown);
                EXPECT_EQ(IsWindowVisible(frame.*row.toolWindow) != FALSE, shown != 0);
                const UINT state = GetMenuState(frame.windowMenu, row.command, MF_BYCOMMAND);
                EXPECT_EQ((state & MF_CHECKED) != 0, shown != 0);
            }
    });
}

TEST(Commands, ClearMemoryGivesTheClipUpAndGraysItsEntries)
{
    RunOnPicture([](MainFrame& frame) {
        const auto before = tavrix::platform::CountHoldings();
        frame.clipAllocator = new HeapAllocator;
        frame.clipImage = new Raster(frame.clipAllocator);
        ASSERT_EQ(frame.clipImage->Create(20, 20, 24, nullptr, nullptr), Done);
        frame.UpdateClipMenus();
        EXPECT_FALSE(IsGray(frame.clearMenu, 40159));
        EXPECT_FALSE(IsGray(frame.pasteMenu, 40037));
        Send(frame, 40159);
        EXPECT_EQ(frame.clipImage, nullptr);
        EXPECT_EQ(frame.clipAllocator, nullptr);
        EXPECT_TRUE(IsGray(frame.clearMenu, 40159));
        EXPECT_TRUE(IsGray(frame.pasteMenu, 40037));
        EXPECT_EQ(tavrix::platform::CountHoldings().heapBytes, before.heapBytes);
        Send(frame, 40159); // nothing to give up
        EXPECT_EQ(frame.clipImage, nullptr);
    });
}

TEST(Commands, ReducingColoursHasAnEntryThatAPluginEnablesAndDoesNothing)
{
    InstallFixture("subtracting", "SUBTRACT");
    RunOnPicture([](MainFrame& frame) {
        frame.FetchMenus();
        EXPECT_FALSE(IsGray(frame.imageMenu, 40008));
        const Answering answering;
        const Picture before = ScreenPixels();
        const unsigned beeps = Beeps();
        Send(frame, 40008);
        EXPECT_EQ(Beeps(), beeps);
        EXPECT_TRUE(answering.headlines.empty());
        EXPECT_TRUE(answering.Boxes().empty());
        EXPECT_EQ(ScreenPixels().pixels, before.pixels);
    });
}

// Where no plugin stands behind a position, and where a picture is needed.
TEST(Commands, OpenAsSaveAsAndPrintBeepWhereTheyCannotGoOn)
{
    InstallKinds();
    const std::string file = MakeFile("a.quick");
    RunProgram(u"", [&](MainFrame& frame) {
        OnModal([](HWND dialog, bool box) {
            if (box || GetDlgItem(dialog, ControlProgressBar) == nullptr)
                EndDialog(dialog, 0);
        });
        const auto beeps = [&](u32 id) {
            const unsigned before = Beeps();
            Send(frame, id);
            return Beeps() - before;
        };
        EXPECT_EQ(beeps(41000), 0u);
        EXPECT_EQ(beeps(41001), 1u);
        EXPECT_EQ(beeps(41101), 1u);
        EXPECT_EQ(beeps(41100), 2u) << "the hundredth open, and a save without a picture";
        EXPECT_EQ(beeps(41500), 1u);
        EXPECT_EQ(beeps(41501), 1u);
        frame.OpenFile(DevicePath(file).c_str());
        ASSERT_EQ(frame.imagePresent, 1u);
        EXPECT_EQ(beeps(41101), 1u) << "no such plugin";
        EXPECT_EQ(beeps(41100), 1u) << "the hundredth open alone";
        EXPECT_EQ(beeps(41500), 0u);
        EXPECT_EQ(beeps(41501), 0u);
        EXPECT_EQ(beeps(41400), 0u);
    });
}

TEST(Commands, TheDialogsAboutThePictureAndTheProgramComeByTheirCommands)
{
    RunOnPicture([](MainFrame& frame) {
        const struct {
            u32 command;
            int control; // that no other of the dialogs has
        } rows[] = {{205, 1006}, {40060, 1085}, {207, 1007}, {40068, 1080}};
        int dialogs = 0;
        const auto* expected = rows;
        OnModal([&](HWND dialog, bool) {
            ++dialogs;
            for (const auto& row : rows)
                EXPECT_EQ(GetDlgItem(dialog, row.control) != nullptr, &row == expected)
                    << row.command;
            EXPECT_EQ(GetParent(dialog), frame.window);
            PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
            PostMessageW(dialog, WM_COMMAND, IDOK, 0);
        });
        for (const auto& row : rows) {
            expected = &row;
            Send(frame, row.command);
        }
        EXPECT_EQ(dialogs, 4);
        OnModal(nullptr);
    });
}
