// The exports of the JPEG reader.
#include "standard-plugins/common/HeaderInfo.h"
#include "standard-plugins/common/PluginInfo.h"
#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/jpeg-input/JpegDecoder.h"

namespace
{

const PluginFormatText formats[] = {
    {{PLUGIN_TEXT("JPEG image (*.jpg)"), PLUGIN_TEXT("JPEG 画像 (*.jpg)")},
     PLUGIN_TEXT("*.jpg;*.jpeg;*.jpe;*.jfif")},
};

const PluginTexts texts = {
    PLUGIN_TEXT("TX_INPUT"),
    {PLUGIN_TEXT("JPEG reader"), PLUGIN_TEXT("JPEG 読み込み")},
    PLUGIN_TEXT("1.0"),
    PLUGIN_TEXT("2026-11-21"),
    {PLUGIN_TEXT("Reads JPEG pictures, baseline and progressive, grey, colour and CMYK."),
     PLUGIN_TEXT(
         "ベースラインとプログレッシブの JPEG 画像 (グレー、カラー、CMYK) を読み込みます。")},
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

// There is nothing to ask; without the export the host would warn at every use.
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
    const int32_t result = ReadJpegSize(stream, &width, &height);
    return result < 0 ? result : FillHeaderInfo(info, width, height);
}

TAVRIX_EXPORT int32_t TAVRIX_CALL GetImage(const TavrixChar*, PluginStreamRecord* stream,
                                           TavrixImageHandle image, RasterFunctionTable* rasters,
                                           PaletteFunctionTable*, TavrixProgressCallback progress,
                                           TavrixMessageCallback message, TavrixPutPropertyCallback,
                                           TavrixGetPropertyCallback get)
{
    return ReadJpegPicture({stream, image, rasters, progress, message, get});
}

} // extern "C"
