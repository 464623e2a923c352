// The exports of an INPUT plugin.
#include "standard-plugins/common/HeaderInfo.h"
#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/common/reading/Reader.h"

extern "C" {

TAVRIX_EXPORT int32_t TAVRIX_CALL GetPluginInfo(uint32_t index, TavrixChar* buffer,
                                                uint32_t capacity)
{
    return AnswerPluginInfo(readerPlugin.texts, index, buffer, capacity);
}

TAVRIX_EXPORT int32_t TAVRIX_CALL SetLanguage(uint32_t language)
{
    return SetPluginLanguage(language);
}

// Without the export the host would warn at every use.
TAVRIX_EXPORT int32_t TAVRIX_CALL Configure(TavrixWindow owner, TavrixMessageCallback,
                                            TavrixPutPropertyCallback put,
                                            TavrixGetPropertyCallback get)
{
    return readerPlugin.configure ? readerPlugin.configure(owner, put, get) : PluginDone;
}

TAVRIX_EXPORT int32_t TAVRIX_CALL GetImageInfo(const TavrixChar*, PluginStreamRecord* stream,
                                               void* info)
{
    if (!info)
        return PluginBadArgument;
    uint32_t width = 0;
    uint32_t height = 0;
    const int32_t result = readerPlugin.readSize(stream, &width, &height);
    return result < 0 ? result : FillHeaderInfo(info, width, height);
}

TAVRIX_EXPORT int32_t TAVRIX_CALL GetImage(const TavrixChar*, PluginStreamRecord* stream,
                                           TavrixImageHandle image, RasterFunctionTable* rasters,
                                           PaletteFunctionTable*, TavrixProgressCallback progress,
                                           TavrixMessageCallback message, TavrixPutPropertyCallback,
                                           TavrixGetPropertyCallback get)
{
    return readerPlugin.read({stream, image, rasters, progress, message, get});
}

} // extern "C"
