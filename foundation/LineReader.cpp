#include "foundation/LineReader.h"

#include "foundation/BoundedSeek.h"

#include <new>
#include <string.h>

LineReader::LineReader(Allocator* newAllocator, u32 newBufferSize)
    : allocator(newAllocator), ownedAllocator(nullptr), stream(nullptr), buffer(nullptr),
      bufferSize(newBufferSize), cursor(0), fill(0)
{
    if (allocator == nullptr) {
        ownedAllocator = new (std::nothrow) MallocAllocator;
        allocator = ownedAllocator;
    }
}

LineReader::~LineReader()
{
    (void)Detach();
    delete ownedAllocator;
}

i32 LineReader::Attach(Stream* newStream)
{
    if (newStream == nullptr)
        return BadArgument;
    if (stream != nullptr)
        return Failed;
    if (allocator == nullptr)
        return NoMemory;
    void* block = nullptr;
    if (allocator->Alloc(&block, bufferSize) < Done)
        return NoMemory;
    buffer = static_cast<u8*>(block);
    stream = newStream;
    cursor = 0;
    fill = 0;
    return Done;
}

i32 LineReader::Detach()
{
    if (buffer != nullptr)
        (void)allocator->Free(buffer);
    stream = nullptr;
    buffer = nullptr;
    cursor = 0;
    fill = 0;
    return Done;
}

i32 LineReader::Fill()
{
    if (stream == nullptr || buffer == nullptr)
        return Failed;
    if (allocator == nullptr)
        return NoMemory;
    cursor = 0;
    fill = 0;
    u32 count = bufferSize;
    const i32 result = stream->Read(buffer, &count);
    if (result < Done)
        return result == NothingDone ? NothingDone : Failed;
    // A stream that claims more than was asked for is not believed.
    fill = count < bufferSize ? count : bufferSize;
    return Done;
}

i32 LineReader::AtEnd(i32* end)
{
    if (end == nullptr)
        return Failed;
    if (cursor < fill)
        return Done;
    *end = Fill() < Done ? 1 : 0;
    return Done;
}

i32 LineReader::ReadBytes(void* out, u32* count)
{
    if (out == nullptr)
        return BadArgument;
    const u32 wanted = count != nullptr ? *count : 1;
    u8* target = static_cast<u8*>(out);
    u32 got = 0;
    i32 result = Done;
    while (got < wanted) {
        if (cursor >= fill) {
            if (Fill() < Done) {
                result = Failed;
                break;
            }
            if (fill == 0) {
                result = got > 0 ? Done : NothingDone;
                break;
            }
        }
        const u32 step = BoundedCount(wanted - got, cursor, fill);
        memcpy(target + got, buffer + cursor, step);
        got += step;
        cursor += step;
    }
    if (count != nullptr)
        *count = got;
    return result;
}

i32 LineReader::ReadLine(char* line, u32* length)
{
    if (stream == nullptr || length == nullptr)
        return Failed;
    if (*length == 0)
        return Done;
    if (line == nullptr)
        return BadArgument;
    u32 stored = 0;
    i32 result = Done;
    for (;;) {
        char character = 0;
        result = ReadBytes(&character, nullptr);
        if (result < Done)
            break;
        if (character == '\n') {
            if (stored > 0 && line[stored - 1] == '\r')
                --stored;
            break;
        }
        line[stored++] = character;
        // Without a terminator, for which there is no room; `*length` says as much already.
        if (stored == *length)
            return Done;
    }
    line[stored] = 0;
    *length = stored;
    return result < NothingDone ? Failed : Done;
}
