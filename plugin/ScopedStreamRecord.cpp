#include "plugin/ScopedStreamRecord.h"

#include <atomic>

namespace
{

// The stream's own record in the call that runs, and the handle by which its plugin knows it; also
// read by threads that have no business here.
std::atomic<const PluginStreamRecord*> running{nullptr};
std::atomic<uintptr_t> runningHandle{0};
uintptr_t lastHandle = 0;

/// Null for every handle but that of the running call, and for a stream that refused its record.
const PluginStreamRecord* Find(void* handle)
{
    if (handle == nullptr || reinterpret_cast<uintptr_t>(handle) != runningHandle)
        return nullptr;
    const PluginStreamRecord* found = running;
    return found == nullptr || found->handle == nullptr ? nullptr : found;
}

i32 TAVRIX_CALL GetSizeOf(void* handle, u64* size)
{
    const PluginStreamRecord* found = Find(handle);
    return found == nullptr ? Failed : found->getSize(found->handle, size);
}

i32 TAVRIX_CALL SeekIn(void* handle, const i64* offset, u64* newPosition, u32 origin)
{
    const PluginStreamRecord* found = Find(handle);
    return found == nullptr ? Failed : found->seek(found->handle, offset, newPosition, origin);
}

i32 TAVRIX_CALL ReadFrom(void* handle, void* buffer, u32* length)
{
    const PluginStreamRecord* found = Find(handle);
    return found == nullptr ? Failed : found->read(found->handle, buffer, length);
}

i32 TAVRIX_CALL WriteTo(void* handle, const void* buffer, u32* length)
{
    const PluginStreamRecord* found = Find(handle);
    return found == nullptr ? Failed : found->write(found->handle, buffer, length);
}

} // namespace

ScopedStreamRecord::ScopedStreamRecord(Stream* given) : stream(given), streams(), record()
{
    if (stream == nullptr)
        return;
    streams.size = sizeof(streams);
    // Not looked at: the host hands over open streams only, and those always answer.
    (void)stream->GetInterface(&streams);
    running = &streams;
    runningHandle = ++lastHandle;
    record.size = sizeof(record);
    record.handle = reinterpret_cast<void*>(lastHandle);
    record.getSize = GetSizeOf;
    record.seek = SeekIn;
    record.read = ReadFrom;
    record.write = WriteTo;
}

ScopedStreamRecord::~ScopedStreamRecord()
{
    if (stream == nullptr)
        return;
    runningHandle = 0;
    running = nullptr;
    (void)stream->Release();
}
