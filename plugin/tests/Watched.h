// What the tests of the plugins' calls watch the host with: a stream that keeps what is done to it,
// a device without heaps, and what the plugin told under a name.
#pragma once

#include "foundation/Stream.h"
#include "plugin/PluginHeap.h"
#include "plugin/tests/Fixtures.h"

#include <cstring>

namespace plugintest
{

/// What the plugin told under `name`; 12345 for nothing.
inline uintptr_t Number(const char16_t* name)
{
    const auto& numbers = CurrentTold().numbers;
    const auto found = numbers.find(name);
    return found == numbers.end() ? 12345 : found->second;
}

/// A stream over bytes of the test that keeps what the host did with it, and whether the heap of
/// the call was there then.
class WatchedStream final : public Stream
{
public:
    explicit WatchedStream(std::string given) : bytes(std::move(given)) {}

    i32 GetName(WCHAR*, i32) override { return Failed; }
    i32 GetSize(u64* size) override
    {
        *size = bytes.size();
        return Done;
    }
    i32 Seek(const i64*, u64*, u32) override { return Done; }
    i32 Read(void* buffer, u32* length) override
    {
        if (*length > bytes.size() - position)
            *length = static_cast<u32>(bytes.size() - position);
        std::memcpy(buffer, bytes.data() + position, *length);
        position += *length;
        Keep("read");
        return Done;
    }
    i32 Write(const void* buffer, u32* length) override
    {
        Keep("write");
        if (full)
            return Failed;
        bytes.append(static_cast<const char*>(buffer), *length);
        return Done;
    }
    i32 GetInterface(PluginStreamRecord* record) override
    {
        Keep("interface");
        wasZeroed = record->handle == nullptr && record->getSize == nullptr &&
                    record->seek == nullptr && record->read == nullptr && record->write == nullptr;
        recordSize = record->size;
        if (refused)
            return Failed;
        return Stream::GetInterface(record);
    }
    i32 Release() override
    {
        Keep("release");
        return Stream::Release();
    }
    i32 Close() override { return Done; }

    u32 Open() const { return refCount; }
    const std::string& Bytes() const { return bytes; }

    std::vector<std::string> log;
    bool wasZeroed = false;
    bool refused = false; // GetInterface fails
    bool full = false;    // Write fails
    u32 recordSize = 0;

private:
    void Keep(const char* what)
    {
        const std::string entry = std::string(what) + (PluginHeap() != nullptr ? "+heap" : "");
        if (log.empty() || log.back() != entry)
            log.push_back(entry);
    }

    std::string bytes;
    size_t position = 0;
};

using Log = std::vector<std::string>;

/// The device has no heap left to make while this stands.
struct AllHeapsTaken {
    AllHeapsTaken()
    {
        for (HANDLE heap = HeapCreate(0, 0, 0); heap != nullptr; heap = HeapCreate(0, 0, 0))
            heaps.push_back(heap);
    }
    ~AllHeapsTaken()
    {
        for (HANDLE heap : heaps)
            HeapDestroy(heap);
    }
    std::vector<HANDLE> heaps;
};

} // namespace plugintest
