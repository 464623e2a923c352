// How the tree looks, and what of it is in view.
#include "platform/tests/qt/SolidIcons.h"
#include "platform/tests/qt/TreeFixture.h"

using namespace tavrix::test;
using namespace tavrix::testing;

namespace
{

class TreePicture : public ColoredTreeTest
{
protected:
    TreePicture() { GetClientRect(tree, &whole); }

    bool HasSideBar()
    {
        RECT client{};
        GetClientRect(tree, &client);
        return Width(client) < Width(whole);
    }
    bool HasBottomBar()
    {
        RECT client{};
        GetClientRect(tree, &client);
        return Height(client) < Height(whole);
    }
    /// Whether the tree comes to have just these bars.
    bool ComesToHave(bool side, bool bottom)
    {
        return PumpUntil([=, this] { return HasSideBar() == side && HasBottomBar() == bottom; },
                         2000);
    }

    RECT whole{}; // the client area without bars
};
using TreeBeforeItShows = TreeTest;

size_t Different(const Picture& one, const Picture& other)
{
    size_t count = 0;
    for (size_t i = 0; i < one.pixels.size() && i < other.pixels.size(); ++i)
        count += one.pixels[i] != other.pixels[i];
    return count;
}

} // namespace

TEST_F(TreePicture, ImagesAreDrawnInTheirOwnSizeBeforeTheText)
{
    const auto red = Find(Red);
    const auto yellow = Find(Yellow);
    ASSERT_TRUE(red && yellow);
    for (const RECT& place : {*red, *yellow}) {
        EXPECT_EQ(Width(place), 16);
        EXPECT_EQ(Height(place), 16);
    }
    EXPECT_EQ(red->left, yellow->left);
    EXPECT_GE(yellow->top, red->bottom);
    const int row = yellow->top - red->top;
    EXPECT_EQ(red->top - 1, (row - 16) / 2) << "in the middle of its row, below the border";
    EXPECT_FALSE(Find(Green)) << "the children are not shown yet";
    const Picture picture = WindowPixels(tree);
    const uint32_t ground = picture.At(picture.width - 5, picture.height - 5);
    EXPECT_EQ(ground, 0xFFFFFFu);
    int ink = 0;
    for (int y = red->top; y < red->bottom; ++y)
        for (int x = red->right; x < red->right + 20; ++x)
            ink += picture.At(x, y) != ground;
    EXPECT_GT(ink, 10) << "the letter behind the image";
}

TEST_F(TreePicture, ChildrenStandIndentedBelowTheirParent)
{
    Expand(a);
    const auto red = Find(Red);
    const auto green = Find(Green);
    const auto blue = Find(Blue);
    const auto yellow = Find(Yellow);
    ASSERT_TRUE(red && green && blue && yellow);
    EXPECT_GT(green->left, red->left);
    EXPECT_EQ(green->left, blue->left);
    const LONG row = green->top - red->top;
    EXPECT_GE(row, 16);
    EXPECT_EQ(blue->top - green->top, row);
    EXPECT_EQ(yellow->top - blue->top, row);
}

TEST_F(TreePicture, AHiddenTreeIsNotSeenAndNotReached)
{
    const auto red = Find(Red);
    const POINT at = OnScreen(red->left + 8, red->top + 8);
    const Picture before = ScreenPixels();
    EXPECT_EQ(before.At(at.x, at.y), Red);
    ShowWindow(tree, SW_HIDE);
    Pump(10);
    EXPECT_NE(ScreenPixels().At(at.x, at.y), Red);
    ClickScreen(at.x, at.y);
    Pump(5);
    EXPECT_EQ(Selected(), nullptr);
    ShowWindow(tree, SW_SHOW);
    Pump(10);
    EXPECT_EQ(ScreenPixels().At(at.x, at.y), Red);
}

TEST_F(TreePicture, TheSelectedItemShowsItsSelectedImage)
{
    TVITEMW set{};
    set.mask = TVIF_SELECTEDIMAGE;
    set.hItem = a;
    set.iSelectedImage = 1;
    Send(TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&set));
    EXPECT_TRUE(Find(Red));
    Select(a);
    EXPECT_FALSE(Find(Red));
    EXPECT_TRUE(Find(Green));
    Select(b);
    EXPECT_TRUE(Find(Red));
}

TEST_F(TreePicture, AReplacedPictureShowsAndADestroyedListShowsNone)
{
    const HICON icon = SolidIcon(0x00FFFF);
    ImageList_ReplaceIcon(images, 0, icon);
    DestroyIcon(icon);
    InvalidateRect(tree, nullptr, TRUE);
    EXPECT_TRUE(Find(0x00FFFF));
    EXPECT_FALSE(Find(Red));
    EXPECT_TRUE(ImageList_Destroy(images));
    InvalidateRect(tree, nullptr, TRUE);
    EXPECT_FALSE(Find(0x00FFFF));
    EXPECT_FALSE(Find(Yellow));
    images = nullptr;
    Select(b);
    EXPECT_EQ(Text(Selected()), u"b");
}

