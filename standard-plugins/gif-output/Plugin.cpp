// What the host is told of the GIF writer.
#include "standard-plugins/common/writing/Writer.h"
#include "standard-plugins/gif-output/GifEncoder.h"
#include "standard-plugins/gif-output/GifOutputIds.h"

namespace
{

const PluginFormatText formats[] = {
    {{PLUGIN_TEXT("GIF image (*.gif)"), PLUGIN_TEXT("GIF 画像 (*.gif)")}, PLUGIN_TEXT("*.gif")},
};

enum { Colors, Diffusion, Interlaced, SettingCount };

const DialogSetting settings[SettingCount] = {
    {{PLUGIN_TEXT("GifOutputColors"), 2, 256, 256},
     SettingControl::Trackbar,
     ControlColors,
     ControlColorsNumber},
    {{PLUGIN_TEXT("GifOutputDiffusion"), 0, 1, 1}, SettingControl::Check, ControlDiffusion, 0},
    {{PLUGIN_TEXT("GifOutputInterlaced"), 0, 1, 0}, SettingControl::Check, ControlInterlaced, 0},
};

WriteOutcome Write(const WriteOrder& order)
{
    const uint32_t* values = order.values;
    return WriteGifPicture(order,
                           {values[Colors], values[Diffusion] != 0, values[Interlaced] != 0});
}

} // namespace

const WriterPlugin writerPlugin = {
    {
        PLUGIN_TEXT("TX_OUTPUT"),
        {PLUGIN_TEXT("GIF writer"), PLUGIN_TEXT("GIF 書き込み")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Writes GIF pictures of 2 to 256 colours, interlaced if wanted."),
         PLUGIN_TEXT("2 ～ 256 色の GIF 画像を書き込みます。インターレースも選べます。")},
        formats,
        1,
    },
    {{DialogGifEnglish, DialogGifJapanese}, settings, SettingCount},
    Write,
};
