#include "platform/qt/TreeItems.h"

#include <vector>

namespace tavrix::platform
{
namespace
{

// The step keeps the handles clear of TVI_ROOT and its kin, which end in other digits.
constexpr UINT_PTR FirstHandle = 0x10005;
constexpr UINT_PTR HandleStep = 8;

HTREEITEM NewHandle()
{
    static UINT_PTR last = FirstHandle;
    last += HandleStep;
    return reinterpret_cast<HTREEITEM>(last);
}

} // namespace

TreeItems::TreeItems()
{
    root.level = -1;
    root.expanded = true;
}

TreeItem* TreeItems::Find(HTREEITEM handle) const
{
    const auto found = items.find(reinterpret_cast<UINT_PTR>(handle));
    return found != items.end() ? found->second.get() : nullptr;
}

TreeItem& TreeItems::Insert(TreeItem& parent, TreeItem* previous)
{
    auto made = std::make_unique<TreeItem>();
    TreeItem& item = *made;
    item.handle = NewHandle();
    item.parent = &parent;
    item.level = parent.level + 1;
    item.previous = previous;
    item.next = previous != nullptr ? previous->next : parent.firstChild;
    items[reinterpret_cast<UINT_PTR>(item.handle)] = std::move(made);
    (item.previous != nullptr ? item.previous->next : parent.firstChild) = &item;
    (item.next != nullptr ? item.next->previous : parent.lastChild) = &item;
    return item;
}

void TreeItems::Remove(TreeItem& item)
{
    Forget(item);
    if (&item == &root) {
        root.firstChild = nullptr;
        root.lastChild = nullptr;
        return;
    }
    TreeItem& parent = *item.parent;
    (item.previous != nullptr ? item.previous->next : parent.firstChild) = item.next;
    (item.next != nullptr ? item.next->previous : parent.lastChild) = item.previous;
    if (parent.firstChild == nullptr && &parent != &root)
        parent.expanded = false;
    items.erase(reinterpret_cast<UINT_PTR>(item.handle));
}

void TreeItems::Forget(TreeItem& top)
{
    std::vector<HTREEITEM> below;
    for (const TreeItem* at = NextBelow(top, top, true); at != nullptr;
         at = NextBelow(top, *at, true))
        below.push_back(at->handle);
    for (const HTREEITEM handle : below)
        items.erase(reinterpret_cast<UINT_PTR>(handle));
}

bool TreeItems::IsBelow(const TreeItem& item, const TreeItem& ancestor)
{
    const TreeItem* at = item.parent;
    while (at != nullptr && at != &ancestor)
        at = at->parent;
    return at != nullptr;
}

TreeItem* TreeItems::NextBelow(const TreeItem& top, const TreeItem& item, bool inside)
{
    if (inside && item.firstChild != nullptr)
        return item.firstChild;
    const TreeItem* at = &item;
    while (at != &top && at->next == nullptr)
        at = at->parent;
    return at != &top ? at->next : nullptr;
}

} // namespace tavrix::platform
