// The pointer and the keys of a tree.
#include "platform/qt/ControlSupport.h"
#include "platform/qt/TreeActions.h"

#include <algorithm>

namespace tavrix::platform
{
namespace
{

constexpr WPARAM KeypadMultiply = 0x6A;
constexpr WPARAM KeypadAdd = 0x6B;
constexpr WPARAM KeypadSubtract = 0x6D;

/// Tells the parent of a click. False when it keeps the click to itself, or the tree is gone.
bool Announce(HWND window, UINT code)
{
    NMHDR header{};
    header.code = code;
    return NotifyParent(window, &header) == 0 && Tree(window);
}

/// The selected item's row, -1 for none.
int SelectedRow(const Tree& tree)
{
    const auto& rows = tree.widget->Rows();
    const auto found = std::find(rows.begin(), rows.end(), tree.state->selected);
    return found != rows.end() ? static_cast<int>(found - rows.begin()) : -1;
}

/// Selects the row, or the nearest that there is.
void SelectRow(const Tree& tree, int row)
{
    const auto& rows = tree.widget->Rows();
    if (rows.empty())
        return;
    const int last = static_cast<int>(rows.size()) - 1;
    SelectItem(tree.handle, rows[static_cast<size_t>(std::clamp(row, 0, last))]->handle,
               TreeCause::Keyboard);
}

void OnLeft(const Tree& tree, const TreeItem& item)
{
    if (item.expanded && item.firstChild != nullptr)
        ExpandItem(tree.handle, item.handle, TVE_COLLAPSE, TreeCause::Keyboard);
    else if (item.level > 0)
        SelectItem(tree.handle, item.parent->handle, TreeCause::Keyboard);
}

void OnRight(const Tree& tree, const TreeItem& item)
{
    if (item.firstChild == nullptr)
        return;
    if (item.expanded)
        SelectItem(tree.handle, item.firstChild->handle, TreeCause::Keyboard);
    else
        ExpandItem(tree.handle, item.handle, TVE_EXPAND, TreeCause::Keyboard);
}

void ExpandAll(const Tree& tree, TreeItem& top)
{
    for (TreeItem* item = &top; item != nullptr; item = TreeItems::NextBelow(top, *item, true))
        item->expanded = item->expanded || item->firstChild != nullptr;
    tree.widget->ItemsChanged();
}

/// The keys that do something with the selected item.
void OnItemKey(const Tree& tree, TreeItem& item, WPARAM key)
{
    switch (key) {
    case VK_LEFT:
        OnLeft(tree, item);
        break;
    case VK_RIGHT:
        OnRight(tree, item);
        break;
    case VK_BACK:
        if (item.level > 0)
            SelectItem(tree.handle, item.parent->handle, TreeCause::Keyboard);
        break;
    case KeypadAdd:
        ExpandItem(tree.handle, item.handle, TVE_EXPAND, TreeCause::Keyboard);
        break;
    case KeypadSubtract:
        ExpandItem(tree.handle, item.handle, TVE_COLLAPSE, TreeCause::Keyboard);
        break;
    case KeypadMultiply:
        ExpandAll(tree, item);
        break;
    default:
        break;
    }
}

} // namespace

void PressTree(HWND window, QPoint at)
{
    if (GetFocus() != window)
        SetFocus(window);
    if (!Tree(window) || !Announce(window, NM_CLICK))
        return;
    const TreeWidget::Hit hit = Tree(window).widget->HitTest(at);
    if (hit.part == TreeWidget::Part::Button)
        ExpandItem(window, hit.item->handle, TVE_TOGGLE, TreeCause::Pointer);
    else if (hit.part == TreeWidget::Part::Item)
        SelectItem(window, hit.item->handle, TreeCause::Pointer);
}

void DoubleClickTree(HWND window, QPoint at)
{
    if (!Tree(window) || !Announce(window, NM_DBLCLK))
        return;
    const TreeWidget::Hit hit = Tree(window).widget->HitTest(at);
    if (hit.part != TreeWidget::Part::Nothing)
        ExpandItem(window, hit.item->handle, TVE_TOGGLE, TreeCause::Pointer);
}

void OnTreeKey(HWND window, WPARAM key)
{
    const Tree tree(window);
    if (!tree)
        return;
    const int row = SelectedRow(tree);
    switch (key) {
    case VK_UP:
        SelectRow(tree, row - 1);
        break;
    case VK_DOWN:
        SelectRow(tree, row + 1);
        break;
    case VK_PRIOR:
        SelectRow(tree, row - tree.widget->PageRows() + 1);
        break;
    case VK_NEXT:
        SelectRow(tree, row + tree.widget->PageRows() - 1);
        break;
    case VK_HOME:
        SelectRow(tree, 0);
        break;
    case VK_END:
        SelectRow(tree, static_cast<int>(tree.widget->Rows().size()) - 1);
        break;
    default:
        if (tree.state->selected != nullptr)
            OnItemKey(tree, *tree.state->selected, key);
        break;
    }
}

void OnTreeCharacter(HWND window, WPARAM character)
{
    // The keypad's own keys were handled when they went down; doing it once more changes nothing.
    switch (character) {
    case TEXT('+'):
        OnTreeKey(window, KeypadAdd);
        break;
    case TEXT('-'):
        OnTreeKey(window, KeypadSubtract);
        break;
    case TEXT('*'):
        OnTreeKey(window, KeypadMultiply);
        break;
    default:
        break;
    }
}

} // namespace tavrix::platform
