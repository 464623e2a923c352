// How the host's allocator is set for what the device's heaps ask of it: many blocks of a line's
// size in a row, from the worker thread. The allocator's own default gives a second thread an area
// that grows by a system call for each block, and gives memory back by one for each that is freed;
// both cost as much as decoding the line.

#include <cstdlib>

#if defined(__GLIBC__)
#include <malloc.h>

namespace
{

constexpr int OneArea = 1;
constexpr int GrowBy = 4 << 20;      // bytes at a time
constexpr int KeepAtMost = 16 << 20; // bytes free at the end of the area

[[maybe_unused]] const bool tuned = [] {
    return mallopt(M_ARENA_MAX, OneArea) == 1 && mallopt(M_TOP_PAD, GrowBy) == 1 &&
           mallopt(M_TRIM_THRESHOLD, KeepAtMost) == 1;
}();

} // namespace
#endif
