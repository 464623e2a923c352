#include "foundation/ColorTable.h"

#include <new>

namespace
{

i32 AllocEntries(Allocator* allocator, u32 capacity, PaletteEntry** out)
{
    *out = nullptr;
    // A capacity whose bytes do not fit in 32 bits would wrap to a block that is too small.
    const u64 bytes = static_cast<u64>(capacity) * sizeof(PaletteEntry);
    if (bytes > UINT32_MAX)
        return NoMemory;
    void* block = nullptr;
    if (allocator->Alloc(&block, static_cast<u32>(bytes)) < 0)
        return NoMemory;
    *out = static_cast<PaletteEntry*>(block);
    return Done;
}

// The eye's sense of brightness, in weights that sum to 256. In 32 bits, which wrap.
u32 Distance(const PaletteEntry& entry, u32 red, u32 green, u32 blue)
{
    const u32 dr = red - entry.red;
    const u32 dg = green - entry.green;
    const u32 db = blue - entry.blue;
    return (77 * dr * dr + 151 * dg * dg + 28 * db * db) >> 8;
}

} // namespace

ColorTable::ColorTable(Allocator* given)
    : allocator(given), ownedAllocator(nullptr), isCreated(0), count(0), capacity(0),
      entries(nullptr)
{
    if (allocator == nullptr) {
        ownedAllocator = new (std::nothrow) HeapAllocator;
        allocator = ownedAllocator;
    }
}

ColorTable::~ColorTable()
{
    (void)Destroy();
    delete ownedAllocator;
}

i32 ColorTable::Create(u32 newCapacity)
{
    if (Destroy() < 0)
        return NoMemory;
    if (AllocEntries(allocator, newCapacity, &entries) < 0)
        return NoMemory;
    isCreated = 1;
    capacity = newCapacity;
    return Done;
}

i32 ColorTable::Destroy()
{
    if (allocator == nullptr)
        return NoMemory;
    if (entries != nullptr)
        (void)allocator->Free(entries);
    entries = nullptr;
    isCreated = 0;
    count = 0;
    capacity = 0;
    return Done;
}

i32 ColorTable::Add(u32 red, u32 green, u32 blue, u32 fourth)
{
    if (isCreated == 0)
        return WrongState;
    if (count >= capacity)
        return Failed;
    entries[count] = {red, green, blue, fourth};
    ++count;
    return Done;
}

i32 ColorTable::AddMany(const PaletteEntry* items, u32 itemCount)
{
    if (items == nullptr && itemCount != 0)
        return BadArgument;
    for (u32 i = 0; i < itemCount; ++i) {
        const i32 result = Add(items[i].red, items[i].green, items[i].blue, items[i].fourth);
        if (result < 0)
            return result;
    }
    return Done;
}

i32 ColorTable::SetEntries(const PaletteEntry* items, u32 itemCount)
{
    if (items == nullptr)
        return BadArgument;
    if (allocator == nullptr)
        return NoMemory;
    // The new block is filled before the old one goes: the items may be this table's own.
    PaletteEntry* fresh = nullptr;
    if (AllocEntries(allocator, itemCount, &fresh) < 0) {
        (void)Destroy();
        return NoMemory;
    }
    for (u32 i = 0; i < itemCount; ++i)
        fresh[i] = items[i];
    (void)Destroy();
    entries = fresh;
    isCreated = 1;
    count = itemCount;
    capacity = itemCount;
    return Done;
}

i32 ColorTable::GetEntries(PaletteEntry* out) const
{
    if (out == nullptr)
        return static_cast<i32>(count);
    for (u32 i = 0; i < count; ++i)
        out[i] = entries[i];
    return Done;
}

i32 ColorTable::GetData(PaletteEntry** out) const
{
    if (out == nullptr)
        return BadArgument;
    *out = nullptr;
    if (isCreated == 0)
        return WrongState;
    *out = entries;
    return Done;
}

i32 ColorTable::CopyFrom(const ColorTable* other)
{
    if (other == nullptr)
        return BadArgument;
    if (other->isCreated == 0)
        return Create(0);
    return SetEntries(other->entries, other->count);
}

i32 ColorTable::FindNearest(u32 red, u32 green, u32 blue, u32 fourth, PaletteEntry* best) const
{
    PaletteEntry ignored{};
    return FindNearestTwo(red, green, blue, fourth, best, &ignored);
}

i32 ColorTable::FindNearestTwo(u32 red, u32 green, u32 blue, u32, PaletteEntry* best,
                               PaletteEntry* second) const
{
    if (best == nullptr || second == nullptr)
        return BadArgument;
    u32 nearest = UINT32_MAX;
    for (u32 i = 0; i < count; ++i) {
        const u32 distance = Distance(entries[i], red, green, blue);
        if (distance >= nearest)
            continue;
        // Meant as it stands: the second is what was best before the change, be it the caller's own
        // content, and not the second nearest. An entry that never was best is never the second.
        *second = *best;
        *best = {entries[i].red, entries[i].green, entries[i].blue, distance};
        nearest = distance;
    }
    return Done;
}
