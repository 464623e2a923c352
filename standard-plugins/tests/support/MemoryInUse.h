// What the process holds from its allocator, and the most it held.
#pragma once

#include <cstddef>

namespace plugintest
{

/// Bytes in use now, by the sanitizer's count or the C library's.
size_t MemoryInUse();

/// The most that was seen above what was in use at the start. Counts only where Look is called.
class MemoryPeak
{
public:
    MemoryPeak() : base(MemoryInUse()) {}
    void Look()
    {
        const size_t now = MemoryInUse();
        if (now > base && now - base > most)
            most = now - base;
    }
    size_t Most() const { return most; }

private:
    size_t base;
    size_t most = 0;
};

} // namespace plugintest
