#include "standard-plugins/pcx-input/PcxDecoder.h"

#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/common/rows/device/RowsFromFile.h"
#include "standard-plugins/common/rows/device/TemporaryStream.h"
#include "standard-plugins/pcx-input/PcxHeader.h"

#include <stdlib.h>
#include <string.h>

namespace
{

constexpr uint32_t paletteMark = 12;
constexpr uint32_t paletteBytes = 1 + 256 * 3;

struct PcxDecode {
    RowReading rows;
    PcxHeader header;
    Background ground;
    TemporaryFile file;
    TemporaryStream part;
    /// Blue, green, red of 256 colours.
    uint8_t colors[256][3];
    /// The planes of a row, one behind the other.
    uint8_t* planes;
    /// What is left of a run, and its byte.
    uint32_t runLeft;
    uint8_t runByte;
};

bool ReadRun(PcxDecode* decode)
{
    const int code = NextByte(&decode->rows);
    if (code < 0)
        return false;
    decode->runLeft = 1;
    decode->runByte = static_cast<uint8_t>(code);
    if (code < 0xc0)
        return true;
    const int value = NextByte(&decode->rows);
    decode->runLeft = static_cast<uint32_t>(code & 0x3f);
    decode->runByte = static_cast<uint8_t>(value);
    return value >= 0;
}

bool ReadPlanes(PcxDecode* decode)
{
    const size_t count = size_t{decode->header.planeBytes} * decode->header.planes;
    if (!decode->header.runLength)
        return ReadBytes(&decode->rows, decode->planes, count);
    for (size_t at = 0; at < count;) {
        if (decode->runLeft == 0 && !ReadRun(decode))
            return false;
        const size_t run = decode->runLeft < count - at ? decode->runLeft : count - at;
        memset(decode->planes + at, decode->runByte, run);
        decode->runLeft -= static_cast<uint32_t>(run);
        at += run;
    }
    return true;
}

// Of several planes of one bit the first is the lowest bit of the number.
uint32_t NumberOf(const PcxDecode& decode, uint32_t x)
{
    const PcxHeader& header = decode.header;
    const uint32_t first = x * header.bits;
    const uint32_t shift = 8 - header.bits - first % 8;
    uint32_t number = 0;
    for (uint32_t plane = 0; plane < header.planes; ++plane) {
        const uint32_t byte = decode.planes[size_t{plane} * header.planeBytes + first / 8];
        number |= (byte >> shift & ((1u << header.bits) - 1)) << plane;
    }
    return number;
}

void StoreTrueColor(const PcxDecode& decode, uint32_t x, uint8_t* bgr)
{
    const uint32_t step = decode.header.planeBytes;
    const uint8_t* at = decode.planes + x;
    const uint32_t alpha = decode.header.planes == 4 ? at[size_t{3} * step] : uint8_t{255};
    bgr[0] = OverGround8(at[size_t{2} * step], alpha, decode.ground.blue);
    bgr[1] = OverGround8(at[step], alpha, decode.ground.green);
    bgr[2] = OverGround8(at[0], alpha, decode.ground.red);
}

void StoreRow(PcxDecode* decode)
{
    uint8_t* bgr = decode->rows.row;
    const bool trueColor = decode->header.bits == 8 && decode->header.planes > 1;
    for (uint32_t x = 0; x < decode->rows.width; ++x, bgr += 3) {
        if (trueColor)
            StoreTrueColor(*decode, x, bgr);
        else
            memcpy(bgr, decode->colors[NumberOf(*decode, x)], 3);
    }
}

bool TakePalette(PcxDecode* decode)
{
    uint8_t bytes[paletteBytes];
    TemporaryFile& file = decode->file;
    if (file.size < paletteBytes ||
        ReadTemporaryFile(&file, file.size - paletteBytes, bytes, paletteBytes) != paletteBytes)
        return false;
    if (bytes[0] != paletteMark)
        return false;
    for (uint32_t i = 0; i < 256; ++i)
        for (uint32_t channel = 0; channel < 3; ++channel)
            decode->colors[i][channel] = bytes[1 + 3 * i + 2 - channel];
    return true;
}

// The rest of the file goes to the disk, and the rows are read from there.
bool FindPalette(PcxDecode* decode)
{
    if (!CopyRest(&decode->rows, &decode->file))
        return false;
    uint64_t end = decode->file.size;
    if (TakePalette(decode)) {
        end -= paletteBytes;
    } else {
        for (uint32_t i = 0; i < 256; ++i)
            memset(decode->colors[i], static_cast<int>(i), 3);
        decode->rows.damaged = !decode->header.grey;
    }
    OpenTemporaryStream(&decode->part, &decode->file, 0, end);
    return SwitchStream(&decode->rows, &decode->part.record);
}

bool ReadPicture(PcxDecode* decode, const ReadOrder& order)
{
    RowReading& rows = decode->rows;
    const PcxHeader& header = decode->header;
    if (!ReadPcxHeader(&rows, &decode->header) ||
        !StartRows(&rows, header.width, header.height, false))
        return false;
    decode->ground = ReadBackground(pcxBackground, order.get);
    memcpy(decode->colors, header.colors, sizeof header.colors);
    if (header.bits == 8 && header.planes == 1 && !FindPalette(decode))
        return false;
    decode->planes = static_cast<uint8_t*>(malloc(size_t{header.planeBytes} * header.planes));
    if (!decode->planes)
        return FailReading(&rows, PluginNoMemory);
    for (uint32_t y = 0; y < rows.height; ++y) {
        if (!ReadPlanes(decode))
            return false;
        StoreRow(decode);
        if (!PutRow(&rows, y))
            return false;
    }
    rows.damaged |= decode->runLeft != 0;
    return true;
}

int32_t Finish(PcxDecode* decode, bool read)
{
    const int32_t result = read ? EndRowReading(decode->rows) : decode->rows.result;
    CloseRowReading(&decode->rows);
    CloseTemporaryFile(&decode->file);
    free(decode->planes);
    free(decode);
    return result;
}

} // namespace

int32_t ReadPcxPicture(const ReadOrder& order)
{
    auto* decode = static_cast<PcxDecode*>(calloc(1, sizeof(PcxDecode)));
    if (!decode)
        return PluginNoMemory;
    return Finish(decode, OpenRowReading(&decode->rows, order) && ReadPicture(decode, order));
}

int32_t ReadPcxSize(PluginStreamRecord* stream, uint32_t* width, uint32_t* height)
{
    auto* decode = static_cast<PcxDecode*>(calloc(1, sizeof(PcxDecode)));
    if (!decode)
        return PluginNoMemory;
    const bool read =
        OpenHeaderReading(&decode->rows, stream) && ReadPcxHeader(&decode->rows, &decode->header);
    *width = decode->header.width;
    *height = decode->header.height;
    return Finish(decode, read);
}
