#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/ControlResources.h"

#include <commctrl.h>
#include <gtest/gtest.h>

#include <set>
#include <utility>
#include <vector>

using namespace tavrix::testing;

namespace
{

constexpr UINT GetCheck = 0x00F0;
constexpr UINT SetCheck = 0x00F1;
constexpr UINT Click = 0x00F5;

std::vector<std::pair<int, int>> commands; // id, notify code
std::vector<LRESULT> states;               // of the control, when it told BN_CLICKED

INT_PTR CALLBACK Procedure(HWND, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message != WM_COMMAND)
        return message == WM_INITDIALOG;
    commands.emplace_back(LOWORD(wParam), HIWORD(wParam));
    if (HIWORD(wParam) == BN_CLICKED)
        states.push_back(SendMessageW(reinterpret_cast<HWND>(lParam), BM_GETSTATE, 0, 0));
    return TRUE;
}

class Controls : public ::testing::Test
{
protected:
    Controls()
    {
        commands.clear();
        states.clear();
        dialog = CreateDialogIndirectParamW(ControlResources(), DialogResource(200), nullptr,
                                            Procedure, 0);
        ShowWindow(dialog, SW_SHOW);
        Pump(20);
    }
    ~Controls() override { DestroyWindow(dialog); }

    LRESULT Send(int id, UINT message, WPARAM wParam = 0, LPARAM lParam = 0)
    {
        return SendDlgItemMessageW(dialog, id, message, wParam, lParam);
    }

    /// How many different colours the control shows: more than one where there is text.
    size_t Colors(int id)
    {
        Pump(20);
        const Picture picture = WindowPixels(GetDlgItem(dialog, id));
        return std::set<uint32_t>(picture.pixels.begin(), picture.pixels.end()).size();
    }

    /// The leftmost and rightmost column that is not of the ground's colour.
    std::pair<int, int> Extent(int id)
    {
        Pump(20);
        const Picture picture = WindowPixels(GetDlgItem(dialog, id));
        int left = picture.width;
        int right = -1;
        for (int y = 0; y < picture.height; ++y) {
            for (int x = 0; x < picture.width; ++x) {
                if (picture.At(x, y) != picture.At(0, 0)) {
                    left = std::min(left, x);
                    right = std::max(right, x);
                }
            }
        }
        return {left, picture.width - 1 - right};
    }

    Scope scope;
    HWND dialog = nullptr;
};

} // namespace

TEST_F(Controls, TextsGoThroughTheMessagesInBothDirections)
{
    EXPECT_EQ(ControlText(dialog, 1003), u"右寄せ");
    EXPECT_TRUE(SetDlgItemTextW(dialog, 1001, TEXT("新しい\r\ntext")));
    EXPECT_EQ(ControlText(dialog, 1001), u"新しい\r\ntext");
    EXPECT_EQ(Send(1001, WM_GETTEXTLENGTH), 9);
    WCHAR cut[4];
    EXPECT_EQ(GetDlgItemTextW(dialog, 1001, cut, 4), 3u);
    EXPECT_EQ(std::u16string(cut), u"新しい");
    EXPECT_TRUE(SetDlgItemTextW(dialog, 1001, nullptr));
    EXPECT_EQ(ControlText(dialog, 1001), u"");
}

TEST_F(Controls, JapaneseTextsShow)
{
    EXPECT_GT(Colors(1003), 1u);
    SetDlgItemTextW(dialog, 1003, TEXT(""));
    EXPECT_EQ(Colors(1003), 1u);
    SetDlgItemTextW(dialog, 1003, TEXT("画像を読み込んでいます..."));
    EXPECT_GT(Colors(1003), 1u);
}

TEST_F(Controls, StaticTextStandsLeftCenteredOrRight)
{
    const auto left = Extent(1001);
    const auto center = Extent(1002);
    const auto right = Extent(1003);
    EXPECT_LE(left.first, 2);
    EXPECT_GT(left.second, 10);
    EXPECT_LE(std::abs(center.first - center.second), 2);
    EXPECT_GT(center.first, 5);
    EXPECT_LE(right.second, 2);
    EXPECT_GT(right.first, 10);
}

