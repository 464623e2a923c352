// The tree under a person's hands.
#include "platform/tests/qt/TreeFixture.h"

#include <algorithm>

using namespace tavrix::test;
using namespace tavrix::testing;

namespace
{

constexpr UINT ByMouse = 1;
constexpr UINT ByKeyboard = 2;
constexpr int Plus = 0xBB;
constexpr int Minus = 0xBD;

class TreeInput : public ColoredTreeTest
{
protected:
    /// Types the key and answers the selected item's text.
    std::u16string Type(int key, int modifiers = 0)
    {
        TypeKey(key, modifiers);
        Pump(5);
        return Selected() != nullptr ? Text(Selected()) : u"none";
    }
};

// A procedure put before the tree's own.
WNDPROC treeProcedure = nullptr;
std::vector<UINT> passed;
UINT swallowed = 0;

LRESULT CALLBACK FirstProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    passed.push_back(message);
    if (message == swallowed)
        return 0;
    if (message == WM_KEYDOWN && wParam == VK_UP)
        wParam = VK_DOWN;
    return CallWindowProcW(treeProcedure, window, message, wParam, lParam);
}

bool Passed(UINT message)
{
    return std::find(passed.begin(), passed.end(), message) != passed.end();
}

} // namespace

TEST_F(TreeInput, AClickOnAnItemSelectsIt)
{
    Expand(a);
    ClickColor(Green);
    EXPECT_EQ(Selected(), a1);
    ASSERT_EQ(SelectionNotices(), 1u);
    EXPECT_EQ(notices.back().selection.action, ByMouse);
    EXPECT_EQ(notices.back().selection.itemOld.hItem, nullptr);
    EXPECT_EQ(notices.back().selection.itemNew.hItem, a1);
    ClickColor(Yellow);
    EXPECT_EQ(notices.back().selection.itemOld.hItem, a1);
    EXPECT_EQ(notices.back().selection.itemOld.lParam, 11);
    EXPECT_EQ(notices.back().selection.itemNew.lParam, 2);
    EXPECT_EQ(SelectionNotices(), 2u);
    ClickColor(Yellow);
    EXPECT_EQ(SelectionNotices(), 2u);
    EXPECT_EQ(Selected(), b);
}

TEST_F(TreeInput, AClickOnTheTextSelectsAndOneBesideItDoesNot)
{
    const auto red = Find(Red);
    ASSERT_TRUE(red);
    const int middle = (red->top + red->bottom) / 2;
    POINT at = OnScreen(red->right + 90, middle);
    ClickScreen(at.x, at.y);
    Pump(5);
    EXPECT_EQ(Selected(), nullptr);
    at = OnScreen(red->right + 6, middle);
    ClickScreen(at.x, at.y);
    Pump(5);
    EXPECT_EQ(Selected(), a);
    const auto yellow = Find(Yellow);
    at = OnScreen(yellow->left + 5, yellow->bottom + 30);
    ClickScreen(at.x, at.y);
    Pump(5);
    EXPECT_EQ(Selected(), a) << "below the last item";
}

TEST_F(TreeInput, TheExpanderOpensAndClosesAndSelectsNothing)
{
    ClickExpander(Red);
    EXPECT_TRUE(IsExpanded(a));
    EXPECT_TRUE(Find(Green));
    EXPECT_EQ(Selected(), nullptr);
    ClickExpander(Red);
    EXPECT_FALSE(IsExpanded(a));
    EXPECT_FALSE(Find(Green));
    EXPECT_EQ(SelectionNotices(), 0u);
    Expand(a);
    ClickExpander(Green);
    EXPECT_EQ(Selected(), nullptr) << "an item without children has none";
}

TEST_F(TreeInput, ClosingOverTheSelectionByMouseMovesIt)
{
    Expand(a);
    ClickColor(Blue);
    ClickExpander(Red);
    EXPECT_EQ(Selected(), a);
    EXPECT_EQ(notices.back().selection.action, ByMouse);
}

TEST_F(TreeInput, ADoubleClickOpensAndCloses)
{
    DoubleClickColor(Red);
    EXPECT_TRUE(IsExpanded(a));
    EXPECT_EQ(Selected(), a);
    EXPECT_EQ(notices.back().header.code, NM_DBLCLK);
    DoubleClickColor(Red);
    EXPECT_FALSE(IsExpanded(a));
    EXPECT_EQ(SelectionNotices(), 1u);
}

