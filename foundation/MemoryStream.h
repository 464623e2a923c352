// A stream over one block of memory of fixed size: borrowed from the caller, who keeps it alive
// until the stream is closed, or the stream's own, from the device's global heap. It never grows: a
// read or a write past the end is cut to what is left, and that is no failure.
#pragma once

#include "foundation/DualString.h"
#include "foundation/Stream.h"

class MemoryStream final : public Stream
{
public:
    MemoryStream();
    ~MemoryStream() override;

    /// Closes first. With null `data` the stream makes `capacity` zero bytes of its own (NoMemory
    /// when it cannot, and stays closed); otherwise it works on the caller's `capacity` bytes. A
    /// `readOnly` of 1 refuses writes. `name` may be null and is copied.
    [[nodiscard]] i32 Open(void* data, u32 capacity, i32 readOnly, const WCHAR* name);

    /// The name given to Open. BadArgument, Failed when not open, NothingDone when cut.
    i32 GetName(WCHAR* buffer, i32 capacity) override;
    /// The capacity. BadArgument, Failed when not open.
    i32 GetSize(u64* size) override;
    /// Between 0 and the capacity; see BoundedSeek. BadArgument, Failed when not open.
    i32 Seek(const i64* offset, u64* newPosition, u32 origin) override;
    /// Done with `*length` cut to what is left. Failed (not BadArgument) for null or when not open.
    i32 Read(void* buffer, u32* length) override;
    /// As Read; Failed also when opened read-only.
    i32 Write(const void* buffer, u32* length) override;
    /// BadArgument, Failed when not open, else as every stream.
    i32 GetInterface(PluginStreamRecord* record) override;
    /// Frees memory of its own. NothingDone when not open, else Done.
    i32 Close() override;

private:
    i32 isOpen;
    i32 ownsData;
    DualString name;
    i32 readOnly; // 1 while closed
    u8* data;
    u32 capacity;
    u32 position; // never past `capacity`
};
