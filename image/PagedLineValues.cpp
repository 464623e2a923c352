// The list of 32-bit values that a line list carries beside its lines.

#include "image/PagedLineList.h"

#include <new>

i32 PagedLineList::SetValues(const u32* values, u32 count)
{
    if (values == nullptr && count > 0)
        return BadArgument;
    const i32 state = CheckState();
    if (state < 0)
        return state;
    // The new ones stand before the old ones go.
    Value* made = nullptr;
    Value** end = &made;
    for (u32 i = 0; i < count; ++i) {
        *end = MakeValue(values[i]);
        if (*end == nullptr) {
            DropValues(made);
            return NoMemory;
        }
        end = &(*end)->next;
    }
    DropCache();
    DropValues(firstValue);
    firstValue = made;
    valueCount = count;
    return Done;
}

i32 PagedLineList::AddValue(u32 value)
{
    const i32 state = CheckState();
    if (state < 0)
        return state;
    Value* const made = MakeValue(value);
    if (made == nullptr)
        return NoMemory;
    DropCache();
    Value** end = &firstValue;
    while (*end != nullptr)
        end = &(*end)->next;
    *end = made;
    ++valueCount;
    return Done;
}

i32 PagedLineList::RemoveValue(u32 value)
{
    const i32 state = CheckState();
    if (state < 0)
        return state;
    for (Value** link = &firstValue; *link != nullptr; link = &(*link)->next) {
        Value* const found = *link;
        if (found->value != value)
            continue;
        DropCache();
        *link = found->next;
        (void)allocator.Free(found);
        --valueCount;
        return Done;
    }
    return NothingDone;
}

PagedLineList::Value* PagedLineList::MakeValue(u32 value)
{
    void* block = nullptr;
    if (allocator.Alloc(&block, sizeof(Value)) < 0)
        return nullptr;
    return new (block) Value{nullptr, value};
}

void PagedLineList::DropCache()
{
    if (valueCache != nullptr)
        (void)allocator.Free(valueCache);
    valueCache = nullptr;
}

void PagedLineList::DropValues(Value* first)
{
    while (first != nullptr) {
        Value* const next = first->next;
        (void)allocator.Free(first);
        first = next;
    }
}
