#include "standard-plugins/webp-input/WebpRows.h"

#include "standard-plugins/common/PluginResult.h"

#include <stdlib.h>
#include <string.h>

namespace
{

constexpr size_t pixelBytes = 3;

void LayRow(const WebpRows& rows, const uint8_t* source)
{
    if (!rows.hasAlpha) {
        memcpy(rows.row, source, pixelBytes * rows.place.width);
        return;
    }
    const Background& ground = rows.ground;
    uint8_t* target = rows.row;
    for (uint32_t x = 0; x < rows.place.width; ++x, source += 4, target += pixelBytes) {
        target[0] = OverGround8(source[0], source[3], ground.blue);
        target[1] = OverGround8(source[1], source[3], ground.green);
        target[2] = OverGround8(source[2], source[3], ground.red);
    }
}

} // namespace

int32_t OpenWebpRows(WebpRows* rows, LineWriter* lines, bool hasAlpha, uint32_t orientation,
                     const void* profile, size_t profileBytes)
{
    const PlacedFrame& place = rows->place;
    rows->hasAlpha = hasAlpha;
    (void)OpenColorConversion(&rows->colors, profile, profileBytes,
                              hasAlpha ? ColorLayout::Bgra8 : ColorLayout::Bgr8);
    rows->converted = static_cast<uint8_t*>(malloc(size_t{4} * place.width));
    rows->row = static_cast<uint8_t*>(malloc(pixelBytes * place.width));
    rows->line = static_cast<uint8_t*>(malloc(pixelBytes * place.canvasWidth));
    if (!rows->converted || !rows->row || !rows->line)
        return PluginNoMemory;
    return OpenOrientedLines(&rows->oriented, lines, place.canvasWidth, place.canvasHeight,
                             orientation)
               ? PluginDone
               : PluginNoMemory;
}

bool CanPutLine(const WebpRows& rows, uint32_t frameRows)
{
    const PlacedFrame& place = rows.place;
    const uint32_t y = rows.linesDone;
    if (y >= place.canvasHeight || frameRows == 0)
        return false;
    return y < place.top || y - place.top < frameRows || frameRows == place.height;
}

bool PutNextLine(WebpRows* rows, const uint8_t* picture, size_t stride)
{
    const PlacedFrame& place = rows->place;
    const uint32_t y = rows->linesDone;
    const uint8_t* row = nullptr;
    if (CrossesLine(place, y)) {
        const uint8_t* source = picture + stride * (y - place.top);
        if (ConvertsColors(rows->colors)) {
            ConvertColors(rows->colors, source, rows->converted, place.width);
            source = rows->converted;
        }
        LayRow(*rows, source);
        row = rows->row;
    }
    ComposeLine(place, rows->ground, row, rows->line);
    ++rows->linesDone;
    return PutOrientedRow(&rows->oriented, y, rows->line);
}

void CloseWebpRows(WebpRows* rows)
{
    CloseOrientedLines(&rows->oriented);
    CloseColorConversion(&rows->colors);
    free(rows->converted);
    free(rows->row);
    free(rows->line);
    *rows = {};
}
