#include "standard-plugins/cups-print/CupsProblem.h"

#include <stddef.h>

namespace
{

// In the order of the problems, so that one is its own index.
const BilingualText texts[] = {
    {PLUGIN_TEXT(""), PLUGIN_TEXT("")},
    {PLUGIN_TEXT("The library cups, which speaks to the printing system, is not installed."),
     PLUGIN_TEXT("印刷システムを使うためのライブラリ cups がインストールされていません。")},
    {PLUGIN_TEXT("The printing system does not answer."),
     PLUGIN_TEXT("印刷システムが応答しません。")},
    {PLUGIN_TEXT("The printing system has no printer."),
     PLUGIN_TEXT("印刷システムにプリンタが登録されていません。")},
    {PLUGIN_TEXT("The printing system no longer has the printer that was chosen."),
     PLUGIN_TEXT("選択されたプリンタは印刷システムに登録されていません。")},
    {PLUGIN_TEXT("The printing system does not take the job."),
     PLUGIN_TEXT("印刷システムが印刷ジョブを受け付けません。")},
    {PLUGIN_TEXT("The connection to the printing system was lost; the picture was not printed."),
     PLUGIN_TEXT("印刷システムとの接続が切れたため、画像は印刷されませんでした。")},
};

static_assert(sizeof texts / sizeof *texts == static_cast<size_t>(CupsProblem::Lost) + 1);

} // namespace

const BilingualText& TextOf(CupsProblem problem)
{
    return texts[static_cast<size_t>(problem)];
}
