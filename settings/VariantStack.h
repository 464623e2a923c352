// Values handed from a dialog to the code that opened it, last in, first out: a thin layer on a
// PropertyList, whose names are the decimal indexes. It holds 512 values and copies what is pushed.
// What is popped stays in the list, so that a popped text lives until Clear, until another value
// takes its index, or until the next push into the empty stack. One thread at a time.
#pragma once

#include "settings/PropertyList.h"

class VariantStack
{
public:
    /// Memory comes from `allocator`, which must outlive the stack; null makes one of its own.
    explicit VariantStack(Allocator* allocator = nullptr);
    ~VariantStack();
    VariantStack(const VariantStack&) = delete;
    VariantStack& operator=(const VariantStack&) = delete;

    /// The value's type and content; its name is not looked at. A push into the empty stack drops
    /// all that was popped before, so that a text from this stack is not to be pushed into it
    /// again. BadArgument for null, NoMemory without a list, else what PropertyList::Set gives:
    /// Added or Replaced, or a result below 1 with the stack as it was.
    [[nodiscard]] i32 Push(const Variant* value);
    /// `value->type` names the type that is wanted, and VariantNone counts as VariantWide. Fills
    /// type and value in and leaves the name. NothingDone when empty, then NoMemory for null, else
    /// what PropertyList::Get gives; with a result below 1 the value stays on the stack.
    [[nodiscard]] i32 Pop(Variant* value);
    /// Drops the values. Done.
    i32 Clear();

private:
    PropertyList* list; // owned
    i32 top;            // -1 when empty
};
