// What a process holds: what must be the same before a plugin is loaded and behind its unloading.
#pragma once

#include "foundation/Types.h"

#include <string>

namespace plugincheck
{

struct Holding {
    size_t threads = 0;
    size_t descriptors = 0;
    size_t deviceBytes = 0; // in the device's heaps and global blocks
    size_t handles = 0;     // the device's kernel and drawing objects and private heaps
};

Holding CurrentHolding();
size_t CountThreads();
/// Waits a little for threads that are about to end. Whether no more than `most` are left.
bool ThreadsFallTo(size_t most);
/// Whether a file is mapped into the process.
bool IsMapped(const std::string& realPath);
/// Bytes that the process has taken from the C run time and not given back.
size_t AllocatedBytes();

} // namespace plugincheck
