// What the host is told of the WebP writer.
#include "standard-plugins/common/writing/Writer.h"
#include "standard-plugins/webp-output/WebPEncoder.h"
#include "standard-plugins/webp-output/WebPOutputIds.h"

namespace
{

const PluginFormatText formats[] = {
    {{PLUGIN_TEXT("WebP image (*.webp)"), PLUGIN_TEXT("WebP 画像 (*.webp)")},
     PLUGIN_TEXT("*.webp")},
};

enum { Lossless, Quality, Effort, SettingCount };

const DialogSetting settings[SettingCount] = {
    {{PLUGIN_TEXT("WebpOutputLossless"), 0, 1, 0}, SettingControl::Check, ControlLossless, 0},
    {{PLUGIN_TEXT("WebpOutputQuality"), 0, 100, 90},
     SettingControl::Trackbar,
     ControlQuality,
     ControlQualityNumber},
    {{PLUGIN_TEXT("WebpOutputEffort"), 0, 6, 4},
     SettingControl::Trackbar,
     ControlEffort,
     ControlEffortNumber},
};

// Not asked for: who needs it writes it into the settings.
const PluginSetting memorySetting = {PLUGIN_TEXT("WebpOutputMemory"), 1, 1u << 20, 1024};

WriteOutcome Write(const WriteOrder& order)
{
    const uint32_t* values = order.values;
    return WriteWebPPicture(order, {values[Lossless] != 0, values[Quality], values[Effort],
                                    ReadSetting(memorySetting, order.get)});
}

} // namespace

const WriterPlugin writerPlugin = {
    {
        PLUGIN_TEXT("TX_OUTPUT"),
        {PLUGIN_TEXT("WebP writer"), PLUGIN_TEXT("WebP 書き込み")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Writes WebP pictures, with a choice of quality or without loss."),
         PLUGIN_TEXT("WebP 画像を、選んだ画質で、または劣化なしで書き込みます。")},
        formats,
        1,
    },
    {{DialogWebPEnglish, DialogWebPJapanese}, settings, SettingCount},
    Write,
};
