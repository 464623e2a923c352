// A stream over a file of the device. Failures of the platform during reading and writing are not
// reported: the count is the only sign, so a failing read looks like the end of the file.
#pragma once

#include "foundation/DualString.h"
#include "foundation/Stream.h"

#include <stddef.h>

/// What a stream over a file offers beyond a stream.
class AbstractFileStream : public Stream
{
public:
    /// Closes first, then opens an existing file. Failed when it does not open.
    [[nodiscard]] virtual i32 Open(const WCHAR* path, i32 readOnly) = 0;
    virtual i32 CloseFile() = 0;
};

class FileStream final : public AbstractFileStream
{
public:
    FileStream();
    ~FileStream() override;

    /// A stream made with `new` lies on the device's global heap; null when there is no memory.
    static void* operator new(size_t size) noexcept;
    static void operator delete(void* block);

    [[nodiscard]] i32 Open(const WCHAR* path, i32 readOnly) override;
    /// NothingDone when not open, else Done.
    i32 CloseFile() override;

    /// The text behind the last backslash of the path. BadArgument, Failed when not open.
    i32 GetName(WCHAR* buffer, i32 capacity) override;
    i32 GetSize(u64* size) override;
    i32 Seek(const i64* offset, u64* newPosition, u32 origin) override;
    i32 Read(void* buffer, u32* length) override;
    i32 Write(const void* buffer, u32* length) override;
    i32 GetInterface(PluginStreamRecord* record) override;
    i32 Close() override;

private:
    HANDLE handle;
    i32 isOpen;
    DualString name;
};
