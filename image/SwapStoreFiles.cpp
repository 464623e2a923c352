// Pages in files. Paths lie on the stack and the streams too, so that no step behind the first
// change of a page can fail for want of memory.

#include "foundation/BoundedText.h"
#include "foundation/FileStream.h"
#include "foundation/NumberText.h"
#include "image/SwapStore.h"

#include <handheld.h>

namespace
{

constexpr u32 MostAttempts = 11;
constexpr u32 NameRoom = 32;

} // namespace

bool SwapStore::FitsOnDisk(u32 size) const
{
    ULARGE_INTEGER free = {};
    if (!::GetDiskFreeSpaceExW(directory, &free, nullptr, nullptr))
        return false;
    return free.u.HighPart > 0 || free.u.LowPart > size;
}

// False when the folder is too long for a path of the device: nothing may then be made or deleted
// under the name that is left of it.
bool SwapStore::PathOf(u32 fileId, WCHAR (&path)[PathRoom]) const
{
    // In 64 bits, since the 32-bit form gives numbers of ten digits characters that are none.
    WCHAR name[NameRoom];
    (void)FormatUnsigned64(fileId, name, NameRoom);
    (void)AppendText(name, NameRoom, TEXT(".swp"));
    const size_t length = wcslen(directory);
    if (length > 0 && length < PathRoom) {
        (void)CopyText(path, PathRoom, directory);
        const WCHAR last = directory[length - 1];
        if (last != TEXT('\\') && last != TEXT('/'))
            (void)AppendText(path, PathRoom, TEXT("\\"));
    } else {
        (void)CopyText(path, PathRoom, TEXT("\\"));
    }
    return length < PathRoom && AppendText(path, PathRoom, name) == Done;
}

// Claims a file that nobody has, empty and closed. `*fileId` becomes the number that it bears.
i32 SwapStore::MakeFile(u32* fileId, WCHAR (&path)[PathRoom]) const
{
    for (u32 attempt = 1;; ++attempt) {
        if (PathOf(*fileId, path)) {
            const HANDLE made =
                ::CreateFileW(path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                              CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
            if (made != INVALID_HANDLE_VALUE) {
                ::CloseHandle(made);
                return Done;
            }
        }
        if (attempt == MostAttempts)
            return Failed;
        const u32 tick = ::GetTickCount();
        *fileId = tick + static_cast<u32>(::Random());
        ::Sleep(0);
    }
}

// NothingDone when the file that was made does not open; Failed when no file could be made or the
// write came up short. The page is then in memory and has no file.
i32 SwapStore::WriteOut(Page* page)
{
    WCHAR path[PathRoom];
    u32 fileId = page->fileId;
    if (MakeFile(&fileId, path) < 0)
        return Failed;
    FileStream stream;
    if (stream.Open(path, 0) < 0) {
        ::DeleteFileW(path);
        return NothingDone;
    }
    u32 written = page->size;
    const i32 status = stream.Write(page->memory, &written);
    (void)stream.Close();
    if (status < 0 || written < page->size) {
        ::DeleteFileW(path);
        return Failed;
    }
    (void)allocator->Free(page->memory);
    page->memory = nullptr;
    page->fileId = fileId;
    return Done;
}

// Failed when the file does not open or there is no block for it; the file then stays.
i32 SwapStore::ReadBack(Page* page)
{
    WCHAR path[PathRoom];
    FileStream stream;
    if (!PathOf(page->fileId, path) || stream.Open(path, 1) < 0)
        return Failed;
    void* block = nullptr;
    if (allocator->Alloc(&block, page->size) < 0)
        return Failed;
    // Meant: a short read goes unnoticed and leaves zeros.
    u32 got = page->size;
    (void)stream.Read(block, &got);
    (void)stream.Close();
    ::DeleteFileW(path);
    page->memory = block;
    return Done;
}
