/* A plugin that does nothing, so that what a call of it costs is the host's. Reads pictures and is an
 * effect at once; which of them it says it is, the build tells. */
#include <tavrix/plugin.h>

TAVRIX_EXPORT int32_t TAVRIX_CALL GetPluginInfo(uint32_t index, TavrixChar *buffer,
                                                uint32_t capacity)
{
    static const TavrixChar identity[] = NOTHING_IDENTITY;
    uint32_t i = 0;
    if (index > PluginInfoName)
        return -1;
    for (; i + 1 < capacity && identity[i] != 0; ++i)
        buffer[i] = identity[i];
    buffer[i] = 0;
    return 1;
}

TAVRIX_EXPORT int32_t TAVRIX_CALL Effect(TavrixImageHandle image, RasterFunctionTable *rasters,
                                         PaletteFunctionTable *palettes,
                                         TavrixProgressCallback progress,
                                         TavrixMessageCallback message,
                                         TavrixPutPropertyCallback put,
                                         TavrixGetPropertyCallback get)
{
    (void)image, (void)rasters, (void)palettes;
    (void)progress, (void)message, (void)put, (void)get;
    return 1;
}

TAVRIX_EXPORT int32_t TAVRIX_CALL GetImage(const TavrixChar *path, PluginStreamRecord *stream,
                                           TavrixImageHandle image, RasterFunctionTable *rasters,
                                           PaletteFunctionTable *palettes,
                                           TavrixProgressCallback progress,
                                           TavrixMessageCallback message,
                                           TavrixPutPropertyCallback put,
                                           TavrixGetPropertyCallback get)
{
    (void)path, (void)stream;
    return Effect(image, rasters, palettes, progress, message, put, get);
}
