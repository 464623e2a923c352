#include "shell/JobKinds.h"

#include "shell/Job.h"
#include "shell/JobThreads.h"

namespace
{

const JobKind kinds[] = {
    {JobLoad, TEXT("Loading an image..."), TEXT("画像を読み込んでいます..."),
     TEXT("Failed to load an image file, might be broken or unknown-format."),
     TEXT("画像ファイルがロードできません。ファイルが壊れているか未対応の画像形式です。"),
     LoadJobThread},
    {JobReceive, TEXT("Loading an object from IrDA..."),
     TEXT("赤外線デバイスから読み込んでいます..."), TEXT("Failed to receive an object."),
     TEXT("受信に失敗しました。"), ReceiveJobThread},
    {JobSave, TEXT("Storing an image..."), TEXT("画像を書き込んでいます..."),
     TEXT("Failed to write an image on file. System doesn't have enough work memory or storage."),
     TEXT("画像ファイルが書き出せません。作業用メモリが足りない、または書き込み先に十分な空き容量が"
          "ありません。"),
     SaveJobThread},
    {JobVirtualSave, TEXT("Virtualy storing an image..."),
     TEXT("仮想的に画像を書き込んでいます..."),
     TEXT("Processing was terminated by the plug-in. The plug-in doesn't support stream I/O, or "
          "system doesn't have enough work memory."),
     TEXT("プラグインによって処理が中断されました。プラグインがストリーム入出力に対応していない、"
          "または作業用メモリが足りない可能性があります。"),
     VirtualSaveJobThread},
    {JobEffect, TEXT("Effecting an image..."), TEXT("画像に効果を加えています..."),
     TEXT("Error occurred during effecting an image."),
     TEXT("画像効果処理中にエラーが発生しました。"), EffectJobThread},
    {JobAdjust, TEXT("Adjusting an image..."), TEXT("画像を調整しています..."),
     TEXT("Error occurred during adjusting an image."), TEXT("画像調整中にエラーが発生しました。"),
     AdjustJobThread},
    {JobScale, TEXT("Scaling an image..."), TEXT("画像を伸縮しています..."),
     TEXT("Error occurred during scaling an image."), TEXT("解像度変更中にエラーが発生しました。"),
     ScaleJobThread},
    {JobSubtract, TEXT("Subtracting an image..."), TEXT("画像を減色しています..."),
     TEXT("Error occurred during subtracting an image."), TEXT("減色中にエラーが発生しました。"),
     SubtractJobThread},
    {JobPrint, TEXT("Printing an image..."), TEXT("印刷を行っています..."), nullptr, nullptr,
     PrintJobThread},
};

} // namespace

const JobKind* FindJobKind(u32 kind)
{
    for (const JobKind& row : kinds)
        if (row.kind == kind)
            return &row;
    return nullptr;
}
