#include "standard-plugins/png-input/PngPixels.h"

namespace
{

uint32_t Sample16(const uint8_t* bytes)
{
    return static_cast<uint32_t>(bytes[0]) << 8 | bytes[1];
}

uint8_t Narrow16(uint32_t channel)
{
    return static_cast<uint8_t>((channel + 128) / 257);
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

void StoreGrey16(PngPixels& pixels, const uint8_t* source, uint8_t* target)
{
    const uint32_t grey = Sample16(source);
    const uint8_t out = pixels.hasKey && grey == pixels.key[0] ? 255 : Narrow16(grey);
    Store(target, out, out, out);
}

void StoreGreyAlpha8(PngPixels&, const uint8_t* source, uint8_t* target)
{
    const uint8_t out = OverWhite8(source[0], source[1]);
    Store(target, out, out, out);
}

void StoreGreyAlpha16(PngPixels&, const uint8_t* source, uint8_t* target)
{
    const uint8_t out = OverWhite16(Sample16(source), Sample16(source + 2));
    Store(target, out, out, out);
}

void StoreRgb8(PngPixels& pixels, const uint8_t* source, uint8_t* target)
{
    if (pixels.hasKey && source[0] == pixels.key[0] && source[1] == pixels.key[1] &&
        source[2] == pixels.key[2])
        Store(target, 255, 255, 255);
    else
        Store(target, source[0], source[1], source[2]);
}

void StoreRgb16(PngPixels& pixels, const uint8_t* source, uint8_t* target)
{
    const uint32_t red = Sample16(source);
    const uint32_t green = Sample16(source + 2);
    const uint32_t blue = Sample16(source + 4);
    if (pixels.hasKey && red == pixels.key[0] && green == pixels.key[1] && blue == pixels.key[2])
        Store(target, 255, 255, 255);
    else
        Store(target, Narrow16(red), Narrow16(green), Narrow16(blue));
}

void StoreRgba8(PngPixels&, const uint8_t* source, uint8_t* target)
{
    const uint32_t alpha = source[3];
    Store(target, OverWhite8(source[0], alpha), OverWhite8(source[1], alpha),
          OverWhite8(source[2], alpha));
}

void StoreRgba16(PngPixels&, const uint8_t* source, uint8_t* target)
{
    const uint32_t alpha = Sample16(source + 6);
    Store(target, OverWhite16(Sample16(source), alpha), OverWhite16(Sample16(source + 2), alpha),
          OverWhite16(Sample16(source + 4), alpha));
}

template <void (*StorePixel)(PngPixels&, const uint8_t*, uint8_t*), size_t SourceStep>
void ConvertRun(PngPixels& pixels, const uint8_t* source, uint32_t count, uint8_t* target,
                size_t step)
{
    for (; count > 0; --count, source += SourceStep, target += step)
        StorePixel(pixels, source, target);
}

} // namespace

uint8_t OverWhite8(uint32_t channel, uint32_t alpha)
{
    return static_cast<uint8_t>((alpha * channel + (255 - alpha) * 255 + 127) / 255);
}

uint8_t OverWhite16(uint32_t channel, uint32_t alpha)
{
    constexpr uint64_t divisor = 65535u * 257u;
    const uint64_t sum =
        static_cast<uint64_t>(alpha) * channel + static_cast<uint64_t>(65535 - alpha) * 65535;
    return static_cast<uint8_t>((sum + divisor / 2) / divisor);
}

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
