#include "standard-plugins/common/LineWriter.h"

#include "standard-plugins/common/PluginResult.h"

#include <stddef.h>

namespace
{

constexpr uint32_t pixelsAtOnce = 64u << 20;

bool GiveUp(LineWriter* lines, int32_t hostResult)
{
    lines->result = hostResult < 0 ? hostResult : PluginFailed;
    (void)lines->rasters->RasterFree(lines->image);
    return false;
}

bool MakeLinePresent(LineWriter* lines, uint32_t y)
{
    if (lines->present == 0) {
        uint32_t count = pixelsAtOnce / lines->width;
        if (count > lines->height)
            count = lines->height;
        const int32_t result = lines->rasters->RasterAlloc(lines->image, lines->width, count, 24);
        if (result < 1)
            return GiveUp(lines, result);
        lines->present = count;
    }
    const uint32_t needed = lines->fromTheEnd ? lines->height - y : y + 1;
    while (needed > lines->present) {
        uint32_t count = lines->present;
        if (count > lines->height - lines->present)
            count = lines->height - lines->present;
        const uint32_t place = lines->fromTheEnd ? 0 : lines->present;
        const int32_t result =
            lines->rasters->RasterInsertLines(lines->image, static_cast<int32_t>(place), &count);
        if (result < 1 || count == 0)
            return GiveUp(lines, result);
        lines->present += count;
    }
    return true;
}

// Where line `y` of the whole lies among those that the picture has.
int32_t PlaceOf(const LineWriter& lines, uint32_t y)
{
    return static_cast<int32_t>(lines.fromTheEnd ? y - (lines.height - lines.present) : y);
}

} // namespace

bool IsPictureSize(uint32_t width, uint32_t height)
{
    return width >= 1 && width <= largestPictureSide && height >= 1 && height <= largestPictureSide;
}

int32_t OpenLines(LineWriter* lines, RasterFunctionTable* rasters, TavrixImageHandle image)
{
    *lines = {};
    if (!image || !rasters || rasters->size < sizeof(RasterFunctionTable))
        return PluginBadArgument;
    if (!rasters->RasterAlloc || !rasters->RasterFree || !rasters->RasterInsertLines ||
        !rasters->RasterLockLines || !rasters->RasterUnlockLines)
        return PluginBadArgument;
    lines->rasters = rasters;
    lines->image = image;
    return PluginDone;
}

void SetLinesSize(LineWriter* lines, uint32_t width, uint32_t height)
{
    lines->width = width;
    lines->height = height;
    lines->present = 0;
    lines->fromTheEnd = false;
}

void SetLinesFromTheEnd(LineWriter* lines)
{
    lines->fromTheEnd = true;
}

uint8_t* LockLine(LineWriter* lines, uint32_t y)
{
    if (!MakeLinePresent(lines, y))
        return nullptr;
    void* line = nullptr;
    uint32_t count = 1;
    const int32_t result =
        lines->rasters->RasterLockLines(lines->image, PlaceOf(*lines, y), &line, &count);
    if (result < 1 || count != 1 || !line) {
        lines->result = result < 0 ? result : PluginFailed;
        return nullptr;
    }
    return static_cast<uint8_t*>(line);
}

bool UnlockLine(LineWriter* lines, uint32_t y)
{
    // The host's unlock of the last line does nothing and succeeds; it releases that line itself.
    const int32_t result = lines->rasters->RasterUnlockLines(lines->image, PlaceOf(*lines, y), 1);
    if (result >= 1)
        return true;
    lines->result = result < 0 ? result : PluginNoStorage;
    return false;
}
