// What the host is told of the PNG writer.
#include "standard-plugins/common/writing/Writer.h"
#include "standard-plugins/png-output/PngEncoder.h"
#include "standard-plugins/png-output/PngOutputIds.h"

namespace
{

const PluginFormatText formats[] = {
    {{PLUGIN_TEXT("PNG image (*.png)"), PLUGIN_TEXT("PNG 画像 (*.png)")}, PLUGIN_TEXT("*.png")},
};

enum { Compression, Interlaced, SettingCount };

const DialogSetting settings[SettingCount] = {
    {{PLUGIN_TEXT("PngOutputCompression"), 0, 9, 6},
     SettingControl::Trackbar,
     ControlCompression,
     ControlCompressionNumber},
    {{PLUGIN_TEXT("PngOutputInterlaced"), 0, 1, 0}, SettingControl::Check, ControlInterlaced, 0},
};

WriteOutcome Write(const WriteOrder& order)
{
    return {WritePngPicture(order, {order.values[Compression], order.values[Interlaced] != 0}),
            nullptr};
}

} // namespace

const WriterPlugin writerPlugin = {
    {
        PLUGIN_TEXT("TX_OUTPUT"),
        {PLUGIN_TEXT("PNG writer"), PLUGIN_TEXT("PNG 書き込み")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-21"),
        {PLUGIN_TEXT("Writes PNG pictures of true colour without loss, interlaced if wanted."),
         PLUGIN_TEXT("フルカラーの PNG 画像を劣化なしで書き込みます。インターレースも選べます。")},
        formats,
        1,
    },
    {{DialogPngEnglish, DialogPngJapanese}, settings, SettingCount},
    Write,
};
