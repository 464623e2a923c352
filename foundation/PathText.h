// Paths as texts: how a path that comes in becomes the device's. Separators are "\\"; "/" is taken
// for one on the way in.
#pragma once

#include "foundation/Types.h"

#include <windows.h>

/// Turns every "/" of `path` into "\\", in place.
void TurnSlashes(WCHAR* path);

/// The cells that ResolvePath needs for texts of these lengths.
constexpr u64 ResolvedCells(u32 baseLength, u32 pathLength)
{
    // A separator and the final zero. The last append then fits exactly, which a bounded copy calls
    // a cut though the text is whole; nobody looks at that answer.
    return static_cast<u64>(baseLength) + pathLength + 2;
}

/// Writes `path` as it lies below `base` (null for none) into `out`. A path with a leading
/// separator is glued to the base all the same: the base stands in for a current folder.
void ResolvePath(WCHAR* out, u32 capacity, const WCHAR* base, const WCHAR* path);
