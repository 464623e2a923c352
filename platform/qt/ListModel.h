// What a list control holds: columns, rows with a text for each column, an image and a tag, and
// which rows are selected and which one has the focus. Rows and columns count from 0; column 0 is
// the item itself, the others are its sub items. No toolkit here, and no word to anybody: whoever
// changes the model tells. User-interface thread.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <cstddef>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace tavrix::platform
{

struct ListColumn {
    std::u16string title;
    int width = 0; // pixels, never negative
    int format = LVCFMT_LEFT;
};

struct ListCell {
    std::u16string text;
    int image = 0;
};

struct ListRow {
    ListCell item;
    std::vector<ListCell> subItems; // as many as were ever set
    LPARAM tag = 0;
    bool selected = false;
};

/// One row whose state became another, as LVIS_ flags.
struct StateChange {
    int row;
    UINT before;
    UINT after;
};

class ListModel
{
public:
    /// What a sub item's number may be, so that a wrong one cannot ask for all memory.
    static constexpr int MostColumns = 1024;

    int RowCount() const { return static_cast<int>(rows.size()); }
    int ColumnCount() const { return static_cast<int>(columns.size()); }
    bool HasRow(int row) const { return row >= 0 && row < RowCount(); }
    const ListRow& Row(int row) const { return rows[static_cast<size_t>(row)]; }
    const ListColumn& Column(int column) const { return columns[static_cast<size_t>(column)]; }
    int Focus() const { return focus; } // -1: no row
    int SelectedCount() const { return selectedCount; }

    /// The cell, an empty one for a sub item that was never set; null where no such row or column
    /// can be.
    const ListCell* Cell(int row, int column) const;
    /// The same to be changed: makes the sub items up to it. Null as above.
    ListCell* CellForWriting(int row, int column);
    void SetTag(int row, LPARAM tag);
    LPARAM Tag(int row) const { return Row(row).tag; }

    /// At `column`, at most behind the last; the sub items from there on move by one. Its index.
    int InsertColumn(int column, ListColumn inserted);
    void SetColumnWidth(int column, int width);

    /// At `row`, at most behind the last. Its index.
    int InsertRow(int row, ListRow inserted);
    bool DeleteRow(int row);
    void Clear();

    /// LVIS_SELECTED and LVIS_FOCUSED of a row.
    UINT State(int row) const;
    /// Sets the bits of `mask` in a row to those of `state`; a focus leaves the row that had it,
    /// and with `single` so does a selection. What changed, in that order.
    std::vector<StateChange> SetState(int row, UINT state, UINT mask, bool single);

    /// The first row behind `after` (-1: of all) that has all of `flags` (LVNI_SELECTED,
    /// LVNI_FOCUSED); -1 when there is none.
    int NextRow(int after, UINT flags) const;
    /// The first row behind `after` with that tag; -1 when there is none.
    int FindTag(int after, LPARAM tag) const;

    /// Puts the rows into another order: row i is to be what `order[i]` names. Selection and focus
    /// stay with their rows.
    void Reorder(const std::vector<int>& order);
    /// Grows with each change of rows, tags and order: how a walk that calls the program finds out
    /// that its rows are no longer what they were.
    size_t Generation() const { return generation; }
    /// While it is on, FindTag from the start needs no walk: sorting asks for thousands.
    void IndexTags(bool on);

private:
    void SetSelected(int row, bool selected, std::vector<StateChange>* changes);
    void RowsChanged();

    std::vector<ListColumn> columns;
    std::vector<ListRow> rows;
    int focus = -1;
    int selectedCount = 0;
    size_t generation = 0;
    bool tagsIndexed = false;
    std::unordered_map<LPARAM, int> rowOfTag;
};

} // namespace tavrix::platform
