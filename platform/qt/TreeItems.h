// The items of one tree: who stands below whom, in which order, and what the program gave them.
// Handles are numbers that are looked up, never addresses, and are given out once in the whole
// process: a stale one, or one of another tree, is not found. Depth and number are not limited, and
// no walk here recurses. No toolkit. User-interface thread.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <memory>
#include <string>
#include <unordered_map>

namespace tavrix::platform
{

struct TreeItem {
    HTREEITEM handle = nullptr;
    TreeItem* parent = nullptr; // of a first level item the root, which is no item itself
    TreeItem* previous = nullptr;
    TreeItem* next = nullptr;
    TreeItem* firstChild = nullptr;
    TreeItem* lastChild = nullptr;
    int level = 0; // 0: first level
    std::u16string text;
    int image = 0;
    int selectedImage = 0;
    bool expanded = false;
    bool saysItHasChildren = false; // by the program, whether or not there are any
    LPARAM data = 0;
    int row = -1;       // the widget's: where it was shown last
    int textWidth = -1; // the widget's: -1 when it is not known

    bool HasChildren() const { return firstChild != nullptr || saysItHasChildren; }
};

class TreeItems
{
public:
    TreeItems();

    /// What the first level lies below: level -1, always expanded, found by no handle.
    TreeItem& Root() { return root; }
    const TreeItem& Root() const { return root; }
    /// Null for a handle that is of no item here.
    TreeItem* Find(HTREEITEM handle) const;
    size_t Count() const { return items.size(); }

    /// A new item below `parent`, behind its child `previous`, or first for null.
    TreeItem& Insert(TreeItem& parent, TreeItem* previous);
    /// Removes the item with all below it; for the root everything below that. A parent that loses
    /// its last child is not expanded any more.
    void Remove(TreeItem& item);

    /// Whether `item` lies below `ancestor`, over any number of levels.
    static bool IsBelow(const TreeItem& item, const TreeItem& ancestor);
    /// The next item of a walk through what lies below `top`, parents first; `inside`: also into
    /// the item's own children. Null at the end.
    static TreeItem* NextBelow(const TreeItem& top, const TreeItem& item, bool inside);

private:
    void Forget(TreeItem& top);

    TreeItem root;
    std::unordered_map<UINT_PTR, std::unique_ptr<TreeItem>> items;
};

} // namespace tavrix::platform
