#include "standard-plugins/png-input/PngColors.h"

#include <string.h>

namespace
{

ColorLayout LayoutOf(png_structp png, png_infop info)
{
    const bool wide = png_get_bit_depth(png, info) == 16;
    const bool hasKey = png_get_valid(png, info, PNG_INFO_tRNS) != 0;
    switch (png_get_color_type(png, info)) {
    case PNG_COLOR_TYPE_GRAY:
        // What is transparent by its colour becomes alpha where there is no table.
        return !wide ? ColorLayout::Grey8 : hasKey ? ColorLayout::GreyAlpha16 : ColorLayout::Grey16;
    case PNG_COLOR_TYPE_GRAY_ALPHA:
        return wide ? ColorLayout::GreyAlpha16 : ColorLayout::GreyAlpha8;
    case PNG_COLOR_TYPE_RGB:
        if (hasKey)
            return wide ? ColorLayout::Rgba16 : ColorLayout::Rgba8;
        return wide ? ColorLayout::Rgb16 : ColorLayout::Rgb8;
    case PNG_COLOR_TYPE_RGB_ALPHA:
        return wide ? ColorLayout::Rgba16 : ColorLayout::Rgba8;
    default: // a palette
        return ColorLayout::Rgb8;
    }
}

bool IsWide(PngLayout layout)
{
    return layout == PngLayout::Grey16 || layout == PngLayout::GreyAlpha16 ||
           layout == PngLayout::Rgb16 || layout == PngLayout::Rgba16;
}

// From the file's byte order to the machine's.
void ToMachine(uint8_t* samples, size_t bytes)
{
    for (size_t i = 0; i < bytes; i += 2) {
        const auto sample =
            static_cast<uint16_t>(static_cast<uint32_t>(samples[i]) << 8 | samples[i + 1]);
        memcpy(samples + i, &sample, sizeof sample);
    }
}

void ToFile(uint8_t* samples, size_t bytes)
{
    for (size_t i = 0; i < bytes; i += 2) {
        uint16_t sample;
        memcpy(&sample, samples + i, sizeof sample);
        samples[i] = static_cast<uint8_t>(sample >> 8);
        samples[i + 1] = static_cast<uint8_t>(sample);
    }
}

} // namespace

void OpenPngColors(ColorConversion* conversion, png_structp png, png_infop info)
{
    png_charp name = nullptr;
    int compression = 0;
    png_bytep profile = nullptr;
    png_uint_32 bytes = 0;
    if (png_get_iCCP(png, info, &name, &compression, &profile, &bytes) != 0)
        (void)OpenColorConversion(conversion, profile, bytes, LayoutOf(png, info));
}

void ConvertPngTable(const ColorConversion& conversion, uint8_t (*colors)[3], uint32_t count)
{
    if (ConvertsColors(conversion))
        ConvertColors(conversion, colors, colors, count);
}

void ConvertPngGreys(const ColorConversion& conversion, uint8_t* levels, uint32_t count)
{
    if (ConvertsColors(conversion))
        ConvertColors(conversion, levels, levels, count);
}

void ConvertPngRow(const ColorConversion& conversion, PngLayout layout, uint8_t* row,
                   uint32_t count)
{
    if (!ConvertsColors(conversion) || layout == PngLayout::Table)
        return;
    const size_t bytes = count * BytesPerPixel(layout);
    const bool wide = IsWide(layout);
    if (wide)
        ToMachine(row, bytes);
    ConvertColors(conversion, row, row, count);
    if (wide)
        ToFile(row, bytes);
}
