// The list of pages, and which of them are in memory.

#include "image/SwapStore.h"

#include <handheld.h>
#include <new>

SwapStore::SwapStore(const WCHAR* folder, u32 bytesToLeave)
    : allocator(new (std::nothrow) MallocAllocator), memoryStatus(), reserve(bytesToLeave),
      directory(folder), head(nullptr)
{
    memoryStatus.dwLength = sizeof(memoryStatus);
    ::GlobalMemoryStatus(&memoryStatus);
}

// Meant: pages that are still there are left, with their files. Their owner frees them first.
SwapStore::~SwapStore()
{
    delete allocator;
}

i32 SwapStore::Allocate(PageHandle* handle, u32 size)
{
    if (handle == nullptr)
        return Failed;
    *handle = nullptr;
    if (allocator == nullptr)
        return NoMemory;
    if (MakeRoom(size) < 0)
        return Failed;
    void* record = nullptr;
    if (allocator->Alloc(&record, sizeof(Page)) < 0)
        return Failed;
    Page* const page = new (record) Page();
    if (allocator->Alloc(&page->memory, size) < 0) {
        (void)allocator->Free(page);
        return Failed;
    }
    page->size = size;
    const u32 tick = ::GetTickCount();
    page->fileId = tick + static_cast<u32>(::Random());
    Link(page);
    *handle = &page->memory;
    return Done;
}

i32 SwapStore::Free(PageHandle handle)
{
    if (handle == nullptr)
        return Failed;
    if (allocator == nullptr)
        return NoMemory;
    Page* const page = Find(handle);
    if (page == nullptr)
        return Failed;
    Unlink(page);
    if (page->memory != nullptr) {
        (void)allocator->Free(page->memory);
    } else {
        WCHAR path[PathRoom];
        if (PathOf(page->fileId, path))
            ::DeleteFileW(path);
    }
    (void)allocator->Free(page);
    return Done;
}

i32 SwapStore::Lock(PageHandle handle, void** out)
{
    if (handle == nullptr || out == nullptr)
        return Failed;
    Page* const page = Find(handle);
    if (page == nullptr)
        return Failed;
    if (page->lockCount > 0) {
        ++page->lockCount;
    } else {
        // Meant: room is asked for a page that is in memory, too, and making it may put that very
        // page into its file. Then it comes back below.
        const i32 room = MakeRoom(page->size);
        if (room < 0)
            return room;
        if (page->memory == nullptr) {
            if (MakeRoom(page->size) < 0 || ReadBack(page) < 0)
                return Failed;
        }
        page->lockCount = 1;
    }
    *out = page->memory;
    return Done;
}

i32 SwapStore::Unlock(PageHandle handle)
{
    if (handle == nullptr)
        return Failed;
    Page* const page = Find(handle);
    if (page == nullptr)
        return Failed;
    if (page->lockCount == 0)
        return NothingDone;
    --page->lockCount;
    return Done;
}

i32 SwapStore::MakeRoom(u32 needed)
{
    if (allocator == nullptr)
        return NoMemory;
    if (HasRoomFor(needed))
        return Done;
    if (directory == nullptr)
        return Failed;
    for (Page* page = head; page != nullptr; page = page->next) {
        if (HasRoomFor(needed))
            return Done;
        if (page->memory == nullptr || page->lockCount > 0 || !FitsOnDisk(page->size))
            continue;
        if (WriteOut(page) < 0)
            return Failed;
    }
    // Meant: nobody looks again after the last page. When it was that one which made the room, the
    // next call finds it.
    return Failed;
}

// A handle that the store does not know may point anywhere, so that it is only ever compared.
SwapStore::Page* SwapStore::Find(PageHandle handle) const
{
    Page* page = head;
    while (page != nullptr && &page->memory != handle)
        page = page->next;
    return page;
}

void SwapStore::Link(Page* page)
{
    Page* before = nullptr;
    Page* after = head;
    while (after != nullptr && after->size >= page->size) {
        before = after;
        after = after->next;
    }
    page->previous = before;
    page->next = after;
    (before != nullptr ? before->next : head) = page;
    if (after != nullptr)
        after->previous = page;
}

void SwapStore::Unlink(Page* page)
{
    (page->previous != nullptr ? page->previous->next : head) = page->next;
    if (page->next != nullptr)
        page->next->previous = page->previous;
}

// Always on a fresh reading: what is free exactly is too little.
bool SwapStore::HasRoomFor(u32 needed)
{
    ::GlobalMemoryStatus(&memoryStatus);
    return memoryStatus.dwAvailPhys > u64{reserve} + needed;
}
