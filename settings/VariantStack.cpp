#include "settings/VariantStack.h"

#include <new>

namespace
{

constexpr u32 NameCells = 16; // a 32-bit number and its zero fit

} // namespace

VariantStack::VariantStack(Allocator* allocator)
    : list(new (std::nothrow) PropertyList(allocator)), top(-1)
{
}

VariantStack::~VariantStack()
{
    delete list;
}

i32 VariantStack::Push(const Variant* value)
{
    if (value == nullptr)
        return BadArgument;
    if (list == nullptr)
        return NoMemory;
    if (top == -1)
        (void)list->Clear();
    WCHAR name[NameCells];
    wsprintfW(name, TEXT("%d"), top + 1);
    const Variant stored{name, value->type, value->value};
    const i32 result = list->Set(&stored);
    if (result >= 1)
        ++top;
    return result;
}

i32 VariantStack::Pop(Variant* value)
{
    // In this order on purpose: an empty stack is no matter of the argument.
    if (top == -1)
        return NothingDone;
    if (value == nullptr)
        return NoMemory;
    WCHAR name[NameCells];
    wsprintfW(name, TEXT("%d"), top);
    const u32 wanted = value->type == VariantNone ? u32{VariantWide} : value->type;
    Variant read{name, wanted, value->value};
    const i32 result = list->Get(&read);
    value->type = read.type;
    value->value = read.value;
    // The entry stays in the list: a text that was given out lives on.
    if (result >= 1)
        --top;
    return result;
}

i32 VariantStack::Clear()
{
    if (list != nullptr)
        (void)list->Clear();
    top = -1;
    return Done;
}
