// The abstract byte stream through which files, memory, sockets and downloads look alike to
// plugins. A stream belongs to whoever made it; handing it to a plugin does not change that:
// `GetInterface` and `Release` only count the records that are open. No stream takes a lock.
#pragma once

#include "foundation/Result.h"
#include <tavrix/plugin.h>

#include <windows.h>

class Stream
{
public:
    Stream() = default;
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    /// The short name, cut to `capacity` characters.
    virtual i32 GetName(WCHAR* buffer, i32 capacity) = 0;
    /// The total length in bytes.
    virtual i32 GetSize(u64* size) = 0;
    /// Moves the position: origin 0 from the start, 1 from the position, 2 from the end.
    /// `newPosition` may be null.
    virtual i32 Seek(const i64* offset, u64* newPosition, u32 origin) = 0;
    /// `*length` in: bytes wanted; out: bytes got.
    virtual i32 Read(void* buffer, u32* length) = 0;
    virtual i32 Write(const void* buffer, u32* length) = 0;
    /// Fills the record a plugin gets. BadArgument for null, RecordTooSmall when `record->size` is
    /// less than the record's size (then nothing is touched), else Done, and one more is counted.
    virtual i32 GetInterface(PluginStreamRecord* record);
    /// Undoes one GetInterface. Failed when none is open. Deletes nothing.
    virtual i32 Release();
    /// Gives the contents up.
    virtual i32 Close() = 0;

    // Last, so that the eight operations take the first places of the table.
    virtual ~Stream() = default;

protected:
    u32 refCount = 0;
};
