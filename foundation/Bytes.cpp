#include "foundation/Bytes.h"

i32 FillBytes(void* target, u8 value, size_t count)
{
    if (target == nullptr)
        return Failed;
    u8* bytes = static_cast<u8*>(target);
    for (size_t i = 0; i < count; ++i)
        bytes[i] = value;
    return Done;
}

i32 CopyBytes(void* target, const void* source, size_t count)
{
    if (target == nullptr || source == nullptr)
        return Failed;
    u8* to = static_cast<u8*>(target);
    const u8* from = static_cast<const u8*>(source);
    // The order is promised: the system's own copy may go the other way round.
    for (size_t i = 0; i < count; ++i)
        to[i] = from[i];
    return Done;
}
