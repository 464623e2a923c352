#include "standard-plugins/tiff-input/TiffPixels.h"

#include <stdlib.h>
#include <string.h>

namespace
{

constexpr uint32_t top8 = 255;
constexpr uint32_t top16 = 65535;

// ---- Samples ----------------------------------------------------------------------------------

uint32_t Word(const void* bytes, size_t index)
{
    uint16_t value;
    memcpy(&value, static_cast<const uint8_t*>(bytes) + 2 * index, sizeof value);
    return value;
}

void StoreWord(uint8_t* bytes, size_t index, uint32_t value)
{
    const auto word = static_cast<uint16_t>(value);
    memcpy(bytes + 2 * index, &word, sizeof word);
}

// The highest bit first. A sample touches three bytes at the most; the row has some behind it.
uint32_t Bits(const uint8_t* row, uint64_t index, uint32_t bits)
{
    const uint64_t at = index * bits;
    const uint8_t* bytes = row + at / 8;
    const uint32_t three = uint32_t{bytes[0]} << 16 | uint32_t{bytes[1]} << 8 | bytes[2];
    return three >> (24 - at % 8 - bits) & ((1u << bits) - 1);
}

uint32_t FromFloat(TiffPixels* pixels, float value)
{
    // Written so that what is no number counts as beyond.
    const bool within = value >= 0 && value <= 1;
    pixels->beyond = pixels->beyond || !within;
    if (!within)
        return value > 1 ? top16 : 0;
    return static_cast<uint32_t>(value * static_cast<float>(top16) + 0.5f);
}

uint32_t Sample32(TiffPixels* pixels, const uint8_t* row, uint64_t index)
{
    if (pixels->image->isFloat) {
        float value;
        memcpy(&value, row + 4 * index, sizeof value);
        return FromFloat(pixels, value);
    }
    uint32_t value;
    memcpy(&value, row + 4 * index, sizeof value);
    return value >> 16;
}

// A sample as it is; those of 32 bits brought to 16.
uint32_t RawSample(TiffPixels* pixels, const uint8_t* row, uint64_t index)
{
    switch (pixels->image->bits) {
    case 8:
        return row[index];
    case 16:
        return Word(row, index);
    case 32:
        return Sample32(pixels, row, index);
    default:
        return Bits(row, index, pixels->image->bits);
    }
}

// To 8 or 16 bits.
uint32_t Scaled(const TiffPixels& pixels, uint32_t value)
{
    const uint32_t bits = pixels.image->bits;
    if (bits == 8 || bits >= 16)
        return value;
    const uint32_t highest = (1u << bits) - 1;
    return (value * (pixels.wide ? top16 : top8) + highest / 2) / highest;
}

// Sample `number` of pixel `x`.
uint32_t SampleOf(TiffPixels* pixels, const uint8_t* row, uint32_t x, uint32_t number)
{
    const TiffImage& image = *pixels->image;
    if (image.separate)
        return RawSample(pixels, row + number * TiffRowBytes(image, image.width), x);
    return RawSample(pixels, row, uint64_t{x} * image.samples + number);
}

void Store(const TiffPixels& pixels, uint8_t* values, size_t index, uint32_t value)
{
    if (pixels.wide)
        StoreWord(values, index, value);
    else
        values[index] = static_cast<uint8_t>(value);
}

void TakeColor(TiffPixels* pixels, const uint8_t* row, uint32_t x)
{
    const TiffImage& image = *pixels->image;
    if (image.colors == TiffColors::Palette) {
        memcpy(pixels->values + size_t{3} * x, image.table[SampleOf(pixels, row, x, 0)], 3);
        return;
    }
    for (uint32_t c = 0; c < pixels->channels; ++c) {
        uint32_t value = Scaled(*pixels, SampleOf(pixels, row, x, c));
        if (image.colors == TiffColors::InvertedGrey)
            value = (pixels->wide ? top16 : top8) - value;
        // Inks are 8 bits wide for the conversion.
        if (image.colors == TiffColors::Inks && image.bits > 8)
            pixels->values[size_t{4} * x + c] = Narrow16(value);
        else
            Store(*pixels, pixels->values, size_t{pixels->channels} * x + c, value);
    }
}

// As wide as the colours, but for palettes and inks 8 bits.
void TakeAlpha(TiffPixels* pixels, const uint8_t* row, uint32_t x)
{
    const TiffImage& image = *pixels->image;
    const uint32_t value = Scaled(*pixels, SampleOf(pixels, row, x, image.alphaSample));
    if (image.colors == TiffColors::Inks && image.bits > 8)
        pixels->alphas[x] = Narrow16(value);
    else
        Store(*pixels, pixels->alphas, x, value);
}

// ---- Colours ------------------------------------------------------------------------------------

uint32_t Value(const TiffPixels& pixels, const uint8_t* values, size_t index)
{
    return pixels.wide ? Word(values, index) : values[index];
}

void DivideAlphaOut(TiffPixels* pixels)
{
    const uint32_t top = pixels->wide ? top16 : top8;
    for (uint32_t x = 0; x < pixels->image->width; ++x) {
        const uint32_t alpha = Value(*pixels, pixels->alphas, x);
        for (uint32_t c = 0; c < pixels->channels; ++c) {
            const size_t at = size_t{pixels->channels} * x + c;
            const uint32_t value = Value(*pixels, pixels->values, at);
            const uint32_t whole =
                value >= alpha ? (alpha ? top : 0) : (value * top + alpha / 2) / alpha;
            Store(*pixels, pixels->values, at, whole);
        }
    }
}

// Blue, green, red of each pixel.
void LightOfInks(TiffPixels* pixels)
{
    const uint8_t* ink = pixels->values;
    uint8_t* light = pixels->light;
    for (uint32_t x = 0; x < pixels->image->width; ++x, ink += 4, light += 3)
        for (uint32_t c = 0; c < 3; ++c)
            light[2 - c] = static_cast<uint8_t>(((255u - ink[c]) * (255u - ink[3]) + 127) / 255);
}

void ConvertRowColors(TiffPixels* pixels)
{
    const uint32_t width = pixels->image->width;
    if (pixels->image->colors == TiffColors::Inks) {
        if (ConvertsColors(pixels->colors))
            ConvertColors(pixels->colors, pixels->values, pixels->light, width);
        else
            LightOfInks(pixels);
        return;
    }
    if (!ConvertsColors(pixels->colors))
        return;
    if (pixels->image->alpha == TiffAlpha::Associated)
        DivideAlphaOut(pixels);
    ConvertColors(pixels->colors, pixels->values, pixels->values, width);
}

// ---- Over the background ------------------------------------------------------------------------

uint8_t Associated8(uint32_t channel, uint32_t alpha, uint32_t ground)
{
    const uint32_t sum = (255 * channel + (255 - alpha) * ground + 127) / 255;
    return static_cast<uint8_t>(sum < top8 ? sum : top8);
}

uint8_t Associated16(uint32_t channel, uint32_t alpha, uint32_t ground)
{
    const uint64_t sum =
        (uint64_t{65535} * channel + uint64_t{65535 - alpha} * 257 * ground + 8421247) / 16842495;
    return static_cast<uint8_t>(sum < top8 ? sum : top8);
}

uint8_t OverGround(const TiffPixels& pixels, uint32_t channel, uint32_t alpha, uint32_t ground)
{
    const bool associated =
        pixels.image->alpha == TiffAlpha::Associated && !ConvertsColors(pixels.colors);
    if (pixels.wide)
        return associated ? Associated16(channel, alpha, ground)
                          : OverGround16(channel, alpha, ground);
    return associated ? Associated8(channel, alpha, ground) : OverGround8(channel, alpha, ground);
}

// Colour `c`, 0 red to 2 blue, of pixel `x`.
uint32_t ColorOf(const TiffPixels& pixels, uint32_t x, uint32_t c)
{
    if (pixels.image->colors == TiffColors::Inks)
        return pixels.light[size_t{3} * x + 2 - c];
    return Value(pixels, pixels.values, pixels.channels == 1 ? x : size_t{3} * x + c);
}

void PutRow(const TiffPixels& pixels, uint8_t* out)
{
    const uint32_t grounds[] = {pixels.ground.red, pixels.ground.green, pixels.ground.blue};
    const bool hasAlpha = pixels.image->alpha != TiffAlpha::None;
    for (uint32_t x = 0; x < pixels.image->width; ++x, out += 3)
        for (uint32_t c = 0; c < 3; ++c) {
            const uint32_t color = ColorOf(pixels, x, c);
            if (hasAlpha)
                out[2 - c] = OverGround(pixels, color, Value(pixels, pixels.alphas, x), grounds[c]);
            else
                out[2 - c] = pixels.wide ? Narrow16(color) : static_cast<uint8_t>(color);
        }
}

// Of most files: bytes that only change their order.
bool IsPlainBytes(const TiffPixels& pixels)
{
    const TiffImage& image = *pixels.image;
    const bool known = image.colors == TiffColors::Grey || image.colors == TiffColors::Rgb;
    return known && image.bits == 8 && !image.separate && image.alpha == TiffAlpha::None &&
           !ConvertsColors(pixels.colors);
}

void PutPlainBytes(const TiffImage& image, const uint8_t* row, uint8_t* out)
{
    const size_t green = image.colorSamples == 3 ? 1 : 0;
    for (uint32_t x = 0; x < image.width; ++x, row += image.samples, out += 3) {
        out[0] = row[2 * green];
        out[1] = row[green];
        out[2] = row[0];
    }
}

ColorLayout LayoutOf(const TiffPixels& pixels)
{
    if (pixels.image->colors == TiffColors::Inks)
        return ColorLayout::Cmyk8;
    if (pixels.channels == 1)
        return pixels.wide ? ColorLayout::Grey16 : ColorLayout::Grey8;
    return pixels.wide ? ColorLayout::Rgb16 : ColorLayout::Rgb8;
}

} // namespace

