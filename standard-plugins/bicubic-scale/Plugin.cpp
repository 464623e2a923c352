// The exports of the bicubic scaler. It has nothing to set and no Configure: the host never asks a
// SCALE plugin for one.
#include "standard-plugins/common/PluginInfo.h"
#include "standard-plugins/common/scaling/ScalePicture.h"

namespace
{

const PluginTexts texts = {
    PLUGIN_TEXT("TX_SCALE"),
    {PLUGIN_TEXT("Bicubic"), PLUGIN_TEXT("バイキュービック")},
    PLUGIN_TEXT("1.0"),
    PLUGIN_TEXT("2026-11-22"),
    {PLUGIN_TEXT("Scales sharply, with little ringing along edges: Catmull-Rom splines."),
     PLUGIN_TEXT("縁のにじみを抑え、くっきりと伸縮します (Catmull-Rom スプライン)。")},
    nullptr,
    0,
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

TAVRIX_EXPORT int32_t TAVRIX_CALL ScaleImage(TavrixImageHandle image, RasterFunctionTable* rasters,
                                             PaletteFunctionTable*, uint32_t width, uint32_t height,
                                             TavrixProgressCallback progress,
                                             TavrixMessageCallback message,
                                             TavrixPutPropertyCallback, TavrixGetPropertyCallback)
{
    return ScalePicture({image, rasters, width, height, progress, message, ScaleKernel::Bicubic},
                        texts.name);
}

} // extern "C"
