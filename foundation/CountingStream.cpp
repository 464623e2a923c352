#include "foundation/CountingStream.h"

#include "foundation/BoundedSeek.h"

CountingStream::CountingStream() : size(0), position(0) {}

i32 CountingStream::GetName(WCHAR*, i32)
{
    return Failed;
}

i32 CountingStream::GetSize(u64* sizeOut)
{
    if (sizeOut == nullptr)
        return BadArgument;
    *sizeOut = size;
    return Done;
}

i32 CountingStream::Seek(const i64* offset, u64* newPosition, u32 origin)
{
    if (offset == nullptr)
        return BadArgument;
    return BoundedSeek(*offset, origin, size, &position, newPosition);
}

i32 CountingStream::Read(void*, u32* length)
{
    if (length != nullptr)
        *length = 0;
    return Failed;
}

i32 CountingStream::Write(const void*, u32* length)
{
    if (length == nullptr)
        return BadArgument;
    position += *length;
    if (position > size)
        size = position;
    return Done;
}

i32 CountingStream::Close()
{
    size = 0;
    position = 0;
    return Done;
}
