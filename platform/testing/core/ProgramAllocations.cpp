// The program's own allocations from the C run time, under a test's hand: the linker leads them
// here (see the link options of the tests' door), and only those of what is linked into the test
// program.

#include "platform/core/TestHooks.h"

#include <cstddef>
#include <new>

using tavrix::platform::HostAllocation;
using tavrix::platform::IsAllocationFaulty;

namespace
{

bool IsFaulty(std::size_t size)
{
    return !HostAllocation::IsUnderWay() && IsAllocationFaulty(size);
}

} // namespace

// The linker makes these names, and the mangled ones depend on what std::size_t is.
#if __SIZEOF_POINTER__ == 8
#define TAVRIX_NEW(prefix) prefix##ZnwmRKSt9nothrow_t
#define TAVRIX_NEW_ARRAY(prefix) prefix##ZnamRKSt9nothrow_t
#else
#define TAVRIX_NEW(prefix) prefix##ZnwjRKSt9nothrow_t
#define TAVRIX_NEW_ARRAY(prefix) prefix##ZnajRKSt9nothrow_t
#endif

extern "C" {

void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* TAVRIX_NEW(__real__)(std::size_t size, const std::nothrow_t& tag) noexcept;
void* TAVRIX_NEW_ARRAY(__real__)(std::size_t size, const std::nothrow_t& tag) noexcept;

void* __wrap_malloc(std::size_t size)
{
    return IsFaulty(size) ? nullptr : __real_malloc(size);
}

void* __wrap_calloc(std::size_t count, std::size_t size)
{
    return IsFaulty(count * size) ? nullptr : __real_calloc(count, size);
}

void* TAVRIX_NEW(__wrap__)(std::size_t size, const std::nothrow_t& tag) noexcept
{
    return IsFaulty(size) ? nullptr : TAVRIX_NEW(__real__)(size, tag);
}

void* TAVRIX_NEW_ARRAY(__wrap__)(std::size_t size, const std::nothrow_t& tag) noexcept
{
    return IsFaulty(size) ? nullptr : TAVRIX_NEW_ARRAY(__real__)(size, tag);
}

} // extern "C"
