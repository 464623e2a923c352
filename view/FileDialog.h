// The program's own dialog for choosing a file, for opening and for saving: the current folder's
// folders and files, a name and the plugins' formats as filters. Its callers fill the record of the
// device's file dialogs. What the user has set (the folder, the direction of the sort) stays from
// one use to the next. Modal; user-interface thread.
//
// Fields of the record that count:
//   hwndOwner, hInstance   the owner; whose resources hold the dialog
//   lpstrFilter            pairs of texts, description and ";"-joined patterns, ended by an empty
//   one nFilterIndex           in and out: the pair's number from 0, or -1 for all image files
//   lpstrFile, nMaxFile    in: its last part is the name to begin with; out: the path chosen,
//   filled
//                          on OK alone, at most nMaxFile characters with the final zero
//   lpstrInitialDir        the folder to begin in, ended by "\"; null: where the last use ended
//   lpstrTitle             the title line
//   Flags                  OFN_FILEMUSTEXIST, OFN_OVERWRITEPROMPT
#pragma once

#include "foundation/Result.h"
#include "view/FilePatterns.h"
#include "view/ListViewControl.h"

#include <windows.h>

#include <commctrl.h>
#include <commdlg.h>

#include <optional>

class FileDialog
{
public:
    FileDialog();
    ~FileDialog();
    FileDialog(const FileDialog&) = delete;
    FileDialog& operator=(const FileDialog&) = delete;

    /// Done for OK, NothingDone otherwise; BadArgument for null.
    [[nodiscard]] i32 Open(OPENFILENAMEW* record);
    /// The same for saving. The first time in a run it begins without a name.
    [[nodiscard]] i32 Save(OPENFILENAMEW* record);

private:
    /// What an item of the list is, by its picture.
    enum ItemIcon : i32 { ParentIcon = 0, FolderIcon = 1, FileIcon = 2, IconCount = 3 };
    enum : u32 { FolderCapacity = 2048 };

    static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    /// `named` is the record whose file decides whether there is a name to begin with.
    i32 Run(OPENFILENAMEW* record, const OPENFILENAMEW& named);
    void Start(HWND window);
    void LoadIcons();
    void DestroyIcons();
    void FillFilters();
    void OnCommand(u32 id, u32 code);
    void OnOk();
    /// False when the person is to choose again.
    bool MayTake(const WCHAR* path) const;
    void OnNotify(const NMHDR& header);
    /// Puts a file's name into the name field. The item's text and its icon, -1 for none.
    i32 ReadItem(i32 row, WCHAR (&name)[MAX_PATH]);

    // The list's side: FileDialogList.cpp.

    /// The filter's pair, or -1 for all image files.
    i32 ChosenFilter() const;
    void ApplyExtension(ForeignExtension foreign);
    /// Done, or NothingDone with the folder as it was for one that is too long.
    i32 SetFolder(const WCHAR* folder);
    /// Goes into a folder of the current one, or down a path of several. As SetFolder.
    i32 Descend(const WCHAR* path);
    void GoUp();
    /// Goes where a folder's item, or the parent's, leads.
    void Follow(i32 icon, const WCHAR* name);
    void Refresh();
    void FillList(const WCHAR* patterns);
    void AddFolders();
    void AddFiles(const PatternItem& pattern);
    void Sort();

    // The list and the dialog are there while it is open.
    HWND dialog = nullptr;
    std::optional<ListViewControl> list;
    HFONT font;                               // the title line's
    WCHAR currentFolder[FolderCapacity] = {}; // empty before the first use; ends in "\"
    const WCHAR* initialName = nullptr;       // inside the record's file
    // A copy of the last record. What its pointers lead to is gone after its use: from then on they
    // are told from null and not followed.
    OPENFILENAMEW kept = {};
    bool sortDescending = false;
    HICON icons[IconCount] = {};
};
