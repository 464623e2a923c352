// Global blocks, and the local ones, which are the same. A handle is the block's address, for
// movable blocks too: nothing is ever moved, and what they keep of their nature is the count of
// locks.

#include "platform/core/HeapBlocks.h"

using namespace tavrix::platform;

namespace
{

constexpr DWORD NotLocked = 158;

HeapBlock* Find(HGLOBAL block)
{
    HeapBlock* header = BlockOf(GlobalHeapSlot(), block);
    if (header == nullptr)
        SetLastError(ERROR_INVALID_HANDLE);
    return header;
}

} // namespace

HGLOBAL WINAPI GlobalAlloc(UINT flags, SIZE_T size)
{
    void* block = AllocateBlock(GlobalHeapSlot(), size, (flags & GMEM_ZEROINIT) != 0);
    if (block == nullptr) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    BlockOf(GlobalHeapSlot(), block)->movable = (flags & GMEM_MOVEABLE) != 0;
    return block;
}

HGLOBAL WINAPI GlobalFree(HGLOBAL block)
{
    if (block == nullptr)
        return nullptr;
    HeapBlock* header = Find(block);
    if (header == nullptr)
        return block;
    if (header->kept != 0) {
        SetLastError(ERROR_INVALID_HANDLE);
        return block;
    }
    FreeBlock(GlobalHeapSlot(), header);
    return nullptr;
}

LPVOID WINAPI GlobalLock(HGLOBAL block)
{
    HeapBlock* header = Find(block);
    if (header == nullptr)
        return nullptr;
    const std::lock_guard<std::mutex> guard(GlobalHeapSlot().lock);
    if (header->movable != 0 && header->locks < 0xFF)
        ++header->locks;
    return block;
}

BOOL WINAPI GlobalUnlock(HGLOBAL block)
{
    HeapBlock* header = Find(block);
    if (header == nullptr)
        return FALSE;
    const std::lock_guard<std::mutex> guard(GlobalHeapSlot().lock);
    if (header->movable == 0)
        return TRUE;
    if (header->locks == 0) {
        SetLastError(NotLocked);
        return FALSE;
    }
    if (--header->locks != 0)
        return TRUE;
    // The last unlock answers FALSE with no error: that is how a caller learns that none is left.
    SetLastError(ERROR_SUCCESS);
    return FALSE;
}

SIZE_T WINAPI GlobalSize(HGLOBAL block)
{
    const HeapBlock* header = Find(block);
    return header == nullptr ? 0 : header->size;
}

HLOCAL WINAPI LocalAlloc(UINT flags, SIZE_T size)
{
    // There is no call that would lock a movable one.
    return GlobalAlloc((flags & LMEM_ZEROINIT) != 0 ? GPTR : GMEM_FIXED, size);
}

HLOCAL WINAPI LocalFree(HLOCAL block)
{
    return GlobalFree(block);
}

SIZE_T WINAPI LocalSize(HLOCAL block)
{
    return GlobalSize(block);
}
