#include "foundation/MemoryStream.h"

#include "foundation/BoundedSeek.h"
#include "foundation/BoundedText.h"

#include <string.h>

MemoryStream::MemoryStream()
    : isOpen(0), ownsData(0), readOnly(1), data(nullptr), capacity(0), position(0)
{
}

MemoryStream::~MemoryStream()
{
    (void)Close();
}

i32 MemoryStream::Open(void* newData, u32 newCapacity, i32 newReadOnly, const WCHAR* newName)
{
    (void)Close();
    if (newData == nullptr) {
        newData = GlobalAlloc(GPTR, newCapacity);
        if (newData == nullptr)
            return NoMemory;
        ownsData = 1;
    }
    data = static_cast<u8*>(newData);
    capacity = newCapacity;
    position = 0;
    readOnly = newReadOnly;
    name.Assign(newName);
    isOpen = 1;
    return Done;
}

i32 MemoryStream::GetName(WCHAR* buffer, i32 bufferCapacity)
{
    if (buffer == nullptr || bufferCapacity <= 0)
        return BadArgument;
    if (isOpen == 0)
        return Failed;
    return CopyText(buffer, static_cast<u32>(bufferCapacity), name.Get());
}

i32 MemoryStream::GetSize(u64* size)
{
    if (size == nullptr)
        return BadArgument;
    if (isOpen == 0)
        return Failed;
    *size = capacity;
    return Done;
}

i32 MemoryStream::Seek(const i64* offset, u64* newPosition, u32 origin)
{
    if (offset == nullptr)
        return BadArgument;
    if (isOpen == 0)
        return Failed;
    return BoundedSeek(*offset, origin, capacity, &position, newPosition);
}

// The caller's buffer may be a part of the borrowed memory itself, so both copies may overlap.

i32 MemoryStream::Read(void* buffer, u32* length)
{
    if (buffer == nullptr || length == nullptr || isOpen == 0)
        return Failed;
    const u32 count = BoundedCount(*length, position, capacity);
    memmove(buffer, data + position, count);
    position += count;
    *length = count;
    return Done;
}

i32 MemoryStream::Write(const void* buffer, u32* length)
{
    if (buffer == nullptr || length == nullptr || isOpen == 0 || readOnly == 1)
        return Failed;
    const u32 count = BoundedCount(*length, position, capacity);
    memmove(data + position, buffer, count);
    position += count;
    *length = count;
    return Done;
}

i32 MemoryStream::GetInterface(PluginStreamRecord* record)
{
    if (record == nullptr)
        return BadArgument;
    if (isOpen == 0)
        return Failed;
    return Stream::GetInterface(record);
}

i32 MemoryStream::Close()
{
    if (isOpen == 0)
        return NothingDone;
    if (ownsData != 0)
        GlobalFree(data);
    isOpen = 0;
    ownsData = 0;
    name.Clear();
    readOnly = 1;
    data = nullptr;
    capacity = 0;
    position = 0;
    return Done;
}
