// What the host is told of the PNG reader.
#include "standard-plugins/common/reading/Reader.h"
#include "standard-plugins/png-input/PngDecoder.h"

namespace
{

const PluginFormatText formats[] = {
    {{PLUGIN_TEXT("PNG image (*.png)"), PLUGIN_TEXT("PNG 画像 (*.png)")}, PLUGIN_TEXT("*.png")},
};

} // namespace

const ReaderPlugin readerPlugin = {
    {
        PLUGIN_TEXT("TX_INPUT"),
        {PLUGIN_TEXT("PNG reader"), PLUGIN_TEXT("PNG 読み込み")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-21"),
        {PLUGIN_TEXT(
             "Reads PNG pictures of every colour type and depth; transparent parts become white."),
         PLUGIN_TEXT("すべての色形式と深度の PNG 画像を読み込みます。透明な部分は白になります。")},
        formats,
        1,
    },
    ReadPngPicture,
    ReadPngSize,
    nullptr,
};
