#include "standard-plugins/common/HeaderInfo.h"

#include "standard-plugins/common/PluginResult.h"

#include <string.h>

int32_t FillHeaderInfo(void* info, uint32_t width, uint32_t height)
{
    if (!info)
        return PluginBadArgument;
    uint32_t room;
    memcpy(&room, info, sizeof room);
    if (room < sizeof room)
        return PluginBadArgument;
    RasterInfo filled = {};
    filled.size = sizeof filled;
    filled.width = width;
    filled.height = height;
    filled.depth = 24;
    filled.stride = (3 * (width + 1)) & ~3u;
    memcpy(info, &filled, room < sizeof filled ? room : sizeof filled);
    return PluginDone;
}