TEST_F(TreeInput, AParentThatAnswersAClickKeepsItToItself)
{
    onNotice = [](const Notice& notice) {
        return notice.header.code == NM_CLICK || notice.header.code == NM_DBLCLK;
    };
    ClickColor(Red);
    EXPECT_EQ(Selected(), nullptr);
    ClickExpander(Red);
    DoubleClickColor(Red);
    EXPECT_FALSE(IsExpanded(a));
    EXPECT_EQ(notices.size(), 4u);
    onNotice = [](const Notice&) { return 0; };
    ClickColor(Red);
    EXPECT_EQ(Selected(), a);
}

TEST_F(TreeInput, AClickGivesTheTreeTheFocus)
{
    SetFocus(GetDlgItem(dialog, 1100));
    Pump(5);
    ClickColor(Red);
    EXPECT_EQ(GetFocus(), tree);
    SetFocus(GetDlgItem(dialog, 1100));
    SendMessageW(tree, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(2, 2));
    EXPECT_EQ(GetFocus(), tree) << "by the message alone too";
}

TEST_F(TreeInput, ArrowsWalkTheRowsInView)
{
    EXPECT_EQ(Type(VK_DOWN), u"a");
    EXPECT_EQ(notices.back().selection.action, ByKeyboard);
    EXPECT_EQ(Type(VK_DOWN), u"b") << "the children of a are not in view";
    EXPECT_EQ(Type(VK_DOWN), u"b");
    EXPECT_EQ(Type(VK_UP), u"a");
    EXPECT_EQ(Type(VK_UP), u"a");
    Expand(a);
    EXPECT_EQ(Type(VK_DOWN), u"a1");
    EXPECT_EQ(SelectionNotices(), 4u);
}

TEST_F(TreeInput, RightOpensAndGoesInAndLeftGoesOutAndCloses)
{
    Select(a);
    EXPECT_EQ(Type(VK_RIGHT), u"a");
    EXPECT_TRUE(IsExpanded(a));
    EXPECT_EQ(Type(VK_RIGHT), u"a1");
    EXPECT_EQ(Type(VK_RIGHT), u"a1") << "nothing below it";
    EXPECT_EQ(Type(VK_LEFT), u"a");
    EXPECT_TRUE(IsExpanded(a));
    EXPECT_EQ(Type(VK_LEFT), u"a");
    EXPECT_FALSE(IsExpanded(a));
    EXPECT_EQ(Type(VK_LEFT), u"a") << "the first level has nothing above";
    Select(a2);
    EXPECT_EQ(Type(VK_BACK), u"a");
    EXPECT_TRUE(IsExpanded(a));
}

TEST_F(TreeInput, PlusOpensAndMinusCloses)
{
    Select(a);
    Type(Minus);
    EXPECT_FALSE(IsExpanded(a));
    Type(Plus);
    EXPECT_TRUE(IsExpanded(a));
    Type(Plus);
    EXPECT_TRUE(IsExpanded(a));
    Type(Minus);
    EXPECT_FALSE(IsExpanded(a));
    EXPECT_EQ(SelectionNotices(), 1u);
    SendMessageW(tree, WM_KEYDOWN, 0x6B, 1);
    EXPECT_TRUE(IsExpanded(a)) << "the keypad's";
    SendMessageW(tree, WM_KEYDOWN, 0x6D, 1);
    EXPECT_FALSE(IsExpanded(a));
}

TEST_F(TreeInput, TheStarOpensEverythingBelow)
{
    const HTREEITEM deep = Add(a2, u"deep", 0, 4);
    Select(a);
    SendMessageW(tree, WM_KEYDOWN, 0x6A, 1);
    EXPECT_TRUE(IsExpanded(a));
    EXPECT_TRUE(IsExpanded(a2));
    EXPECT_FALSE(IsExpanded(a1));
    EXPECT_FALSE(IsExpanded(deep));
    EXPECT_FALSE(IsExpanded(b));
}

TEST_F(TreeInput, HomeAndEndAndPagesReachFarAndScroll)
{
    HTREEITEM last = nullptr;
    for (int i = 0; i < 3000; ++i)
        last = Add(b, u"x", i, 4);
    Add(b, u"bottom", 0, 2);
    Expand(b);
    EXPECT_EQ(Type(VK_END), u"bottom");
    EXPECT_TRUE(Find(Blue)) << "scrolled into view";
    EXPECT_FALSE(Find(Red));
    EXPECT_EQ(Type(VK_HOME), u"a");
    EXPECT_TRUE(Find(Red));
    EXPECT_FALSE(Find(Blue));
    // A page is as many rows as are whole in view, one of which stays.
    const auto red = Find(Red);
    const auto yellow = Find(Yellow);
    RECT client{};
    GetClientRect(tree, &client);
    const int page = Height(client) / (yellow->top - red->top);
    ASSERT_GT(page, 3);
    Type(VK_NEXT);
    HTREEITEM item = Next(TVGN_CHILD, b); // row 2
    for (int row = 2; row < page - 1; ++row)
        item = Next(TVGN_NEXT, item);
    EXPECT_EQ(Selected(), item);
    EXPECT_TRUE(Find(Red)) << "nothing had to scroll";
    Type(VK_NEXT);
    EXPECT_FALSE(Find(Red));
    Type(VK_PRIOR);
    EXPECT_EQ(Selected(), item);
    EXPECT_EQ(Type(VK_PRIOR), u"a");
    EXPECT_NE(last, nullptr);
}

