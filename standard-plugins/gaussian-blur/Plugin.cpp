// The exports of the Gaussian blur.
#include "standard-plugins/common/PluginInfo.h"
#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/common/PluginSettings.h"
#include "standard-plugins/gaussian-blur/Blur.h"
#include "standard-plugins/gaussian-blur/BlurDialog.h"

namespace
{

const PluginTexts texts = {
    PLUGIN_TEXT("TX_EFFECT"),
    {PLUGIN_TEXT("Gaussian Blur..."), PLUGIN_TEXT("ガウスぼかし...")},
    PLUGIN_TEXT("1.0"),
    PLUGIN_TEXT("2026-11-21"),
    {PLUGIN_TEXT("Blurs the picture or the selection softly, by a radius in pixels."),
     PLUGIN_TEXT("画像や選択範囲を、指定した半径で滑らかにぼかします。")},
    nullptr,
    0,
};
const BilingualText caption = {PLUGIN_TEXT("Gaussian Blur"), PLUGIN_TEXT("ガウスぼかし")};

// Two pixels at first.
const PluginSetting radius = {PLUGIN_TEXT("GaussianBlurRadius"), leastRadius, mostRadius, 20};

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

TAVRIX_EXPORT int32_t TAVRIX_CALL Configure(TavrixWindow owner, TavrixImageHandle,
                                            RasterFunctionTable*, PaletteFunctionTable*,
                                            TavrixMessageCallback, TavrixPutPropertyCallback put,
                                            TavrixGetPropertyCallback get)
{
    if (!put || !get)
        return PluginBadArgument;
    uint32_t tenths = ReadSetting(radius, get);
    const int32_t result = AskRadius(&tenths, caption, owner);
    if (result != PluginDone)
        return result;
    return StoreSetting(radius, tenths, put) ? PluginDone : PluginFailed;
}

TAVRIX_EXPORT int32_t TAVRIX_CALL Effect(TavrixImageHandle image, RasterFunctionTable* rasters,
                                         PaletteFunctionTable*, TavrixProgressCallback progress,
                                         TavrixMessageCallback message, TavrixPutPropertyCallback,
                                         TavrixGetPropertyCallback get)
{
    return BlurPicture({image, rasters, progress, message, ReadSetting(radius, get)}, caption);
}

} // extern "C"
