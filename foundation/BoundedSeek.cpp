#include "foundation/BoundedSeek.h"

#include <windows.h>

i32 BoundedSeek(i64 offset, u32 origin, u32 limit, u32* position, u64* newPosition)
{
    i64 base = 0;
    switch (origin) {
    case FILE_BEGIN:
        break;
    case FILE_CURRENT:
        base = *position;
        break;
    case FILE_END:
        base = limit;
        break;
    default:
        return Failed;
    }
    // The offset is held against the way that is left on both sides, since the sum of the two may
    // not fit.
    if (offset < -base || offset > i64{limit} - base)
        return Failed;
    *position = static_cast<u32>(base + offset);
    if (newPosition != nullptr)
        *newPosition = *position;
    return Done;
}
