// What is done with the items of a tree by messages as well as by the pointer and the keys, with
// the word to the parent that belongs to it. The parent may destroy the control or change its items
// when it is told, so callers look everything up again behind each call. User-interface thread.
#pragma once

#include "platform/qt/TreeWidget.h"

namespace tavrix::platform
{

/// What changed the selection, as NMTREEVIEWW's `action` tells it.
enum class TreeCause : UINT { Program = 0, Pointer = 1, Keyboard = 2 };

/// A tree that is there; false for any other window.
struct Tree {
    explicit Tree(HWND window);
    explicit operator bool() const { return state != nullptr; }

    HWND handle = nullptr;
    std::shared_ptr<TreeState> state;
    TreeWidget* widget = nullptr;
};

/// Expands what the item lies in; tells whether anything had to be.
bool ExpandParents(const Tree& tree, const TreeItem& item);
/// Makes the item the selected one, null for none, brings it into view and tells the parent if it
/// was another one. False for a handle that is of no item here.
bool SelectItem(HWND window, HTREEITEM item, TreeCause cause);
/// TVE_COLLAPSE, TVE_EXPAND or TVE_TOGGLE. A selection that would be hidden moves to the item.
/// False for a bad handle or action and for an item that has no children.
bool ExpandItem(HWND window, HTREEITEM item, WPARAM action, TreeCause cause);
/// Deletes the item with all below it, or for TVI_ROOT and null all items. A selection among them
/// moves first: to the item's next sibling, else the one before, else the parent.
bool DeleteItem(HWND window, HTREEITEM item);

// The pointer and the keys, as the window procedure gets them.
void PressTree(HWND window, QPoint at);
void DoubleClickTree(HWND window, QPoint at);
void OnTreeKey(HWND window, WPARAM key);
void OnTreeCharacter(HWND window, WPARAM character);

} // namespace tavrix::platform
