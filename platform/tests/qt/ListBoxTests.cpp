#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/TestWindow.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace tavrix::testing;
using tavrix::test::TestWindow;

namespace
{

constexpr int ListId = 1091;
constexpr UINT Usual = LBS_NOTIFY | WS_BORDER | WS_VSCROLL;

using Codes = std::vector<int>;

class ListBox : public ::testing::Test
{
protected:
    ListBox()
        : parent(
              [this](HWND, UINT message, WPARAM wParam, LPARAM lParam) -> std::optional<LRESULT> {
                  if (message != WM_COMMAND || reinterpret_cast<HWND>(lParam) == beside)
                      return std::nullopt;
                  EXPECT_EQ(reinterpret_cast<HWND>(lParam), list);
                  EXPECT_EQ(LOWORD(wParam), ListId);
                  codes.push_back(HIWORD(wParam));
                  if (handler)
                      handler(HIWORD(wParam));
                  return 0;
              })
    {
    }

    void Make(UINT style)
    {
        list = CreateWindowExW(0, TEXT("LISTBOX"), TEXT(""), WS_CHILD | WS_VISIBLE | style, 10, 20,
                               120, 74, parent.handle, reinterpret_cast<HMENU>(ListId), nullptr,
                               nullptr);
        ASSERT_NE(list, nullptr);
    }
    /// Rows a0, b1, a2, b3, ... and the keyboard.
    void MakeFilled(UINT style, int count = 20)
    {
        Make(style);
        for (int i = 0; i < count; ++i)
            Add(((i % 2 != 0 ? u"b" : u"a") + Wide(std::to_string(i))).c_str());
        SetFocus(list);
        Pump(20);
        codes.clear();
    }
    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0)
    {
        return SendMessageW(list, message, wParam, lParam);
    }
    LRESULT SendText(UINT message, WPARAM wParam, const WCHAR* text)
    {
        return Send(message, wParam, reinterpret_cast<LPARAM>(text));
    }
    LRESULT Add(const WCHAR* text) { return SendText(LB_ADDSTRING, 0, text); }
    LRESULT Chosen() { return Send(LB_GETCURSEL); }
    std::u16string Row(int row)
    {
        WCHAR text[40] = {};
        const LRESULT length = SendText(LB_GETTEXT, static_cast<WPARAM>(row), text);
        EXPECT_EQ(length, Send(LB_GETTEXTLEN, static_cast<WPARAM>(row)));
        return length >= 0 ? text : u"<none>";
    }
    Codes Taken()
    {
        Codes taken;
        taken.swap(codes);
        return taken;
    }
    /// Presses inside the control.
    void Click(int x, int y) { ClickScreen(10 + x, 20 + y); }

    Scope scope;
    HWND list = nullptr;
    HWND beside = nullptr;
    Codes codes;
    std::function<void(int)> handler;
    TestWindow parent;
};

} // namespace

TEST_F(ListBox, RowsAndTheirValuesGoInAndOut)
{
    Make(Usual);
    EXPECT_EQ(Add(TEXT("one")), 0);
    EXPECT_EQ(Add(TEXT("二")), 1);
    EXPECT_EQ(SendText(LB_INSERTSTRING, 1, TEXT("between")), 1);
    EXPECT_EQ(SendText(LB_INSERTSTRING, 7, TEXT("no")), LB_ERR);
    EXPECT_EQ(Row(0) + Row(1) + Row(2), u"onebetween二");
    EXPECT_EQ(Row(3), u"<none>");
    EXPECT_EQ(Send(LB_SETITEMDATA, 2, 77), TRUE);
    EXPECT_EQ(Send(LB_DELETESTRING, 0), 2);
    EXPECT_EQ(Send(LB_GETITEMDATA, 1), 77);
    EXPECT_EQ(Send(LB_DELETESTRING, 2), LB_ERR);
    EXPECT_EQ(SendText(LB_FINDSTRING, static_cast<WPARAM>(-1), TEXT("BET")), 0);
    Send(LB_RESETCONTENT);
    EXPECT_EQ(Send(LB_GETCOUNT), 0);
    EXPECT_TRUE(codes.empty());
}

TEST_F(ListBox, ASortedOneOrdersWhatIsAdded)
{
    Make(Usual | LBS_SORT);
    Add(TEXT("m"));
    EXPECT_EQ(Add(TEXT("B")), 0);
    EXPECT_EQ(Add(TEXT("z")), 2);
    EXPECT_EQ(Row(0) + Row(1) + Row(2), u"Bmz");
}

