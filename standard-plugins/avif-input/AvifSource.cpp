#include "standard-plugins/avif-input/AvifSource.h"

#include <stdlib.h>
#include <string.h>

namespace
{

constexpr size_t mostPieceBytes = 64u << 20;

// Every file of the family begins with a box of this kind.
bool LooksLikeBoxes(const uint8_t* bytes)
{
    return memcmp(bytes + 4, "ftyp", 4) == 0;
}

bool MakeRoom(AvifSource* source, size_t bytes)
{
    if (bytes <= source->room)
        return true;
    free(source->piece);
    source->piece = static_cast<uint8_t*>(malloc(bytes));
    source->room = source->piece ? bytes : 0;
    return source->piece != nullptr;
}

avifResult OnRead(avifIO* io, uint32_t flags, uint64_t offset, size_t size, avifROData* out)
{
    auto* source = static_cast<AvifSource*>(io->data);
    TemporaryFile* file = &source->source.file;
    *out = {};
    if (flags != 0 || offset > file->size)
        return AVIF_RESULT_IO_ERROR;
    const uint64_t left = file->size - offset;
    if (size > left) {
        if (source->waits)
            return AVIF_RESULT_WAITING_ON_IO;
        size = static_cast<size_t>(left);
    }
    if (size > mostPieceBytes)
        return AVIF_RESULT_IO_ERROR;
    if (!MakeRoom(source, size > 0 ? size : 1) ||
        ReadTemporaryFile(file, offset, source->piece, size) != size)
        return AVIF_RESULT_IO_ERROR;
    out->data = source->piece;
    out->size = size;
    return AVIF_RESULT_OK;
}

} // namespace

int32_t OpenAvifSource(AvifSource* source, PluginStreamRecord* stream, FrameProgress* progress)
{
    *source = {};
    const int32_t result = OpenFrameSource(&source->source, stream, progress, LooksLikeBoxes);
    if (result < 0)
        return result;
    source->io.read = OnRead;
    source->io.data = source;
    // The library ends the process where it gets no memory: with this it never asks for more than
    // the file could fill.
    source->io.sizeHint = source->source.file.size;
    return result;
}

void CloseAvifSource(AvifSource* source)
{
    CloseFrameSource(&source->source);
    free(source->piece);
    *source = {};
}
