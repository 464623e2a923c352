// What the host is told of the HEIF reader.
#include "standard-plugins/heif-input/HeifDecoder.h"

namespace
{

const PluginFormatText formats[] = {
    {{PLUGIN_TEXT("HEIF image (*.heic)"), PLUGIN_TEXT("HEIF 画像 (*.heic)")},
     PLUGIN_TEXT("*.heic;*.heif")},
};

} // namespace

const ReaderPlugin readerPlugin = {
    {
        PLUGIN_TEXT("TX_INPUT"),
        {PLUGIN_TEXT("HEIF reader"), PLUGIN_TEXT("HEIF 読み込み")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Reads HEIF pictures, as cameras write them, with their turns. "
                     "Transparent parts show the background colour of your choice."),
         PLUGIN_TEXT("カメラなどの HEIF 画像を回転情報に従って読み込みます。"
                     "透明な部分には選んだ背景色が表示されます。")},
        formats,
        1,
    },
    ReadHeifPicture,
    ReadHeifSize,
    AskHeifBackground,
};
