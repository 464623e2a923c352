#include "plugin/FormatList.h"

#include "foundation/BoundedText.h"
#include "foundation/TextSearch.h"

#include <new>
#include <string.h>

namespace
{

template <typename Cell>
Cell* AllocCells(Allocator* allocator, size_t cells)
{
    void* block = nullptr;
    if (allocator == nullptr || cells > 0x7FFFFFFFu / sizeof(Cell))
        return nullptr;
    if (allocator->Alloc(&block, static_cast<u32>(cells * sizeof(Cell))) < 0)
        return nullptr;
    return static_cast<Cell*>(block);
}

WCHAR* CopyOf(Allocator* allocator, const WCHAR* text)
{
    const size_t cells = wcslen(text) + 1;
    WCHAR* copy = AllocCells<WCHAR>(allocator, cells);
    if (copy != nullptr)
        memcpy(copy, text, cells * sizeof(WCHAR));
    return copy;
}

void FreeBlock(Allocator* allocator, void* block)
{
    if (allocator != nullptr && block != nullptr)
        (void)allocator->Free(block);
}

/// Copies one item of `patterns` into `item` and answers where the next one starts, or null.
const WCHAR* NextItem(const WCHAR* patterns, WCHAR* item)
{
    while (*patterns != 0 && *patterns != TEXT(';'))
        *item++ = *patterns++;
    *item = 0;
    return *patterns == TEXT(';') ? patterns + 1 : nullptr;
}

} // namespace

FormatList::FormatList(Allocator* given)
    : allocator(given), ownedAllocator(nullptr), count(0), pluginIndexes(nullptr),
      descriptions(nullptr), patterns(nullptr)
{
    if (allocator == nullptr)
        allocator = ownedAllocator = new (std::nothrow) MallocAllocator;
    pluginIndexes = AllocCells<i32>(allocator, Capacity);
    descriptions = AllocCells<WCHAR*>(allocator, Capacity);
    patterns = AllocCells<WCHAR*>(allocator, Capacity);
    if (pluginIndexes != nullptr)
        for (u32 i = 0; i < Capacity; ++i)
            pluginIndexes[i] = -1;
}

FormatList::~FormatList()
{
    for (u32 i = 0; i < count; ++i) {
        FreeBlock(allocator, descriptions[i]);
        FreeBlock(allocator, patterns[i]);
    }
    FreeBlock(allocator, patterns);
    FreeBlock(allocator, descriptions);
    FreeBlock(allocator, pluginIndexes);
    delete ownedAllocator;
}

i32 FormatList::Add(i32 pluginIndex, const WCHAR* description, const WCHAR* pattern)
{
    if (description == nullptr || pattern == nullptr)
        return BadArgument;
    if (pluginIndexes == nullptr || descriptions == nullptr || patterns == nullptr)
        return NoMemory;
    if (count >= Capacity)
        return Failed;
    WCHAR* ownDescription = CopyOf(allocator, description);
    WCHAR* ownPattern = CopyOf(allocator, pattern);
    if (ownDescription == nullptr || ownPattern == nullptr) {
        FreeBlock(allocator, ownPattern);
        FreeBlock(allocator, ownDescription);
        return NoMemory;
    }
    pluginIndexes[count] = pluginIndex;
    descriptions[count] = ownDescription;
    patterns[count] = ownPattern;
    ++count;
    return Done;
}

i32 FormatList::GetPluginIndex(u32 index, i32* out) const
{
    if (out == nullptr)
        return BadArgument;
    if (index >= count)
        return NothingDone;
    *out = pluginIndexes[index];
    return Done;
}

const WCHAR* FormatList::GetDescription(u32 index) const
{
    return index < count ? descriptions[index] : nullptr;
}

const WCHAR* FormatList::GetPatterns(u32 index) const
{
    return index < count ? patterns[index] : nullptr;
}

i32 FormatList::MatchExtension(u32 index, const WCHAR* text) const
{
    if (index >= Capacity || text == nullptr)
        return BadArgument;
    if (allocator == nullptr)
        return NoMemory;
    if (index >= count)
        return Failed;
    WCHAR* item = AllocCells<WCHAR>(allocator, wcslen(patterns[index]) + 1);
    if (item == nullptr)
        return NoMemory;
    i32 result = Failed;
    for (const WCHAR* rest = patterns[index]; rest != nullptr && result < 0;) {
        rest = NextItem(rest, item);
        const WCHAR* dot = nullptr;
        const WCHAR* extension = FindChar(item, TEXT('.'), &dot) > 0 ? dot + 1 : item;
        if (FindTextNoCase(text, extension) > 0)
            result = Done;
    }
    FreeBlock(allocator, item);
    return result;
}

i32 FormatList::GetDefaultExtension(u32 index, WCHAR* out, u32 capacity) const
{
    if (index >= Capacity || out == nullptr || capacity == 0)
        return BadArgument;
    out[0] = 0;
    if (index >= count)
        return Failed;
    const WCHAR* pattern = patterns[index];
    if (pattern[0] == 0)
        return Done;
    return CopyText(out, capacity, pattern + 1, TEXT(';'));
}
