// The two memory providers that storage classes take. Blocks come zero-filled.
//
// A storage class that is given null makes an allocator of its own and deletes it in its
// destructor. An allocator must outlive everything that was allocated from it. Allocations may be
// made from any thread; creating and destroying an allocator belongs to its owner.
#pragma once

#include "foundation/Result.h"

#include <windows.h>

class Allocator
{
public:
    virtual ~Allocator() = default;
    /// Puts a zero-filled block of `size` bytes into `*out`. BadArgument for a null `out`,
    /// NoMemory when there is none, else Done.
    [[nodiscard]] virtual i32 Alloc(void** out, u32 size) = 0;
    /// Gives a block back. BadArgument for null, else Done (HeapAllocator: see there).
    virtual i32 Free(void* block) = 0;
};

/// Over the C run time. Has no state.
class MallocAllocator final : public Allocator
{
public:
    [[nodiscard]] i32 Alloc(void** out, u32 size) override;
    i32 Free(void* block) override;
};

/// Over a platform heap. With an owned heap, destroying the allocator gives everything that was
/// allocated from it back in one stroke.
class HeapAllocator final : public Allocator
{
public:
    /// 0 makes a heap of its own; a handle is used and not owned.
    explicit HeapAllocator(HANDLE heap = nullptr);
    ~HeapAllocator() override;
    HeapAllocator(const HeapAllocator&) = delete;
    HeapAllocator& operator=(const HeapAllocator&) = delete;

    /// Destroys an owned heap, then acts as the constructor. Failed when no heap could be made.
    i32 SetHeap(HANDLE heap);
    /// Clears `*out` first. WrongState when there is no heap and none can be made.
    [[nodiscard]] i32 Alloc(void** out, u32 size) override;
    /// WrongState without a heap, Failed when the heap refuses the block.
    i32 Free(void* block) override;

private:
    HANDLE heap;
    i32 ownsHeap;
};
