#include "platform/qt/ChoiceModel.h"

#include <QString>

#include <algorithm>
#include <utility>

namespace tavrix::platform
{
namespace
{

QString Readable(const std::u16string& text)
{
    return QString::fromStdU16String(text);
}

/// The first row from behind `after` round to it that the predicate holds for.
template <class Predicate>
int FindFrom(int count, int after, Predicate holds)
{
    const int start = after >= -1 && after < count ? after + 1 : 0;
    for (int i = 0; i < count; ++i) {
        const int row = (start + i) % count;
        if (holds(row))
            return row;
    }
    return -1;
}

enum class Action {
    Add,
    Insert,
    Remove,
    Clear,
    Count,
    Chosen,
    Choose,
    ChooseText,
    Text,
    TextLength,
    Data,
    SetData,
    Find,
    FindWhole
};

struct MessageRow {
    UINT ofCombo;
    UINT ofList; // 0: the class has none
    Action action;
};

constexpr MessageRow Messages[] = {
    {CB_ADDSTRING, LB_ADDSTRING, Action::Add},
    {CB_INSERTSTRING, LB_INSERTSTRING, Action::Insert},
    {CB_DELETESTRING, LB_DELETESTRING, Action::Remove},
    {CB_RESETCONTENT, LB_RESETCONTENT, Action::Clear},
    {CB_GETCOUNT, LB_GETCOUNT, Action::Count},
    {CB_GETCURSEL, LB_GETCURSEL, Action::Chosen},
    {CB_SETCURSEL, LB_SETCURSEL, Action::Choose},
    {CB_SELECTSTRING, LB_SELECTSTRING, Action::ChooseText},
    {CB_GETLBTEXT, LB_GETTEXT, Action::Text},
    {CB_GETLBTEXTLEN, LB_GETTEXTLEN, Action::TextLength},
    {CB_GETITEMDATA, LB_GETITEMDATA, Action::Data},
    {CB_SETITEMDATA, LB_SETITEMDATA, Action::SetData},
    {CB_FINDSTRING, LB_FINDSTRING, Action::Find},
    {CB_FINDSTRINGEXACT, 0, Action::FindWhole},
};

const MessageRow* RowOf(bool combo, UINT message)
{
    for (const MessageRow& row : Messages)
        if (message == (combo ? row.ofCombo : row.ofList) && message != 0)
            return &row;
    return nullptr;
}

ChoiceOutcome Insert(ChoiceModel& model, int row, const std::u16string& text)
{
    if (row < 0 || row > model.Count())
        return {LB_ERR};
    model.Insert(row, text);
    return {row, true};
}

ChoiceOutcome Remove(ChoiceModel& model, int row)
{
    if (!model.Has(row))
        return {LB_ERR};
    const bool chosen = model.Chosen() == row;
    model.Remove(row);
    return {model.Count(), true, chosen};
}

/// -1 takes the choice away and is answered by an error all the same.
ChoiceOutcome Choose(ChoiceModel& model, int row)
{
    model.Choose(model.Has(row) ? row : -1);
    return {model.Chosen(), false, true};
}

ChoiceOutcome ChooseText(ChoiceModel& model, int after, const std::u16string& text)
{
    const int row = model.FindBeginning(after, text);
    return row >= 0 ? Choose(model, row) : ChoiceOutcome{LB_ERR};
}

ChoiceOutcome CopyText(const ChoiceModel& model, int row, WCHAR* buffer)
{
    if (!model.Has(row))
        return {LB_ERR};
    const std::u16string& text = model.At(row).text;
    if (buffer != nullptr)
        std::copy_n(text.c_str(), text.size() + 1, buffer);
    return {static_cast<LRESULT>(text.size())};
}

ChoiceOutcome SetData(ChoiceModel& model, int row, LPARAM data)
{
    if (!model.Has(row))
        return {LB_ERR};
    model.SetData(row, data);
    return {TRUE};
}

} // namespace

void ChoiceModel::Insert(int row, std::u16string text)
{
    rows.insert(rows.begin() + row, Choice{std::move(text)});
    if (chosen >= row)
        ++chosen;
}

int ChoiceModel::PlaceOf(const std::u16string& text) const
{
    const auto before = [](const std::u16string& value, const Choice& row) {
        return Readable(value).compare(Readable(row.text), Qt::CaseInsensitive) < 0;
    };
    return static_cast<int>(std::upper_bound(rows.begin(), rows.end(), text, before) -
                            rows.begin());
}

void ChoiceModel::Remove(int row)
{
    rows.erase(rows.begin() + row);
    if (chosen == row)
        chosen = -1;
    else if (chosen > row)
        --chosen;
}

void ChoiceModel::Clear()
{
    rows.clear();
    chosen = -1;
}

int ChoiceModel::FindBeginning(int after, const std::u16string& text) const
{
    const QString wanted = Readable(text);
    return FindFrom(Count(), after, [&](int row) {
        return Readable(At(row).text).startsWith(wanted, Qt::CaseInsensitive);
    });
}

int ChoiceModel::FindWhole(int after, const std::u16string& text) const
{
    const QString wanted = Readable(text);
    return FindFrom(Count(), after, [&](int row) {
        return Readable(At(row).text).compare(wanted, Qt::CaseInsensitive) == 0;
    });
}

bool HandleChoiceMessage(ChoiceModel& model, bool combo, bool sorted, UINT message, WPARAM wParam,
                         LPARAM lParam, ChoiceOutcome* outcome)
{
    const MessageRow* known = RowOf(combo, message);
    if (known == nullptr)
        return false;
    const int row = static_cast<int>(wParam);
    const auto text = [lParam] {
        const auto* given = reinterpret_cast<const WCHAR*>(lParam);
        return std::u16string(given != nullptr ? given : TEXT(""));
    };
    switch (known->action) {
    case Action::Add: {
        const std::u16string added = text();
        *outcome = Insert(model, sorted ? model.PlaceOf(added) : model.Count(), added);
        break;
    }
    case Action::Insert:
        *outcome = Insert(model, row == -1 ? model.Count() : row, text());
        break;
    case Action::Remove:
        *outcome = Remove(model, row);
        break;
    case Action::Clear:
        model.Clear();
        *outcome = {0, true, true};
        break;
    case Action::Count:
        *outcome = {model.Count()};
        break;
    case Action::Chosen:
        *outcome = {model.Chosen()};
        break;
    case Action::Choose:
        *outcome = Choose(model, row);
        break;
    case Action::ChooseText:
        *outcome = ChooseText(model, row, text());
        break;
    case Action::Text:
        *outcome = CopyText(model, row, reinterpret_cast<WCHAR*>(lParam));
        break;
    case Action::TextLength:
        *outcome = CopyText(model, row, nullptr);
        break;
    case Action::Data:
        *outcome = {model.Has(row) ? model.At(row).data : LB_ERR};
        break;
    case Action::SetData:
        *outcome = SetData(model, row, lParam);
        break;
    case Action::Find:
        *outcome = {model.FindBeginning(row, text())};
        break;
    case Action::FindWhole:
        *outcome = {model.FindWhole(row, text())};
        break;
    }
    return true;
}

} // namespace tavrix::platform
