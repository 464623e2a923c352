// Resolution: a SCALE plugin gives the picture another number of pixels.

#include "resources/Ids.h"
#include "shell/Boxes.h"
#include "shell/Job.h"
#include "shell/MainFrame.h"
#include "shell/PluginCallbacks.h"
#include "view/ResolutionDialog.h"

namespace
{

const WCHAR* const PluginKey = TEXT("DefaultSCALE");

} // namespace

void MainFrame::ScaleImage()
{
    RasterInfo info = {};
    info.size = sizeof info;
    (void)image->GetInfo(&info);
    u32 preselected = 0;
    (void)settings->GetUInt(ProgramSection, PluginKey, &preselected);
    ResolutionRequest request = {&info, scaleNames, -1, static_cast<i32>(preselected)};
    // Without a plugin to choose, nothing is chosen.
    if (ShowResolutionDialog(window, instance, &request) < Done || request.chosen < 0)
        return;
    const u32 plugin = static_cast<u32>(request.chosen);
    settings->SetUInt(ProgramSection, PluginKey, plugin);
    if (scalePlugins->LoadByIndex(plugin, 0) < 0) {
        ShowError(window, TEXT("Failed to load selected SCALE plugin."),
                  TEXT("指定の伸縮プラグインがロードできませんでした。"));
        return;
    }
    const ScopedHold hold(this);
    // Meant: the plugin is not asked for settings.
    TakeUndo(image, -1, -1);
    ScaleArguments arguments = {
        scalePlugins, image, info.width, info.height, PutPropertyCallback, GetPropertyCallback};
    JobRecord record = {JobScale, &arguments};
    const i32 result = RunJob(window, instance, &record);
    // What the snapshot locked and what the plugin left locked.
    image->UnlockAll();
    // A job that failed has told so, and the picture is whatever the plugin left.
    if (result != 0) {
        if (zoomCommand == CommandZoomWindow)
            FitToWindow(0);
        selectionActive = 0;
        UpdateClipMenus();
        InitializeView();
    }
    scalePlugins->Unload();
}
