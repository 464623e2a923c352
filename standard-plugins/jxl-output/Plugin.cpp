// What the host is told of the JPEG XL writer.
#include "standard-plugins/common/writing/Writer.h"
#include "standard-plugins/jxl-output/JxlEncoder.h"
#include "standard-plugins/jxl-output/JxlOutputIds.h"

namespace
{

const PluginFormatText formats[] = {
    {{PLUGIN_TEXT("JPEG XL image (*.jxl)"), PLUGIN_TEXT("JPEG XL 画像 (*.jxl)")},
     PLUGIN_TEXT("*.jxl")},
};

enum { Lossless, Quality, Effort, SettingCount };

// From effort 4 on a file without loss takes ten times as long as at 3, and is a tenth smaller.
const DialogSetting settings[SettingCount] = {
    {{PLUGIN_TEXT("JxlOutputLossless"), 0, 1, 0}, SettingControl::Check, ControlLossless, 0},
    {{PLUGIN_TEXT("JxlOutputQuality"), 1, 100, 90},
     SettingControl::Trackbar,
     ControlQuality,
     ControlQualityNumber},
    {{PLUGIN_TEXT("JxlOutputEffort"), 1, 9, 3},
     SettingControl::Trackbar,
     ControlEffort,
     ControlEffortNumber},
};

// Not asked for: who needs it writes it into the settings.
const PluginSetting memorySetting = {PLUGIN_TEXT("JxlOutputMemory"), 1, 1u << 20, 1024};

WriteOutcome Write(const WriteOrder& order)
{
    const uint32_t* values = order.values;
    return WriteJxlPicture(order, {values[Lossless] != 0, values[Quality], values[Effort],
                                   ReadSetting(memorySetting, order.get)});
}

} // namespace

const WriterPlugin writerPlugin = {
    {
        PLUGIN_TEXT("TX_OUTPUT"),
        {PLUGIN_TEXT("JPEG XL writer"), PLUGIN_TEXT("JPEG XL 書き込み")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Writes JPEG XL pictures, with a choice of quality or without loss."),
         PLUGIN_TEXT("JPEG XL 画像を、選んだ画質で、または劣化なしで書き込みます。")},
        formats,
        1,
    },
    {{DialogJxlEnglish, DialogJxlJapanese}, settings, SettingCount},
    Write,
};
