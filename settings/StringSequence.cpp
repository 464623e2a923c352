#include "settings/StringSequence.h"

#include <new>

namespace
{

constexpr u32 NameCells = 16; // "4294967295" and its zero fit

} // namespace

StringSequence::StringSequence(Allocator* allocator)
    : list(new (std::nothrow) PropertyList(allocator)), count(0)
{
}

StringSequence::~StringSequence()
{
    delete list;
}

i32 StringSequence::Append(const WCHAR* text)
{
    if (list == nullptr)
        return Failed;
    WCHAR name[NameCells];
    wsprintfW(name, TEXT("%u"), count);
    if (list->SetWide(name, text) < 1)
        return Failed;
    ++count;
    return Done;
}

i32 StringSequence::Get(u32 index, const WCHAR** text) const
{
    if (text == nullptr || index >= count)
        return BadArgument;
    WCHAR name[NameCells];
    wsprintfW(name, TEXT("%u"), index);
    return list->GetWide(name, text) < 1 ? Failed : Done;
}

const WCHAR* StringSequence::GetAt(u32 index) const
{
    const WCHAR* text = nullptr;
    return Get(index, &text) < 1 ? nullptr : text;
}

i32 StringSequence::Clear()
{
    return list == nullptr ? NoMemory : list->Clear();
}

i32 StringSequence::GetCount(u32* out) const
{
    if (out == nullptr)
        return BadArgument;
    *out = count;
    return Done;
}
