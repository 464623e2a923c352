#include "platform/core/HeapBlocks.h"

#include "platform/core/Heaps.h"
#include "platform/core/MemoryStatus.h"
#include "platform/core/TestHooks.h"

#include <cstdlib>

namespace tavrix::platform
{

namespace
{

static_assert(sizeof(void*) == 4 || sizeof(HeapBlock) == 32, "a block's header is 32 bytes");

// Far above what a device's program asks for. The sanitizers' malloc ends the program on a request
// that is absurd instead of answering null, so such a request must not reach it.
constexpr SIZE_T LargestBlock =
    sizeof(void*) == 4 ? 0x7FFF0000u : static_cast<SIZE_T>(1) << (sizeof(void*) == 4 ? 30 : 38);

std::atomic<size_t> heldBytes{0};

// Bound to the address, so that a header copied along with a block's memory marks nothing.
uint32_t MarkFor(const HeapBlock* block)
{
    return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(block) >> 3) ^ 0x5AB10C4Bu;
}

// The figure of free memory that the program goes by may be as old as its last message, and a
// picture of any size can be asked for between two.
bool IsBeyondHost(SIZE_T size)
{
    static const unsigned long long end = EndOfHostMemory();
    const unsigned long long held = heldBytes.load(std::memory_order_relaxed);
    return held + size > end;
}

} // namespace

size_t HeldBytes()
{
    return heldBytes.load(std::memory_order_relaxed);
}

void* AllocateBlock(HeapSlot& heap, SIZE_T size, bool zeroed)
{
    if (size > LargestBlock || IsBeyondHost(size) || IsAllocationFaulty(size))
        return nullptr;
    {
        const std::lock_guard<std::mutex> guard(heap.lock);
        if (heap.maximum != 0 && (size > heap.maximum || heap.held > heap.maximum - size))
            return nullptr;
    }
    const HostAllocation own;
    void* memory =
        zeroed ? std::calloc(1, sizeof(HeapBlock) + size) : std::malloc(sizeof(HeapBlock) + size);
    if (memory == nullptr)
        return nullptr;
    HeapBlock* block = static_cast<HeapBlock*>(memory);
    block->size = size;
    block->mark = MarkFor(block);
    block->slot = heap.index;
    block->movable = 0;
    block->kept = 0;
    block->locks = 0;
    block->previous = nullptr;
    {
        const std::lock_guard<std::mutex> guard(heap.lock);
        block->next = heap.first;
        if (heap.first != nullptr)
            heap.first->previous = block;
        heap.first = block;
        heap.held += size;
    }
    heldBytes.fetch_add(size, std::memory_order_relaxed);
    return block + 1;
}

// What lies before a pointer that is no block of ours may be anything that the sanitizer guards.
__attribute__((no_sanitize("address", "undefined"))) HeapBlock* BlockOf(const HeapSlot& heap,
                                                                        const void* block)
{
    if (block == nullptr || reinterpret_cast<uintptr_t>(block) % alignof(HeapBlock) != 0)
        return nullptr;
    HeapBlock* header = static_cast<HeapBlock*>(const_cast<void*>(block)) - 1;
    if (header->mark != MarkFor(header) || header->slot != heap.index)
        return nullptr;
    return header;
}

HeapBlock* SearchBlock(HeapSlot& heap, const void* block)
{
    const std::lock_guard<std::mutex> guard(heap.lock);
    HeapBlock* header = heap.first;
    while (header != nullptr && header + 1 != block)
        header = header->next;
    return header;
}

void FreeBlock(HeapSlot& heap, HeapBlock* block)
{
    {
        const std::lock_guard<std::mutex> guard(heap.lock);
        if (block->previous != nullptr)
            block->previous->next = block->next;
        else
            heap.first = block->next;
        if (block->next != nullptr)
            block->next->previous = block->previous;
        heap.held -= block->size;
    }
    heldBytes.fetch_sub(block->size, std::memory_order_relaxed);
    block->mark = 0;
    std::free(block);
}

void DropBlocks(HeapSlot& heap)
{
    HeapBlock* block = nullptr;
    {
        const std::lock_guard<std::mutex> guard(heap.lock);
        block = heap.first;
        heap.first = nullptr;
        heldBytes.fetch_sub(heap.held, std::memory_order_relaxed);
        heap.held = 0;
    }
    while (block != nullptr) {
        HeapBlock* next = block->next;
        block->mark = 0;
        std::free(block);
        block = next;
    }
}

} // namespace tavrix::platform
