// The program's own dialog for choosing a file, for opening and for saving: the current folder's
// folders and files, a name and the plugins' formats as filters. Its callers fill the record of the
// device's file dialogs. What the user has set (the folder, the direction of the sort) stays from
// one use to the next. Modal; user-interface thread.
//
// Fields of the record that count:
//   hwndOwner, hInstance   the owner; whose resources hold the dialog
//   lpstrFilter            pairs of texts, description and ";"-joined patterns, ended by an empty one
//   nFilterIndex           in and out: the pair's number from 0, or -1 for all image files
//   lpstrFile, nMaxFile    in: its last part is the name to begin with; out: the path chosen, filled
//                          on OK alone, at most nMaxFile characters with the final zero
//   lpstrInitialDir        the folder to begin in, ended by "\"; null: where the last use ended
//   lpstrTitle             the title line
//   Flags                  OFN_FILEMUSTEXIST, OFN_OVERWRITEPROMPT
#pragma once

#include "foundation/Result.h"

#include <windows.h>

#include <commctrl.h>
#include <commdlg.h>

#include <memory>

class FileDialog
{
public:
    FileDialog();
    ~FileDialog();
    FileDialog(const FileDialog&) = delete;
    FileDialog& operator=(const FileDialog&) = delete;

    /// Done for OK, NothingDone otherwise.
    [[nodiscard]] i32 Open(OPENFILENAMEW* record);
    /// The same for saving. The first time in a run it begins without a name.
    [[nodiscard]] i32 Save(OPENFILENAMEW* record);

private:
    struct State;
    std::unique_ptr<State> state;
};
