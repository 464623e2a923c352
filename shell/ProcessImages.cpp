// Effect and Adjust: a plugin changes the picture, or the selected part of it, in place. One flow
// on two hosts.

#include "shell/Boxes.h"
#include "shell/Job.h"
#include "shell/MainFrame.h"
#include "shell/PluginCallbacks.h"
#include "shell/PluginEntry.h"

namespace
{

struct ProcessKind {
    PropertyList* MainFrame::*names;
    PluginModule* (*host)(MainFrame& frame);
    i32 (*configure)(MainFrame& frame, Raster* target);
    i32 (*run)(MainFrame& frame, Raster* target);
    const WCHAR* loadError;
    const WCHAR* japaneseLoadError;
};

constexpr ProcessKind effect = {
    &MainFrame::effectNames,
    [](MainFrame& frame) -> PluginModule* { return frame.effectPlugins; },
    [](MainFrame& frame, Raster* target) {
        return frame.effectPlugins->Configure(frame.window, target, JobCallbacks);
    },
    [](MainFrame& frame, Raster* target) {
        EffectArguments arguments = {frame.effectPlugins, target, PutPropertyCallback,
                                     GetPropertyCallback};
        JobRecord record = {JobEffect, &arguments};
        return RunJob(frame.window, frame.instance, &record);
    },
    TEXT("Failed to load selected EFFECT plugin."),
    TEXT("指定の効果プラグインがロードできませんでした。"),
};

constexpr ProcessKind adjust = {
    &MainFrame::adjustNames,
    [](MainFrame& frame) -> PluginModule* { return frame.adjustPlugins; },
    [](MainFrame& frame, Raster* target) {
        return frame.adjustPlugins->Configure(frame.window, target, JobCallbacks);
    },
    [](MainFrame& frame, Raster* target) {
        AdjustArguments arguments = {frame.adjustPlugins, target};
        JobRecord record = {JobAdjust, &arguments};
        return RunJob(frame.window, frame.instance, &record);
    },
    TEXT("Failed to load selected ADJUST plugin."),
    TEXT("指定の調整プラグインがロードできませんでした。"),
};

/// The work copy goes over the place that it was taken from. Meant: it does so whenever there is
/// one, also one that an earlier command left when its settings were cancelled.
void PutWorkImageBack(MainFrame& frame)
{
    if (frame.workImage == nullptr)
        return;
    const MainFrame::SelectedPart part = frame.GetSelectedPart();
    (void)frame.workImage->CopyTo(0, 0, part.width, part.height, frame.image, part.left, part.top,
                                  SRCCOPY);
    frame.DropWorkImage();
}

void Process(MainFrame& frame, const ProcessKind& kind, u32 position)
{
    u32 plugin = 0;
    if (FindPluginEntry(*(frame.*kind.names), position, &plugin) < Done) {
        MessageBeep(0xFFFFFFFF);
        return;
    }
    PluginModule& host = *kind.host(frame);
    if (host.LoadByIndex(plugin, 0) < 0) {
        ShowError(frame.window, kind.loadError, kind.japaneseLoadError);
        return;
    }
    const ScopedHold hold(&frame);
    // Without a work copy the whole picture is changed, also where there is a selection and the
    // user did not want its copy.
    Raster* const target = frame.CopySelection() == Done ? frame.workImage : frame.image;
    const i32 configured = kind.configure(frame, target);
    if (configured == 0) {
        // The work copy stays until the next one is made.
        target->UnlockAll();
        host.Unload();
        return;
    }
    if (configured < 0)
        WarnAboutConfigure(frame.window);

    const MainFrame::SelectedPart part = frame.GetSelectedPart();
    const bool whole = target == frame.image;
    frame.TakeUndo(target, whole ? 0 : part.left, whole ? 0 : part.top);
    const i32 result = kind.run(frame, target);
    // What the snapshot locked and what the plugin left locked.
    target->UnlockAll();
    // A job that failed has told so, and what it did goes back all the same.
    if (result != 0)
        PutWorkImageBack(frame);
    host.Unload();
    if (result != 0)
        frame.RedrawView();
}

} // namespace

void MainFrame::Effect(u32 position)
{
    Process(*this, effect, position);
}

void MainFrame::Adjust(u32 position)
{
    Process(*this, adjust, position);
}
