#include "standard-plugins/jpeg-input/JpegColors.h"

#include "standard-plugins/jpeg-input/JpegPixels.h"

#include <stdlib.h>

namespace
{

ColorLayout LayoutOf(const jpeg_decompress_struct& codec)
{
    switch (codec.jpeg_color_space) {
    case JCS_GRAYSCALE:
        return ColorLayout::Grey8;
    case JCS_CMYK:
    case JCS_YCCK:
        return codec.saw_Adobe_marker ? ColorLayout::CmykInverted8 : ColorLayout::Cmyk8;
    default:
        return ColorLayout::Bgr8;
    }
}

void FillGreys(JpegColors* colors)
{
    for (uint32_t i = 0; i < 256; ++i)
        colors->greys[i] = static_cast<uint8_t>(i);
    ConvertColors(colors->conversion, colors->greys, colors->greys, 256);
}

} // namespace

void OpenJpegColors(JpegColors* colors, const JpegReading& reading)
{
    size_t bytes = 0;
    uint8_t* profile = JoinProfile(reading.markers, &bytes);
    if (!profile)
        return;
    const ColorLayout layout = LayoutOf(reading.codec);
    colors->isGrey = layout == ColorLayout::Grey8;
    if (OpenColorConversion(&colors->conversion, profile, bytes, layout) && colors->isGrey)
        FillGreys(colors);
    free(profile);
}

void ConvertJpegRow(const JpegColors& colors, uint8_t* row, uint32_t count)
{
    if (!ConvertsColors(colors.conversion))
        return;
    if (!colors.isGrey) {
        ConvertColors(colors.conversion, row, row, count);
        return;
    }
    for (size_t i = 0; i < size_t{3} * count; ++i)
        row[i] = colors.greys[row[i]];
}

void ConvertJpegInk(const JpegColors& colors, const uint8_t* inks, uint32_t count, bool inverted,
                    uint8_t* row)
{
    if (ConvertsColors(colors.conversion))
        ConvertColors(colors.conversion, inks, row, count);
    else
        ConvertInk(inks, count, inverted ? InkSense::LessIsInk : InkSense::MoreIsInk, row);
}

void CloseJpegColors(JpegColors* colors)
{
    CloseColorConversion(&colors->conversion);
    *colors = {};
}
