// A dialog with one tree for tests: what the tree told its parent is kept in order, and a test may
// put in a function that is called with each notice first.
#pragma once

#include "platform/testing/WindowTesting.h"

#include <commctrl.h>
#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tavrix::test
{

constexpr int TreeId = 1101;
constexpr uint32_t Red = 0xFF0000;
constexpr uint32_t Green = 0x00FF00;
constexpr uint32_t Blue = 0x0000FF;
constexpr uint32_t Yellow = 0xFFFF00;

/// One notice. `selection` is filled for TVN_SELCHANGEDW alone.
struct Notice {
    NMHDR header{};
    WPARAM id = 0;
    NMTREEVIEWW selection{};
};

class TreeTest : public ::testing::Test
{
protected:
    TreeTest();
    ~TreeTest() override;

    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0)
    {
        return SendMessageW(tree, message, wParam, lParam);
    }
    LRESULT Send(UINT message, WPARAM wParam, HTREEITEM item)
    {
        return SendMessageW(tree, message, wParam, reinterpret_cast<LPARAM>(item));
    }

    HTREEITEM Insert(const TVINSERTSTRUCTW& record);
    /// With a text, `data` and `image` for both states.
    HTREEITEM Add(HTREEITEM parent, const std::u16string& text, LPARAM data = 0, int image = 0,
                  HTREEITEM after = TVI_LAST);
    HTREEITEM Next(WPARAM which, HTREEITEM item = nullptr);
    HTREEITEM Selected() { return Next(TVGN_CARET); }
    BOOL Select(HTREEITEM item) { return Send(TVM_SELECTITEM, TVGN_CARET, item) != 0; }
    bool Exists(HTREEITEM item);
    std::u16string Text(HTREEITEM item);
    UINT State(HTREEITEM item);
    bool IsExpanded(HTREEITEM item) { return (State(item) & TVIS_EXPANDED) != 0; }
    int Children(HTREEITEM item);
    /// The texts of the siblings from `first` on, with a blank between two.
    std::u16string Siblings(HTREEITEM first);

    /// Shows the dialog with the focus on the tree.
    void Show();
    /// Gives the tree images of one colour each: 0 red, 1 green, 2 blue, 3 yellow.
    void GiveImages();
    /// The smallest rectangle of the tree's window that holds all pixels of the colour; empty when
    /// there are none.
    std::optional<RECT> Find(uint32_t color);
    /// A point of the tree's window on the device screen.
    POINT OnScreen(int x, int y);
    /// Clicks the middle of the colour that stands for an item's image.
    void ClickColor(uint32_t color);
    /// Clicks the expander, which stands before the image.
    void ClickExpander(uint32_t color);
    void DoubleClickColor(uint32_t color);
    size_t SelectionNotices() const;

    testing::Scope scope;
    HWND dialog = nullptr;
    HWND tree = nullptr;
    HIMAGELIST images = nullptr;

public: // the dialog procedure's
    std::vector<Notice> notices;
    /// Answers a notice as the dialog's message result.
    std::function<LRESULT(const Notice& notice)> onNotice;
};

/// Two parents of two children each: "a" with "a1", "a2", and "b" with "b1", "b2".
class TreeFamilyTest : public TreeTest
{
protected:
    void AddFamily();

    BOOL Expand(HTREEITEM item, WPARAM action = TVE_EXPAND)
    {
        return Send(TVM_EXPAND, action, item) != 0;
    }
    BOOL Delete(HTREEITEM item) { return Send(TVM_DELETEITEM, 0, item) != 0; }

    HTREEITEM a = nullptr, a1 = nullptr, a2 = nullptr;
    HTREEITEM b = nullptr, b1 = nullptr, b2 = nullptr;
};

/// A tree on the screen in which every item has an image of a colour of its own: "a" red with "a1"
/// green and "a2" blue, "b" yellow; "b1" and what tests add have none.
class ColoredTreeTest : public TreeTest
{
protected:
    ColoredTreeTest();

    void Expand(HTREEITEM item) { Send(TVM_EXPAND, TVE_EXPAND, item); }
    /// The tree's own style bits.
    void SetTreeStyle(DWORD style);

    HTREEITEM a = nullptr, a1 = nullptr, a2 = nullptr, b = nullptr, b1 = nullptr;
};

inline int Width(const RECT& rectangle)
{
    return rectangle.right - rectangle.left;
}
inline int Height(const RECT& rectangle)
{
    return rectangle.bottom - rectangle.top;
}

} // namespace tavrix::test
