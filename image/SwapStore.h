// A page store: blocks of any size behind opaque handles, each in memory or, when free memory falls
// below a reserve, alone in a file of its own (its number in decimal and ".swp",
// the block's bytes and nothing else), and brought back when it is locked. The largest unlocked
// page goes first.
//
// A piece of its own beside Raster, which pages its lines without it. The pages must be freed
// before the store goes: its destructor takes down the allocator only, and records and files of
// pages that are still there stay behind. One thread at a time; no locks.
#pragma once

#include "foundation/Allocator.h"

/// A page's handle is where the address of its block stands; null there while the block is in its
/// file. The store finds a handle in its list before it looks at what it points to, so one that it
/// does not know is refused.
using PageHandle = void**;

class SwapStore
{
public:
    /// `directory`: the folder of the files; not copied, so it outlives the store; null for no
    /// paging. `reserve`: bytes of physical memory to leave free.
    SwapStore(const WCHAR* directory, u32 reserve);
    ~SwapStore();
    SwapStore(const SwapStore&) = delete;
    SwapStore& operator=(const SwapStore&) = delete;

    /// A new zeroed page in memory, locked by nobody; `*handle` is null after a failure. Failed for
    /// null, when there is no room or no block; NoMemory without an allocator.
    [[nodiscard]] i32 Allocate(PageHandle* handle, u32 size);
    /// Drops a page, locked or not, and its file. Failed for null and a handle that is not in the
    /// store, NoMemory without an allocator.
    i32 Free(PageHandle handle);
    /// Brings a page in, pins it and gives its address, which is valid until its last Unlock. Locks
    /// count. Failed for a null argument, an unknown handle, no room, a file that does not open. A
    /// short read goes unnoticed.
    [[nodiscard]] i32 Lock(PageHandle handle, void** out);
    /// One lock less. NothingDone when it was not locked; Failed for null and an unknown handle.
    i32 Unlock(PageHandle handle);
    /// Writes pages out, the largest first, until more than the reserve and `needed` bytes are
    /// free. Failed without a folder, when all that may go has gone, when a file gets no name in 11
    /// attempts or a write comes up short (that page stays in memory); NoMemory without an
    /// allocator. What has gone out by then stays out.
    [[nodiscard]] i32 MakeRoom(u32 needed);

private:
    struct Page {
        Page* previous; // toward the larger pages
        void* memory;   // null while the page is in its file
        u32 size;       // bytes
        u32 fileId;
        u32 lockCount; // 0: may be written out
        Page* next;    // toward the smaller pages
    };

    enum : u32 { PathRoom = MAX_PATH + 1 }; // an exact fit counts as cut

    Page* Find(PageHandle handle) const;
    void Link(Page* page);
    void Unlink(Page* page);
    bool HasRoomFor(u32 needed);
    bool FitsOnDisk(u32 size) const;
    bool PathOf(u32 fileId, WCHAR (&path)[PathRoom]) const;
    [[nodiscard]] i32 MakeFile(u32* fileId, WCHAR (&path)[PathRoom]) const;
    [[nodiscard]] i32 WriteOut(Page* page);
    [[nodiscard]] i32 ReadBack(Page* page);

    Allocator* allocator; // owned
    MEMORYSTATUS memoryStatus;
    u32 reserve;
    const WCHAR* directory;
    Page* head; // by size, the largest first; pages of one size in the order of their making
};
