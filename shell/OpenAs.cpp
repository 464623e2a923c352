// Open As: a file is opened by the plugin whose entry was chosen, whatever its name.

#include "foundation/BoundedText.h"
#include "foundation/Language.h"
#include "shell/Boxes.h"
#include "shell/FileChoice.h"
#include "shell/FilterText.h"
#include "shell/MainFrame.h"
#include "shell/PluginEntry.h"

void MainFrame::OpenAs(u32 position)
{
    HeapAllocator work;
    WCHAR* const path = AllocText(work, NameCapacity);
    WCHAR* const filter = AllocText(work, OpenAsFilterCapacity);
    u32 plugin = 0;
    if (path == nullptr || filter == nullptr ||
        FindPluginEntry(*inputNames, position, &plugin) < Done) {
        MessageBeep(0xFFFFFFFF);
        return;
    }
    const ScopedHold hold(this);
    // Meant: the user is asked for a file also where the plugin does not load, and the load that
    // follows tells it again. Save As stops here.
    if (inputPlugins->LoadByIndex(plugin, 0) < 0)
        ShowError(window, TEXT("Filed to load the plugin."),
                  TEXT("指定のプラグインがロードできません。"));
    CopyText(path, NameCapacity, openedPath);
    BuildFilterText(filter, OpenAsFilterCapacity, *inputExtensions, static_cast<i32>(plugin));
    OPENFILENAMEW record =
        MakeFileRecord(*this, InLanguage(TEXT("Open As"), TEXT("指定形式で開く")),
                       OFN_FILEMUSTEXIST, filter, 0, path, NameCapacity);
    // Without a choice the plugin stays loaded until the host loads its next one.
    if (fileDialog.Open(&record) < Done)
        return;
    // Meant: neither the plugin nor the filter is remembered, so that a reload reads the new file
    // with the plugin of an earlier open. A file that does not open gives a negative result and
    // becomes the opened one all the same; one whose settings were cancelled does not.
    if (LoadFromFile(path, static_cast<i32>(plugin), 1) != 0)
        CopyText(openedPath, PathCapacity, path);
}
