// What the host is told of the WebP reader.
#include "standard-plugins/common/device/BackgroundDialog.h"
#include "standard-plugins/common/reading/Reader.h"
#include "standard-plugins/webp-input/WebpDecoder.h"

namespace
{

const PluginFormatText formats[] = {
    {{PLUGIN_TEXT("WebP image (*.webp)"), PLUGIN_TEXT("WebP 画像 (*.webp)")},
     PLUGIN_TEXT("*.webp")},
};

int32_t ConfigureWebp(TavrixWindow owner, TavrixPutPropertyCallback put,
                      TavrixGetPropertyCallback get)
{
    return AskBackground(webpBackground, owner, put, get);
}

} // namespace

const ReaderPlugin readerPlugin = {
    {
        PLUGIN_TEXT("TX_INPUT"),
        {PLUGIN_TEXT("WebP reader"), PLUGIN_TEXT("WebP 読み込み")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Reads WebP pictures, lossy and lossless; of animations the first frame."),
         PLUGIN_TEXT("WebP 画像 (非可逆と可逆) "
                     "を読み込みます。アニメーションは最初のフレームを表示します。")},
        formats,
        1,
    },
    ReadWebpPicture,
    ReadWebpSize,
    ConfigureWebp,
};
