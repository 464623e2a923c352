// What the host is told of the PNG reader.
#include "standard-plugins/common/device/BackgroundDialog.h"
#include "standard-plugins/common/reading/Reader.h"
#include "standard-plugins/png-input/PngDecoder.h"
#include "standard-plugins/png-input/PngSettings.h"

namespace
{

const PluginFormatText formats[] = {
    {{PLUGIN_TEXT("PNG image (*.png)"), PLUGIN_TEXT("PNG 画像 (*.png)")}, PLUGIN_TEXT("*.png")},
};

int32_t Ask(TavrixWindow owner, TavrixPutPropertyCallback put, TavrixGetPropertyCallback get)
{
    return AskBackground(pngBackground, owner, put, get);
}

} // namespace

const ReaderPlugin readerPlugin = {
    {
        PLUGIN_TEXT("TX_INPUT"),
        {PLUGIN_TEXT("PNG reader"), PLUGIN_TEXT("PNG 読み込み")},
        PLUGIN_TEXT("1.1"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Reads PNG pictures of every colour type and depth, transparent parts over a "
                     "background."),
         PLUGIN_TEXT(
             "すべての色形式と深度の PNG 画像を読み込みます。透明な部分は背景色に重ねます。")},
        formats,
        1,
    },
    ReadPngPicture,
    ReadPngSize,
    Ask,
};
