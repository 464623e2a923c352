// The exports of brightness and contrast.
#include "standard-plugins/brightness-contrast/BrightnessContrastIds.h"
#include "standard-plugins/brightness-contrast/ToneAdjusting.h"
#include "standard-plugins/brightness-contrast/ToneTable.h"
#include "standard-plugins/common/device/PluginDialog.h"
#include "standard-plugins/common/PluginInfo.h"

namespace
{

const PluginTexts texts = {
    PLUGIN_TEXT("TX_ADJUST"),
    {PLUGIN_TEXT("Brightness and Contrast..."), PLUGIN_TEXT("明るさとコントラスト...")},
    PLUGIN_TEXT("1.0"),
    PLUGIN_TEXT("2026-11-21"),
    {PLUGIN_TEXT("Makes the picture or the selection brighter or darker, flatter or sharper."),
     PLUGIN_TEXT("画像や選択範囲の明るさとコントラストを変えます。")},
    nullptr,
    0,
};
const BilingualText caption = {PLUGIN_TEXT("Brightness and Contrast"),
                               PLUGIN_TEXT("明るさとコントラスト")};

enum { Brightness, Contrast, SettingCount };

// The settings hold no numbers below 0, so that 100 stands for a picture left as it is.
constexpr uint32_t unchanged = mostTone;

const DialogSetting settings[SettingCount] = {
    {{PLUGIN_TEXT("BrightnessContrastBrightness"), 0, 2 * unchanged, unchanged},
     SettingControl::Trackbar,
     ControlBrightness,
     ControlBrightnessNumber,
     unchanged},
    {{PLUGIN_TEXT("BrightnessContrastContrast"), 0, 2 * unchanged, unchanged},
     SettingControl::Trackbar,
     ControlContrast,
     ControlContrastNumber,
     unchanged},
};

const SettingsDialog dialog = {
    {DialogBrightnessEnglish, DialogBrightnessJapanese}, settings, SettingCount};

int32_t ToneOf(uint32_t setting, TavrixGetPropertyCallback get)
{
    return static_cast<int32_t>(ReadSetting(settings[setting].setting, get)) - mostTone;
}

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
    return AskSettings(dialog, owner, put, get);
}

TAVRIX_EXPORT int32_t TAVRIX_CALL AdjustImage(TavrixImageHandle image, RasterFunctionTable* rasters,
                                              PaletteFunctionTable*,
                                              TavrixProgressCallback progress,
                                              TavrixMessageCallback message,
                                              TavrixPutPropertyCallback,
                                              TavrixGetPropertyCallback get)
{
    return AdjustTones(
        {image, rasters, progress, message, ToneOf(Brightness, get), ToneOf(Contrast, get)},
        caption);
}

} // extern "C"