TEST_F(Controls, HiddenAndDisabledStylesAreHonoured)
{
    EXPECT_FALSE(IsWindowVisible(GetDlgItem(dialog, 1030)));
    const HWND progress =
        CreateDialogIndirectParamW(ControlResources(), DialogResource(105), nullptr, Procedure, 0);
    ShowWindow(progress, SW_SHOW);
    Pump(20);
    const HWND abort = GetDlgItem(progress, 3);
    EXPECT_FALSE(IsWindowEnabled(abort));
    ClickControl(progress, 3);
    Pump(20);
    EXPECT_TRUE(commands.empty());
    EnableWindow(abort, TRUE);
    ClickControl(progress, 3);
    EXPECT_TRUE(PumpUntil([] { return !commands.empty(); }));
    EXPECT_EQ(commands, (std::vector<std::pair<int, int>>{{3, BN_CLICKED}}));
    DestroyWindow(progress);
}

TEST_F(Controls, AClickIsSentNotPosted)
{
    Send(1040, Click);
    EXPECT_EQ(commands, (std::vector<std::pair<int, int>>{{1040, BN_CLICKED}}));
}

TEST_F(Controls, AnAutomaticCheckBoxTogglesByAClickAndNotifiesOnlyThen)
{
    EXPECT_EQ(Send(1010, GetCheck), 0);
    ClickControl(dialog, 1010);
    Pump(20);
    EXPECT_EQ(Send(1010, GetCheck), 1);
    EXPECT_EQ(Send(1010, BM_GETSTATE), 9) << "checked and focused";
    EXPECT_EQ(commands.size(), 1u);
    Send(1010, SetCheck, 0);
    EXPECT_EQ(Send(1010, GetCheck), 0);
    EXPECT_EQ(commands.size(), 1u);
}

TEST_F(Controls, ACheckBoxAndARadioButtonTakeAPressBesideTheirText)
{
    for (const int id : {1010, 1021}) {
        const HWND control = GetDlgItem(dialog, id);
        MoveWindow(control, 10, 10, 200, 20, FALSE);
        BringWindowToTop(control);
        RECT area;
        GetWindowRect(control, &area);
        ClickScreen(area.right - 3, area.bottom - 3);
        Pump(20);
        EXPECT_EQ(Send(id, GetCheck), 1) << id;
    }
}

TEST_F(Controls, APlainCheckBoxChangesOnlyByTheProgram)
{
    ClickControl(dialog, 1011);
    Pump(20);
    EXPECT_EQ(commands.size(), 1u);
    EXPECT_EQ(Send(1011, GetCheck), 0);
    Send(1011, SetCheck, 1);
    EXPECT_EQ(Send(1011, GetCheck), 1);
    ClickControl(dialog, 1011);
    Pump(20);
    EXPECT_EQ(Send(1011, GetCheck), 1);
}

TEST_F(Controls, RadioButtonsExcludeEachOtherOnlyInsideTheirGroup)
{
    Send(1023, SetCheck, 1); // of the next group
    Send(1021, Click);
    EXPECT_EQ(Send(1021, GetCheck), 1);
    Send(1022, Click);
    EXPECT_EQ(Send(1021, GetCheck), 0);
    EXPECT_EQ(Send(1022, GetCheck), 1);
    EXPECT_EQ(Send(1023, GetCheck), 1);
    Send(1022, Click);
    EXPECT_EQ(Send(1022, GetCheck), 1) << "a second click does not clear it";
}

TEST_F(Controls, ArrowsWalkAGroupOfRadioButtonsAndCheckThem)
{
    SetFocus(GetDlgItem(dialog, 1021));
    TypeKey(VK_DOWN);
    EXPECT_EQ(GetDlgCtrlID(GetFocus()), 1022);
    EXPECT_EQ(Send(1022, GetCheck), 1);
    TypeKey(VK_DOWN);
    EXPECT_EQ(GetDlgCtrlID(GetFocus()), 1021) << "around, inside the group";
}

TEST_F(Controls, AGroupBoxTakesNoClickFromTheButtonsThatItEncloses)
{
    ClickControl(dialog, 1021);
    Pump(20);
    EXPECT_EQ(Send(1021, GetCheck), 1);
}

