#include "shell/JobKinds.h"

#include "shell/Job.h"
#include "shell/LoadJob.h"

namespace
{

const JobKind kinds[] = {
    {JobLoad, TEXT("Loading an image..."), TEXT("画像を読み込んでいます..."),
     TEXT("Failed to load an image file, might be broken or unknown-format."),
     TEXT("画像ファイルがロードできません。ファイルが壊れているか未対応の画像形式です。"),
     LoadJobThread},
};

} // namespace

const JobKind* FindJobKind(u32 kind)
{
    for (const JobKind& row : kinds)
        if (row.kind == kind)
            return &row;
    return nullptr;
}
