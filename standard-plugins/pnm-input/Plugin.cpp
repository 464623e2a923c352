// What the host is told of the reader of portable anymaps.
#include "standard-plugins/common/device/BackgroundDialog.h"
#include "standard-plugins/pnm-input/PnmDecoder.h"

namespace
{

const PluginFormatText formats[] = {
    {{PLUGIN_TEXT("Portable anymap (*.pnm)"), PLUGIN_TEXT("PNM 画像 (*.pnm)")},
     PLUGIN_TEXT("*.pbm;*.pgm;*.ppm;*.pnm;*.pam")},
};

int32_t Configure(TavrixWindow owner, TavrixPutPropertyCallback put, TavrixGetPropertyCallback get)
{
    return AskBackground(pnmBackground, owner, put, get);
}

} // namespace

const BackgroundSettings pnmBackground = BACKGROUND_SETTINGS("PnmInput");

const ReaderPlugin readerPlugin = {
    {
        PLUGIN_TEXT("TX_INPUT"),
        {PLUGIN_TEXT("PNM reader"), PLUGIN_TEXT("PNM 読み込み")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Reads PBM, PGM, PPM and PAM pictures, plain and raw; transparent parts get a "
                     "background."),
         PLUGIN_TEXT("PBM、PGM、PPM、PAM "
                     "画像をテキスト形式とバイナリ形式の両方で読み込みます。透明な部分には背景色が"
                     "付きます。")},
        formats,
        1,
    },
    ReadPnmPicture,
    ReadPnmSize,
    Configure,
};
