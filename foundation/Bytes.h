// Plain work on memory, counted in bytes.
#pragma once

#include "foundation/Result.h"

#include <stddef.h>

/// Sets `count` bytes to `value`. Failed for null, else Done, also for a count of 0.
i32 FillBytes(void* target, u8 value, size_t count);

/// Copies `count` bytes forwards, one after the other. So memory that overlaps may be moved towards
/// lower addresses; moved towards higher ones, its beginning repeats. Failed for null, else Done,
/// also for a count of 0.
i32 CopyBytes(void* target, const void* source, size_t count);
