#include "platform/qt/TreeActions.h"

#include "platform/qt/ControlSupport.h"
#include "platform/qt/StockClasses.h"
#include "platform/qt/Window.h"

namespace tavrix::platform
{
namespace
{

/// What a notification tells of an item; zeros for none.
TVITEMW Describe(const TreeState& state, const TreeItem* item)
{
    TVITEMW record{};
    if (item == nullptr)
        return record;
    record.mask = TVIF_HANDLE | TVIF_PARAM | TVIF_STATE;
    record.hItem = item->handle;
    record.stateMask = TVIS_SELECTED | TVIS_EXPANDED;
    record.state = state.StateOf(*item);
    record.lParam = item->data;
    return record;
}

/// Whether the selection goes with the item.
bool TakesSelection(const TreeState& state, const TreeItem& item)
{
    return state.selected != nullptr &&
           (state.selected == &item || TreeItems::IsBelow(*state.selected, item));
}

TreeItem* Successor(const TreeItem& item)
{
    if (item.next != nullptr)
        return item.next;
    if (item.previous != nullptr)
        return item.previous;
    return item.level > 0 ? item.parent : nullptr;
}

} // namespace

Tree::Tree(HWND window)
{
    Window* record = FindWindowRecord(window);
    if (record == nullptr || record->windowClass->procedure != TreeProcedure ||
        record->destroying || record->widget == nullptr)
        return;
    handle = window;
    state = std::static_pointer_cast<TreeState>(record->extra);
    widget = static_cast<TreeWidget*>(record->widget);
}

bool ExpandParents(const Tree& tree, const TreeItem& item)
{
    bool changed = false;
    for (TreeItem* above = item.parent; above->level >= 0; above = above->parent) {
        changed = changed || !above->expanded;
        above->expanded = true;
    }
    if (changed)
        tree.widget->ItemsChanged();
    return changed;
}

bool SelectItem(HWND window, HTREEITEM wanted, TreeCause cause)
{
    const Tree tree(window);
    if (!tree)
        return false;
    TreeItem* item = tree.state->items.Find(wanted);
    if (item == nullptr && wanted != nullptr)
        return false;
    if (item != nullptr) {
        ExpandParents(tree, *item);
        tree.widget->Reveal(*item);
    }
    TreeItem* before = tree.state->selected;
    if (item == before)
        return true;
    tree.state->selected = item;
    tree.widget->Redraw();
    NMTREEVIEWW notice{};
    notice.hdr.code = TVN_SELCHANGEDW;
    notice.action = static_cast<UINT>(cause);
    notice.itemOld = Describe(*tree.state, before);
    notice.itemNew = Describe(*tree.state, item);
    NotifyParent(window, &notice.hdr);
    return true;
}

bool ExpandItem(HWND window, HTREEITEM handle, WPARAM action, TreeCause cause)
{
    const Tree tree(window);
    TreeItem* item = tree ? tree.state->items.Find(handle) : nullptr;
    if (item == nullptr || item->firstChild == nullptr || action < TVE_COLLAPSE ||
        action > TVE_TOGGLE)
        return false;
    const bool expand = action == TVE_TOGGLE ? !item->expanded : action == TVE_EXPAND;
    if (expand == item->expanded)
        return true;
    item->expanded = expand;
    tree.widget->ItemsChanged();
    if (!expand && tree.state->selected != item && TakesSelection(*tree.state, *item))
        SelectItem(window, handle, cause);
    return true;
}

bool DeleteItem(HWND window, HTREEITEM handle)
{
    const bool all = handle == TVI_ROOT || handle == nullptr;
    const auto find = [&](const Tree& tree) -> TreeItem* {
        if (!tree)
            return nullptr;
        return all ? &tree.state->items.Root() : tree.state->items.Find(handle);
    };
    TreeItem* item = find(Tree(window));
    if (item == nullptr)
        return false;
    if (TakesSelection(*Tree(window).state, *item)) {
        // While both are still there, so that the parent can ask for the one that goes.
        const TreeItem* next = all ? nullptr : Successor(*item);
        SelectItem(window, next != nullptr ? next->handle : nullptr, TreeCause::Program);
    }
    const Tree tree(window);
    item = find(tree);
    if (item == nullptr)
        return true; // the parent was told and was faster
    if (TakesSelection(*tree.state, *item))
        tree.state->selected = nullptr; // the parent put it back, which cannot be
    tree.state->items.Remove(*item);
    tree.widget->ItemsChanged();
    return true;
}

} // namespace tavrix::platform
