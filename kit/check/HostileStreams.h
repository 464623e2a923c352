// Streams that behave as the worst of files, servers and disks do, and that remember what was asked
// of them. Single-threaded; owned by the check.
#pragma once

#include "foundation/Stream.h"

#include <vector>

namespace plugincheck
{

/// Bytes to read, with trouble on the way.
class ReadingStream final : public Stream
{
public:
    explicit ReadingStream(std::vector<u8> content) : bytes(std::move(content)) {}

    u32 mostAtOnce = 0xFFFFFFFF; // no read gives more
    u32 failFrom = 0;            // this read (from 1) and all behind it fail; 0: none

    u32 reads = 0;
    u32 failedReads = 0;
    bool wasSought = false; // seek or getSize was called
    bool wasWritten = false;

    i32 GetName(WCHAR*, i32) override { return Failed; }
    /// Refused, as is Seek: nothing that reads forward needs them.
    i32 GetSize(u64* size) override;
    i32 Seek(const i64* offset, u64* newPosition, u32 origin) override;
    i32 Read(void* buffer, u32* length) override;
    i32 Write(const void* buffer, u32* length) override;
    i32 Close() override { return Done; }

private:
    std::vector<u8> bytes;
    size_t position = 0;
};

/// Takes what is written, with trouble on the way.
class WritingStream final : public Stream
{
public:
    u32 failFrom = 0;   // this write (from 1) and all behind it fail; 0: none
    u64 room = ~u64{0}; // bytes that fit; the write that hits the end comes up short
    bool keeps = true;  // false: only counts, as the host's stream for a trial save does

    u32 writes = 0;
    u32 refused = 0; // writes that failed or came up short
    u32 refusedReads = 0;
    std::vector<u8> bytes; // what was kept
    u64 size = 0;          // the furthest position written

    i32 GetName(WCHAR*, i32) override { return Failed; }
    i32 GetSize(u64* out) override;
    i32 Seek(const i64* offset, u64* newPosition, u32 origin) override;
    i32 Read(void* buffer, u32* length) override;
    i32 Write(const void* buffer, u32* length) override;
    i32 Close() override { return Done; }

private:
    u64 position = 0;
};

/// Bytes that are no picture, the same at every run.
std::vector<u8> RandomBytes(size_t count, u32 seed);

} // namespace plugincheck
