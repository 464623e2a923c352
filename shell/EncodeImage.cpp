// The ends of all saves: the picture, or the selected part of it, goes through an OUTPUT plugin to
// a file or to nowhere.

#include "foundation/Language.h"
#include "shell/Boxes.h"
#include "shell/Job.h"
#include "shell/MainFrame.h"
#include "shell/PluginCallbacks.h"

namespace
{

struct EncodeKind {
    u32 job;
    bool encodesPart;    // the selected part, if the user says so; else always the whole picture
    i32 cancelledResult; // when the user cancelled the plugin's settings
};

constexpr EncodeKind toFile = {JobSave, true, NothingDone};
// Meant: the question about the selection is asked and its copy made here, too, and then the whole
// picture is encoded, so that the size told is always that of the whole. Meant as well: cancelled
// settings count as done.
constexpr EncodeKind toNowhere = {JobVirtualSave, false, Done};

bool WantsSelection(const MainFrame& frame)
{
    return frame.selectionActive == 1 &&
           MessageBoxW(frame.window,
                       InLanguage(TEXT("Do you want to save a selected region?"),
                                  TEXT("選択した範囲を保存しますか？")),
                       InLanguage(TEXT("Question"), TEXT("確認")),
                       MB_YESNO | MB_ICONQUESTION) == IDYES;
}

i32 Encode(MainFrame& frame, const EncodeKind& kind, const WCHAR* path, i32 plugin, i32 configure)
{
    OutputPlugin& host = *frame.outputPlugins;
    if (host.LoadByIndex(static_cast<u32>(plugin), 0) < 0) {
        ShowError(frame.window, TEXT("Failed to load selected OUTPUT plugin."),
                  TEXT("指定の書き込みプラグインがロードできませんでした。"));
        return NothingDone;
    }
    const ScopedHold hold(&frame);
    Raster* chosen = frame.image;
    if (WantsSelection(frame)) {
        // Meant: the plugin stays loaded. The host gives it up at its next load, or at its end.
        if (frame.CopySelection() == NothingDone)
            return NothingDone;
        chosen = frame.workImage;
    }
    if (configure != 0) {
        const i32 configured = host.Configure(frame.window, JobCallbacks);
        if (configured == 0) {
            // The copy has no other use; left behind, it would go over the picture at the next
            // effect.
            frame.DropWorkImage();
            host.Unload();
            return kind.cancelledResult;
        }
        if (configured < 0)
            WarnAboutConfigure(frame.window);
    }

    SaveArguments arguments = {&host, path, kind.encodesPart ? chosen : frame.image};
    JobRecord record = {kind.job, &arguments};
    const i32 result = RunJob(frame.window, frame.instance, &record);
    // Meant: the one that was chosen, also where the other one was encoded.
    chosen->UnlockAll();
    frame.DropWorkImage();
    host.Unload();
    return result;
}

} // namespace

i32 MainFrame::SaveToFile(const WCHAR* path, i32 plugin, i32 configure)
{
    return Encode(*this, toFile, path, plugin, configure);
}

i32 MainFrame::SaveVirtual(const WCHAR* path, i32 plugin, i32 configure)
{
    return Encode(*this, toNowhere, path, plugin, configure);
}
