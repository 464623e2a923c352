#include "standard-plugins/tests/support/MemoryInUse.h"

#include <malloc.h>

// Defined by the sanitizer's run time where there is one.
extern "C" size_t __sanitizer_get_current_allocated_bytes() __attribute__((weak));

namespace plugintest
{

size_t MemoryInUse()
{
    if (__sanitizer_get_current_allocated_bytes)
        return __sanitizer_get_current_allocated_bytes();
    const struct mallinfo2 now = mallinfo2();
    return now.uordblks + now.hblkhd;
}

} // namespace plugintest
