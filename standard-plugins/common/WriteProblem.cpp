#include "standard-plugins/common/WriteProblem.h"

#include "standard-plugins/common/PluginResult.h"

#include <stddef.h>

namespace
{

constexpr uint32_t stopIcon = 16;

struct Row {
    WriteProblem problem;
    int32_t result;
    BilingualText text;
};

// In the order of the problems, so that one is its own index.
const Row rows[] = {
    {WriteProblem::None, PluginDone, {PLUGIN_TEXT(""), PLUGIN_TEXT("")}},
    {WriteProblem::Stopped, PluginStopped, {PLUGIN_TEXT(""), PLUGIN_TEXT("")}},
    {WriteProblem::Arguments, PluginBadArgument, {PLUGIN_TEXT(""), PLUGIN_TEXT("")}},
    {WriteProblem::Empty,
     PluginFailed,
     {PLUGIN_TEXT("The picture has no pixels."), PLUGIN_TEXT("画像に画素がありません。")}},
    {WriteProblem::Depth,
     PluginFailed,
     {PLUGIN_TEXT("Only pictures of 8, 24 and 32 bits a pixel can be written."),
      PLUGIN_TEXT("書き込めるのは 8、24、32 ビットの画像だけです。")}},
    {WriteProblem::Size, PluginFailed, {PLUGIN_TEXT(""), PLUGIN_TEXT("")}},
    {WriteProblem::Line,
     PluginNoStorage,
     {PLUGIN_TEXT("A line of the picture cannot be had; memory or temporary space is short."),
      PLUGIN_TEXT("画像の行を取得できません。メモリまたは一時領域が不足しています。")}},
    {WriteProblem::Memory,
     PluginNoMemory,
     {PLUGIN_TEXT("There is not enough memory."), PLUGIN_TEXT("メモリが不足しています。")}},
    {WriteProblem::Folder,
     PluginFailed,
     {PLUGIN_TEXT("The folder cannot be found."), PLUGIN_TEXT("フォルダが見つかりません。")}},
    {WriteProblem::Protected,
     PluginFailed,
     {PLUGIN_TEXT("The folder or the file is write-protected."),
      PLUGIN_TEXT("フォルダまたはファイルに書き込めません。")}},
    {WriteProblem::Making,
     PluginFailed,
     {PLUGIN_TEXT("The file cannot be made."), PLUGIN_TEXT("ファイルを作成できません。")}},
    {WriteProblem::DiskFull,
     PluginFailed,
     {PLUGIN_TEXT("The disk is full."), PLUGIN_TEXT("ディスクの空き容量が不足しています。")}},
    {WriteProblem::Writing,
     PluginFailed,
     {PLUGIN_TEXT("The file cannot be written."), PLUGIN_TEXT("ファイルに書き込めません。")}},
    {WriteProblem::Replacing,
     PluginFailed,
     {PLUGIN_TEXT("The finished file cannot be put in its place."),
      PLUGIN_TEXT("完成したファイルを所定の場所に置けません。")}},
    {WriteProblem::Codec,
     PluginFailed,
     {PLUGIN_TEXT("The picture cannot be put into this format."),
      PLUGIN_TEXT("この画像をこの形式に変換できません。")}},
    {WriteProblem::TrueColor,
     PluginFailed,
     {PLUGIN_TEXT("Only pictures of 24 bits a pixel can be changed."),
      PLUGIN_TEXT("変更できるのは 24 ビットの画像だけです。")}},
    {WriteProblem::NewSize,
     PluginFailed,
     {PLUGIN_TEXT("The new size must be from 1 to 65535 pixels a side, and 1024 megapixels at the "
                  "most."),
      PLUGIN_TEXT("新しい大きさは 1 辺 1 から 65535 ピクセル、全体で 1024 "
                  "メガピクセルまでです。")}},
    {WriteProblem::Missing,
     PluginFailed,
     {PLUGIN_TEXT("The library zimg, which does the scaling, is not installed."),
      PLUGIN_TEXT("伸縮に必要なライブラリ zimg がインストールされていません。")}},
    {WriteProblem::Scaling,
     PluginFailed,
     {PLUGIN_TEXT("The library zimg could not scale the picture."),
      PLUGIN_TEXT("ライブラリ zimg が画像を伸縮できませんでした。")}},
    {WriteProblem::Stream,
     PluginFailed,
     {PLUGIN_TEXT("Pictures of this format can only be written to files."),
      PLUGIN_TEXT("この形式の画像はファイルにのみ書き込めます。")}},
};

constexpr size_t rowCount = sizeof rows / sizeof *rows;

const Row& RowOf(WriteProblem problem)
{
    const auto index = static_cast<size_t>(problem);
    return rows[index < rowCount ? index : static_cast<size_t>(WriteProblem::Codec)];
}

} // namespace

int32_t ResultOf(WriteProblem problem)
{
    return RowOf(problem).result;
}

const BilingualText& TextOf(WriteProblem problem)
{
    return RowOf(problem).text;
}

void TellProblem(WriteProblem problem, const BilingualText& caption, TavrixMessageCallback message)
{
    TellText(TextOf(problem), caption, message);
}

void TellText(const BilingualText& text, const BilingualText& caption,
              TavrixMessageCallback message)
{
    if (message && InLanguage(text)[0])
        (void)message(InLanguage(text), InLanguage(caption), stopIcon);
}
