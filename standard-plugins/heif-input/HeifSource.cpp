#include "standard-plugins/heif-input/HeifSource.h"

#include <string.h>

namespace
{

// Every file of the family begins with a box of this kind.
bool LooksLikeBoxes(const uint8_t* bytes)
{
    return memcmp(bytes + 4, "ftyp", 4) == 0;
}

int64_t OnTell(void* self)
{
    return static_cast<int64_t>(static_cast<HeifSource*>(self)->position);
}

int OnRead(void* data, size_t size, void* self)
{
    auto* source = static_cast<HeifSource*>(self);
    const size_t got = ReadTemporaryFile(&source->source.file, source->position, data, size);
    source->position += got;
    return got == size ? 0 : -1;
}

int OnSeek(int64_t position, void* self)
{
    auto* source = static_cast<HeifSource*>(self);
    if (position < 0 || static_cast<uint64_t>(position) > source->source.file.size)
        return -1;
    source->position = static_cast<uint64_t>(position);
    return 0;
}

heif_reader_grow_status OnWait(int64_t size, void* self)
{
    const auto* source = static_cast<HeifSource*>(self);
    return size >= 0 && static_cast<uint64_t>(size) <= source->source.file.size
               ? heif_reader_grow_status_size_reached
               : heif_reader_grow_status_size_beyond_eof;
}

} // namespace

int32_t OpenHeifSource(HeifSource* source, PluginStreamRecord* stream, FrameProgress* progress)
{
    *source = {};
    source->reader = {1, OnTell, OnRead, OnSeek, OnWait};
    return OpenFrameSource(&source->source, stream, progress, LooksLikeBoxes);
}

void CloseHeifSource(HeifSource* source)
{
    CloseFrameSource(&source->source);
    *source = {};
}
