// The exports of the PNG reader.
#include "standard-plugins/common/HeaderInfo.h"
#include "standard-plugins/common/PluginInfo.h"
#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/png-input/PngDecoder.h"

namespace
{

const PluginFormatText formats[] = {
    {{PLUGIN_TEXT("PNG image (*.png)"), PLUGIN_TEXT("PNG 画像 (*.png)")}, PLUGIN_TEXT("*.png")},
};

const PluginTexts texts = {
    PLUGIN_TEXT("TX_INPUT"),
    {PLUGIN_TEXT("PNG reader"), PLUGIN_TEXT("PNG 読み込み")},
    PLUGIN_TEXT("1.0"),
    PLUGIN_TEXT("2026-11-21"),
    {PLUGIN_TEXT(
         "Reads PNG pictures of every colour type and depth; transparent parts become white."),
     PLUGIN_TEXT("すべての色形式と深度の PNG 画像を読み込みます。透明な部分は白になります。")},
    formats,
    1,
};

} // namespace

extern "C" {

TAVRIX_EXPORT int32_t TAVRIX_CALL GetPluginInfo(uint32_t index, TavrixChar* buffer,
                                                uint32_t capacity)
{
    return AnswerPluginInfo(texts, index, buffer, capacity);
}

TAVRIX_EXPORT int32_t TAVRIX_CALL SetLanguage(uint32_t language)
{
    return SetPluginLanguage(language);
}

// There is nothing to set; without the export the host would warn at every use.
TAVRIX_EXPORT int32_t TAVRIX_CALL Configure(TavrixWindow, TavrixMessageCallback,
                                            TavrixPutPropertyCallback, TavrixGetPropertyCallback)
{
    return PluginDone;
}

TAVRIX_EXPORT int32_t TAVRIX_CALL GetImageInfo(const TavrixChar*, PluginStreamRecord* stream,
                                               void* info)
{
    if (!info)
        return PluginBadArgument;
    uint32_t width = 0;
    uint32_t height = 0;
    const int32_t result = ReadPngSize(stream, &width, &height);
    return result < 0 ? result : FillHeaderInfo(info, width, height);
}

TAVRIX_EXPORT int32_t TAVRIX_CALL GetImage(const TavrixChar*, PluginStreamRecord* stream,
                                           TavrixImageHandle image, RasterFunctionTable* rasters,
                                           PaletteFunctionTable*, TavrixProgressCallback progress,
                                           TavrixMessageCallback, TavrixPutPropertyCallback,
                                           TavrixGetPropertyCallback)
{
    return ReadPngPicture({stream, image, rasters, progress});
}

} // extern "C"
