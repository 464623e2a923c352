// What the host is told of the bitmap writer.
#include "standard-plugins/bmp-output/BmpEncoder.h"
#include "standard-plugins/common/writing/Writer.h"

namespace
{

const PluginFormatText formats[] = {
    {{PLUGIN_TEXT("Bitmap image (*.bmp)"), PLUGIN_TEXT("ビットマップ画像 (*.bmp)")},
     PLUGIN_TEXT("*.bmp;*.dib")},
};

constexpr BilingualText tooLarge = {
    PLUGIN_TEXT("A bitmap file cannot be larger than 4 gigabytes."),
    PLUGIN_TEXT("ビットマップファイルは 4 ギガバイトを超えられません。")};

WriteOutcome Write(const WriteOrder& order)
{
    const WriteProblem problem = WriteBmpPicture(order);
    return {problem, problem == WriteProblem::Size ? &tooLarge : nullptr};
}

} // namespace

const WriterPlugin writerPlugin = {
    {
        PLUGIN_TEXT("TX_OUTPUT"),
        {PLUGIN_TEXT("BMP writer"), PLUGIN_TEXT("BMP 書き込み")},
        PLUGIN_TEXT("1.0"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Writes bitmaps of true colour without loss or compression."),
         PLUGIN_TEXT("フルカラーのビットマップ画像を劣化も圧縮もなしで書き込みます。")},
        formats,
        1,
    },
    {{0, 0}, nullptr, 0},
    Write,
};
