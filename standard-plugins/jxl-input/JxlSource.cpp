#include "standard-plugins/jxl-input/JxlSource.h"

#include <string.h>

bool FeedJxl(JxlSource* source, const JxlLibrary& library, JxlDecoder* decoder)
{
    const size_t rest = library.releaseInput(decoder);
    StreamReader& reader = source->reader;
    if (rest > source->held || rest > mostJxlRest)
        return false;
    if (reader.taken == reader.filled && !FillReader(&reader))
        return false;
    const uint32_t left = reader.filled - reader.taken;
    const uint32_t run = left < jxlPieceBytes ? left : jxlPieceBytes;
    memmove(source->piece, source->piece + source->held - rest, rest);
    memcpy(source->piece + rest, reader.buffer + reader.taken, run);
    reader.taken += run;
    source->bytes += run;
    source->held = static_cast<uint32_t>(rest) + run;
    return library.setInput(decoder, source->piece, source->held) == JXL_DEC_SUCCESS;
}
