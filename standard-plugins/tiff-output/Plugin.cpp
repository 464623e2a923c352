// What the host is told of the TIFF writer.
#include "standard-plugins/common/writing/Writer.h"
#include "standard-plugins/tiff-output/TiffEncoder.h"
#include "standard-plugins/tiff-output/TiffOutputIds.h"

namespace
{

const PluginFormatText formats[] = {
    {{PLUGIN_TEXT("TIFF image (*.tif)"), PLUGIN_TEXT("TIFF 画像 (*.tif)")},
     PLUGIN_TEXT("*.tif;*.tiff")},
};

enum { Compression, Predictor, SettingCount };

const DialogSetting settings[SettingCount] = {
    {{PLUGIN_TEXT("TiffOutputCompression"), 0, 3, 2}, SettingControl::Choice, ControlNone, 0},
    {{PLUGIN_TEXT("TiffOutputPredictor"), 0, 1, 1}, SettingControl::Check, ControlPredictor, 0},
};

WriteOutcome Write(const WriteOrder& order)
{
    return WriteTiffPicture(order, {static_cast<TiffCompression>(order.values[Compression]),
                                    order.values[Predictor] != 0});
}

} // namespace

const WriterPlugin writerPlugin = {
    {
        PLUGIN_TEXT("TX_OUTPUT"),
        {PLUGIN_TEXT("TIFF writer"), PLUGIN_TEXT("TIFF 書き込み")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Writes TIFF pictures of true colour without loss, in a choice of "
                     "compressions."),
         PLUGIN_TEXT("フルカラーの TIFF 画像を、選んだ圧縮方式で劣化なしに書き込みます。")},
        formats,
        1,
    },
    {{DialogTiffEnglish, DialogTiffJapanese}, settings, SettingCount},
    Write,
};
