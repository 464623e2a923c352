// What the host is told of the Targa reader.
#include "standard-plugins/common/device/BackgroundDialog.h"
#include "standard-plugins/tga-input/TgaDecoder.h"

namespace
{

const PluginFormatText formats[] = {
    {{PLUGIN_TEXT("Targa image (*.tga)"), PLUGIN_TEXT("Targa 画像 (*.tga)")},
     PLUGIN_TEXT("*.tga;*.icb;*.vda;*.vst")},
};

int32_t Configure(TavrixWindow owner, TavrixPutPropertyCallback put, TavrixGetPropertyCallback get)
{
    return AskBackground(tgaBackground, owner, put, get);
}

} // namespace

const BackgroundSettings tgaBackground = BACKGROUND_SETTINGS("TgaInput");

const ReaderPlugin readerPlugin = {
    {
        PLUGIN_TEXT("TX_INPUT"),
        {PLUGIN_TEXT("TGA reader"), PLUGIN_TEXT("TGA 読み込み")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT(
             "Reads Targa pictures of every type and depth; transparent parts get a background."),
         PLUGIN_TEXT(
             "すべての種類と深度の Targa 画像を読み込みます。透明な部分には背景色が付きます。")},
        formats,
        1,
    },
    ReadTgaPicture,
    ReadTgaSize,
    Configure,
};
