// The file dialog's list: what of the current folder it shows, in which order, and where its
// folders lead.
#include "view/FileDialog.h"

#include "foundation/BoundedText.h"
#include "foundation/Directory.h"
#include "foundation/Language.h"
#include "foundation/NumberText.h"
#include "foundation/TextCompare.h"
#include "foundation/TextSearch.h"
#include "resources/Ids.h"

namespace
{

constexpr u32 NameRead = 256 + 1;               // of the name field, for its extension
constexpr u32 JoinedCapacity = 1024;            // all filters' patterns
constexpr u32 SearchCapacity = 2048 + MAX_PATH; // the folder and a pattern
constexpr u32 SizeCapacity = 24; // twenty digits and what the conversion wants beyond them
constexpr i32 ListEnd = 0x7FFFFFFF;
constexpr i32 SortedColumn = 1; // the list helper counts the first column as 1

u32 LengthOf(const WCHAR* text)
{
    u32 length = 0;
    (void)TextLength(text, &length);
    return length;
}

/// Calls `take` with each entry that a search finds; a folder that is gone or closed to us has
/// none.
template <typename Take>
void ForEachEntry(const WCHAR* search, Take take)
{
    Directory directory;
    FindRecord* record = nullptr;
    if (directory.FindFirst(&record, search) < 1)
        return;
    for (FileEntry entry; directory.FindNext(record, &entry) > 0;)
        take(entry);
    (void)directory.FindClose(record);
}

} // namespace

i32 FileDialog::ChosenFilter() const
{
    const HWND box = GetDlgItem(dialog, ControlFileFilter);
    const LRESULT chosen = SendMessageW(box, CB_GETCURSEL, 0, 0);
    return static_cast<i32>(SendMessageW(box, CB_GETITEMDATA, static_cast<WPARAM>(chosen), 0));
}

void FileDialog::ApplyExtension(ForeignExtension foreign)
{
    const WCHAR* patterns = PatternsOfPair(kept.lpstrFilter, ChosenFilter());
    if (patterns == nullptr)
        return;
    WCHAR name[NameRead + MAX_PATH];
    name[0] = 0;
    GetDlgItemTextW(dialog, ControlFileName, name, NameRead);
    if (MakeNameFit(name, NameRead + MAX_PATH, patterns, foreign) > 0)
        SetDlgItemTextW(dialog, ControlFileName, name);
}

i32 FileDialog::SetFolder(const WCHAR* folder)
{
    const u32 length = LengthOf(folder);
    const bool isEnded = length != 0 && folder[length - 1] == TEXT('\\');
    if (length + (isEnded ? 1u : 2u) > FolderCapacity)
        return NothingDone;
    // An exact fit counts as cut: the answers are not looked at.
    (void)CopyText(currentFolder, FolderCapacity, folder);
    if (!isEnded)
        (void)AppendText(currentFolder, FolderCapacity, TEXT("\\"));
    return Done;
}

i32 FileDialog::Descend(const WCHAR* path)
{
    WCHAR folder[FolderCapacity];
    (void)CopyText(folder, FolderCapacity, currentFolder);
    if (LengthOf(currentFolder) + LengthOf(path) >= FolderCapacity)
        return NothingDone;
    (void)AppendText(folder, FolderCapacity, path);
    return SetFolder(folder);
}

void FileDialog::GoUp()
{
    const u32 length = LengthOf(currentFolder);
    if (length <= 1)
        return;
    currentFolder[length - 1] = 0;
    const WCHAR* separator = nullptr;
    if (FindLastChar(currentFolder, TEXT('\\'), &separator) > 0)
        currentFolder[separator + 1 - currentFolder] = 0;
    else
        (void)SetFolder(TEXT("\\"));
}

void FileDialog::Follow(i32 icon, const WCHAR* name)
{
    if (icon == ParentIcon)
        GoUp();
    else if (icon != FolderIcon || Descend(name) < 1)
        return;
    Refresh();
}

void FileDialog::Refresh()
{
    if (const WCHAR* patterns = PatternsOfPair(kept.lpstrFilter, ChosenFilter())) {
        FillList(patterns);
        ApplyExtension(ForeignExtension::Replace);
        return;
    }
    WCHAR all[JoinedCapacity];
    JoinPatterns(kept.lpstrFilter, all, JoinedCapacity);
    FillList(all);
}

void FileDialog::FillList(const WCHAR* patterns)
{
    (void)list->Clear();
    AddFolders();
    PatternItems items(patterns);
    for (PatternItem item; items.Next(&item);) {
        if (!ComesAgain(item))
            AddFiles(item);
    }
    Sort();
    if (LengthOf(currentFolder) > 1)
        (void)list->AddItem(InLanguage(TEXT("Upto"), TEXT("上へ")), 0, 0, ParentIcon);
}

void FileDialog::AddFolders()
{
    WCHAR search[SearchCapacity];
    (void)CopyText(search, SearchCapacity, currentFolder);
    (void)AppendText(search, SearchCapacity, TEXT("*"));
    ForEachEntry(search, [this](const FileEntry& entry) {
        const bool isDots =
            IsSameText(entry.name, TEXT(".")) > 0 || IsSameText(entry.name, TEXT("..")) > 0;
        if (entry.type == EntryDirectory && !isDots)
            (void)list->AddItem(entry.name, 0, ListEnd, FolderIcon);
    });
}

void FileDialog::AddFiles(const PatternItem& pattern)
{
    WCHAR search[SearchCapacity];
    if (pattern.length >= MAX_PATH)
        return; // longer than any name
    (void)CopyText(search, SearchCapacity, currentFolder);
    (void)AppendText(search, SearchCapacity, pattern.text, TEXT(';'));
    ForEachEntry(search, [this](const FileEntry& entry) {
        if (entry.type != EntryFile)
            return;
        const i32 row = list->AddItem(entry.name, 0, ListEnd, FileIcon);
        WCHAR size[SizeCapacity];
        (void)FormatUnsigned64(entry.size, size, SizeCapacity);
        (void)list->SetSubItem(size, 1, row);
    });
}

void FileDialog::Sort()
{
    (void)list->Sort(SortedColumn, sortDescending ? 0 : 1);
}