TEST(ProgressBar, AnswersThePositionBeforeAndTheRangeBefore)
{
    const Scope scope;
    const HWND dialog =
        CreateDialogIndirectParamW(ControlResources(), DialogResource(105), nullptr, Procedure, 0);
    const HWND bar = GetDlgItem(dialog, 1000);
    EXPECT_EQ(SendMessageW(bar, PBM_SETRANGE, 0, 19660800), 100 << 16);
    EXPECT_EQ(SendMessageW(bar, PBM_SETPOS, 150, 0), 0);
    EXPECT_EQ(SendMessageW(bar, PBM_SETPOS, 400, 0), 150);
    EXPECT_EQ(SendMessageW(bar, PBM_GETPOS, 0, 0), 300) << "never beyond the range";
    EXPECT_EQ(SendMessageW(bar, PBM_SETRANGE, 0, MAKELPARAM(10, 200)), 300 << 16);
    EXPECT_EQ(SendMessageW(bar, PBM_GETPOS, 0, 0), 200);
    EXPECT_EQ(SendMessageW(bar, PBM_SETPOS, 5, 0), 200);
    EXPECT_EQ(SendMessageW(bar, PBM_GETPOS, 0, 0), 10);
    DestroyWindow(dialog);
}

TEST(ProgressBar, HalfThePositionsFillHalfTheBar)
{
    const Scope scope;
    const HWND dialog =
        CreateDialogIndirectParamW(ControlResources(), DialogResource(105), nullptr, Procedure, 0);
    ShowWindow(dialog, SW_SHOW);
    Pump(20);
    const HWND bar = GetDlgItem(dialog, 1000);
    SendMessageW(bar, PBM_SETRANGE, 0, 19660800);
    SendMessageW(bar, PBM_SETPOS, 150, 0);
    const Picture picture = WindowPixels(bar);
    int filled = 0;
    for (int x = 1; x < picture.width - 1; ++x)
        filled += picture.At(x, picture.height / 2) != 0xFFFFFF;
    EXPECT_EQ(filled, (picture.width - 2) / 2);
    DestroyWindow(dialog);
}

TEST(CommonControls, InitialisingNeedsAWholeRecord)
{
    INITCOMMONCONTROLSEX record{sizeof(record), ICC_TREEVIEW_CLASSES};
    EXPECT_TRUE(InitCommonControlsEx(&record));
    record.dwSize = sizeof(record) - 1;
    EXPECT_FALSE(InitCommonControlsEx(&record));
    EXPECT_FALSE(InitCommonControlsEx(nullptr));
}

TEST_F(Controls, ACheckBoxHasTheFocusAndIsNotPushedWhenItTellsItsClick)
{
    SetFocus(GetDlgItem(dialog, 1040));
    EXPECT_EQ(Send(1010, BM_GETSTATE), BST_UNCHECKED);
    ClickControl(dialog, 1010);
    ClickControl(dialog, 1010);
    TypeKey(VK_SPACE);
    TypeKey(VK_SPACE);
    Pump(20);
    EXPECT_EQ(states, (std::vector<LRESULT>{9, 8, 9, 8}));
    // One that the program marks by itself has not changed by then.
    states.clear();
    ClickControl(dialog, 1011);
    Send(1011, SetCheck, BST_CHECKED);
    TypeKey(VK_SPACE);
    Pump(20);
    EXPECT_EQ(states, (std::vector<LRESULT>{8, 9}));
}

TEST_F(Controls, AButtonIsPushedWhileThePointerOrTheSpaceBarIsDown)
{
    RECT place{};
    GetWindowRect(GetDlgItem(dialog, 1010), &place);
    const int x = (place.left + place.right) / 2;
    const int y = (place.top + place.bottom) / 2;
    PressScreen(x, y);
    Pump(20);
    EXPECT_EQ(Send(1010, BM_GETSTATE), BST_PUSHED | BST_FOCUS);
    ReleaseScreen(x, y);
    Pump(20);
    EXPECT_EQ(Send(1010, BM_GETSTATE), BST_CHECKED | BST_FOCUS);
    HoldKey(VK_SPACE, true);
    Pump(20);
    EXPECT_EQ(Send(1010, BM_GETSTATE), BST_CHECKED | BST_PUSHED | BST_FOCUS);
    HoldKey(VK_SPACE, false);
    Pump(20);
    EXPECT_EQ(Send(1010, BM_GETSTATE), BST_FOCUS);
    EXPECT_EQ(states, (std::vector<LRESULT>{9, 8}));
    SetFocus(GetDlgItem(dialog, 1040));
    EXPECT_EQ(Send(1010, BM_GETSTATE), BST_UNCHECKED);
    EXPECT_EQ(Send(1040, BM_GETSTATE), BST_FOCUS);
}
