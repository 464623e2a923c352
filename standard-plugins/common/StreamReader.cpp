#include "standard-plugins/common/StreamReader.h"

#include "standard-plugins/common/PluginResult.h"

#include <stdlib.h>
#include <string.h>

namespace
{

constexpr uint32_t bufferBytes = 64 * 1024;

} // namespace

int32_t OpenReader(StreamReader* reader, PluginStreamRecord* stream)
{
    *reader = {};
    if (!stream || stream->size < sizeof(PluginStreamRecord) || !stream->read)
        return PluginBadArgument;
    reader->stream = stream;
    reader->buffer = static_cast<uint8_t*>(malloc(bufferBytes));
    return reader->buffer ? PluginDone : PluginNoMemory;
}

void CloseReader(StreamReader* reader)
{
    free(reader->buffer);
    *reader = {};
}

bool FillReader(StreamReader* reader)
{
    reader->filled = 0;
    reader->taken = 0;
    if (reader->ended)
        return false;
    uint32_t length = bufferBytes;
    const int32_t result = reader->stream->read(reader->stream->handle, reader->buffer, &length);
    // A count beyond the buffer can only be a spoiled answer; nothing of it can be believed.
    if (result < 1 || length == 0 || length > bufferBytes) {
        reader->ended = true;
        return false;
    }
    reader->filled = length;
    return true;
}

bool ReadExactly(StreamReader* reader, uint8_t* out, size_t count)
{
    while (count > 0) {
        if (reader->taken == reader->filled && !FillReader(reader))
            return false;
        size_t run = reader->filled - reader->taken;
        if (run > count)
            run = count;
        memcpy(out, reader->buffer + reader->taken, run);
        reader->taken += static_cast<uint32_t>(run);
        out += run;
        count -= run;
    }
    return true;
}
