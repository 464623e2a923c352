// A private heap: an intrusive list over malloc, so that each block is one of malloc's own (the
// address sanitizer sees its ends) and everything can still be dropped in one stroke.
//
// Heaps live in slots that are never given back, and a slot's generation tells a live heap from one
// that was destroyed; so a stale handle is harmless. Any thread may allocate and free in a heap;
// destroying one while another thread uses it is the caller's mistake, as the interface has it.
#pragma once

#include <windows.h>

#include <atomic>
#include <mutex>

namespace tavrix::platform
{

/// What stands before each block. `mark` and what follows lie in the last 16 bytes, so that a look
/// at a pointer that is no block of ours reads as little as possible before it.
struct alignas(2 * sizeof(void*)) HeapBlock {
    HeapBlock* previous;
    HeapBlock* next;
    SIZE_T size;
    uint32_t mark;
    uint16_t slot;
    uint8_t movable : 1; // global blocks only: GMEM_MOVEABLE was asked for
    uint8_t kept : 1;    // global blocks only: the clipboard's, which the program cannot free
    uint8_t locks;       // global blocks only
};

struct HeapSlot {
    std::mutex lock;
    HeapBlock* first = nullptr;
    SIZE_T held = 0;
    SIZE_T maximum = 0;                  // 0: as much as there is
    std::atomic<uint32_t> generation{0}; // odd while the heap lives
    uint16_t index = 0;
};

/// The two heaps that are always there.
HeapSlot& ProcessHeapSlot();
HeapSlot& GlobalHeapSlot();

/// A block of `size` bytes, null when there is none or a test lets the allocation fail.
void* AllocateBlock(HeapSlot& heap, SIZE_T size, bool zeroed);
/// The header of `block` if it is a block of `heap`; null else. Told from the few bytes before the
/// pointer, so a pointer with no readable memory before it still faults.
HeapBlock* BlockOf(const HeapSlot& heap, const void* block);
/// The same by going through the heap's blocks, so that any pointer may be asked about.
HeapBlock* SearchBlock(HeapSlot& heap, const void* block);
/// Gives a block back.
void FreeBlock(HeapSlot& heap, HeapBlock* block);
/// Gives back everything.
void DropBlocks(HeapSlot& heap);

} // namespace tavrix::platform
