#include "standard-plugins/tga-input/TgaDecoder.h"

#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/tga-input/TgaHeader.h"

#include <stdlib.h>
#include <string.h>

namespace
{

constexpr size_t pixelRoom = 4;

struct TgaDecode {
    RowReading rows;
    TgaHeader header;
    Background ground;
    /// Blue, green, red of each entry.
    uint8_t (*map)[3];
    /// Bytes of a pixel in the file.
    uint32_t pixelBytes;
    /// What is left of the packet, and its pixel where it repeats one.
    uint32_t packetLeft;
    bool repeats;
    uint8_t pixel[pixelRoom];
};

// A value of the file as a colour over the ground.
void StoreColor(const TgaDecode& decode, const uint8_t* value, uint32_t bits, uint8_t* bgr)
{
    uint32_t alpha = 255;
    if (bits <= 16) {
        const uint32_t word = Little16(value);
        for (uint32_t i = 0; i < 3; ++i)
            bgr[i] = ScaleToByte(word >> (5 * i) & 31, 31);
        if (decode.header.hasAlpha && bits == 16)
            alpha = word >> 15 ? 255 : 0;
    } else {
        memcpy(bgr, value, 3);
        if (decode.header.hasAlpha && bits == 32)
            alpha = value[3];
    }
    bgr[0] = OverGround8(bgr[0], alpha, decode.ground.blue);
    bgr[1] = OverGround8(bgr[1], alpha, decode.ground.green);
    bgr[2] = OverGround8(bgr[2], alpha, decode.ground.red);
}

void StoreGrey(const TgaDecode& decode, const uint8_t* value, uint8_t* bgr)
{
    const uint32_t alpha = decode.header.hasAlpha ? value[1] : uint8_t{255};
    bgr[0] = OverGround8(value[0], alpha, decode.ground.blue);
    bgr[1] = OverGround8(value[0], alpha, decode.ground.green);
    bgr[2] = OverGround8(value[0], alpha, decode.ground.red);
}

void StoreMapped(TgaDecode* decode, const uint8_t* value, uint8_t* bgr)
{
    const uint32_t number = decode->pixelBytes == 1 ? value[0] : Little16(value);
    const TgaHeader& header = decode->header;
    if (number < header.mapFirst || number - header.mapFirst >= header.mapEntries) {
        decode->rows.damaged = true;
        memset(bgr, 0, 3);
        return;
    }
    memcpy(bgr, decode->map[number - header.mapFirst], 3);
}

void StorePixel(TgaDecode* decode, uint8_t* bgr)
{
    switch (decode->header.kind) {
    case TgaKind::Mapped:
        return StoreMapped(decode, decode->pixel, bgr);
    case TgaKind::Grey:
        return StoreGrey(*decode, decode->pixel, bgr);
    case TgaKind::Color:
        return StoreColor(*decode, decode->pixel, decode->header.bits, bgr);
    }
}

// The map is read where it is used, and passed over where it is not.
bool ReadMap(TgaDecode* decode)
{
    RowReading& rows = decode->rows;
    const TgaHeader& header = decode->header;
    const uint32_t entryBytes = TgaBytes(header.mapBits);
    if (header.kind != TgaKind::Mapped)
        return SkipBytes(&rows, uint64_t{header.mapEntries} * entryBytes);
    decode->map = static_cast<uint8_t(*)[3]>(malloc(size_t{3} * header.mapEntries));
    if (!decode->map)
        return FailReading(&rows, PluginNoMemory);
    for (uint32_t i = 0; i < header.mapEntries; ++i) {
        uint8_t entry[pixelRoom];
        if (!ReadBytes(&rows, entry, entryBytes))
            return false;
        StoreColor(*decode, entry, header.mapBits, decode->map[i]);
    }
    return true;
}

bool ReadPacket(TgaDecode* decode)
{
    const int code = NextByte(&decode->rows);
    if (code < 0)
        return false;
    decode->packetLeft = static_cast<uint32_t>(code & 127) + 1;
    decode->repeats = code >= 128;
    return !decode->repeats || ReadBytes(&decode->rows, decode->pixel, decode->pixelBytes);
}

bool ReadPixel(TgaDecode* decode)
{
    if (!decode->header.runLength)
        return ReadBytes(&decode->rows, decode->pixel, decode->pixelBytes);
    if (decode->packetLeft == 0 && !ReadPacket(decode))
        return false;
    --decode->packetLeft;
    return decode->repeats || ReadBytes(&decode->rows, decode->pixel, decode->pixelBytes);
}

bool ReadRow(TgaDecode* decode)
{
    const uint32_t width = decode->rows.width;
    for (uint32_t i = 0; i < width; ++i) {
        if (!ReadPixel(decode))
            return false;
        const uint32_t x = decode->header.fromTheRight ? width - 1 - i : i;
        StorePixel(decode, decode->rows.row + size_t{3} * x);
    }
    return true;
}

bool ReadPicture(TgaDecode* decode, const ReadOrder& order)
{
    RowReading& rows = decode->rows;
    const TgaHeader& header = decode->header;
    if (!ReadTgaHeader(&rows, &decode->header) ||
        !StartRows(&rows, header.width, header.height, !header.fromTheTop))
        return false;
    decode->ground = ReadBackground(tgaBackground, order.get);
    decode->pixelBytes = TgaBytes(header.bits);
    if (!SkipBytes(&rows, header.idBytes) || !ReadMap(decode))
        return false;
    for (uint32_t i = 0; i < rows.height; ++i)
        if (!ReadRow(decode) || !PutRow(&rows, LineOfRow(rows, i)))
            return false;
    rows.damaged |= decode->packetLeft != 0;
    return true;
}

int32_t Finish(TgaDecode* decode, bool read)
{
    const int32_t result = read ? EndRowReading(decode->rows) : decode->rows.result;
    CloseRowReading(&decode->rows);
    free(decode->map);
    free(decode);
    return result;
}

} // namespace

int32_t ReadTgaPicture(const ReadOrder& order)
{
    auto* decode = static_cast<TgaDecode*>(calloc(1, sizeof(TgaDecode)));
    if (!decode)
        return PluginNoMemory;
    return Finish(decode, OpenRowReading(&decode->rows, order) && ReadPicture(decode, order));
}

int32_t ReadTgaSize(PluginStreamRecord* stream, uint32_t* width, uint32_t* height)
{
    auto* decode = static_cast<TgaDecode*>(calloc(1, sizeof(TgaDecode)));
    if (!decode)
        return PluginNoMemory;
    const bool read =
        OpenHeaderReading(&decode->rows, stream) && ReadTgaHeader(&decode->rows, &decode->header);
    *width = decode->header.width;
    *height = decode->header.height;
    return Finish(decode, read);
}
