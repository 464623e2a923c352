// What the tests of the file dialog share: a folder of files, the record, the dialog under a
// script, and the questions that it asks.
#pragma once

#include "view/FileDialog.h"

#include "foundation/tests/TestFolder.h"
#include "view/tests/ToolWindowTesting.h"

#include <functional>
#include <string>
#include <vector>

namespace filedialogtest
{

using namespace toolwindowtest;

using Text = std::u16string;
using Texts = std::vector<Text>;

/// A filter text from its parts, with the zero that ends it.
inline Text FilterOf(const Texts& parts)
{
    Text filter;
    for (const Text& part : parts)
        filter += part + u'\0';
    return filter + u'\0';
}

/// The dialog while it is open.
struct Dialog {
    HWND window;

    HWND Control(int id) const { return GetDlgItem(window, id); }
    HWND List() const { return Control(1001); }
    bool IsOpen() const { return IsWindowVisible(window) != FALSE; }

    /// A row's icon number, its name and its size: "2 a.jpg 12".
    Text Row(int row) const
    {
        WCHAR name[300] = {};
        WCHAR size[40] = {};
        LVITEMW item = {};
        item.mask = LVIF_TEXT | LVIF_IMAGE;
        item.iItem = row;
        item.pszText = name;
        item.cchTextMax = 300;
        if (!SendMessageW(List(), LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item)))
            return {};
        const Text shown = Wide(std::to_string(item.iImage)) + u" " + name;
        item.mask = LVIF_TEXT;
        item.iSubItem = 1;
        item.pszText = size;
        SendMessageW(List(), LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
        return size[0] != 0 ? shown + u" " + size : shown;
    }
    Texts Rows() const
    {
        Texts rows;
        const auto count = static_cast<int>(SendMessageW(List(), LVM_GETITEMCOUNT, 0, 0));
        for (int row = 0; row < count; ++row)
            rows.push_back(Row(row));
        return rows;
    }
    /// The row that begins with an icon number and a name; fails the test when there is none.
    int Find(const Text& shown) const
    {
        const Texts rows = Rows();
        for (size_t i = 0; i < rows.size(); ++i)
            if (rows[i] == shown || rows[i].starts_with(shown + u" "))
                return static_cast<int>(i);
        ADD_FAILURE() << "no row " << Utf8(shown.c_str());
        return -1;
    }
    int Selected() const
    {
        return static_cast<int>(
            SendMessageW(List(), LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
    }
    void Mark(int row, bool selected) const
    {
        LVITEMW item = {};
        item.state = selected ? LVIS_SELECTED | LVIS_FOCUSED : 0;
        item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
        SendMessageW(List(), LVM_SETITEMSTATE, static_cast<WPARAM>(row),
                     reinterpret_cast<LPARAM>(&item));
    }
    void Select(const Text& shown) const { Mark(Find(shown), true); }
    /// The middle of a row's first column, on the screen.
    POINT PlaceOfRow(const Text& shown) const
    {
        RECT bounds = {};
        bounds.left = LVIR_BOUNDS;
        SendMessageW(List(), LVM_GETITEMRECT, static_cast<WPARAM>(Find(shown)),
                     reinterpret_cast<LPARAM>(&bounds));
        POINT place = {40, (bounds.top + bounds.bottom) / 2};
        ClientToScreen(List(), &place);
        return place;
    }

    Text Name() const { return ControlText(window, 1002); }
    void Type(const Text& name) const { SetDlgItemTextW(window, 1002, name.c_str()); }

    LRESULT ToFilters(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const
    {
        return SendMessageW(Control(1003), message, wParam, lParam);
    }
    Text FilterText(LRESULT index) const
    {
        WCHAR text[200] = {};
        ToFilters(CB_GETLBTEXT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(text));
        return text;
    }
    i32 FilterData(LRESULT index) const
    {
        return static_cast<i32>(ToFilters(CB_GETITEMDATA, static_cast<WPARAM>(index)));
    }
    Texts Filters() const
    {
        Texts filters;
        for (LRESULT i = 0; i < ToFilters(CB_GETCOUNT); ++i)
            filters.push_back(FilterText(i));
        return filters;
    }
    Text Filter() const { return FilterText(ToFilters(CB_GETCURSEL)); }
    /// As the person does: the message of a choice follows.
    void ChooseFilter(const Text& text) const
    {
        for (LRESULT i = 0; i < ToFilters(CB_GETCOUNT); ++i)
            if (FilterText(i) == text)
                ToFilters(CB_SETCURSEL, static_cast<WPARAM>(i));
        EXPECT_EQ(Filter(), text);
        SendMessageW(window, WM_COMMAND, MAKEWPARAM(1003, CBN_SELCHANGE),
                     reinterpret_cast<LPARAM>(Control(1003)));
    }

    void Command(WPARAM id) const { SendMessageW(window, WM_COMMAND, id, 0); }
    void Ok() const { Command(IDOK); }
    void Cancel() const { Command(IDCANCEL); }
    /// Enters one folder after the other, by selection and OK.
    void Enter(const Texts& folders) const
    {
        for (const Text& name : folders) {
            Select(u"1 " + name);
            Ok();
        }
    }
};

using Script = std::function<void(const Dialog&)>;

/// Begins in a folder of its own with three files and a folder, with all image files of two
/// filters.
class FileDialogTest : public Windows
{
protected:
    FileDialogTest()
    {
        folder.Write("b.jpg", std::string(7, 'x'));
        folder.Write("A.png", "");
        folder.Write("notes.txt", "words");
        std::filesystem::create_directory(folder.Host("sub"));
        folder.Write("sub/c.JPEG", std::string(12, 'x'));
        start = folder.Device() + u"\\";
        record.lStructSize = sizeof record;
        record.hwndOwner = owner;
        record.hInstance = instance;
        record.lpstrFilter = filter.c_str();
        record.nFilterIndex = static_cast<DWORD>(-1);
        record.lpstrFile = file;
        record.nMaxFile = 260;
        record.lpstrInitialDir = start.c_str();
        record.lpstrTitle = TEXT("Pictures");
    }

    /// Runs the dialog with a script in it, and gives it up when the script leaves it open.
    i32 Open(const Script& script)
    {
        Await(script);
        const i32 result = files.Open(&record);
        EXPECT_TRUE(cameUp);
        return result;
    }
    i32 Save(const Script& script)
    {
        Await(script);
        const i32 result = files.Save(&record);
        EXPECT_TRUE(cameUp);
        return result;
    }
    void Await(const Script& script)
    {
        cameUp = false;
        OnModal([this, script](HWND window, bool box) {
            if (box) {
                PostMessageW(window, WM_COMMAND, answer, 0);
                return;
            }
            cameUp = true;
            Pump(30);
            const Dialog dialog{window};
            script(dialog);
            if (dialog.IsOpen())
                dialog.Cancel();
        });
    }
    Text Path(const Text& name) const { return start + name; }

    FileDialog files;
    TestFolder folder;
    Text start;
    Text filter = FilterOf({u"JPEG", u"*.jpg;*.JPG;*.jpeg", u"PNG picture", u"*.png"});
    WCHAR file[260] = {};
    OPENFILENAMEW record = {};
    WPARAM answer = IDNO; // to a question
    bool cameUp = false;  // the dialog, in the last use
};

} // namespace filedialogtest
