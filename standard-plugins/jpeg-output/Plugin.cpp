// What the host is told of the JPEG writer.
#include "standard-plugins/common/writing/Writer.h"
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

// Not asked for: who needs it writes it into the settings.
const PluginSetting memorySetting = {PLUGIN_TEXT("JpegOutputMemory"), 1, mostMegabytes, 512};

WriteOutcome Write(const WriteOrder& order)
{
    const uint32_t* values = order.values;
    return WriteJpegPicture(order,
                            {values[Quality], static_cast<ChromaSampling>(values[Sampling]),
                             values[Progressive] != 0, ReadSetting(memorySetting, order.get)});
}

} // namespace

const WriterPlugin writerPlugin = {
    {
        PLUGIN_TEXT("TX_OUTPUT"),
        {PLUGIN_TEXT("JPEG writer"), PLUGIN_TEXT("JPEG 書き込み")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-21"),
        {PLUGIN_TEXT("Writes JPEG pictures, baseline and progressive, with a choice of quality."),
         PLUGIN_TEXT("ベースラインとプログレッシブの JPEG 画像を、選んだ画質で書き込みます。")},
        formats,
        1,
    },
    {{DialogJpegEnglish, DialogJpegJapanese}, settings, SettingCount},
    Write,
};
