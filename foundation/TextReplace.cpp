#include "foundation/TextReplace.h"

#include "foundation/Bytes.h"
#include "foundation/TextSearch.h"

namespace
{

/// Copies units to where they belong and answers the place behind them. Source and target may
/// overlap, as CopyBytes goes forwards and units only ever move towards the start.
template <class Char>
Char* Move(Char* target, const Char* source, size_t count)
{
    (void)CopyBytes(target, source, count * sizeof(Char));
    return target + count;
}

template <class Char>
i32 Replace(Char* text, const Char* from, const Char* to)
{
    u32 fromLength = 0;
    u32 toLength = 0;
    if (text == nullptr || TextLength(from, &fromLength) < Done ||
        TextLength(to, &toLength) < Done || toLength > fromLength)
        return Failed;
    const Char* found = nullptr;
    if (FindTextNoCase(text, from, &found) < Done)
        return NothingDone;
    // One pass: what is kept closes up as the search goes on, not the whole rest at each find.
    const Char* rest = text;
    Char* end = text;
    do {
        end = Move(end, rest, static_cast<size_t>(found - rest));
        end = Move(end, to, toLength);
        rest = found + fromLength;
    } while (FindTextNoCase(rest, from, &found) > 0);
    u32 restLength = 0;
    (void)TextLength(rest, &restLength);
    (void)Move(end, rest, size_t{restLength} + 1);
    return Done;
}

} // namespace

i32 ReplaceAll(WCHAR* text, const WCHAR* from, const WCHAR* to)
{
    return Replace(text, from, to);
}

i32 ReplaceAll(char* text, const char* from, const char* to)
{
    return Replace(text, from, to);
}
