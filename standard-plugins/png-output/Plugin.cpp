// The exports of the PNG writer.
#include "standard-plugins/common/device/PluginDialog.h"
#include "standard-plugins/common/PluginInfo.h"
#include "standard-plugins/png-output/PngEncoder.h"
#include "standard-plugins/png-output/PngOutputIds.h"

namespace
{

const PluginFormatText formats[] = {
    {{PLUGIN_TEXT("PNG image (*.png)"), PLUGIN_TEXT("PNG 画像 (*.png)")}, PLUGIN_TEXT("*.png")},
};

const PluginTexts texts = {
    PLUGIN_TEXT("TX_OUTPUT"),
    {PLUGIN_TEXT("PNG writer"), PLUGIN_TEXT("PNG 書き込み")},
    PLUGIN_TEXT("1.0"),
    PLUGIN_TEXT("2026-11-21"),
    {PLUGIN_TEXT("Writes PNG pictures of true colour without loss, interlaced if wanted."),
     PLUGIN_TEXT("フルカラーの PNG 画像を劣化なしで書き込みます。インターレースも選べます。")},
    formats,
    1,
};

enum { Compression, Interlaced, SettingCount };

const DialogSetting settings[SettingCount] = {
    {{PLUGIN_TEXT("PngOutputCompression"), 0, 9, 6},
     SettingControl::Trackbar,
     ControlCompression,
     ControlCompressionNumber},
    {{PLUGIN_TEXT("PngOutputInterlaced"), 0, 1, 0}, SettingControl::Check, ControlInterlaced, 0},
};

const SettingsDialog dialog = {{DialogPngEnglish, DialogPngJapanese}, settings, SettingCount};

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
    return WritePngPicture({path, stream, image, rasters, palettes, progress, message,
                            ReadSetting(settings[Compression].setting, get),
                            ReadSetting(settings[Interlaced].setting, get) != 0});
}

} // extern "C"