TEST_F(TreeInput, KeysInAnEmptyTreeDoNothing)
{
    Send(TVM_DELETEITEM, 0, TVI_ROOT);
    for (const int key : {VK_UP, VK_DOWN, VK_LEFT, VK_RIGHT, VK_HOME, VK_END, VK_PRIOR, VK_NEXT,
                          Plus, Minus, VK_BACK})
        EXPECT_EQ(Type(key), u"none");
    EXPECT_TRUE(notices.empty());
}

TEST_F(TreeInput, TabGoesThroughTheTreeInItsOrder)
{
    SetFocus(GetDlgItem(dialog, 1100));
    Pump(5);
    TypeKey(VK_TAB);
    EXPECT_EQ(GetFocus(), tree);
    TypeKey(VK_TAB);
    EXPECT_EQ(GetDlgCtrlID(GetFocus()), 1102);
    TypeKey(VK_TAB, MK_SHIFT);
    EXPECT_EQ(GetFocus(), tree);
    EXPECT_EQ(Selected(), nullptr) << "coming by selects nothing";
}

TEST_F(TreeInput, ADisabledTreeTakesNoInputAndLooksIt)
{
    const Picture before = WindowPixels(tree);
    EnableWindow(tree, FALSE);
    Pump(10);
    EXPECT_NE(before.pixels, WindowPixels(tree).pixels);
    ClickColor(Red);
    SendMessageW(dialog, WM_NULL, 0, 0);
    EXPECT_EQ(Selected(), nullptr);
    EXPECT_TRUE(notices.empty());
    EXPECT_TRUE(Select(b)) << "the program still may";
    EnableWindow(tree, TRUE);
    ClickColor(Red);
    EXPECT_EQ(Selected(), a);
}

TEST_F(TreeInput, TheParentMayDestroyTheTreeUnderAClick)
{
    onNotice = [this](const Notice& notice) {
        if (notice.header.code == TVN_SELCHANGEDW)
            DestroyWindow(tree);
        return 0;
    };
    ClickColor(Red);
    Pump(20);
    EXPECT_FALSE(IsWindow(tree));
}

TEST_F(TreeInput, TheParentMayDestroyTheTreeUnderTheFirstWordOfAClick)
{
    onNotice = [this](const Notice&) {
        DestroyWindow(dialog);
        return 0;
    };
    DoubleClickColor(Red);
    Pump(20);
    EXPECT_FALSE(IsWindow(tree));
    EXPECT_EQ(notices.size(), 1u);
}

TEST_F(TreeInput, TheParentMayDestroyTheTreeUnderAKey)
{
    onNotice = [this](const Notice&) {
        DestroyWindow(tree);
        return 0;
    };
    TypeKey(VK_DOWN);
    Pump(20);
    EXPECT_FALSE(IsWindow(tree));
}

TEST_F(TreeInput, InputGoesThroughTheProceduresPutBeforeTheTreesOwn)
{
    passed.clear();
    swallowed = 0;
    treeProcedure = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(tree, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(FirstProcedure)));
    ClickColor(Red);
    EXPECT_TRUE(Passed(WM_LBUTTONDOWN));
    EXPECT_TRUE(Passed(WM_LBUTTONUP));
    EXPECT_EQ(Selected(), a);
    EXPECT_EQ(Type(VK_UP), u"b") << "changed on its way";
    EXPECT_TRUE(Passed(WM_KEYDOWN));
    EXPECT_TRUE(Passed(WM_KEYUP));
    swallowed = WM_LBUTTONDOWN;
    ClickColor(Red);
    EXPECT_EQ(Selected(), b) << "kept back";
    swallowed = WM_CHAR;
    Type(Plus);
    EXPECT_TRUE(Passed(WM_CHAR));
    EXPECT_FALSE(IsExpanded(b));
    swallowed = 0;
}
