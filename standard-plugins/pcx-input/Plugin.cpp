// What the host is told of the PCX reader.
#include "standard-plugins/common/device/BackgroundDialog.h"
#include "standard-plugins/pcx-input/PcxDecoder.h"

namespace
{

const PluginFormatText formats[] = {
    {{PLUGIN_TEXT("PCX image (*.pcx)"), PLUGIN_TEXT("PCX 画像 (*.pcx)")}, PLUGIN_TEXT("*.pcx")},
};

int32_t Configure(TavrixWindow owner, TavrixPutPropertyCallback put, TavrixGetPropertyCallback get)
{
    return AskBackground(pcxBackground, owner, put, get);
}

} // namespace

const BackgroundSettings pcxBackground = BACKGROUND_SETTINGS("PcxInput");

const ReaderPlugin readerPlugin = {
    {
        PLUGIN_TEXT("TX_INPUT"),
        {PLUGIN_TEXT("PCX reader"), PLUGIN_TEXT("PCX 読み込み")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT(
             "Reads PCX pictures of 2 colours to true colour; transparent parts get a background."),
         PLUGIN_TEXT(
             "2 色からフルカラーまでの PCX 画像を読み込みます。透明な部分には背景色が付きます。")},
        formats,
        1,
    },
    ReadPcxPicture,
    ReadPcxSize,
    Configure,
};