TEST_F(TreePicture, WithoutAnImageListTheTextStandsWhereTheImageWas)
{
    const auto red = Find(Red);
    Send(TVM_SETIMAGELIST, TVSIL_NORMAL, LPARAM{0});
    Pump(10);
    const Picture picture = WindowPixels(tree);
    int ink = 0;
    for (int y = 2; y < 18; ++y)
        for (int x = red->left; x < red->right; ++x)
            ink += picture.At(x, y) != 0xFFFFFF;
    EXPECT_GT(ink, 10);
}

TEST_F(TreePicture, TextsShowJapaneseTooAndFollowTheirItem)
{
    WCHAR text[] = TEXT("画像プラグイン");
    const Picture before = WindowPixels(tree);
    TVITEMW set{};
    set.mask = TVIF_TEXT;
    set.hItem = b;
    set.pszText = text;
    Send(TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&set));
    const auto yellow = Find(Yellow);
    const Picture after = WindowPixels(tree);
    EXPECT_GT(Different(before, after), 100u);
    int columns = 0;
    for (int x = yellow->right; x < after.width - 1; ++x) {
        bool ink = false;
        for (int y = yellow->top; y < yellow->bottom; ++y)
            ink = ink || after.At(x, y) != 0xFFFFFF;
        columns += ink;
    }
    EXPECT_GT(columns, 7 * 6) << "seven characters of 12 pixels, less their gaps";
    EXPECT_LT(columns, 7 * 12 + 8);
}

TEST_F(TreePicture, TheSelectionIsMarkedAndWithoutTheFocusAsTheStyleTells)
{
    const auto marked = [this] {
        Pump(10);
        const auto red = Find(Red);
        return WindowPixels(tree).At(red->right + 3, red->top + 1);
    };
    EXPECT_EQ(marked(), 0xFFFFFFu);
    Select(a);
    const uint32_t active = marked();
    EXPECT_NE(active, 0xFFFFFFu);
    SetFocus(GetDlgItem(dialog, 1100));
    const uint32_t always = marked();
    EXPECT_NE(always, 0xFFFFFFu);
    EXPECT_NE(always, active);
    SetTreeStyle(TVS_HASBUTTONS | TVS_LINESATROOT);
    EXPECT_EQ(marked(), 0xFFFFFFu);
    SetFocus(tree);
    EXPECT_EQ(marked(), active);
}

TEST_F(TreePicture, ButtonsAndLinesAreDrawnAsTheStyleTells)
{
    Expand(a);
    const auto all = Find(Red);
    SetTreeStyle(0);
    const auto bare = Find(Red);
    ASSERT_TRUE(all && bare);
    EXPECT_GT(all->left, bare->left) << "no column at the root";
    const Picture nothing = WindowPixels(tree);
    ClickExpander(Green);
    EXPECT_EQ(SelectionNotices(), 0u);
    SetTreeStyle(TVS_HASLINES);
    EXPECT_EQ(Find(Red)->left, bare->left);
    const Picture lines = WindowPixels(tree);
    EXPECT_GT(Different(nothing, lines), 5u);
    SetTreeStyle(TVS_LINESATROOT);
    EXPECT_EQ(Find(Red)->left, bare->left) << "means nothing alone";
    SetTreeStyle(TVS_HASBUTTONS);
    EXPECT_EQ(Find(Red)->left, bare->left);
    EXPECT_EQ(Different(nothing, WindowPixels(tree)), 0u) << "only children below the root's here";
    SetTreeStyle(TVS_HASBUTTONS | TVS_LINESATROOT);
    EXPECT_EQ(Find(Red)->left, all->left);
    ClickExpander(Red);
    EXPECT_FALSE(IsExpanded(a));
    SetTreeStyle(TVS_HASLINES | TVS_LINESATROOT);
    EXPECT_EQ(Find(Red)->left, all->left);
    ClickExpander(Red);
    EXPECT_FALSE(IsExpanded(a)) << "no button there";
}

