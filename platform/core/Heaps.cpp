// The heap calls: handles over the slots of HeapBlocks.h.

#include "platform/core/Heaps.h"

#include "platform/core/HeapBlocks.h"

#include <array>
#include <memory>
#include <vector>

namespace tavrix::platform
{

namespace
{

constexpr uint32_t ChunkSize = 256;
constexpr uint32_t ChunkCount = 64;
constexpr uint32_t GenerationMask = 0x3FFF;

struct SlotTable {
    std::array<std::atomic<HeapSlot*>, ChunkCount> chunks{};
    std::mutex lock; // guards what follows
    uint32_t used = 0;
    std::vector<HeapSlot*> unused;
    HeapSlot* processHeap; // slot 0
    HeapSlot* globalHeap;  // slot 1: carries the global blocks and has no handle

    SlotTable()
    {
        processHeap = Take(0);
        globalHeap = Take(0);
    }

    HeapSlot* At(uint32_t index)
    {
        if (index >= ChunkSize * ChunkCount)
            return nullptr;
        HeapSlot* chunk = chunks[index / ChunkSize].load(std::memory_order_acquire);
        return chunk == nullptr ? nullptr : &chunk[index % ChunkSize];
    }

    HeapSlot* Take(SIZE_T maximum)
    {
        const std::lock_guard<std::mutex> guard(lock);
        HeapSlot* slot = nullptr;
        if (!unused.empty()) {
            slot = unused.back();
            unused.pop_back();
        } else {
            if (used == ChunkSize * ChunkCount)
                return nullptr;
            std::atomic<HeapSlot*>& chunk = chunks[used / ChunkSize];
            if (chunk.load(std::memory_order_relaxed) == nullptr)
                chunk.store(new HeapSlot[ChunkSize], std::memory_order_release);
            slot = &chunk.load(std::memory_order_relaxed)[used % ChunkSize];
            slot->index = static_cast<uint16_t>(used);
            ++used;
        }
        slot->maximum = maximum;
        slot->generation.fetch_add(1, std::memory_order_release);
        return slot;
    }

    void GiveBack(HeapSlot* slot)
    {
        const std::lock_guard<std::mutex> guard(lock);
        unused.push_back(slot);
    }
};

SlotTable& Slots()
{
    // Never destroyed: heaps are used before main and by objects that outlive it.
    static SlotTable* const table = new SlotTable;
    return *table;
}

// Generation, index, and 2 in the lowest bits: never null, never aligned as an address would be.
HANDLE HandleOf(const HeapSlot& slot)
{
    const uintptr_t generation = slot.generation.load(std::memory_order_relaxed) & GenerationMask;
    return reinterpret_cast<HANDLE>(generation << 18 | static_cast<uintptr_t>(slot.index) << 2 | 2);
}

HeapSlot* SlotOf(HANDLE handle)
{
    const uintptr_t value = reinterpret_cast<uintptr_t>(handle);
    if ((value & 3) != 2)
        return nullptr;
    HeapSlot* slot = Slots().At(static_cast<uint32_t>(value >> 2 & 0xFFFF));
    if (slot == nullptr || slot == &GlobalHeapSlot())
        return nullptr;
    const uint32_t generation = slot->generation.load(std::memory_order_acquire);
    if (generation % 2 == 0 || (generation & GenerationMask) != value >> 18)
        return nullptr;
    return slot;
}

} // namespace

HeapSlot& ProcessHeapSlot()
{
    return *Slots().processHeap;
}

HeapSlot& GlobalHeapSlot()
{
    return *Slots().globalHeap;
}

size_t CountHeaps()
{
    SlotTable& table = Slots();
    const std::lock_guard<std::mutex> guard(table.lock);
    return table.used - table.unused.size();
}

} // namespace tavrix::platform

using namespace tavrix::platform;

HANDLE WINAPI GetProcessHeap(void)
{
    return HandleOf(ProcessHeapSlot());
}

HANDLE WINAPI HeapCreate(DWORD, SIZE_T, SIZE_T maximumSize)
{
    HeapSlot* slot = Slots().Take(maximumSize);
    if (slot == nullptr) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    return HandleOf(*slot);
}

BOOL WINAPI HeapDestroy(HANDLE heap)
{
    HeapSlot* slot = SlotOf(heap);
    if (slot == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    if (slot == &ProcessHeapSlot()) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    uint32_t generation = slot->generation.load(std::memory_order_acquire);
    // Of two threads that destroy one heap only one goes on.
    if (generation % 2 == 0 ||
        !slot->generation.compare_exchange_strong(generation, generation + 1)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    DropBlocks(*slot);
    Slots().GiveBack(slot);
    return TRUE;
}

LPVOID WINAPI HeapAlloc(HANDLE heap, DWORD flags, SIZE_T size)
{
    HeapSlot* slot = SlotOf(heap);
    if (slot == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    void* block = AllocateBlock(*slot, size, (flags & HEAP_ZERO_MEMORY) != 0);
    if (block == nullptr)
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return block;
}

BOOL WINAPI HeapFree(HANDLE heap, DWORD, LPVOID block)
{
    HeapSlot* slot = SlotOf(heap);
    HeapBlock* header = slot == nullptr ? nullptr : BlockOf(*slot, block);
    if (header == nullptr) {
        SetLastError(slot == nullptr ? ERROR_INVALID_HANDLE : ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    FreeBlock(*slot, header);
    return TRUE;
}

SIZE_T WINAPI HeapSize(HANDLE heap, DWORD, LPCVOID block)
{
    HeapSlot* slot = SlotOf(heap);
    const HeapBlock* header = slot == nullptr ? nullptr : BlockOf(*slot, block);
    if (header == nullptr) {
        SetLastError(slot == nullptr ? ERROR_INVALID_HANDLE : ERROR_INVALID_PARAMETER);
        return static_cast<SIZE_T>(-1);
    }
    return header->size;
}
