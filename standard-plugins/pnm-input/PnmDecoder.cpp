#include "standard-plugins/pnm-input/PnmDecoder.h"

#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/pnm-input/PnmHeader.h"

#include <stdlib.h>

namespace
{

struct PnmDecode {
    RowReading rows;
    PnmHeader header;
    Background ground;
    /// A row as it lies in the file; none for plain forms.
    uint8_t* source;
};

size_t SourceBytes(const PnmHeader& header)
{
    if (header.bits)
        return (size_t{header.width} + 7) / 8;
    return size_t{header.width} * header.samples * (header.highest > 255 ? 2 : 1);
}

// The n-th sample of the row.
bool ReadSample(PnmDecode* decode, size_t at, uint32_t* sample)
{
    const PnmHeader& header = decode->header;
    if (header.plain)
        return header.bits ? ReadPnmBit(&decode->rows, sample)
                           : ReadPnmNumber(&decode->rows, sample);
    const uint8_t* source = decode->source;
    if (header.bits)
        *sample = source[at / 8] >> (7 - at % 8) & 1;
    else if (header.highest > 255)
        *sample = static_cast<uint32_t>(source[2 * at]) << 8 | source[2 * at + 1];
    else
        *sample = source[at];
    return true;
}

uint8_t OverGround(uint32_t sample, uint32_t alpha, uint32_t highest, uint32_t ground)
{
    const uint64_t square = uint64_t{highest} * highest;
    const uint64_t sum =
        uint64_t{255} * alpha * sample + uint64_t{highest - alpha} * highest * ground;
    return static_cast<uint8_t>((sum + square / 2) / square);
}

void StorePixel(const PnmDecode& decode, const uint32_t* samples, uint8_t* bgr)
{
    const PnmHeader& header = decode.header;
    const bool colored = header.samples >= 3;
    const uint32_t red = samples[0];
    const uint32_t green = colored ? samples[1] : red;
    const uint32_t blue = colored ? samples[2] : red;
    const uint32_t highest = header.highest;
    const uint32_t alpha = header.samples % 2 == 0 ? samples[header.samples - 1] : highest;
    bgr[0] = OverGround(blue, alpha, highest, decode.ground.blue);
    bgr[1] = OverGround(green, alpha, highest, decode.ground.green);
    bgr[2] = OverGround(red, alpha, highest, decode.ground.red);
}

bool ReadPixel(PnmDecode* decode, uint32_t x)
{
    const PnmHeader& header = decode->header;
    uint32_t samples[4];
    for (uint32_t i = 0; i < header.samples; ++i) {
        if (!ReadSample(decode, size_t{x} * header.samples + i, &samples[i]))
            return false;
        if (samples[i] > header.highest)
            return FailReading(&decode->rows, PluginFailed);
    }
    if (header.bits)
        samples[0] = 1 - samples[0];
    StorePixel(*decode, samples, decode->rows.row + size_t{3} * x);
    return true;
}

// What most files hold: bytes as they are shown.
bool IsPlainBytes(const PnmHeader& header)
{
    return !header.plain && !header.bits && header.highest == 255 && header.samples % 2 == 1;
}

void PutPlainBytes(const PnmHeader& header, const uint8_t* source, uint8_t* bgr)
{
    const uint32_t samples = header.samples;
    const uint32_t green = samples / 2;
    const uint32_t blue = samples - 1;
    for (const uint8_t* end = source + size_t{samples} * header.width; source < end;
         source += samples, bgr += 3) {
        bgr[0] = source[blue];
        bgr[1] = source[green];
        bgr[2] = source[0];
    }
}

bool ReadRow(PnmDecode* decode)
{
    if (decode->source && !ReadBytes(&decode->rows, decode->source, SourceBytes(decode->header)))
        return false;
    if (IsPlainBytes(decode->header)) {
        PutPlainBytes(decode->header, decode->source, decode->rows.row);
        return true;
    }
    for (uint32_t x = 0; x < decode->rows.width; ++x)
        if (!ReadPixel(decode, x))
            return false;
    return true;
}

bool ReadPicture(PnmDecode* decode, const ReadOrder& order)
{
    RowReading& rows = decode->rows;
    const PnmHeader& header = decode->header;
    if (!ReadPnmHeader(&rows, &decode->header) ||
        !StartRows(&rows, header.width, header.height, false))
        return false;
    decode->ground = ReadBackground(pnmBackground, order.get);
    if (!header.plain) {
        decode->source = static_cast<uint8_t*>(malloc(SourceBytes(header)));
        if (!decode->source)
            return FailReading(&rows, PluginNoMemory);
    }
    for (uint32_t y = 0; y < rows.height; ++y)
        if (!ReadRow(decode) || !PutRow(&rows, y))
            return false;
    return true;
}

int32_t Finish(PnmDecode* decode, bool read)
{
    const int32_t result = read ? EndRowReading(decode->rows) : decode->rows.result;
    CloseRowReading(&decode->rows);
    free(decode->source);
    free(decode);
    return result;
}

} // namespace

int32_t ReadPnmPicture(const ReadOrder& order)
{
    auto* decode = static_cast<PnmDecode*>(calloc(1, sizeof(PnmDecode)));
    if (!decode)
        return PluginNoMemory;
    return Finish(decode, OpenRowReading(&decode->rows, order) && ReadPicture(decode, order));
}

int32_t ReadPnmSize(PluginStreamRecord* stream, uint32_t* width, uint32_t* height)
{
    auto* decode = static_cast<PnmDecode*>(calloc(1, sizeof(PnmDecode)));
    if (!decode)
        return PluginNoMemory;
    const bool read =
        OpenHeaderReading(&decode->rows, stream) && ReadPnmHeader(&decode->rows, &decode->header);
    *width = decode->header.width;
    *height = decode->header.height;
    return Finish(decode, read);
}
