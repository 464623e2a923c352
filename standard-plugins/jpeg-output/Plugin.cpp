// The exports of the JPEG writer.
#include "standard-plugins/common/device/PluginDialog.h"
#include "standard-plugins/common/PluginInfo.h"
#include "standard-plugins/jpeg-output/JpegEncoder.h"
#include "standard-plugins/jpeg-output/JpegOutputIds.h"

namespace
{

// What the codec's own limit, a number of bytes of 31 bits, can hold on every system beside what it
// takes for itself.
constexpr uint32_t mostMegabytes = 2000;

const PluginFormatText formats[] = {
    {{PLUGIN_TEXT("JPEG image (*.jpg)"), PLUGIN_TEXT("JPEG 画像 (*.jpg)")},
     PLUGIN_TEXT("*.jpg;*.jpeg;*.jpe")},
};

const PluginTexts texts = {
    PLUGIN_TEXT("TX_OUTPUT"),
    {PLUGIN_TEXT("JPEG writer"), PLUGIN_TEXT("JPEG 書き込み")},
    PLUGIN_TEXT("1.0"),
    PLUGIN_TEXT("2026-11-21"),
    {PLUGIN_TEXT("Writes JPEG pictures, baseline and progressive, with a choice of quality."),
     PLUGIN_TEXT("ベースラインとプログレッシブの JPEG 画像を、選んだ画質で書き込みます。")},
    formats,
    1,
};

enum { Quality, Sampling, Progressive, SettingCount };

const DialogSetting settings[SettingCount] = {
    {{PLUGIN_TEXT("JpegOutputQuality"), 1, 100, 90},
     SettingControl::Trackbar,
     ControlQuality,
     ControlQualityNumber},
    {{PLUGIN_TEXT("JpegOutputSampling"), 0, 3, 0},
     SettingControl::Choice,
     ControlSamplingAutomatic,
     0},
    {{PLUGIN_TEXT("JpegOutputProgressive"), 0, 1, 0}, SettingControl::Check, ControlProgressive, 0},
};

const SettingsDialog dialog = {{DialogJpegEnglish, DialogJpegJapanese}, settings, SettingCount};

// Not asked for: who needs it writes it into the settings.
const PluginSetting memorySetting = {PLUGIN_TEXT("JpegOutputMemory"), 1, mostMegabytes, 512};

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

TAVRIX_EXPORT int32_t TAVRIX_CALL Configure(TavrixWindow owner, TavrixMessageCallback,
                                            TavrixPutPropertyCallback put,
                                            TavrixGetPropertyCallback get)
{
    return AskSettings(dialog, owner, put, get);
}

TAVRIX_EXPORT int32_t TAVRIX_CALL PutImage(const TavrixChar* path, PluginStreamRecord* stream,
                                           TavrixImageHandle image, RasterFunctionTable* rasters,
                                           PaletteFunctionTable* palettes,
                                           TavrixProgressCallback progress,
                                           TavrixMessageCallback message, TavrixPutPropertyCallback,
                                           TavrixGetPropertyCallback get)
{
    return WriteJpegPicture(
        {path, stream, image, rasters, palettes, progress, message,
         ReadSetting(settings[Quality].setting, get),
         static_cast<ChromaSampling>(ReadSetting(settings[Sampling].setting, get)),
         ReadSetting(settings[Progressive].setting, get) != 0, ReadSetting(memorySetting, get)});
}

} // extern "C"
