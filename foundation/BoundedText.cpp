#include "foundation/BoundedText.h"

namespace
{

template <class Char>
i32 Append(Char* target, u32 capacity, const Char* source, Char terminator)
{
    if (target == nullptr || source == nullptr || capacity == 0)
        return Failed;
    const u32 last = capacity - 1;
    target[last] = 0;
    u32 end = 0;
    while (end < last && target[end] != 0)
        ++end;
    if (end == last)
        return NothingDone;
    // The end of the source ends the copy whatever the terminator is: nothing is read behind it.
    for (; *source != terminator && *source != 0; ++source, ++end) {
        if (end == last)
            return NothingDone;
        target[end] = *source;
    }
    // Meant as it stands: a text whose final zero falls on the last cell is whole and counts as
    // cut.
    if (end == last)
        return NothingDone;
    target[end] = 0;
    return Done;
}

template <class Char>
i32 Copy(Char* target, u32 capacity, const Char* source, Char terminator)
{
    if (target == nullptr || source == nullptr)
        return Failed;
    if (capacity == 0)
        return NothingDone;
    target[0] = 0;
    return Append(target, capacity, source, terminator);
}

} // namespace

i32 AppendText(WCHAR* target, u32 capacity, const WCHAR* source, WCHAR terminator)
{
    return Append(target, capacity, source, terminator);
}

i32 AppendText(char* target, u32 capacity, const char* source, char terminator)
{
    return Append(target, capacity, source, terminator);
}

i32 CopyText(WCHAR* target, u32 capacity, const WCHAR* source, WCHAR terminator)
{
    return Copy(target, capacity, source, terminator);
}

i32 CopyText(char* target, u32 capacity, const char* source, char terminator)
{
    return Copy(target, capacity, source, terminator);
}
