// What the host is told of the GIF reader.
#include "standard-plugins/common/device/BackgroundDialog.h"
#include "standard-plugins/common/reading/Reader.h"
#include "standard-plugins/gif-input/GifDecoder.h"

namespace
{

const PluginFormatText formats[] = {
    {{PLUGIN_TEXT("GIF image (*.gif)"), PLUGIN_TEXT("GIF 画像 (*.gif)")}, PLUGIN_TEXT("*.gif")},
};

int32_t ConfigureGif(TavrixWindow owner, TavrixPutPropertyCallback put,
                     TavrixGetPropertyCallback get)
{
    return AskBackground(gifBackground, owner, put, get);
}

} // namespace

const ReaderPlugin readerPlugin = {
    {
        PLUGIN_TEXT("TX_INPUT"),
        {PLUGIN_TEXT("GIF reader"), PLUGIN_TEXT("GIF 読み込み")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT(
             "Reads the first frame of GIF pictures; transparent parts get a background colour."),
         PLUGIN_TEXT("GIF 画像の最初のフレームを読み込みます。透明な部分は背景色になります。")},
        formats,
        1,
    },
    ReadGifPicture,
    ReadGifSize,
    ConfigureGif,
};
