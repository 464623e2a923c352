#include "standard-plugins/png-input/PngPixels.h"

namespace
{

uint32_t Sample16(const uint8_t* bytes)
{
    return static_cast<uint32_t>(bytes[0]) << 8 | bytes[1];
}

void Store(uint8_t* target, uint8_t red, uint8_t green, uint8_t blue)
{
    target[0] = blue;
    target[1] = green;
    target[2] = red;
}

void StoreTable(PngPixels& pixels, const uint8_t* source, uint8_t* target)
{
    const uint8_t* entry = pixels.table[source[0]];
    if (source[0] >= pixels.tableCount)
        pixels.beyondTable = true;
    Store(target, entry[2], entry[1], entry[0]);
}

void StoreGround(const PngPixels& pixels, uint8_t* target)
{
    Store(target, pixels.ground.red, pixels.ground.green, pixels.ground.blue);
}

void StoreOver8(const PngPixels& pixels, const uint8_t* channels, size_t step, uint32_t alpha,
                uint8_t* target)
{
    Store(target, OverGround8(channels[0], alpha, pixels.ground.red),
          OverGround8(channels[step], alpha, pixels.ground.green),
          OverGround8(channels[2 * step], alpha, pixels.ground.blue));
}

void StoreOver16(const PngPixels& pixels, const uint8_t* channels, size_t step, uint32_t alpha,
                 uint8_t* target)
{
    Store(target, OverGround16(Sample16(channels), alpha, pixels.ground.red),
          OverGround16(Sample16(channels + step), alpha, pixels.ground.green),
          OverGround16(Sample16(channels + 2 * step), alpha, pixels.ground.blue));
}

void StoreGrey16(PngPixels& pixels, const uint8_t* source, uint8_t* target)
{
    const uint32_t grey = Sample16(source);
    const uint8_t out = Narrow16(grey);
    if (pixels.hasKey && grey == pixels.key[0])
        StoreGround(pixels, target);
    else
        Store(target, out, out, out);
}

void StoreGreyAlpha8(PngPixels& pixels, const uint8_t* source, uint8_t* target)
{
    StoreOver8(pixels, source, 0, source[1], target);
}

void StoreGreyAlpha16(PngPixels& pixels, const uint8_t* source, uint8_t* target)
{
    StoreOver16(pixels, source, 0, Sample16(source + 2), target);
}

void StoreRgb8(PngPixels& pixels, const uint8_t* source, uint8_t* target)
{
    if (pixels.hasKey && source[0] == pixels.key[0] && source[1] == pixels.key[1] &&
        source[2] == pixels.key[2])
        StoreGround(pixels, target);
    else
        Store(target, source[0], source[1], source[2]);
}

void StoreRgb16(PngPixels& pixels, const uint8_t* source, uint8_t* target)
{
    const uint32_t red = Sample16(source);
    const uint32_t green = Sample16(source + 2);
    const uint32_t blue = Sample16(source + 4);
    if (pixels.hasKey && red == pixels.key[0] && green == pixels.key[1] && blue == pixels.key[2])
        StoreGround(pixels, target);
    else
        Store(target, Narrow16(red), Narrow16(green), Narrow16(blue));
}

void StoreRgba8(PngPixels& pixels, const uint8_t* source, uint8_t* target)
{
    StoreOver8(pixels, source, 1, source[3], target);
}

void StoreRgba16(PngPixels& pixels, const uint8_t* source, uint8_t* target)
{
    StoreOver16(pixels, source, 2, Sample16(source + 6), target);
}

template <void (*StorePixel)(PngPixels&, const uint8_t*, uint8_t*), size_t SourceStep>
void ConvertRun(PngPixels& pixels, const uint8_t* source, uint32_t count, uint8_t* target,
                size_t step)
{
    for (; count > 0; --count, source += SourceStep, target += step)
        StorePixel(pixels, source, target);
}

} // namespace

size_t BytesPerPixel(PngLayout layout)
{
    switch (layout) {
    case PngLayout::Table:
        return 1;
    case PngLayout::Grey16:
    case PngLayout::GreyAlpha8:
        return 2;
    case PngLayout::Rgb8:
        return 3;
    case PngLayout::GreyAlpha16:
    case PngLayout::Rgba8:
        return 4;
    case PngLayout::Rgb16:
        return 6;
    case PngLayout::Rgba16:
        return 8;
    }
    return 0;
}

void ConvertPixels(PngPixels* pixels, const uint8_t* source, uint32_t count, uint8_t* target,
                   size_t step)
{
    switch (pixels->layout) {
    case PngLayout::Table:
        return ConvertRun<StoreTable, 1>(*pixels, source, count, target, step);
    case PngLayout::Grey16:
        return ConvertRun<StoreGrey16, 2>(*pixels, source, count, target, step);
    case PngLayout::GreyAlpha8:
        return ConvertRun<StoreGreyAlpha8, 2>(*pixels, source, count, target, step);
    case PngLayout::GreyAlpha16:
        return ConvertRun<StoreGreyAlpha16, 4>(*pixels, source, count, target, step);
    case PngLayout::Rgb8:
        return ConvertRun<StoreRgb8, 3>(*pixels, source, count, target, step);
    case PngLayout::Rgb16:
        return ConvertRun<StoreRgb16, 6>(*pixels, source, count, target, step);
    case PngLayout::Rgba8:
        return ConvertRun<StoreRgba8, 4>(*pixels, source, count, target, step);
    case PngLayout::Rgba16:
        return ConvertRun<StoreRgba16, 8>(*pixels, source, count, target, step);
    }
}
