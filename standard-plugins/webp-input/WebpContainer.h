// The chunks of a WebP file (the WebP container's specification, RFC 9649): which of them there
// are, in the order of the file, and what those beside the picture say. Nothing of the picture's
// data is held; a colour profile and the start of EXIF data are.
#pragma once

#include "standard-plugins/common/reading/PatientReader.h"

/// Four letters of a chunk's name, the first in the lowest byte.
constexpr uint32_t ChunkName(const char (&name)[5])
{
    return static_cast<uint32_t>(name[0]) | static_cast<uint32_t>(name[1]) << 8 |
           static_cast<uint32_t>(name[2]) << 16 | static_cast<uint32_t>(name[3]) << 24;
}

constexpr size_t chunkHeaderBytes = 8;

struct WebpChunk {
    /// As it is in the file.
    uint8_t header[chunkHeaderBytes];
    uint32_t name;
    /// Without the byte that makes the length even.
    uint32_t bytes;
    /// Bytes of it, with that one, that were not read yet.
    uint64_t left;
};

struct WebpContainer {
    PatientReader input;
    /// Bytes of the file by its own account that were not read yet.
    uint64_t left;
    /// From the header of extended files; 0 wide without one.
    uint32_t canvasWidth;
    uint32_t canvasHeight;
    /// That header says that EXIF data come, and they have not come yet.
    bool awaitsExif;
    uint32_t orientation;
    uint8_t* profile;
    size_t profileBytes;
};

/// The file's first twelve bytes; the container was opened. False where they are wrong.
bool ReadRiffHeader(WebpContainer* container);
/// The next chunk's header. False at the end of the file, where `container->left` is 0 if it is
/// sound, and for a chunk that goes beyond the end of what holds it.
bool ReadChunkHeader(WebpContainer* container, WebpChunk* chunk);
/// Bytes of a chunk: gives how many came, fewer than `count` at the end of chunk or stream.
size_t ReadChunkBytes(WebpContainer* container, WebpChunk* chunk, uint8_t* out, size_t count);
/// What is left of the chunk, kept if it is one to be known: the extended header, a profile, EXIF
/// data. False where the stream ends first or memory does.
bool TakeChunk(WebpContainer* container, WebpChunk* chunk);
void CloseContainer(WebpContainer* container);
/// Three bytes, the lowest first.
uint32_t Number24(const uint8_t* bytes);
