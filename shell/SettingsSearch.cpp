#include "shell/SettingsSearch.h"

#include "foundation/BoundedText.h"
#include "foundation/Language.h"

#include <stdlib.h>

namespace
{

constexpr u32 PathCapacity = 1024; // characters of each of the two working texts
constexpr const WCHAR* FileName = TEXT("Tavrix.ini");

const WCHAR* FolderName()
{
    return InLanguage(TEXT("Configuration Files"), TEXT("設定ファイル"));
}

void AppendEntry(WCHAR* path, const WCHAR* name)
{
    (void)AppendText(path, PathCapacity, TEXT("\\"));
    (void)AppendText(path, PathCapacity, name);
}

// Points the directory at `folder` and asks whether the settings file is there: Done, Failed, or
// NoMemory when that could not be found out. (IsFile does not tell the last two apart, and taking a
// file for absent would let an old one be saved over it.)
i32 HasSettings(Directory& directory, const WCHAR* folder)
{
    if (directory.SetBase(folder) < 0)
        return NoMemory;
    FindRecord* record = nullptr;
    const i32 found = directory.FindFirst(&record, FileName);
    if (found < 1)
        return found;
    FileEntry entry{};
    (void)directory.FindNext(record, &entry);
    (void)directory.FindClose(record);
    return entry.type == EntryFile ? Done : Failed;
}

// A saved file has its mark at least.
bool HasText(const WCHAR* path)
{
    FileStream file;
    u64 size = 0;
    return file.Open(path, 1) > 0 && file.GetSize(&size) > 0 && size > 0;
}

// `path` is the new folder at first and the new file's path in the end.
void Search(SettingsFile* settings, WCHAR* path, WCHAR* other)
{
    (void)GetDocumentsDirectory(path, PathCapacity);
    AppendEntry(path, FolderName());
    const i32 programKnown = GetApplicationDirectory(other, PathCapacity);

    Directory directory;
    if (HasSettings(directory, path) == Failed && programKnown > 0 &&
        HasSettings(directory, other) > 0) {
        AppendEntry(other, FileName);
        (void)settings->Load(other);
    }

    (void)GetDocumentsDirectory(other, PathCapacity);
    if (directory.SetBase(other) > 0) {
        (void)CopyText(other, PathCapacity, FolderName());
        (void)directory.MakeDirectory(other); // it may be there already
    }
    AppendEntry(path, FileName);
    // Loading writes what is loaded back to its old place first. Where the new place has just
    // refused the very same text, the old file is the only one and stays as it is.
    if (settings->Save(path) > 0 && !HasText(path))
        (void)settings->Close(0);
    (void)settings->Load(path);
}

} // namespace

void FindSettings(SettingsFile* settings)
{
    if (settings == nullptr)
        return;
    auto* scratch = static_cast<WCHAR*>(calloc(2 * PathCapacity, sizeof(WCHAR)));
    if (scratch == nullptr)
        return;
    Search(settings, scratch, scratch + PathCapacity);
    free(scratch);
}