TEST_F(ListBox, TheProgramsChoiceTellsNobody)
{
    MakeFilled(Usual);
    EXPECT_EQ(Chosen(), LB_ERR);
    EXPECT_EQ(Send(LB_SETCURSEL, 3), 3);
    EXPECT_EQ(Chosen(), 3);
    EXPECT_EQ(SendText(LB_SELECTSTRING, static_cast<WPARAM>(-1), TEXT("b5")), 5);
    EXPECT_EQ(Chosen(), 5);
    EXPECT_EQ(Send(LB_SETCURSEL, static_cast<WPARAM>(-1)), LB_ERR);
    EXPECT_EQ(Chosen(), LB_ERR);
    EXPECT_EQ(Taken(), Codes{});
}

TEST_F(ListBox, KeysAndLettersChooseAndTell)
{
    MakeFilled(Usual);
    TypeKey(VK_DOWN);
    EXPECT_EQ(Chosen(), 0);
    EXPECT_EQ(Taken(), Codes{LBN_SELCHANGE});
    TypeKey(VK_UP);
    EXPECT_EQ(Taken(), Codes{}) << "there is none before";
    TypeKey(VK_END);
    EXPECT_EQ(Chosen(), 19);
    TypeKey(VK_HOME);
    TypeKey(VK_NEXT);
    EXPECT_EQ(Chosen(), 3) << "four whole rows show";
    TypeKey(VK_PRIOR);
    EXPECT_EQ(Chosen(), 0);
    TypeKey('B');
    EXPECT_EQ(Chosen(), 1);
    TypeKey('B');
    EXPECT_EQ(Chosen(), 3);
    Pump(1100);
    TypeKey('B');
    TypeKey('9');
    EXPECT_EQ(Chosen(), 9);
}

TEST_F(ListBox, AClickChoosesTheRowUnderIt)
{
    MakeFilled(Usual, 3);
    Click(20, 28);
    EXPECT_EQ(Chosen(), 1);
    EXPECT_EQ(Taken(), Codes{LBN_SELCHANGE});
    Click(20, 28);
    EXPECT_EQ(Taken(), Codes{});
    Click(20, 68);
    EXPECT_EQ(Chosen(), 1) << "there is no row";
    PressScreen(30, 30);
    MoveScreen(30, 60);
    EXPECT_EQ(Chosen(), 2);
    ReleaseScreen(30, 60);
    MoveScreen(30, 30);
    EXPECT_EQ(Chosen(), 2);
}

TEST_F(ListBox, ADoubleClickOnARowIsTold)
{
    MakeFilled(Usual, 2);
    DoubleClickScreen(30, 30);
    EXPECT_EQ(Taken(), (Codes{LBN_SELCHANGE, LBN_DBLCLK}));
    DoubleClickScreen(30, 80);
    EXPECT_EQ(Taken(), Codes{}) << "there is no row";
}

TEST_F(ListBox, TheFocusIsTold)
{
    MakeFilled(Usual);
    beside = CreateWindowExW(0, TEXT("BUTTON"), TEXT("b"), WS_CHILD | WS_VISIBLE, 300, 20, 50, 20,
                             parent.handle, nullptr, nullptr, nullptr);
    SetFocus(beside);
    EXPECT_EQ(Taken(), Codes{LBN_KILLFOCUS});
    SetFocus(list);
    EXPECT_EQ(Taken(), Codes{LBN_SETFOCUS});
}

TEST_F(ListBox, WithoutTheStyleNothingIsTold)
{
    MakeFilled(WS_BORDER);
    TypeKey(VK_DOWN);
    DoubleClickScreen(30, 48);
    EXPECT_EQ(Chosen(), 1);
    EXPECT_EQ(Taken(), Codes{});
}

TEST_F(ListBox, AChosenRowIsScrolledIntoSight)
{
    MakeFilled(Usual);
    Send(LB_SETCURSEL, 19);
    Pump(20);
    const uint32_t lit = WindowPixels(list).At(90, 60);
    EXPECT_NE(WindowPixels(list).At(90, 10), lit);
    Send(LB_SETCURSEL, 0);
    Pump(20);
    EXPECT_EQ(WindowPixels(list).At(90, 10), lit);
    EXPECT_NE(WindowPixels(list).At(90, 60), lit);
}

TEST_F(ListBox, TheParentMayEndTheControlInAnyHandler)
{
    for (const int last : {LBN_SELCHANGE, LBN_DBLCLK, LBN_SETFOCUS, LBN_KILLFOCUS}) {
        codes.clear();
        Make(Usual);
        Add(TEXT("row"));
        beside = CreateWindowExW(0, TEXT("BUTTON"), TEXT("b"), WS_CHILD | WS_VISIBLE, 300, 20, 50,
                                 20, parent.handle, nullptr, nullptr, nullptr);
        handler = [this, last](int code) {
            if (code == last)
                DestroyWindow(list);
        };
        DoubleClickScreen(30, 30);
        SetFocus(beside);
        Pump(20);
        EXPECT_FALSE(IsWindow(list));
        handler = nullptr;
        DestroyWindow(beside);
    }
}
