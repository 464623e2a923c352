#include "standard-plugins/common/dib/DibHeader.h"

#include "standard-plugins/common/PluginResult.h"

#include <string.h>

namespace
{

constexpr uint32_t coreSize = 12;
constexpr uint32_t largestSize = 124;
constexpr uint32_t mostEntries = 65536;

bool IsWindowsSize(uint32_t size)
{
    return size == 40 || size == 52 || size == 56 || size == 108 || size == 124;
}

bool IsKnownSize(uint32_t size)
{
    return size == coreSize || (size >= 16 && size <= 64) || IsWindowsSize(size);
}

bool HasBits(uint32_t bits)
{
    return bits == 1 || bits == 2 || bits == 4 || bits == 8 || bits == 16 || bits == 24 ||
           bits == 32;
}

// The numbers in the file mean different things to the two systems. False for what is not read.
bool FindCompression(DibHeader* header, uint32_t number)
{
    const bool isWindows = IsWindowsSize(header->size);
    if (number == 0)
        header->compression = DibCompression::None;
    else if (number == 1 && header->bits == 8)
        header->compression = DibCompression::Rle8;
    else if (number == 2 && header->bits == 4)
        header->compression = DibCompression::Rle4;
    else if (number == 4 && header->bits == 24 && !isWindows)
        header->compression = DibCompression::Rle24;
    else if ((number == 3 || number == 6) && isWindows &&
             (header->bits == 16 || header->bits == 32))
        header->compression = DibCompression::Fields;
    else
        return false;
    return true;
}

bool ParseCore(const uint8_t* bytes, DibHeader* header)
{
    header->width = Little16(bytes + 4);
    header->height = Little16(bytes + 6);
    header->planes = Little16(bytes + 8);
    header->bits = Little16(bytes + 10);
    header->compression = DibCompression::None;
    header->entryBytes = 3;
    return HasBits(header->bits);
}

bool ParseInfo(const uint8_t* bytes, DibHeader* header)
{
    constexpr uint32_t sign = 0x80000000u;
    header->width = Little32(bytes + 4);
    header->height = Little32(bytes + 8);
    header->topDown = header->height > sign;
    if (header->topDown)
        header->height = 0u - header->height;
    header->planes = Little16(bytes + 12);
    header->bits = Little16(bytes + 14);
    header->entries = Little32(bytes + 32);
    header->entryBytes = 4;
    return header->height != sign && HasBits(header->bits) && header->entries <= mostEntries &&
           FindCompression(header, Little32(bytes + 16));
}

void SetMasks(DibHeader* header, uint32_t red, uint32_t green, uint32_t blue)
{
    header->masks[0] = red;
    header->masks[1] = green;
    header->masks[2] = blue;
    header->masks[3] = 0;
}

void TakeMasks(DibHeader* header, const uint8_t* bytes, uint32_t count)
{
    for (uint32_t i = 0; i < count; ++i)
        header->masks[i] = Little32(bytes + 4 * i);
}

// Masks lie in the longer headers and behind the one of 40 bytes.
bool ReadMasks(RowReading* rows, DibHeader* header, const uint8_t* bytes)
{
    if (header->bits == 16)
        SetMasks(header, 0x7c00, 0x03e0, 0x001f);
    else
        SetMasks(header, 0xff0000, 0x00ff00, 0x0000ff);
    if (header->compression != DibCompression::Fields)
        return true;
    if (header->size > 40) {
        TakeMasks(header, bytes + 40, header->size >= 56 ? 4 : 3);
        return true;
    }
    const uint32_t count = Little32(bytes + 16) == 6 ? 4 : 3;
    uint8_t behind[16];
    if (!ReadBytes(rows, behind, size_t{4} * count))
        return false;
    TakeMasks(header, behind, count);
    return true;
}

} // namespace

bool ReadDibHeader(RowReading* rows, DibHeader* header)
{
    uint8_t bytes[largestSize] = {};
    *header = {};
    if (!ReadBytes(rows, bytes, 4))
        return false;
    header->size = Little32(bytes);
    if (!IsKnownSize(header->size))
        return FailReading(rows, PluginFailed);
    if (!ReadBytes(rows, bytes + 4, header->size - 4))
        return false;
    const bool known =
        header->size == coreSize ? ParseCore(bytes, header) : ParseInfo(bytes, header);
    if (!known)
        return FailReading(rows, PluginFailed);
    if (!ReadMasks(rows, header, bytes))
        return false;
    return AreDibMasks(header->masks) || FailReading(rows, PluginFailed);
}

uint32_t DibEntriesInFile(const DibHeader& header)
{
    return header.entries == 0 && header.bits <= 8 ? 1u << header.bits : header.entries;
}

bool ReadDibPalette(RowReading* rows, const DibHeader& header, uint32_t count, DibPixels* pixels)
{
    const uint32_t most = header.bits <= 8 ? 1u << header.bits : 0;
    pixels->colorCount = count < most ? count : most;
    for (uint32_t i = 0; i < count; ++i) {
        uint8_t entry[4];
        if (!ReadBytes(rows, entry, header.entryBytes))
            return false;
        if (i < most)
            memcpy(pixels->colors[i], entry, 3);
    }
    return true;
}