TEST_F(TreePicture, EnsuringThatAnItemIsVisibleTellsWhetherScrollingWasEnough)
{
    HTREEITEM last = nullptr;
    for (int i = 0; i < 100; ++i)
        last = Add(TVI_ROOT, u"x", i, 4);
    const HTREEITEM bottom = Add(TVI_ROOT, u"bottom", 0, 2);
    EXPECT_FALSE(Send(TVM_ENSUREVISIBLE, 0, a)) << "it is";
    EXPECT_FALSE(Find(Blue));
    EXPECT_TRUE(Send(TVM_ENSUREVISIBLE, 0, bottom));
    EXPECT_TRUE(Find(Blue));
    EXPECT_FALSE(Find(Red));
    EXPECT_FALSE(Send(TVM_ENSUREVISIBLE, 0, bottom));
    EXPECT_FALSE(Send(TVM_ENSUREVISIBLE, 0, a1)) << "it had to expand";
    EXPECT_TRUE(IsExpanded(a));
    EXPECT_TRUE(Find(Green));
    EXPECT_EQ(Selected(), nullptr);
    EXPECT_TRUE(notices.empty());
    EXPECT_NE(last, nullptr);
}

TEST_F(TreePicture, WhatDoesNotFitGetsBars)
{
    RECT window{};
    GetWindowRect(tree, &window);
    EXPECT_EQ(Width(whole), Width(window) - 2) << "a border and nothing else";
    const HTREEITEM wide = Add(TVI_ROOT, std::u16string(200, u'w'), 0, 4);
    EXPECT_TRUE(ComesToHave(false, true));
    for (int i = 0; i < 100; ++i)
        Add(TVI_ROOT, u"x", 0, 4);
    EXPECT_TRUE(ComesToHave(true, true));
    Send(TVM_DELETEITEM, 0, wide);
    EXPECT_TRUE(ComesToHave(true, false));
    Send(TVM_DELETEITEM, 0, TVI_ROOT);
    EXPECT_TRUE(ComesToHave(false, false));
}

TEST_F(TreePicture, BarsThatOnlyEachOtherNeedsGoTogether)
{
    const int row = Find(Yellow)->top - Find(Red)->top;
    Send(TVM_DELETEITEM, 0, TVI_ROOT);
    // The widest text that needs no bar, found by trying.
    std::u16string widest;
    for (size_t length = 1; length < 400; ++length) {
        const HTREEITEM item = Add(TVI_ROOT, std::u16string(length, u'i'), 0, 4);
        Send(TVM_ENSUREVISIBLE, 0, item); // lays out at once
        const bool fits = !HasBottomBar();
        Send(TVM_DELETEITEM, 0, item);
        if (!fits)
            break;
        widest = std::u16string(length, u'i');
    }
    ASSERT_GT(widest.size(), 20u);
    Add(TVI_ROOT, widest, 0, 4);
    HTREEITEM last = nullptr;
    for (int i = 1; i < Height(whole) / row; ++i)
        last = Add(TVI_ROOT, u"x", 0, 4);
    EXPECT_FALSE(Send(TVM_ENSUREVISIBLE, 0, last));
    EXPECT_FALSE(HasSideBar() || HasBottomBar());
    const HTREEITEM tooMuch = Add(TVI_ROOT, u"x", 0, 4);
    EXPECT_TRUE(ComesToHave(true, true));
    Send(TVM_DELETEITEM, 0, tooMuch);
    EXPECT_TRUE(ComesToHave(false, false));
}

TEST_F(TreePicture, NoBarThatComesUpCoversTheItemBroughtIntoView)
{
    Send(TVM_DELETEITEM, 0, TVI_ROOT);
    for (int i = 0; i < 50; ++i)
        Add(TVI_ROOT, std::u16string(200, u'w'), 0, 4);
    const HTREEITEM last = Add(TVI_ROOT, u"last", 0, 2);
    EXPECT_TRUE(Send(TVM_ENSUREVISIBLE, 0, last));
    Pump(50);
    const auto blue = Find(Blue);
    ASSERT_TRUE(blue);
    EXPECT_EQ(Height(*blue), 16) << "the whole row";
}

TEST_F(TreeBeforeItShows, TheClientAreaFollowsTheWindow)
{
    RECT window{};
    RECT client{};
    GetWindowRect(tree, &window);
    GetClientRect(tree, &client);
    EXPECT_EQ(Width(client), Width(window) - 2);
    EXPECT_EQ(Height(client), Height(window) - 2);
    SetWindowPos(tree, nullptr, 0, 0, 120, 60, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    GetClientRect(tree, &client);
    EXPECT_EQ(Width(client), 118);
    EXPECT_EQ(Height(client), 58);
}

TEST_F(TreeBeforeItShows, ASelectionMadeBeforeTheDialogShowsIsInView)
{
    GiveImages();
    for (int i = 0; i < 200; ++i)
        Add(TVI_ROOT, u"x", i, 4);
    Select(Add(TVI_ROOT, u"y", 0, 2));
    EXPECT_FALSE(IsWindowVisible(tree));
    Show();
    const auto blue = Find(Blue);
    ASSERT_TRUE(blue);
    EXPECT_EQ(Height(*blue), 16) << "the whole row";
}
