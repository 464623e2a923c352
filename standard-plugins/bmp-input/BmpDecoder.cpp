#include "standard-plugins/bmp-input/BmpDecoder.h"

#include "standard-plugins/bmp-input/BmpRuns.h"
#include "standard-plugins/common/dib/DibHeader.h"
#include "standard-plugins/common/PluginResult.h"

#include <stdlib.h>

namespace
{

struct BmpDecode {
    RowReading rows;
    DibHeader header;
    DibPixels pixels;
    /// Where the pixels begin, counted from the file's start; 0 where the file does not say.
    uint32_t pixelOffset;
    uint8_t* source;
};

constexpr size_t fileHeaderBytes = 14;

// An OS/2 array of bitmaps begins with a header of its own of the same length.
bool ReadFileHeader(BmpDecode* decode)
{
    uint8_t bytes[fileHeaderBytes];
    if (!ReadBytes(&decode->rows, bytes, sizeof bytes))
        return false;
    if (bytes[0] == 'B' && bytes[1] == 'A' && !ReadBytes(&decode->rows, bytes, sizeof bytes))
        return false;
    if (bytes[0] != 'B' || bytes[1] != 'M')
        return FailReading(&decode->rows, PluginFailed);
    decode->pixelOffset = Little32(bytes + 10);
    return true;
}

bool ReadHeader(BmpDecode* decode)
{
    if (!ReadFileHeader(decode) || !ReadDibHeader(&decode->rows, &decode->header))
        return false;
    const DibHeader& header = decode->header;
    if (header.planes != 1 || !IsPictureSize(header.width, header.height))
        return FailReading(&decode->rows, PluginFailed);
    if (decode->pixelOffset != 0 && decode->pixelOffset < decode->rows.position)
        return FailReading(&decode->rows, PluginFailed);
    return true;
}

// Of a palette that would reach into the pixels only what lies before them is one.
bool ReadPaletteAndGap(BmpDecode* decode)
{
    RowReading& rows = decode->rows;
    uint32_t count = DibEntriesInFile(decode->header);
    if (decode->pixelOffset != 0) {
        const uint64_t room = (decode->pixelOffset - rows.position) / decode->header.entryBytes;
        count = count < room ? count : static_cast<uint32_t>(room);
    }
    if (!ReadDibPalette(&rows, decode->header, count, &decode->pixels))
        return false;
    return decode->pixelOffset == 0 || SkipBytes(&rows, decode->pixelOffset - rows.position);
}

bool ReadPlainRows(BmpDecode* decode)
{
    RowReading& rows = decode->rows;
    const size_t rowBytes = DibRowBytes(rows.width, decode->header.bits);
    decode->source = static_cast<uint8_t*>(malloc(rowBytes));
    if (!decode->source)
        return FailReading(&rows, PluginNoMemory);
    for (uint32_t i = 0; i < rows.height; ++i) {
        if (!ReadBytes(&rows, decode->source, rowBytes))
            return false;
        ConvertDibRow(&decode->pixels, decode->source, rows.width, rows.row);
        if (!PutRow(&rows, LineOfRow(rows, i)))
            return false;
    }
    return true;
}

bool IsRunLength(DibCompression compression)
{
    return compression == DibCompression::Rle4 || compression == DibCompression::Rle8 ||
           compression == DibCompression::Rle24;
}

bool ReadPicture(BmpDecode* decode, const ReadOrder& order)
{
    const DibHeader& header = decode->header;
    if (!ReadHeader(decode) ||
        !StartRows(&decode->rows, header.width, header.height, !header.topDown))
        return false;
    decode->pixels.bits = header.bits;
    decode->pixels.ground = ReadBackground(bmpBackground, order.get);
    SetDibMasks(&decode->pixels, header.masks);
    if (!ReadPaletteAndGap(decode))
        return false;
    const bool read = IsRunLength(header.compression)
                          ? ReadBmpRuns(&decode->rows, header.bits, &decode->pixels)
                          : ReadPlainRows(decode);
    decode->rows.damaged |= decode->pixels.beyondPalette;
    return read;
}

int32_t Finish(BmpDecode* decode, bool read)
{
    const int32_t result = read ? EndRowReading(decode->rows) : decode->rows.result;
    CloseRowReading(&decode->rows);
    free(decode->source);
    free(decode);
    return result;
}

} // namespace

int32_t ReadBmpPicture(const ReadOrder& order)
{
    auto* decode = static_cast<BmpDecode*>(calloc(1, sizeof(BmpDecode)));
    if (!decode)
        return PluginNoMemory;
    return Finish(decode, OpenRowReading(&decode->rows, order) && ReadPicture(decode, order));
}

int32_t ReadBmpSize(PluginStreamRecord* stream, uint32_t* width, uint32_t* height)
{
    auto* decode = static_cast<BmpDecode*>(calloc(1, sizeof(BmpDecode)));
    if (!decode)
        return PluginNoMemory;
    const bool read = OpenHeaderReading(&decode->rows, stream) && ReadHeader(decode);
    *width = decode->header.width;
    *height = decode->header.height;
    return Finish(decode, read);
}
