// What a list box or a combo box offers: texts in order, a value of the program's with each, and
// which one is chosen. Rows count from 0; -1 is none. No toolkit widget here, and no word to
// anybody: whoever changes the model tells. Texts are compared without regard to case.
// User-interface thread.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string>
#include <vector>

namespace tavrix::platform
{

struct Choice {
    std::u16string text;
    LPARAM data = 0;
};

class ChoiceModel
{
public:
    int Count() const { return static_cast<int>(rows.size()); }
    bool Has(int row) const { return row >= 0 && row < Count(); }
    const Choice& At(int row) const { return rows[static_cast<size_t>(row)]; }
    int Chosen() const { return chosen; }

    /// -1 or a row that is there.
    void Choose(int row) { chosen = row; }
    /// Before `row`, which may be the number of rows. The choice stays with its text.
    void Insert(int row, std::u16string text);
    /// Where a text belongs in an ordered list, behind those that are equal.
    int PlaceOf(const std::u16string& text) const;
    void Remove(int row);
    void Clear();
    void SetData(int row, LPARAM data) { rows[static_cast<size_t>(row)].data = data; }

    /// The first row behind `after` (-1: from the first) that begins with the text, or is the text;
    /// past the last row the search goes on from the first and ends with `after`. -1 for none.
    int FindBeginning(int after, const std::u16string& text) const;
    int FindWhole(int after, const std::u16string& text) const;

private:
    std::vector<Choice> rows;
    int chosen = -1;
};

/// What a message came to.
struct ChoiceOutcome {
    LRESULT result = 0;
    bool rowsChanged = false;
    bool chosenAnew = false; // what is chosen was set, or its row is gone
};

/// Carries out a message of the class COMBOBOX (`combo`) or LISTBOX that concerns the model alone;
/// false for any other. With `sorted` a text that is added goes where it belongs.
bool HandleChoiceMessage(ChoiceModel& model, bool combo, bool sorted, UINT message, WPARAM wParam,
                         LPARAM lParam, ChoiceOutcome* outcome);

} // namespace tavrix::platform
