#include "foundation/Allocator.h"

#include <stdlib.h>

i32 MallocAllocator::Alloc(void** out, u32 size)
{
    if (out == nullptr)
        return BadArgument;
    // A block of no bytes is still a block: some run times answer null for it.
    *out = calloc(1, size == 0 ? 1 : size);
    return *out == nullptr ? NoMemory : Done;
}

i32 MallocAllocator::Free(void* block)
{
    if (block == nullptr)
        return BadArgument;
    free(block);
    return Done;
}

HeapAllocator::HeapAllocator(HANDLE newHeap) : heap(nullptr), ownsHeap(0)
{
    // A heap that cannot be made now is tried again by Alloc.
    (void)SetHeap(newHeap);
}

HeapAllocator::~HeapAllocator()
{
    if (ownsHeap != 0 && HeapDestroy(heap)) {
        heap = nullptr;
        ownsHeap = 0;
    }
}

i32 HeapAllocator::SetHeap(HANDLE newHeap)
{
    if (ownsHeap != 0)
        HeapDestroy(heap);
    heap = newHeap;
    ownsHeap = 0;
    if (heap != nullptr)
        return Done;
    heap = HeapCreate(0, 0, 0);
    if (heap == nullptr)
        return Failed;
    ownsHeap = 1;
    return Done;
}

i32 HeapAllocator::Alloc(void** out, u32 size)
{
    if (out == nullptr)
        return BadArgument;
    *out = nullptr;
    if (heap == nullptr && SetHeap(nullptr) < 0)
        return WrongState;
    *out = HeapAlloc(heap, HEAP_ZERO_MEMORY, size);
    return *out == nullptr ? NoMemory : Done;
}

i32 HeapAllocator::Free(void* block)
{
    if (block == nullptr)
        return BadArgument;
    if (heap == nullptr)
        return WrongState;
    return HeapFree(heap, 0, block) ? Done : Failed;
}
