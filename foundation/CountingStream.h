// A stream that stores nothing and tells how large the file would have become: an encoder writes to
// it as to any other. It is never closed; `Close` takes it back to the start, empty.
#pragma once

#include "foundation/Stream.h"

class CountingStream final : public Stream
{
public:
    CountingStream();

    /// Failed: it has no name.
    i32 GetName(WCHAR* buffer, i32 capacity) override;
    /// The furthest position that a write has reached. BadArgument.
    i32 GetSize(u64* size) override;
    /// Between 0 and the size; see BoundedSeek. BadArgument for a null offset.
    i32 Seek(const i64* offset, u64* newPosition, u32 origin) override;
    /// Always Failed, with `*length` 0: nothing was kept that could be read.
    i32 Read(void* buffer, u32* length) override;
    /// Moves the position by `*length` and looks at no byte, so `buffer` may be null. The position
    /// is a 32-bit word and starts over past its end; the size keeps the largest seen. BadArgument
    /// for a null length.
    i32 Write(const void* buffer, u32* length) override;
    /// Back to nothing written. Done.
    i32 Close() override;

private:
    u32 size;
    u32 position;
};