bool OpenTiffPixels(TiffPixels* pixels, const TiffImage* image, const Background& ground)
{
    *pixels = {};
    pixels->image = image;
    pixels->ground = ground;
    const bool isPalette = image->colors == TiffColors::Palette;
    pixels->wide = image->bits > 8 && image->colors != TiffColors::Inks;
    pixels->channels = isPalette ? 3 : image->colorSamples;
    const size_t sampleBytes = pixels->wide ? 2 : 1;
    pixels->values = static_cast<uint8_t*>(malloc(sampleBytes * pixels->channels * image->width));
    pixels->alphas = static_cast<uint8_t*>(malloc(sampleBytes * image->width));
    pixels->light = static_cast<uint8_t*>(malloc(size_t{3} * image->width));
    if (!pixels->values || !pixels->alphas || !pixels->light)
        return false;
    (void)OpenColorConversion(&pixels->colors, image->profile, image->profileBytes,
                              LayoutOf(*pixels));
    return true;
}

void ConvertTiffRow(TiffPixels* pixels, const uint8_t* row, uint8_t* out)
{
    const TiffImage& image = *pixels->image;
    if (IsPlainBytes(*pixels)) {
        PutPlainBytes(image, row, out);
        return;
    }
    for (uint32_t x = 0; x < image.width; ++x) {
        TakeColor(pixels, row, x);
        if (image.alpha != TiffAlpha::None)
            TakeAlpha(pixels, row, x);
    }
    ConvertRowColors(pixels);
    PutRow(*pixels, out);
}

void CloseTiffPixels(TiffPixels* pixels)
{
    CloseColorConversion(&pixels->colors);
    free(pixels->values);
    free(pixels->alphas);
    free(pixels->light);
    *pixels = {};
}
