// What the host is told of the JPEG XL reader.
#include "standard-plugins/jxl-input/JxlDecoder.h"

namespace
{

const PluginFormatText formats[] = {
    {{PLUGIN_TEXT("JPEG XL image (*.jxl)"), PLUGIN_TEXT("JPEG XL 画像 (*.jxl)")},
     PLUGIN_TEXT("*.jxl")},
};

} // namespace

const ReaderPlugin readerPlugin = {
    {
        PLUGIN_TEXT("TX_INPUT"),
        {PLUGIN_TEXT("JPEG XL reader"), PLUGIN_TEXT("JPEG XL 読み込み")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Reads JPEG XL pictures of every depth; of an animation the first frame. "
                     "Transparent parts show the background colour of your choice."),
         PLUGIN_TEXT(
             "すべての深度の JPEG XL 画像を読み込みます。アニメーションは最初のフレームです。"
             "透明な部分には選んだ背景色が表示されます。")},
        formats,
        1,
    },
    ReadJxlPicture,
    ReadJxlSize,
    AskJxlBackground,
};
