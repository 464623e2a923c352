#include "foundation/Stream.h"

namespace
{

// The four functions of the record. They pass everything on unchanged; what else a stream can do a
// plugin cannot reach.

i32 TAVRIX_CALL GetSizeOf(void* handle, u64* size)
{
    if (handle == nullptr)
        return Failed;
    return static_cast<Stream*>(handle)->GetSize(size);
}

i32 TAVRIX_CALL SeekIn(void* handle, const i64* offset, u64* newPosition, u32 origin)
{
    if (handle == nullptr)
        return Failed;
    return static_cast<Stream*>(handle)->Seek(offset, newPosition, origin);
}

i32 TAVRIX_CALL ReadFrom(void* handle, void* buffer, u32* length)
{
    if (handle == nullptr)
        return Failed;
    return static_cast<Stream*>(handle)->Read(buffer, length);
}

i32 TAVRIX_CALL WriteTo(void* handle, const void* buffer, u32* length)
{
    if (handle == nullptr)
        return Failed;
    return static_cast<Stream*>(handle)->Write(buffer, length);
}

} // namespace

i32 Stream::GetInterface(PluginStreamRecord* record)
{
    if (record == nullptr)
        return BadArgument;
    if (record->size < sizeof(PluginStreamRecord))
        return RecordTooSmall;
    record->size = sizeof(PluginStreamRecord);
    record->handle = this;
    record->getSize = GetSizeOf;
    record->seek = SeekIn;
    record->read = ReadFrom;
    record->write = WriteTo;
    ++refCount;
    return Done;
}

i32 Stream::Release()
{
    if (refCount == 0)
        return Failed;
    --refCount;
    return Done;
}
