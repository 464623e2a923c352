#include "standard-plugins/pcx-input/PcxHeader.h"

#include "standard-plugins/common/PluginResult.h"

#include <string.h>

namespace
{

constexpr uint32_t headerBytes = 128;
constexpr uint8_t black[3] = {0, 0, 0};
constexpr uint8_t white[3] = {255, 255, 255};

// The colours that the cards of the format's time had at first, where the file brings none; blue,
// green, red.
constexpr uint8_t cardColors[16][3] = {
    {0, 0, 0},     {170, 0, 0},     {0, 170, 0},    {170, 170, 0},   {0, 0, 170},   {170, 0, 170},
    {0, 85, 170},  {170, 170, 170}, {85, 85, 85},   {255, 85, 85},   {85, 255, 85}, {255, 255, 85},
    {85, 85, 255}, {255, 85, 255},  {85, 255, 255}, {255, 255, 255},
};
constexpr uint8_t fourColors[4][3] = {{0, 0, 0}, {170, 170, 0}, {170, 0, 170}, {170, 170, 170}};

bool IsVersion(uint32_t version)
{
    return version == 0 || (version >= 2 && version <= 5);
}

bool IsForm(uint32_t bits, uint32_t planes)
{
    switch (bits) {
    case 1:
        return planes >= 1 && planes <= 4;
    case 2:
    case 4:
        return planes == 1;
    case 8:
        return planes == 1 || planes == 3 || planes == 4;
    default:
        return false;
    }
}

// Versions 0 and 3 have no palette. One of two equal colours is none either: many files of two
// colours leave it empty.
void SetColors(PcxHeader* header, const uint8_t* palette)
{
    const bool hasPalette = header->version != 0 && header->version != 3;
    if (hasPalette)
        for (uint32_t i = 0; i < 16; ++i)
            for (uint32_t channel = 0; channel < 3; ++channel)
                header->colors[i][channel] = palette[3 * i + 2 - channel];
    else if (header->bits == 2)
        memcpy(header->colors, fourColors, sizeof fourColors);
    else
        memcpy(header->colors, cardColors, sizeof cardColors);
    const bool twoColors = header->bits == 1 && header->planes == 1;
    if (twoColors && (!hasPalette || memcmp(header->colors[0], header->colors[1], 3) == 0)) {
        memcpy(header->colors[0], black, 3);
        memcpy(header->colors[1], white, 3);
    }
}

bool Parse(const uint8_t* bytes, PcxHeader* header)
{
    const uint32_t left = Little16(bytes + 4);
    const uint32_t top = Little16(bytes + 6);
    const uint32_t right = Little16(bytes + 8);
    const uint32_t bottom = Little16(bytes + 10);
    header->version = bytes[1];
    header->runLength = bytes[2] == 1;
    header->bits = bytes[3];
    header->planes = bytes[65];
    header->planeBytes = Little16(bytes + 66);
    header->grey = Little16(bytes + 68) == 2;
    if (bytes[0] != 10 || !IsVersion(header->version) || bytes[2] > 1 ||
        !IsForm(header->bits, header->planes) || right < left || bottom < top)
        return false;
    header->width = right - left + 1;
    header->height = bottom - top + 1;
    SetColors(header, bytes + 16);
    return IsPictureSize(header->width, header->height) &&
           uint64_t{header->planeBytes} * 8 >= uint64_t{header->width} * header->bits;
}

} // namespace

bool ReadPcxHeader(RowReading* rows, PcxHeader* header)
{
    uint8_t bytes[headerBytes];
    *header = {};
    if (!ReadBytes(rows, bytes, sizeof bytes))
        return false;
    return Parse(bytes, header) || FailReading(rows, PluginFailed);
}
