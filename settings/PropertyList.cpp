#include "settings/PropertyList.h"

#include "foundation/BoundedText.h"
#include "foundation/TextSearch.h"

#include <windows.h>

#include <new>

namespace
{

constexpr u32 NumberCells = 16; // "-2147483648" and its zero fit

WCHAR* CopyWide(Allocator* allocator, const WCHAR* text)
{
    u32 length = 0;
    (void)TextLength(text, &length);
    void* block = nullptr;
    if (length > UINT32_MAX / sizeof(WCHAR) - 2 ||
        allocator->Alloc(&block, static_cast<u32>((length + 2) * sizeof(WCHAR))) < 0)
        return nullptr;
    WCHAR* copy = static_cast<WCHAR*>(block);
    (void)CopyText(copy, length + 2, text);
    return copy;
}

char* CopyNarrow(Allocator* allocator, const char* text)
{
    u32 length = 0;
    (void)TextLength(text, &length);
    void* block = nullptr;
    if (length > UINT32_MAX - 2 || allocator->Alloc(&block, length + 2) < 0)
        return nullptr;
    char* copy = static_cast<char*>(block);
    (void)CopyText(copy, length + 2, text);
    return copy;
}

char* Narrowed(Allocator* allocator, const WCHAR* text)
{
    const int cells = WideCharToMultiByte(CP_ACP, 0, text, -1, nullptr, 0, nullptr, nullptr);
    void* block = nullptr;
    if (cells <= 0 || allocator->Alloc(&block, static_cast<u32>(cells) + 1) < 0)
        return nullptr;
    char* bytes = static_cast<char*>(block);
    WideCharToMultiByte(CP_ACP, 0, text, -1, bytes, cells, nullptr, nullptr);
    return bytes;
}

WCHAR* Widened(Allocator* allocator, const char* text)
{
    const int cells = MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
    void* block = nullptr;
    if (cells <= 0 || allocator->Alloc(&block, (static_cast<u32>(cells) + 1) *
                                                   static_cast<u32>(sizeof(WCHAR))) < 0)
        return nullptr;
    WCHAR* wide = static_cast<WCHAR*>(block);
    MultiByteToWideChar(CP_ACP, 0, text, -1, wide, cells);
    return wide;
}

void Release(Allocator* allocator, void* block)
{
    if (block != nullptr)
        (void)allocator->Free(block);
}

void DropValue(Allocator* allocator, PropertyEntry& entry)
{
    Release(allocator, entry.wideValue);
    Release(allocator, entry.narrowValue);
    Release(allocator, entry.doubleValue);
    entry.type = VariantNone;
    entry.wideValue = nullptr;
    entry.narrowValue = nullptr;
    entry.doubleValue = nullptr;
}

} // namespace

PropertyList::PropertyList(Allocator* given)
    : allocator(given), ownedAllocator(nullptr), count(-1), entries(nullptr)
{
    if (allocator == nullptr) {
        ownedAllocator = new (std::nothrow) MallocAllocator;
        allocator = ownedAllocator;
    }
    void* table = nullptr;
    if (allocator == nullptr ||
        allocator->Alloc(&table, static_cast<u32>(Capacity * sizeof(PropertyEntry))) < 0)
        return;
    entries = static_cast<PropertyEntry*>(table);
    count = 0;
}

PropertyList::~PropertyList()
{
    (void)Clear();
    if (entries != nullptr)
        (void)allocator->Free(entries);
    delete ownedAllocator;
}

i32 PropertyList::Clear()
{
    if (allocator == nullptr)
        return NoMemory;
    if (entries == nullptr)
        return Failed;
    for (i32 i = 0; i < count; ++i) {
        Release(allocator, entries[i].name);
        entries[i].name = nullptr;
        DropValue(allocator, entries[i]);
    }
    count = 0;
    return Done;
}

i32 PropertyList::Find(const WCHAR* name, i32* index) const
{
    if (name == nullptr || index == nullptr)
        return BadArgument;
    *index = -1;
    if (entries == nullptr)
        return NoMemory;
    for (i32 i = 0; i < count; ++i) {
        if (wcscmp(entries[i].name, name) == 0) {
            *index = i;
            return Done;
        }
    }
    return NothingDone;
}

i32 PropertyList::Store(const WCHAR* name, u32 type, WCHAR* wide, char* narrow)
{
    PropertyEntry* entry = nullptr;
    const i32 result = Claim(name, &entry);
    if (entry == nullptr) {
        Release(allocator, wide);
        Release(allocator, narrow);
        return result;
    }
    entry->type = type;
    entry->wideValue = wide;
    entry->narrowValue = narrow;
    return result;
}

i32 PropertyList::Claim(const WCHAR* name, PropertyEntry** entry)
{
    *entry = nullptr;
    i32 index = -1;
    const i32 found = Find(name, &index);
    if (found < 0)
        return found;
    if (found > 0) {
        *entry = &entries[index];
        DropValue(allocator, **entry);
        return Replaced;
    }
    if (count >= static_cast<i32>(Capacity))
        return Failed;
    WCHAR* copy = CopyWide(allocator, name);
    // Memory that runs out over a text is not reported by the setters; a slot without a name would
    // stop every search, so that the value is lost and the slot stays free.
    if (copy == nullptr)
        return Added;
    *entry = &entries[count];
    (*entry)->name = copy;
    ++count;
    return Added;
}

i32 PropertyList::SetEmpty(const WCHAR* name)
{
    if (name == nullptr)
        return BadArgument;
    if (allocator == nullptr)
        return NoMemory;
    return Store(name, VariantNone, nullptr, nullptr);
}

i32 PropertyList::SetUnsigned(const WCHAR* name, u32 value)
{
    WCHAR text[NumberCells];
    wsprintfW(text, TEXT("%u"), value);
    return SetWide(name, text);
}

i32 PropertyList::SetSigned(const WCHAR* name, i32 value)
{
    WCHAR text[NumberCells];
    wsprintfW(text, TEXT("%i"), value);
    return SetWide(name, text);
}

i32 PropertyList::SetWide(const WCHAR* name, const WCHAR* text)
{
    if (name == nullptr || text == nullptr)
        return BadArgument;
    if (allocator == nullptr)
        return NoMemory;
    // Both copies are made before the old value goes: the text may be that very value.
    WCHAR* const wide = CopyWide(allocator, text);
    return Store(name, VariantWide, wide, Narrowed(allocator, text));
}

i32 PropertyList::SetNarrow(const WCHAR* name, const char* text)
{
    if (name == nullptr || text == nullptr)
        return BadArgument;
    if (allocator == nullptr)
        return NoMemory;
    WCHAR* const wide = Widened(allocator, text);
    return Store(name, VariantNarrow, wide, CopyNarrow(allocator, text));
}

i32 PropertyList::Set(const Variant* item)
{
    if (item == nullptr)
        return BadArgument;
    if (item->name == nullptr)
        return Failed;
    switch (item->type) {
    case VariantNone:
        return SetEmpty(item->name);
    case VariantUnsigned:
        return SetUnsigned(item->name, static_cast<u32>(item->value));
    case VariantSigned:
        return SetSigned(item->name, static_cast<i32>(static_cast<u32>(item->value)));
    case VariantWide:
        if (item->value == 0)
            return Failed;
        return SetWide(item->name, reinterpret_cast<const WCHAR*>(item->value));
    case VariantNarrow:
        if (item->value == 0)
            return Failed;
        return SetNarrow(item->name, reinterpret_cast<const char*>(item->value));
    default:
        return UnknownType;
    }
}
