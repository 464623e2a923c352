// What the host is told of the writer of portable pixmaps.
#include "standard-plugins/common/writing/Writer.h"
#include "standard-plugins/pnm-output/PnmEncoder.h"
#include "standard-plugins/pnm-output/PnmOutputIds.h"

namespace
{

const PluginFormatText formats[] = {
    {{PLUGIN_TEXT("Portable pixmap (*.ppm)"), PLUGIN_TEXT("PPM 画像 (*.ppm)")},
     PLUGIN_TEXT("*.ppm;*.pnm")},
};

enum { Plain, SettingCount };

const DialogSetting settings[SettingCount] = {
    {{PLUGIN_TEXT("PnmOutputPlain"), 0, 1, 0}, SettingControl::Check, ControlPlain, 0},
};

WriteOutcome Write(const WriteOrder& order)
{
    return {WritePnmPicture(order, order.values[Plain] != 0), nullptr};
}

} // namespace

const WriterPlugin writerPlugin = {
    {
        PLUGIN_TEXT("TX_OUTPUT"),
        {PLUGIN_TEXT("PNM writer"), PLUGIN_TEXT("PNM 書き込み")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Writes portable pixmaps of true colour without loss, as bytes or as text."),
         PLUGIN_TEXT(
             "フルカラーの PPM 画像を劣化なしで、バイナリまたはテキスト形式で書き込みます。")},
        formats,
        1,
    },
    {{DialogPnmEnglish, DialogPnmJapanese}, settings, SettingCount},
    Write,
};
