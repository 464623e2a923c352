// Files and folders relative to a base folder. The device has no current directory, so that the
// base stands in for one; a path with a leading separator is glued to the base all the same. "/" is
// taken as "\". An object lives for one task, on one thread.
#pragma once

#include "foundation/Allocator.h"
#include "foundation/FileStream.h"
#include "foundation/KnownFolders.h"

/// One entry of a listing.
struct FileEntry {
    WCHAR name[260]; // without a folder
    u32 type;        // EntryFile or EntryDirectory
    u64 size;        // bytes
};

enum : u32 { EntryFile = 1, EntryDirectory = 2 };
enum : u32 { MakeNew = 1, MakeEmpty = 2 }; // modes of Directory::MakeFile

/// An open listing.
struct FindRecord {
    HANDLE find;
    WIN32_FIND_DATAW data;
    i32 finished;
};

class Directory
{
public:
    Directory();
    virtual ~Directory();
    Directory(const Directory&) = delete;
    Directory& operator=(const Directory&) = delete;

    /// Null takes the program's own folder. NoMemory or Done.
    virtual i32 SetBase(const WCHAR* path);
    /// Without a base `buffer` becomes the empty text; otherwise the base is appended to the text
    /// that `buffer` holds, with AppendText's codes. BadArgument for null or no capacity.
    virtual i32 GetBase(WCHAR* buffer, i32 capacity);
    /// Moves the base into a subfolder by name; nothing is checked on disk.
    virtual i32 Enter(const WCHAR* name);
    /// Done or Failed; BadArgument for null.
    [[nodiscard]] virtual i32 IsFile(const WCHAR* path);
    [[nodiscard]] virtual i32 IsDirectory(const WCHAR* path);
    /// Opens a listing; Failed when nothing matches.
    [[nodiscard]] virtual i32 FindFirst(FindRecord** handle, const WCHAR* pattern);
    /// Gives the next entry; NothingDone past the last.
    [[nodiscard]] virtual i32 FindNext(FindRecord* handle, FileEntry* entry);
    virtual i32 FindClose(FindRecord* handle);
    /// These three turn "/" into "\" in the caller's own text, which must be writable.
    virtual i32 MakeDirectory(WCHAR* path);
    virtual i32 RemoveDirectory(WCHAR* path);
    virtual i32 DeleteFile(WCHAR* path);
    /// MakeEmpty replaces what is there; any other mode makes a file that must not exist yet.
    [[nodiscard]] virtual i32 MakeFile(const WCHAR* path, u32 mode);
    /// These two ignore the base.
    virtual i32 CopyFile(const WCHAR* from, const WCHAR* to, i32 failIfExists);
    virtual i32 MoveFile(const WCHAR* from, const WCHAR* to);
    /// Clears `*out` first; the stream's code when it does not open. Undo with CloseFile.
    [[nodiscard]] virtual i32 OpenFile(const WCHAR* path, FileStream** out, i32 readOnly);
    /// Closes and deletes the stream and clears `*stream`. NothingDone for a null `*stream`.
    virtual i32 CloseFile(FileStream** stream);

private:
    i32 Resolve(const WCHAR* path);
    void DropScratch();

    WCHAR* base;
    Allocator* allocator;
    WCHAR* scratch;
};
