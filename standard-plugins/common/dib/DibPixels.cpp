#include "standard-plugins/common/dib/DibPixels.h"

#include "standard-plugins/common/rows/RowReading.h"

#include <string.h>

namespace
{

uint32_t LowestBit(uint32_t mask)
{
    uint32_t shift = 0;
    while (shift < 32 && (mask >> shift & 1) == 0)
        ++shift;
    return shift;
}

void SetChannel(DibChannel* channel, uint32_t mask)
{
    *channel = {};
    if (mask == 0)
        return;
    channel->shift = LowestBit(mask);
    channel->highest = mask >> channel->shift;
    for (uint32_t value = 0; value <= channel->highest && value < 256; ++value)
        channel->bytes[value] = ScaleToByte(value, channel->highest);
}

uint8_t ChannelOf(const DibChannel& channel, uint32_t pixel)
{
    const uint32_t value = pixel >> channel.shift & channel.highest;
    return value < 256 ? channel.bytes[value] : ScaleToByte(value, channel.highest);
}

void StoreFields(const DibPixels& pixels, uint32_t pixel, uint8_t* bgr)
{
    const uint8_t red = ChannelOf(pixels.channels[0], pixel);
    const uint8_t green = ChannelOf(pixels.channels[1], pixel);
    const uint8_t blue = ChannelOf(pixels.channels[2], pixel);
    const uint32_t alpha =
        pixels.channels[3].highest ? ChannelOf(pixels.channels[3], pixel) : uint8_t{255};
    bgr[0] = OverGround8(blue, alpha, pixels.ground.blue);
    bgr[1] = OverGround8(green, alpha, pixels.ground.green);
    bgr[2] = OverGround8(red, alpha, pixels.ground.red);
}

} // namespace

bool AreDibMasks(const uint32_t masks[4])
{
    for (int i = 0; i < 4; ++i) {
        if (masks[i] == 0)
            continue;
        const uint32_t run = masks[i] >> LowestBit(masks[i]);
        if ((run & (run + 1)) != 0)
            return false;
    }
    return true;
}

void SetDibMasks(DibPixels* pixels, const uint32_t masks[4])
{
    for (int i = 0; i < 4; ++i)
        SetChannel(&pixels->channels[i], masks[i]);
}

size_t DibRowBytes(uint32_t width, uint32_t bits)
{
    return static_cast<size_t>((uint64_t{width} * bits + 31) / 32 * 4);
}

uint32_t DibIndex(const uint8_t* source, uint32_t x, uint32_t bits)
{
    const uint32_t first = x * bits;
    return source[first / 8] >> (8 - bits - first % 8) & ((1u << bits) - 1);
}

const uint8_t* DibColor(DibPixels* pixels, uint32_t index)
{
    if (index >= pixels->colorCount)
        pixels->beyondPalette = true;
    return pixels->colors[index];
}

void ConvertDibRow(DibPixels* pixels, const uint8_t* source, uint32_t width, uint8_t* bgr)
{
    if (pixels->bits == 24) {
        memcpy(bgr, source, size_t{3} * width);
        return;
    }
    for (uint32_t x = 0; x < width; ++x, bgr += 3) {
        if (pixels->bits == 16)
            StoreFields(*pixels, Little16(source + size_t{2} * x), bgr);
        else if (pixels->bits == 32)
            StoreFields(*pixels, Little32(source + size_t{4} * x), bgr);
        else
            memcpy(bgr, DibColor(pixels, DibIndex(source, x, pixels->bits)), 3);
    }
}
