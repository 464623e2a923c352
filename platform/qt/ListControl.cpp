// The class SysListView32: its messages. See ListControl.h for the parts.
#include "platform/qt/ListControl.h"

#include "platform/qt/ControlMessages.h"
#include "platform/qt/ControlSupport.h"
#include "platform/qt/InputRoute.h"
#include "platform/qt/StockClasses.h"

#include <algorithm>

namespace tavrix::platform
{
namespace
{

constexpr int DefaultColumnWidth = 80;
constexpr UINT KnownStates = LVIS_SELECTED | LVIS_FOCUSED;

/// The program's text; empty for null and for the mark of a text that is asked for later, which
/// this control does not do.
std::u16string TextFrom(LPCWSTR text)
{
    const auto callback = reinterpret_cast<LPCWSTR>(INT_PTR{-1});
    return text != nullptr && text != callback ? std::u16string(text) : std::u16string();
}

/// At most `capacity` units with the final zero; how many without it.
int CopyOut(const std::u16string& text, LPWSTR buffer, int capacity)
{
    if (buffer == nullptr || buffer == reinterpret_cast<LPWSTR>(INT_PTR{-1}) || capacity <= 0)
        return 0;
    const size_t length = std::min(text.size(), static_cast<size_t>(capacity) - 1);
    std::copy_n(text.data(), length, buffer);
    buffer[length] = 0;
    return static_cast<int>(length);
}

LRESULT InsertColumn(Window& window, WPARAM index, const LVCOLUMNW* column)
{
    ListModel& model = ListStateOf(window).model;
    const int wanted = static_cast<int>(index);
    if (column == nullptr || wanted < 0 || model.ColumnCount() >= ListModel::MostColumns)
        return -1;
    ListColumn inserted;
    inserted.width =
        (column->mask & LVCF_WIDTH) != 0 ? std::clamp(column->cx, 0, 0x7FFF) : DefaultColumnWidth;
    if ((column->mask & LVCF_TEXT) != 0)
        inserted.title = TextFrom(column->pszText);
    if ((column->mask & LVCF_FMT) != 0)
        inserted.format = column->fmt & (LVCFMT_RIGHT | LVCFMT_CENTER);
    const int at = model.InsertColumn(wanted, std::move(inserted));
    ListWidgetOf(window).Renew();
    return at;
}

LRESULT ColumnWidth(Window& window, WPARAM index)
{
    const ListState& state = ListStateOf(window);
    if ((state.style & LVS_TYPEMASK) == LVS_LIST)
        return ListWidgetOf(window).CellWidth();
    const int column = static_cast<int>(index);
    const bool known = column >= 0 && column < state.model.ColumnCount();
    return known ? state.model.Column(column).width : 0;
}

LRESULT InsertItem(HWND handle, Window& window, const LVITEMW* item)
{
    ListState& state = ListStateOf(window);
    if (item == nullptr || item->iItem < 0 || item->iSubItem != 0 ||
        state.model.RowCount() == INT_MAX)
        return -1;
    ListRow row;
    if ((item->mask & LVIF_TEXT) != 0)
        row.item.text = TextFrom(item->pszText);
    if ((item->mask & LVIF_IMAGE) != 0)
        row.item.image = item->iImage;
    if ((item->mask & LVIF_PARAM) != 0)
        row.tag = item->lParam;
    const int at = state.model.InsertRow(item->iItem, std::move(row));
    if (state.anchor >= at)
        ++state.anchor;
    ListWidgetOf(window).Renew();
    if ((item->mask & LVIF_STATE) != 0)
        ChangeState(handle, at, item->state, item->stateMask);
    return at;
}

LRESULT GetItem(Window& window, LVITEMW* item)
{
    const ListModel& model = ListStateOf(window).model;
    const ListCell* cell = item != nullptr ? model.Cell(item->iItem, item->iSubItem) : nullptr;
    if (cell == nullptr)
        return FALSE;
    if ((item->mask & LVIF_TEXT) != 0)
        CopyOut(cell->text, item->pszText, item->cchTextMax);
    if ((item->mask & LVIF_IMAGE) != 0)
        item->iImage = cell->image;
    if ((item->mask & LVIF_PARAM) != 0)
        item->lParam = model.Tag(item->iItem);
    if ((item->mask & LVIF_STATE) != 0)
        item->state = item->iSubItem == 0 ? model.State(item->iItem) & item->stateMask : 0;
    return TRUE;
}

LRESULT SetItem(HWND handle, Window& window, const LVITEMW* item)
{
    ListModel& model = ListStateOf(window).model;
    if (item == nullptr || model.Cell(item->iItem, item->iSubItem) == nullptr)
        return FALSE;
    if ((item->mask & (LVIF_TEXT | LVIF_IMAGE)) != 0) {
        ListCell* cell = model.CellForWriting(item->iItem, item->iSubItem);
        if ((item->mask & LVIF_TEXT) != 0)
            cell->text = TextFrom(item->pszText);
        if ((item->mask & LVIF_IMAGE) != 0)
            cell->image = item->iImage;
        ListWidgetOf(window).Renew();
    }
    if (item->iSubItem != 0)
        return TRUE; // tag and state are the item's
    if ((item->mask & LVIF_PARAM) != 0)
        model.SetTag(item->iItem, item->lParam);
    if ((item->mask & LVIF_STATE) != 0)
        ChangeState(handle, item->iItem, item->state, item->stateMask);
    return TRUE;
}

LRESULT SetItemText(Window& window, int row, const LVITEMW* item)
{
    ListModel& model = ListStateOf(window).model;
    ListCell* cell = item != nullptr ? model.CellForWriting(row, item->iSubItem) : nullptr;
    if (cell == nullptr)
        return FALSE;
    cell->text = TextFrom(item->pszText);
    ListWidgetOf(window).Renew();
    return TRUE;
}

LRESULT GetItemText(Window& window, int row, const LVITEMW* item)
{
    const ListCell* cell =
        item != nullptr ? ListStateOf(window).model.Cell(row, item->iSubItem) : nullptr;
    return cell != nullptr ? CopyOut(cell->text, item->pszText, item->cchTextMax) : 0;
}

LRESULT DeleteItem(Window& window, int row)
{
    ListState& state = ListStateOf(window);
    if (!state.model.DeleteRow(row))
        return FALSE;
    if (state.anchor == row)
        state.anchor = -1;
    else if (state.anchor > row)
        --state.anchor;
    ListWidgetOf(window).Renew();
    return TRUE;
}

LRESULT DeleteAll(Window& window)
{
    ListState& state = ListStateOf(window);
    state.model.Clear();
    state.anchor = -1;
    ListWidgetOf(window).Renew();
    return TRUE;
}

LRESULT SetItemState(HWND handle, Window& window, int row, const LVITEMW* item)
{
    if (item == nullptr)
        return FALSE;
    if (row != -1)
        return ChangeState(handle, row, item->state, item->stateMask);
    const UINT set = item->state & item->stateMask;
    // No two rows have the focus, nor the selection of a list for one.
    if ((set & LVIS_FOCUSED) != 0)
        return FALSE;
    if ((set & LVIS_SELECTED) != 0 && (ListStateOf(window).style & LVS_SINGLESEL) != 0)
        return FALSE;
    for (int each = 0;; ++each) {
        Window* still = FindWindowRecord(handle);
        if (still == nullptr || each >= ListStateOf(*still).model.RowCount())
            return TRUE;
        ChangeState(handle, each, item->state, item->stateMask);
    }
}

LRESULT GetItemState(Window& window, int row, UINT mask)
{
    const ListModel& model = ListStateOf(window).model;
    return model.HasRow(row) ? static_cast<LRESULT>(model.State(row) & mask) : 0;
}

LRESULT FindItem(Window& window, int after, const LVFINDINFOW* wanted)
{
    if (wanted == nullptr || (wanted->flags & LVFI_PARAM) == 0)
        return -1;
    return ListStateOf(window).model.FindTag(after, wanted->lParam);
}

LRESULT NextItem(Window& window, int after, UINT flags)
{
    constexpr UINT Known = LVNI_SELECTED | LVNI_FOCUSED;
    return (flags & ~Known) == 0 ? ListStateOf(window).model.NextRow(after, flags) : -1;
}

LRESULT EnsureVisible(Window& window, int row, bool partOfItIsEnough)
{
    if (!ListStateOf(window).model.HasRow(row))
        return FALSE;
    ListWidgetOf(window).EnsureVisible(row, partOfItIsEnough);
    return TRUE;
}

LRESULT ItemRect(Window& window, int row, RECT* place)
{
    if (place == nullptr || !ListStateOf(window).model.HasRow(row) || place->left < LVIR_BOUNDS ||
        place->left > LVIR_LABEL)
        return FALSE;
    const QRect found = ListWidgetOf(window).PlaceOf(row, place->left);
    *place = {found.left(), found.top(), found.right() + 1, found.bottom() + 1};
    return TRUE;
}

LRESULT SetImages(Window& window, WPARAM kind, HIMAGELIST list)
{
    if (kind > LVSIL_SMALL)
        return 0;
    HIMAGELIST& kept = ListStateOf(window).images[kind];
    const HIMAGELIST before = kept;
    kept = list;
    ListWidgetOf(window).Renew();
    return reinterpret_cast<LRESULT>(before);
}

LRESULT OnStyleChanged(Window& window)
{
    ListStateOf(window).style = window.style;
    ListWidgetOf(window).Renew();
    return 0;
}

} // namespace

bool ChangeState(HWND list, int row, UINT state, UINT mask)
{
    Window* window = FindWindowRecord(list);
    if (window == nullptr || !ListStateOf(*window).model.HasRow(row))
        return false;
    ListState& kept = ListStateOf(*window);
    const bool single = (kept.style & LVS_SINGLESEL) != 0;
    const std::vector<StateChange> changes =
        kept.model.SetState(row, state, mask & KnownStates, single);
    if (changes.empty())
        return true;
    ListWidgetOf(*window).Redraw();
    // All records before the first word to the parent, behind which the rows may be others.
    std::vector<NMLISTVIEW> records;
    for (const StateChange& change : changes) {
        NMLISTVIEW record{};
        record.hdr.code = LVN_ITEMCHANGED;
        record.iItem = change.row;
        record.uNewState = change.after;
        record.uOldState = change.before;
        record.uChanged = LVIF_STATE;
        record.lParam = kept.model.Tag(change.row);
        records.push_back(record);
    }
    for (NMLISTVIEW& record : records) {
        NotifyParent(list, &record.hdr);
        if (!IsWindow(list))
            return false;
    }
    return true;
}

QWidget* MakeListWidget(Window& window, QWidget* parent)
{
    constexpr DWORD SunkenEdge = 0x200; // WS_EX_CLIENTEDGE
    auto state = std::make_shared<ListState>();
    state->style = window.style;
    window.extra = state;
    const bool framed = (window.style & WS_BORDER) != 0 || (window.extendedStyle & SunkenEdge) != 0;
    auto* widget = new ListWidget(window.handle, std::move(state), framed, parent);
    widget->setEnabled((window.style & WS_DISABLED) == 0);
    RouteInput(window.handle, widget);
    RouteInput(window.handle, widget->viewport());
    return widget;
}

LRESULT CALLBACK ListProcedure(HWND handle, UINT message, WPARAM wParam, LPARAM lParam)
{
    Window* window = FindWindowRecord(handle);
    if (window == nullptr)
        return 0;
    LRESULT result = 0;
    bool changed = false;
    if (HandleCommonMessage(*window, message, wParam, lParam, &result, &changed))
        return result;
    if (HandleListInput(handle, message, wParam, lParam))
        return 0;
    const int row = static_cast<int>(wParam);
    auto* item = reinterpret_cast<LVITEMW*>(lParam);
    switch (message) {
    case WM_GETDLGCODE:
        return DLGC_WANTARROWS | DLGC_WANTCHARS;
    case WM_STYLECHANGED:
        return OnStyleChanged(*window);
    case LVM_SETIMAGELIST:
        return SetImages(*window, wParam, reinterpret_cast<HIMAGELIST>(lParam));
    case LVM_GETITEMCOUNT:
        return ListStateOf(*window).model.RowCount();
    case LVM_DELETEITEM:
        return DeleteItem(*window, row);
    case LVM_DELETEALLITEMS:
        return DeleteAll(*window);
    case LVM_GETNEXTITEM:
        return NextItem(*window, row, LOWORD(lParam));
    case LVM_GETITEMRECT:
        return ItemRect(*window, row, reinterpret_cast<RECT*>(lParam));
    case LVM_ENSUREVISIBLE:
        return EnsureVisible(*window, row, lParam != 0);
    case LVM_GETCOLUMNWIDTH:
        return ColumnWidth(*window, wParam);
    case LVM_SETITEMSTATE:
        return SetItemState(handle, *window, row, item);
    case LVM_GETITEMSTATE:
        return GetItemState(*window, row, static_cast<UINT>(lParam));
    case LVM_SORTITEMS:
        return SortList(handle, wParam, reinterpret_cast<PFNLVCOMPARE>(lParam));
    case LVM_GETSELECTEDCOUNT:
        return ListStateOf(*window).model.SelectedCount();
    case LVM_GETITEMW:
        return GetItem(*window, item);
    case LVM_SETITEMW:
        return SetItem(handle, *window, item);
    case LVM_INSERTITEMW:
        return InsertItem(handle, *window, item);
    case LVM_FINDITEMW:
        return FindItem(*window, row, reinterpret_cast<const LVFINDINFOW*>(lParam));
    case LVM_INSERTCOLUMNW:
        return InsertColumn(*window, wParam, reinterpret_cast<const LVCOLUMNW*>(lParam));
    case LVM_GETITEMTEXTW:
        return GetItemText(*window, row, item);
    case LVM_SETITEMTEXTW:
        return SetItemText(*window, row, item);
    default:
        return DefWindowProcW(handle, message, wParam, lParam);
    }
}

} // namespace tavrix::platform
