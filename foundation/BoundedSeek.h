// Where the streams that know their end at every moment (those that count, or that lie in memory)
// get to: their one seek, and how much of a read or write there is room for. What the stream itself
// refuses (a null offset, a closed stream) it refuses before.
#pragma once

#include "foundation/Result.h"

/// Moves `*position` by `offset` bytes from `origin` (0 the start, 1 the position, 2 the end, which
/// is `limit`) and puts the new place into `*newPosition`, which may be null. Failed when that
/// place is outside 0 to `limit`, or for another origin: then neither changes.
i32 BoundedSeek(i64 offset, u32 origin, u32 limit, u32* position, u64* newPosition);

/// What of `wanted` bytes lies between `position` and `limit`; the position must not be past it.
inline u32 BoundedCount(u32 wanted, u32 position, u32 limit)
{
    const u32 left = limit - position;
    return wanted < left ? wanted : left;
}
