#include "platform/qt/ListModel.h"

#include <algorithm>

namespace tavrix::platform
{

const ListCell* ListModel::Cell(int row, int column) const
{
    static const auto& empty = *new ListCell;
    if (!HasRow(row) || column < 0 || column >= MostColumns)
        return nullptr;
    const ListRow& found = Row(row);
    if (column == 0)
        return &found.item;
    const auto index = static_cast<size_t>(column) - 1;
    return index < found.subItems.size() ? &found.subItems[index] : &empty;
}

ListCell* ListModel::CellForWriting(int row, int column)
{
    if (!HasRow(row) || column < 0 || column >= MostColumns)
        return nullptr;
    ListRow& found = rows[static_cast<size_t>(row)];
    if (column == 0)
        return &found.item;
    const auto count = static_cast<size_t>(column);
    if (found.subItems.size() < count)
        found.subItems.resize(count);
    return &found.subItems[count - 1];
}

void ListModel::SetTag(int row, LPARAM tag)
{
    rows[static_cast<size_t>(row)].tag = tag;
    RowsChanged();
}

int ListModel::InsertColumn(int column, ListColumn inserted)
{
    column = std::min(column, ColumnCount());
    const bool moves = column < ColumnCount();
    columns.insert(columns.begin() + column, std::move(inserted));
    if (!moves)
        return column;
    // The item itself stays in the first column.
    const auto at = static_cast<size_t>(std::max(column, 1)) - 1;
    for (ListRow& row : rows)
        if (at < row.subItems.size() && row.subItems.size() + 1 < static_cast<size_t>(MostColumns))
            row.subItems.insert(row.subItems.begin() + static_cast<ptrdiff_t>(at), ListCell{});
    return column;
}

void ListModel::SetColumnWidth(int column, int width)
{
    columns[static_cast<size_t>(column)].width = std::max(width, 0);
}

int ListModel::InsertRow(int row, ListRow inserted)
{
    row = std::min(row, RowCount());
    inserted.selected = false;
    rows.insert(rows.begin() + row, std::move(inserted));
    if (focus >= row)
        ++focus;
    RowsChanged();
    return row;
}

bool ListModel::DeleteRow(int row)
{
    if (!HasRow(row))
        return false;
    if (Row(row).selected)
        --selectedCount;
    rows.erase(rows.begin() + row);
    if (focus == row)
        focus = -1;
    else if (focus > row)
        --focus;
    RowsChanged();
    return true;
}

void ListModel::Clear()
{
    rows.clear();
    focus = -1;
    selectedCount = 0;
    RowsChanged();
}

UINT ListModel::State(int row) const
{
    UINT state = Row(row).selected ? LVIS_SELECTED : 0;
    state |= row == focus ? LVIS_FOCUSED : 0;
    return state;
}

void ListModel::SetSelected(int row, bool selected, std::vector<StateChange>* changes)
{
    ListRow& changed = rows[static_cast<size_t>(row)];
    if (changed.selected == selected)
        return;
    const UINT before = State(row);
    changed.selected = selected;
    selectedCount += selected ? 1 : -1;
    changes->push_back({row, before, State(row)});
}

std::vector<StateChange> ListModel::SetState(int row, UINT state, UINT mask, bool single)
{
    std::vector<StateChange> changes;
    if (single && (mask & state & LVIS_SELECTED) != 0) {
        for (int other = 0; selectedCount > (Row(row).selected ? 1 : 0) && other < RowCount();
             ++other)
            if (other != row)
                SetSelected(other, false, &changes);
    }
    const UINT before = State(row);
    if ((mask & LVIS_FOCUSED) != 0) {
        const bool focused = (state & LVIS_FOCUSED) != 0;
        const int loser = focus;
        if (focused && loser != row && loser >= 0) {
            const UINT had = State(loser);
            focus = -1;
            // One that has just lost the selection too is told once.
            const auto told =
                std::find_if(changes.begin(), changes.end(),
                             [loser](const auto& entry) { return entry.row == loser; });
            if (told != changes.end())
                told->after = State(loser);
            else
                changes.push_back({loser, had, State(loser)});
        }
        if (focused)
            focus = row;
        else if (focus == row)
            focus = -1;
    }
    if ((mask & LVIS_SELECTED) != 0) {
        std::vector<StateChange> own;
        SetSelected(row, (state & LVIS_SELECTED) != 0, &own);
    }
    if (State(row) != before)
        changes.push_back({row, before, State(row)});
    return changes;
}

int ListModel::NextRow(int after, UINT flags) const
{
    const bool selected = (flags & LVNI_SELECTED) != 0;
    if (after >= RowCount() || (selected && selectedCount == 0))
        return -1;
    if ((flags & LVNI_FOCUSED) != 0)
        return focus > after && focus >= 0 && (!selected || Row(focus).selected) ? focus : -1;
    for (int row = std::max(after, -1) + 1; row < RowCount(); ++row)
        if (!selected || Row(row).selected)
            return row;
    return -1;
}

int ListModel::FindTag(int after, LPARAM tag) const
{
    if (after >= RowCount())
        return -1;
    if (after < 0 && tagsIndexed) {
        const auto found = rowOfTag.find(tag);
        return found != rowOfTag.end() ? found->second : -1;
    }
    for (int row = std::max(after, -1) + 1; row < RowCount(); ++row)
        if (Row(row).tag == tag)
            return row;
    return -1;
}

void ListModel::Reorder(const std::vector<int>& order)
{
    std::vector<ListRow> sorted;
    sorted.reserve(rows.size());
    int newFocus = -1;
    for (const int row : order) {
        if (row == focus)
            newFocus = static_cast<int>(sorted.size());
        sorted.push_back(std::move(rows[static_cast<size_t>(row)]));
    }
    rows = std::move(sorted);
    focus = newFocus;
    RowsChanged();
}

void ListModel::IndexTags(bool on)
{
    tagsIndexed = on;
    rowOfTag.clear();
    if (!on)
        return;
    rowOfTag.reserve(rows.size());
    for (int row = 0; row < RowCount(); ++row)
        rowOfTag.emplace(Row(row).tag, row); // the first of equal ones stays
}

void ListModel::RowsChanged()
{
    ++generation;
    IndexTags(false);
}

} // namespace tavrix::platform
