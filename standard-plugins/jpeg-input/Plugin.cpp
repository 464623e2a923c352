// What the host is told of the JPEG reader.
#include "standard-plugins/common/reading/Reader.h"
#include "standard-plugins/jpeg-input/JpegDecoder.h"

namespace
{

const PluginFormatText formats[] = {
    {{PLUGIN_TEXT("JPEG image (*.jpg)"), PLUGIN_TEXT("JPEG 画像 (*.jpg)")},
     PLUGIN_TEXT("*.jpg;*.jpeg;*.jpe;*.jfif")},
};

} // namespace

const ReaderPlugin readerPlugin = {
    {
        PLUGIN_TEXT("TX_INPUT"),
        {PLUGIN_TEXT("JPEG reader"), PLUGIN_TEXT("JPEG 読み込み")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-21"),
        {PLUGIN_TEXT("Reads JPEG pictures, baseline and progressive, grey, colour and CMYK."),
         PLUGIN_TEXT(
             "ベースラインとプログレッシブの JPEG 画像 (グレー、カラー、CMYK) を読み込みます。")},
        formats,
        1,
    },
    ReadJpegPicture,
    ReadJpegSize,
    nullptr,
};
