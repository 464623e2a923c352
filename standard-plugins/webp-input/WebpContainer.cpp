#include "standard-plugins/webp-input/WebpContainer.h"

#include "standard-plugins/common/reading/ExifOrientation.h"

#include <stdlib.h>
#include <string.h>

namespace
{

constexpr uint32_t mostProfileBytes = 4u << 20;
// The directory that is looked for stands at the start.
constexpr uint32_t mostExifBytes = 64 * 1024;
constexpr size_t extendedBytes = 10;

uint32_t Number32(const uint8_t* bytes)
{
    return Number24(bytes) | uint32_t{bytes[3]} << 24;
}

bool SkipChunk(WebpContainer* container, WebpChunk* chunk)
{
    const uint64_t left = chunk->left;
    chunk->left = 0;
    container->left -= left;
    return SkipPatiently(&container->input, left);
}

bool TakeExtended(WebpContainer* container, WebpChunk* chunk)
{
    uint8_t bytes[extendedBytes];
    if (chunk->bytes < extendedBytes ||
        ReadChunkBytes(container, chunk, bytes, extendedBytes) < extendedBytes)
        return false;
    constexpr uint8_t exifFlag = 0x08;
    container->awaitsExif = (bytes[0] & exifFlag) != 0;
    container->canvasWidth = Number24(bytes + 4) + 1;
    container->canvasHeight = Number24(bytes + 7) + 1;
    return true;
}

bool TakeProfile(WebpContainer* container, WebpChunk* chunk)
{
    if (container->profile || chunk->bytes == 0 || chunk->bytes > mostProfileBytes)
        return true;
    container->profile = static_cast<uint8_t*>(malloc(chunk->bytes));
    if (!container->profile)
        return false;
    container->profileBytes = ReadChunkBytes(container, chunk, container->profile, chunk->bytes);
    return container->profileBytes == chunk->bytes;
}

// Some writers put the name that EXIF data have in a JPEG in front.
bool TakeExif(WebpContainer* container, WebpChunk* chunk)
{
    const size_t wanted = chunk->bytes < mostExifBytes ? chunk->bytes : mostExifBytes;
    if (wanted == 0)
        return true;
    auto* bytes = static_cast<uint8_t*>(malloc(wanted));
    if (!bytes)
        return false;
    constexpr size_t nameBytes = 6;
    const size_t got = ReadChunkBytes(container, chunk, bytes, wanted);
    const bool named = got > nameBytes && memcmp(bytes, "Exif\0\0", nameBytes) == 0;
    const size_t start = named ? nameBytes : 0;
    container->orientation = FindOrientation(bytes + start, got - start);
    container->awaitsExif = false;
    free(bytes);
    return got == wanted;
}

bool TakeKnownChunk(WebpContainer* container, WebpChunk* chunk)
{
    switch (chunk->name) {
    case ChunkName("VP8X"):
        return TakeExtended(container, chunk);
    case ChunkName("ICCP"):
        return TakeProfile(container, chunk);
    case ChunkName("EXIF"):
        return TakeExif(container, chunk);
    default:
        return true;
    }
}

} // namespace

uint32_t Number24(const uint8_t* bytes)
{
    return bytes[0] | uint32_t{bytes[1]} << 8 | uint32_t{bytes[2]} << 16;
}

bool ReadRiffHeader(WebpContainer* container)
{
    uint8_t bytes[12];
    container->orientation = plainOrientation;
    if (ReadPatiently(&container->input, bytes, sizeof bytes) < sizeof bytes ||
        memcmp(bytes, "RIFF", 4) != 0 || memcmp(bytes + 8, "WEBP", 4) != 0)
        return false;
    const uint32_t size = Number32(bytes + 4);
    constexpr uint32_t nameBytes = 4;
    if (size < nameBytes)
        return false;
    container->left = size - nameBytes;
    return true;
}

bool ReadChunkHeader(WebpContainer* container, WebpChunk* chunk)
{
    if (container->left < chunkHeaderBytes ||
        ReadPatiently(&container->input, chunk->header, chunkHeaderBytes) < chunkHeaderBytes)
        return false;
    container->left -= chunkHeaderBytes;
    chunk->name = Number32(chunk->header);
    chunk->bytes = Number32(chunk->header + 4);
    chunk->left = uint64_t{chunk->bytes} + (chunk->bytes & 1);
    return chunk->left <= container->left;
}

size_t ReadChunkBytes(WebpContainer* container, WebpChunk* chunk, uint8_t* out, size_t count)
{
    if (count > chunk->left)
        count = static_cast<size_t>(chunk->left);
    const size_t got = ReadPatiently(&container->input, out, count);
    chunk->left -= got;
    container->left -= got;
    return got;
}

bool TakeChunk(WebpContainer* container, WebpChunk* chunk)
{
    return TakeKnownChunk(container, chunk) && SkipChunk(container, chunk);
}

void CloseContainer(WebpContainer* container)
{
    ClosePatientReader(&container->input);
    free(container->profile);
    *container = {};
}
