#include "shell/SettingsSearch.h"

#include "foundation/BoundedText.h"
#include "foundation/Language.h"

#include <stdlib.h>

namespace
{
constexpr u32 PathCapacity = 1024;
} // namespace

void FindSettings(SettingsFile* settings)
{
    auto* path = static_cast<WCHAR*>(calloc(PathCapacity, sizeof(WCHAR)));
    auto* folder = static_cast<WCHAR*>(calloc(PathCapacity, sizeof(WCHAR)));
    if (path != nullptr && folder != nullptr && settings != nullptr) {
        GetDocumentsDirectory(path, PathCapacity);
        Directory directory;
        directory.SetBase(path);
        CopyText(folder, PathCapacity,
                 InLanguage(TEXT("Configuration Files"), TEXT("設定ファイル")));
        directory.MakeDirectory(folder); // it may be there already

        AppendText(path, PathCapacity, TEXT("\\"));
        AppendText(path, PathCapacity, folder);
        AppendText(path, PathCapacity, TEXT("\\Tavrix.ini"));
        (void)settings->Load(path);
    }
    free(folder);
    free(path);
}
