// What the host is told of the bitmap reader.
#include "standard-plugins/bmp-input/BmpDecoder.h"
#include "standard-plugins/common/device/BackgroundDialog.h"

namespace
{

const PluginFormatText formats[] = {
    {{PLUGIN_TEXT("Bitmap image (*.bmp)"), PLUGIN_TEXT("ビットマップ画像 (*.bmp)")},
     PLUGIN_TEXT("*.bmp;*.dib")},
};

int32_t Configure(TavrixWindow owner, TavrixPutPropertyCallback put, TavrixGetPropertyCallback get)
{
    return AskBackground(bmpBackground, owner, put, get);
}

} // namespace

const BackgroundSettings bmpBackground = BACKGROUND_SETTINGS("BmpInput");

const ReaderPlugin readerPlugin = {
    {
        PLUGIN_TEXT("TX_INPUT"),
        {PLUGIN_TEXT("BMP reader"), PLUGIN_TEXT("BMP 読み込み")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Reads bitmaps of Windows and OS/2, plain and run-length coded; transparent "
                     "parts get a background."),
         PLUGIN_TEXT("Windows と OS/2 のビットマップを、ランレングス圧縮も含めて読み込みます。透"
                     "明な部分には背景色が付きます。")},
        formats,
        1,
    },
    ReadBmpPicture,
    ReadBmpSize,
    Configure,
};
