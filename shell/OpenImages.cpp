// The roads into the program end here: a source stream and the index of an INPUT plugin become the
// picture on the screen. And the first of them: a file that the user chooses, or that the command
// line or a hand-over names.

#include "foundation/BoundedText.h"
#include "foundation/FileStream.h"
#include "foundation/Language.h"
#include "resources/Ids.h"
#include "shell/Boxes.h"
#include "shell/FileChoice.h"
#include "shell/FilterText.h"
#include "shell/FormatOfName.h"
#include "shell/Job.h"
#include "shell/MainFrame.h"
#include "shell/PluginCallbacks.h"

namespace
{

bool FileOpens(const WCHAR* path)
{
    HANDLE file = CreateFileW(path, 0, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    CloseHandle(file);
    return true;
}

} // namespace

i32 MainFrame::LoadFromStream(Stream* stream, i32 plugin, i32 configure)
{
    if (inputPlugins->LoadByIndex(static_cast<u32>(plugin), 0) < 0) {
        ShowError(window, TEXT("Failed to load selected INPUT plugin."),
                  TEXT("指定の読み込みプラグインがロードできませんでした。"));
        return NothingDone;
    }
    const ScopedHold hold(this);
    if (configure != 0) {
        const i32 configured = inputPlugins->Configure(window, JobCallbacks);
        if (configured == 0) {
            inputPlugins->Unload();
            return NothingDone;
        }
        if (configured < 0)
            WarnAboutConfigure(window);
    }

    LoadArguments arguments = {inputPlugins, nullptr, stream, image};
    JobRecord record = {JobLoad, &arguments};
    const i32 result = RunJob(window, instance, &record);
    // Nobody can tell failure from success here: the job has told the user, and the picture is
    // whatever the plugin left.
    if (result != 0) {
        image->UnlockAll();
        imagePresent = 1;
        EnableImageMenus();
        if (zoomCommand == CommandZoomWindow)
            FitToWindow(0);
        selectionActive = 0;
        UpdateClipMenus();
        InitializeView();
    }
    inputPlugins->Unload();
    return result;
}

i32 MainFrame::LoadFromFile(const WCHAR* path, i32 plugin, i32 configure)
{
    FileStream stream;
    const i32 opened = stream.Open(path, 1);
    if (opened < 0)
        return opened;
    const i32 result = LoadFromStream(&stream, plugin, configure);
    stream.Close();
    return result;
}

i32 MainFrame::FindInputPlugin(const WCHAR* path, i32* plugin) const
{
    return FindPluginOfName(*inputExtensions, path, plugin);
}

void MainFrame::OpenFile(const WCHAR* path)
{
    const ScopedFlow flow(this);
    HeapAllocator work;
    WCHAR* const filter = AllocText(work, FilterCapacity);
    if (filter == nullptr) {
        MessageBeep(0xFFFFFFFF);
        return;
    }
    if (inputExtensions->Count() == 0) {
        TellNoInputPlugin(window);
        return;
    }
    u32 filterIndex = AllFilesFilter;
    if (path != nullptr) {
        if (!FileOpens(path))
            return;
        CopyText(openedPath, PathCapacity, path);
    } else {
        BuildFilterText(filter, FilterCapacity, *inputExtensions);
        (void)settings->GetUInt(ProgramSection, TEXT("DefOpenPlugin"), &filterIndex);
        OPENFILENAMEW record =
            MakeFileRecord(*this, InLanguage(TEXT("Open"), TEXT("ファイルを開く")),
                           OFN_FILEMUSTEXIST, filter, filterIndex, openedPath, PathCapacity);
        if (fileDialog.Open(&record) < Done)
            return;
        filterIndex = record.nFilterIndex;
    }
    // From here on the path is the new file's, whatever becomes of it.
    settings->SetUInt(ProgramSection, TEXT("DefOpenPlugin"), filterIndex);
    i32 plugin = -1;
    const bool anyFile = static_cast<i32>(filterIndex) < 0;
    if ((anyFile ? FindInputPlugin(openedPath, &plugin)
                 : inputExtensions->GetPluginIndex(filterIndex, &plugin)) < Done)
        return;
    inputPlugin = plugin;
    (void)LoadFromFile(openedPath, plugin, 1);
}
