#include "kit/check/HostileStreams.h"

#include <algorithm>
#include <cstring>

namespace plugincheck
{

i32 ReadingStream::GetSize(u64* size)
{
    wasSought = true;
    if (size == nullptr)
        return BadArgument;
    *size = 0;
    return Failed;
}

i32 ReadingStream::Seek(const i64* offset, u64*, u32)
{
    wasSought = true;
    return offset == nullptr ? BadArgument : Failed;
}

i32 ReadingStream::Read(void* buffer, u32* length)
{
    if (length == nullptr || (buffer == nullptr && *length != 0))
        return BadArgument;
    ++reads;
    if (failFrom != 0 && reads >= failFrom) {
        ++failedReads;
        *length = 0;
        return Failed;
    }
    const size_t count = std::min<size_t>(std::min(*length, mostAtOnce), bytes.size() - position);
    if (count != 0)
        std::memcpy(buffer, bytes.data() + position, count);
    position += count;
    *length = static_cast<u32>(count);
    return Done;
}

i32 ReadingStream::Write(const void*, u32* length)
{
    wasWritten = true;
    if (length == nullptr)
        return BadArgument;
    *length = 0;
    return Failed;
}

i32 WritingStream::GetSize(u64* out)
{
    if (out == nullptr)
        return BadArgument;
    *out = size;
    return Done;
}

i32 WritingStream::Seek(const i64* offset, u64* newPosition, u32 origin)
{
    if (offset == nullptr)
        return BadArgument;
    const u64 base = origin == 0 ? 0 : origin == 1 ? position : size;
    const i64 target = static_cast<i64>(base) + *offset;
    if (origin > 2 || target < 0 || static_cast<u64>(target) > size)
        return Failed;
    position = static_cast<u64>(target);
    if (newPosition != nullptr)
        *newPosition = position;
    return Done;
}

i32 WritingStream::Read(void* buffer, u32* length)
{
    if (length == nullptr)
        return BadArgument;
    if (!keeps || buffer == nullptr) {
        ++refusedReads;
        *length = 0;
        return Failed;
    }
    const u64 count = std::min<u64>(*length, size - position);
    if (count != 0)
        std::memcpy(buffer, bytes.data() + position, count);
    position += count;
    *length = static_cast<u32>(count);
    return Done;
}

i32 WritingStream::Write(const void* buffer, u32* length)
{
    if (length == nullptr || (buffer == nullptr && keeps && *length != 0))
        return BadArgument;
    ++writes;
    if (failFrom != 0 && writes >= failFrom) {
        ++refused;
        *length = 0;
        return Failed;
    }
    const u64 left = room > position ? room - position : 0;
    const u64 count = std::min<u64>(*length, left);
    if (count < *length)
        ++refused;
    if (keeps && count != 0) {
        if (bytes.size() < position + count)
            bytes.resize(position + count);
        std::memcpy(bytes.data() + position, buffer, count);
    }
    position += count;
    size = std::max(size, position);
    *length = static_cast<u32>(count);
    return Done;
}

std::vector<u8> RandomBytes(size_t count, u32 seed)
{
    std::vector<u8> bytes(count);
    u32 state = seed;
    for (u8& byte : bytes) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<u8>(state >> 24);
    }
    return bytes;
}

} // namespace plugincheck
