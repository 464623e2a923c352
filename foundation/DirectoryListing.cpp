// Directory's listings, and what is told of a path by listing it.
#include "foundation/BoundedText.h"
#include "foundation/Directory.h"

namespace
{

void Describe(const WIN32_FIND_DATAW& data, FileEntry* entry)
{
    (void)CopyText(entry->name, sizeof entry->name / sizeof entry->name[0], data.cFileName);
    const bool isFolder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    entry->type = isFolder ? EntryDirectory : EntryFile;
    entry->size = static_cast<u64>(data.nFileSizeHigh) << 32 | data.nFileSizeLow;
}

// Lists the exact path through the virtual operations, and compares what comes first.
i32 IsOfType(Directory& directory, const WCHAR* path, u32 type)
{
    if (path == nullptr)
        return BadArgument;
    FindRecord* record = nullptr;
    if (directory.FindFirst(&record, path) < 1)
        return Failed;
    FileEntry entry{};
    const i32 found = directory.FindNext(record, &entry);
    (void)directory.FindClose(record);
    return found > 0 && entry.type == type ? Done : Failed;
}

} // namespace

i32 Directory::IsFile(const WCHAR* path)
{
    return IsOfType(*this, path, EntryFile);
}

i32 Directory::IsDirectory(const WCHAR* path)
{
    return IsOfType(*this, path, EntryDirectory);
}

i32 Directory::FindFirst(FindRecord** handle, const WCHAR* pattern)
{
    if (handle == nullptr || pattern == nullptr)
        return BadArgument;
    *handle = nullptr;
    const i32 resolved = Resolve(pattern);
    if (resolved < 0)
        return resolved;
    void* block = nullptr;
    if (allocator->Alloc(&block, sizeof(FindRecord)) < 0) {
        DropScratch();
        return NoMemory;
    }
    FindRecord* record = static_cast<FindRecord*>(block);
    record->find = FindFirstFileW(scratch, &record->data);
    DropScratch();
    if (record->find == INVALID_HANDLE_VALUE) {
        (void)allocator->Free(record);
        return Failed;
    }
    *handle = record;
    return Done;
}

i32 Directory::FindNext(FindRecord* handle, FileEntry* entry)
{
    if (handle == nullptr || entry == nullptr)
        return BadArgument;
    if (handle->finished != 0)
        return NothingDone;
    Describe(handle->data, entry);
    // The record runs one entry ahead of the caller; its end is told with the next call.
    if (!FindNextFileW(handle->find, &handle->data)) {
        ::FindClose(handle->find);
        handle->find = INVALID_HANDLE_VALUE;
        handle->finished = 1;
    }
    return Done;
}

i32 Directory::FindClose(FindRecord* handle)
{
    if (handle == nullptr)
        return BadArgument;
    if (handle->find != INVALID_HANDLE_VALUE)
        ::FindClose(handle->find);
    (void)allocator->Free(handle);
    return Done;
}
