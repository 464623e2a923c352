// Save As: the picture is written by the plugin whose entry was chosen, under the name as it was
// given.

#include "foundation/BoundedText.h"
#include "foundation/Language.h"
#include "shell/Boxes.h"
#include "shell/FileChoice.h"
#include "shell/FilterText.h"
#include "shell/MainFrame.h"
#include "shell/PluginEntry.h"

void MainFrame::SaveAs(u32 position)
{
    if (imagePresent == 0) {
        MessageBeep(0xFFFFFFFF);
        return;
    }
    HeapAllocator work;
    WCHAR* const path = AllocText(work, NameCapacity);
    WCHAR* const filter = AllocText(work, SaveAsFilterCapacity);
    u32 plugin = 0;
    if (path == nullptr || filter == nullptr ||
        FindPluginEntry(*outputNames, position, &plugin) < Done) {
        MessageBeep(0xFFFFFFFF);
        return;
    }
    // Meant: it stops here, unlike Open As.
    if (outputPlugins->LoadByIndex(plugin, 0) < 0) {
        ShowError(window, TEXT("Filed to load the plugin."),
                  TEXT("指定のプラグインがロードできません。"));
        return;
    }
    const ScopedHold hold(this);
    CopyText(path, NameCapacity, openedPath);
    BuildFilterText(filter, SaveAsFilterCapacity, *outputExtensions, static_cast<i32>(plugin));
    OPENFILENAMEW record =
        MakeFileRecord(*this, InLanguage(TEXT("Save As"), TEXT("指定形式で保存")),
                       OFN_OVERWRITEPROMPT, filter, 0, path, NameCapacity);
    // Without a choice the plugin stays loaded until the host loads its next one.
    if (fileDialog.Save(&record) < Done)
        return;
    // Meant: the name gets no extension and the filter is not remembered.
    if (SaveToFile(path, static_cast<i32>(plugin), 1) != 0)
        CopyText(savedPath, PathCapacity, path);
}
