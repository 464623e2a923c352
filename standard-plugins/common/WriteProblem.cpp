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
