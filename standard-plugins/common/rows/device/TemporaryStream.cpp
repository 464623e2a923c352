#include "standard-plugins/common/rows/device/TemporaryStream.h"

#include "standard-plugins/common/PluginResult.h"

namespace
{

int32_t TAVRIX_CALL Read(void* handle, void* buffer, uint32_t* length)
{
    auto* stream = static_cast<TemporaryStream*>(handle);
    const uint64_t left = stream->at < stream->end ? stream->end - stream->at : 0;
    const size_t wanted = *length < left ? *length : static_cast<size_t>(left);
    const size_t got = ReadTemporaryFile(stream->file, stream->at, buffer, wanted);
    stream->at += got;
    *length = static_cast<uint32_t>(got);
    return PluginDone;
}

} // namespace

void OpenTemporaryStream(TemporaryStream* stream, TemporaryFile* file, uint64_t from, uint64_t end)
{
    *stream = {};
    stream->record.size = sizeof stream->record;
    stream->record.handle = stream;
    stream->record.read = Read;
    stream->file = file;
    stream->at = from;
    stream->end = end;
}
