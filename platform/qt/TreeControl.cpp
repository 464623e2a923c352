// The class SysTreeView32: its messages. Every item handle is looked up, and a record that the
// program gives is read or written as far as its mask tells.
#include "platform/qt/ControlMessages.h"
#include "platform/qt/ControlSupport.h"
#include "platform/qt/ImageLists.h"
#include "platform/qt/StockClasses.h"
#include "platform/qt/TreeActions.h"
#include "platform/qt/Window.h"

#include <commctrl.h>

#include <algorithm>

namespace tavrix::platform
{
namespace
{

constexpr UINT StyleChanged = 0x007D;

HTREEITEM HandleOf(const TreeItem* item)
{
    return item != nullptr && item->level >= 0 ? item->handle : nullptr;
}

/// The text of a record that the program gives; nothing for the mark that asks to be called back.
std::u16string TextOf(const TVITEMW& record)
{
    const bool mark = reinterpret_cast<LONG_PTR>(record.pszText) == -1;
    return record.pszText != nullptr && !mark ? std::u16string(record.pszText) : std::u16string();
}

/// Takes over what the record's mask names, but for the state.
void Assign(TreeItem& item, const TVITEMW& record)
{
    if ((record.mask & TVIF_TEXT) != 0) {
        item.text = TextOf(record);
        item.textWidth = -1;
    }
    if ((record.mask & TVIF_IMAGE) != 0)
        item.image = record.iImage;
    if ((record.mask & TVIF_SELECTEDIMAGE) != 0)
        item.selectedImage = record.iSelectedImage;
    if ((record.mask & TVIF_CHILDREN) != 0)
        item.saysItHasChildren = record.cChildren > 0;
    if ((record.mask & TVIF_PARAM) != 0)
        item.data = record.lParam;
}

/// The state that the record names. The last step, because it may tell the parent.
void AssignState(HWND window, TreeItem& item, const TVITEMW& record)
{
    if ((record.mask & TVIF_STATE) == 0)
        return;
    const HTREEITEM handle = item.handle;
    if ((record.stateMask & TVIS_EXPANDED) != 0) {
        const bool expand = (record.state & TVIS_EXPANDED) != 0;
        if (item.firstChild == nullptr)
            item.expanded = expand; // for the children that will come
        else
            ExpandItem(window, handle, expand ? TVE_EXPAND : TVE_COLLAPSE, TreeCause::Program);
    }
    const Tree tree(window);
    if (!tree || (record.stateMask & TVIS_SELECTED) == 0)
        return;
    if ((record.state & TVIS_SELECTED) != 0)
        SelectItem(window, handle, TreeCause::Program);
    else if (HandleOf(tree.state->selected) == handle)
        SelectItem(window, nullptr, TreeCause::Program);
}

/// Where a new item goes: the item before it, null for the first place. False when there is no such
/// place.
bool FindPlace(const TreeItems& items, const TreeItem& parent, HTREEITEM after, TreeItem** previous)
{
    *previous = nullptr;
    if (after == TVI_FIRST)
        return true;
    if (after == TVI_LAST || after == TVI_ROOT || after == nullptr) {
        *previous = parent.lastChild;
        return true;
    }
    *previous = items.Find(after);
    return *previous != nullptr && (*previous)->parent == &parent;
}

HTREEITEM InsertItem(const Tree& tree, const TVINSERTSTRUCTW* record)
{
    if (record == nullptr)
        return nullptr;
    TreeItems& items = tree.state->items;
    const bool top = record->hParent == nullptr || record->hParent == TVI_ROOT ||
                     record->hInsertAfter == TVI_ROOT;
    TreeItem* parent = top ? &items.Root() : items.Find(record->hParent);
    TreeItem* previous = nullptr;
    if (parent == nullptr || !FindPlace(items, *parent, record->hInsertAfter, &previous))
        return nullptr;
    TreeItem& item = items.Insert(*parent, previous);
    const HTREEITEM handle = item.handle;
    Assign(item, record->item);
    tree.widget->ItemsChanged();
    AssignState(tree.handle, item, record->item);
    const Tree after(tree.handle);
    return after ? HandleOf(after.state->items.Find(handle)) : nullptr;
}

BOOL GetItem(const Tree& tree, TVITEMW* record)
{
    const TreeItem* item = record != nullptr ? tree.state->items.Find(record->hItem) : nullptr;
    if (item == nullptr)
        return FALSE;
    if ((record->mask & TVIF_TEXT) != 0 && record->pszText != nullptr && record->cchTextMax > 0) {
        const size_t length =
            std::min(item->text.size(), static_cast<size_t>(record->cchTextMax) - 1);
        std::copy_n(item->text.data(), length, record->pszText);
        record->pszText[length] = 0;
    }
    if ((record->mask & TVIF_IMAGE) != 0)
        record->iImage = item->image;
    if ((record->mask & TVIF_SELECTEDIMAGE) != 0)
        record->iSelectedImage = item->selectedImage;
    if ((record->mask & TVIF_STATE) != 0)
        record->state = tree.state->StateOf(*item) & record->stateMask;
    if ((record->mask & TVIF_CHILDREN) != 0)
        record->cChildren = item->HasChildren() ? 1 : 0;
    if ((record->mask & TVIF_PARAM) != 0)
        record->lParam = item->data;
    return TRUE;
}

BOOL SetItem(const Tree& tree, const TVITEMW* record)
{
    TreeItem* item = record != nullptr ? tree.state->items.Find(record->hItem) : nullptr;
    if (item == nullptr)
        return FALSE;
    Assign(*item, *record);
    tree.widget->ItemsChanged();
    AssignState(tree.handle, *item, *record);
    return TRUE;
}

HTREEITEM NextItem(const Tree& tree, WPARAM which, HTREEITEM handle)
{
    const TreeItems& items = tree.state->items;
    if (which == TVGN_ROOT || (which == TVGN_CHILD && handle == TVI_ROOT))
        return HandleOf(items.Root().firstChild);
    if (which == TVGN_CARET)
        return HandleOf(tree.state->selected);
    const TreeItem* item = items.Find(handle);
    if (item == nullptr)
        return nullptr;
    switch (which) {
    case TVGN_NEXT:
        return HandleOf(item->next);
    case TVGN_PREVIOUS:
        return HandleOf(item->previous);
    case TVGN_PARENT:
        return HandleOf(item->parent);
    case TVGN_CHILD:
        return HandleOf(item->firstChild);
    default:
        return nullptr;
    }
}

/// Answers the list before. A handle that is of no list changes nothing.
HIMAGELIST SetImages(const Tree& tree, WPARAM kind, HIMAGELIST list)
{
    const QSize size = ImageListSize(list);
    if (kind != TVSIL_NORMAL || (list != nullptr && !size.isValid()))
        return nullptr;
    const HIMAGELIST before = tree.state->images;
    tree.state->images = list;
    tree.state->imageSize = list != nullptr ? size : QSize(0, 0);
    tree.widget->ItemsChanged();
    return before;
}

/// TRUE only when scrolling alone was enough.
BOOL EnsureVisible(const Tree& tree, HTREEITEM handle)
{
    const TreeItem* item = tree.state->items.Find(handle);
    if (item == nullptr)
        return FALSE;
    const bool expanded = ExpandParents(tree, *item);
    const bool scrolled = tree.widget->Reveal(*item);
    return scrolled && !expanded;
}

LRESULT TreeMessage(const Tree& tree, UINT message, WPARAM wParam, LPARAM lParam)
{
    const HWND window = tree.handle;
    const auto item = reinterpret_cast<HTREEITEM>(lParam);
    switch (message) {
    case TVM_INSERTITEMW:
        return reinterpret_cast<LRESULT>(
            InsertItem(tree, reinterpret_cast<const TVINSERTSTRUCTW*>(lParam)));
    case TVM_GETITEMW:
        return GetItem(tree, reinterpret_cast<TVITEMW*>(lParam));
    case TVM_SETITEMW:
        return SetItem(tree, reinterpret_cast<const TVITEMW*>(lParam));
    case TVM_DELETEITEM:
        return DeleteItem(window, item);
    case TVM_EXPAND:
        return ExpandItem(window, item, wParam, TreeCause::Program);
    case TVM_GETCOUNT:
        return static_cast<LRESULT>(tree.state->items.Count());
    case TVM_GETIMAGELIST:
        return wParam == TVSIL_NORMAL ? reinterpret_cast<LRESULT>(tree.state->images) : 0;
    case TVM_SETIMAGELIST:
        return reinterpret_cast<LRESULT>(
            SetImages(tree, wParam, reinterpret_cast<HIMAGELIST>(lParam)));
    case TVM_GETNEXTITEM:
        return reinterpret_cast<LRESULT>(NextItem(tree, wParam, item));
    case TVM_SELECTITEM:
        return wParam == TVGN_CARET && SelectItem(window, item, TreeCause::Program);
    case TVM_ENSUREVISIBLE:
        return EnsureVisible(tree, item);
    default:
        return 0;
    }
}

bool IsTreeMessage(UINT message)
{
    constexpr UINT First = 0x1100;
    constexpr UINT Last = 0x11FF;
    return message >= First && message <= Last;
}

void FollowStyle(Window& window)
{
    std::static_pointer_cast<TreeState>(window.extra)->style = window.style;
    static_cast<TreeWidget*>(window.widget)->ItemsChanged();
}

QPoint PointOf(LPARAM words)
{
    return {static_cast<short>(LOWORD(words)), static_cast<short>(HIWORD(words))};
}

} // namespace

QWidget* MakeTreeWidget(Window& window, QWidget* parent)
{
    auto state = std::make_shared<TreeState>();
    state->style = window.style;
    window.extra = state;
    auto* widget = new TreeWidget(window.handle, std::move(state), parent);
    widget->setEnabled((window.style & WS_DISABLED) == 0);
    window.client = widget->viewport(); // without border and scroll bars
    return widget;
}

LRESULT CALLBACK TreeProcedure(HWND handle, UINT message, WPARAM wParam, LPARAM lParam)
{
    Window* window = FindWindowRecord(handle);
    if (window == nullptr)
        return 0;
    LRESULT result = 0;
    bool changed = false;
    if (HandleCommonMessage(*window, message, wParam, lParam, &result, &changed))
        return result;
    if (IsTreeMessage(message)) {
        const Tree tree(handle);
        return tree ? TreeMessage(tree, message, wParam, lParam) : 0;
    }
    switch (message) {
    case WM_GETDLGCODE:
        return DLGC_WANTARROWS | DLGC_WANTCHARS;
    case WM_SIZE:
        static_cast<TreeWidget*>(window->widget)->LayOutHidden();
        return 0;
    case StyleChanged:
        FollowStyle(*window);
        return 0;
    case WM_LBUTTONDOWN:
        PressTree(handle, PointOf(lParam));
        return 0;
    case WM_LBUTTONDBLCLK:
        DoubleClickTree(handle, PointOf(lParam));
        return 0;
    case WM_KEYDOWN:
        OnTreeKey(handle, wParam);
        return 0;
    case WM_CHAR:
        OnTreeCharacter(handle, wParam);
        return 0;
    default:
        return DefWindowProcW(handle, message, wParam, lParam);
    }
}

} // namespace tavrix::platform
