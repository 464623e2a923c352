#include "standard-plugins/common/reading/PlacedFrame.h"

#include <stddef.h>
#include <string.h>

namespace
{

constexpr size_t pixelBytes = 3;
constexpr uint64_t pixelsWithoutAsking = 64u << 20;
constexpr uint64_t leastShare = 16;

void FillGround(const Background& ground, uint8_t* line, uint32_t from, uint32_t to)
{
    for (uint32_t x = from; x < to; ++x) {
        line[pixelBytes * x] = ground.blue;
        line[pixelBytes * x + 1] = ground.green;
        line[pixelBytes * x + 2] = ground.red;
    }
}

} // namespace

bool IsCanvasFilled(const PlacedFrame& place)
{
    const uint64_t canvas = uint64_t{place.canvasWidth} * place.canvasHeight;
    return canvas <= pixelsWithoutAsking ||
           uint64_t{place.width} * place.height >= canvas / leastShare;
}

bool CrossesLine(const PlacedFrame& place, uint32_t y)
{
    return y >= place.top && y - place.top < place.height;
}

void ComposeLine(const PlacedFrame& place, const Background& ground, const uint8_t* row,
                 uint8_t* line)
{
    if (!row || place.left >= place.canvasWidth) {
        FillGround(ground, line, 0, place.canvasWidth);
        return;
    }
    const uint32_t room = place.canvasWidth - place.left;
    const uint32_t run = place.width < room ? place.width : room;
    FillGround(ground, line, 0, place.left);
    memcpy(line + pixelBytes * place.left, row, pixelBytes * run);
    FillGround(ground, line, place.left + run, place.canvasWidth);
}
