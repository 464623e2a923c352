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

    // The order of the operations is part of the class.

    /// Takes a copy of `path` as the base; null takes the program's own folder. NoMemory (the base
    /// stays) or Done.
    virtual i32 SetBase(const WCHAR* path);
    /// Without a base `buffer` becomes the empty text; otherwise the base is appended to the text
    /// that `buffer` holds, with AppendText's codes. BadArgument for null or no capacity.
    virtual i32 GetBase(WCHAR* buffer, i32 capacity);
    /// Moves the base into a subfolder by name; nothing is checked on disk. BadArgument, NoMemory
    /// (the base stays) or Done.
    virtual i32 Enter(const WCHAR* name);
    /// What a listing of `path` finds first is a file, or a folder. Done or Failed, also for want
    /// of memory; BadArgument for null.
    [[nodiscard]] virtual i32 IsFile(const WCHAR* path);
    [[nodiscard]] virtual i32 IsDirectory(const WCHAR* path);
    /// Opens a listing; undo with FindClose. `*handle` is null after a failure. BadArgument,
    /// NoMemory, Failed when nothing matches, or Done.
    [[nodiscard]] virtual i32 FindFirst(FindRecord** handle, const WCHAR* pattern);
    /// Gives the next entry. BadArgument, NothingDone past the last, or Done.
    [[nodiscard]] virtual i32 FindNext(FindRecord* handle, FileEntry* entry);
    /// Ends a listing and frees the record. BadArgument or Done.
    virtual i32 FindClose(FindRecord* handle);
    /// MakeDirectory, RemoveDirectory and DeleteFile turn "/" into "\" in the caller's own text,
    /// which must be writable. BadArgument, NoMemory, Done, or Failed when the device refuses.
    virtual i32 MakeDirectory(WCHAR* path);
    virtual i32 RemoveDirectory(WCHAR* path);
    /// MakeEmpty replaces what is there; any other mode makes a file that must not exist yet.
    /// BadArgument, NoMemory, Done or Failed.
    [[nodiscard]] virtual i32 MakeFile(const WCHAR* path, u32 mode);
    virtual i32 DeleteFile(WCHAR* path);
    /// These two ignore the base, and have no code but Done and Failed.
    virtual i32 CopyFile(const WCHAR* from, const WCHAR* to, i32 failIfExists);
    virtual i32 MoveFile(const WCHAR* from, const WCHAR* to);
    /// Opens an existing file; undo with CloseFile. Clears `*out` first. BadArgument, NoMemory, the
    /// stream's code when it does not open, or Done.
    [[nodiscard]] virtual i32 OpenFile(const WCHAR* path, FileStream** out, i32 readOnly);
    /// Closes and deletes the stream and clears `*stream`. BadArgument, NothingDone for a null
    /// `*stream`, or Done.
    virtual i32 CloseFile(FileStream** stream);

private:
    // Writes the whole path into `scratch`, which the operation drops at its end.
    i32 Resolve(const WCHAR* path);
    void DropScratch();

    WCHAR* base;
    Allocator* allocator;
    WCHAR* scratch;
};
