// What the host is told of the AVIF reader.
#include "standard-plugins/avif-input/AvifDecoder.h"

namespace
{

const PluginFormatText formats[] = {
    {{PLUGIN_TEXT("AVIF image (*.avif)"), PLUGIN_TEXT("AVIF 画像 (*.avif)")},
     PLUGIN_TEXT("*.avif")},
};

} // namespace

const ReaderPlugin readerPlugin = {
    {
        PLUGIN_TEXT("TX_INPUT"),
        {PLUGIN_TEXT("AVIF reader"), PLUGIN_TEXT("AVIF 読み込み")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Reads AVIF pictures of 8, 10 and 12 bits; of a sequence the first one. "
                     "Transparent parts show the background colour of your choice."),
         PLUGIN_TEXT("8、10、12 ビットの AVIF 画像を読み込みます。連続画像は最初の 1 枚です。"
                     "透明な部分には選んだ背景色が表示されます。")},
        formats,
        1,
    },
    ReadAvifPicture,
    ReadAvifSize,
    AskAvifBackground,
};
