// The roads into the program end here: a source stream and the index of an INPUT plugin become the
// picture on the screen.

#include "foundation/BoundedText.h"
#include "foundation/FileStream.h"
#include "foundation/Language.h"
#include "foundation/TextSearch.h"
#include "resources/Ids.h"
#include "shell/Boxes.h"
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
    const WCHAR* extension = nullptr;
    if (FindLastChar(path, TEXT('.'), &extension) < 1)
        return NothingDone;
    // The first format whose patterns hold the text decides, so that a shortened extension of a
    // longer one matches too.
    for (u32 i = 0; i < inputExtensions->Count(); ++i) {
        const WCHAR* patterns = inputExtensions->GetPatterns(i);
        if (patterns != nullptr && FindTextNoCase(patterns, extension) > 0)
            return inputExtensions->GetPluginIndex(i, plugin);
    }
    return NothingDone;
}

void MainFrame::OpenFile(const WCHAR* path)
{
    const ScopedFlow flow(this);
    if (inputExtensions->Count() == 0) {
        MessageBoxW(window,
                    InLanguage(TEXT("No INPUT plugin is installed"),
                               TEXT("読み込みプラグインがインストールされていません。")),
                    InLanguage(TEXT("WARNING"), TEXT("警告")), MB_ICONEXCLAMATION);
        return;
    }
    if (!FileOpens(path))
        return;
    CopyText(openedPath, PathCapacity, path);
    // No filter was chosen: -1 stands for all files.
    settings->SetUInt(ProgramSection, TEXT("DefOpenPlugin"), 0xFFFFFFFF);
    i32 plugin = -1;
    if (FindInputPlugin(openedPath, &plugin) < 1)
        return;
    inputPlugin = plugin;
    (void)LoadFromFile(openedPath, plugin, 1);
}
