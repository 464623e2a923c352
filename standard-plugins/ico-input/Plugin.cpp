// What the host is told of the icon reader.
#include "standard-plugins/common/device/BackgroundDialog.h"
#include "standard-plugins/ico-input/IcoDecoder.h"

namespace
{

const PluginFormatText formats[] = {
    {{PLUGIN_TEXT("Icon or cursor (*.ico)"), PLUGIN_TEXT("アイコンとカーソル (*.ico)")},
     PLUGIN_TEXT("*.ico;*.cur")},
};

int32_t Configure(TavrixWindow owner, TavrixPutPropertyCallback put, TavrixGetPropertyCallback get)
{
    return AskBackground(icoBackground, owner, put, get);
}

} // namespace

const BackgroundSettings icoBackground = BACKGROUND_SETTINGS("IcoInput");

const ReaderPlugin readerPlugin = {
    {
        PLUGIN_TEXT("TX_INPUT"),
        {PLUGIN_TEXT("ICO reader"), PLUGIN_TEXT("ICO 読み込み")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT(
             "Reads the largest picture of an icon or cursor; transparent parts get a background."),
         PLUGIN_TEXT("アイコンやカーソルの中で最も大きい画像を読み込みます。透明な部分には背景色が"
                     "付きます。")},
        formats,
        1,
    },
    ReadIcoPicture,
    ReadIcoSize,
    Configure,
};
