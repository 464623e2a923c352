// What the host is told of the TIFF reader.
#include "standard-plugins/common/device/BackgroundDialog.h"
#include "standard-plugins/common/reading/Reader.h"
#include "standard-plugins/tiff-input/TiffDecoder.h"

namespace
{

const PluginFormatText formats[] = {
    {{PLUGIN_TEXT("TIFF image (*.tif)"), PLUGIN_TEXT("TIFF 画像 (*.tif)")},
     PLUGIN_TEXT("*.tif;*.tiff")},
};

int32_t ConfigureTiff(TavrixWindow owner, TavrixPutPropertyCallback put,
                      TavrixGetPropertyCallback get)
{
    return AskBackground(tiffBackground, owner, put, get);
}

} // namespace

const ReaderPlugin readerPlugin = {
    {
        PLUGIN_TEXT("TX_INPUT"),
        {PLUGIN_TEXT("TIFF reader"), PLUGIN_TEXT("TIFF 読み込み")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Reads the first page of TIFF files: grey, colour, palette and CMYK, in "
                     "strips or tiles."),
         PLUGIN_TEXT("TIFF ファイルの最初のページ "
                     "(グレー、カラー、パレット、CMYK、ストリップとタイル) を読み込みます。")},
        formats,
        1,
    },
    ReadTiffPicture,
    ReadTiffSize,
    ConfigureTiff,
};
