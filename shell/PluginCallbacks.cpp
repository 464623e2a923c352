#include "shell/PluginCallbacks.h"

#include "foundation/Numbers.h"
#include "shell/MainFrame.h"
#include "shell/ProgressDialog.h"

#include <commctrl.h>
#include <handheld.h>

namespace
{

constexpr u32 WakeInterval = 10000; // milliseconds
constexpr u32 ErrorDelay = 2000;

// The time of the last wake-up counts across jobs: it is set at the first report of the process and
// never put back.
u32 lastWake = 0;
bool wakeKnown = false;

void KeepAwake()
{
    if (GetTickCount() >= lastWake + WakeInterval) {
        SystemIdleTimerReset();
        lastWake = GetTickCount();
    }
}

} // namespace

i32 TAVRIX_CALL ProgressCallback(u32 done, u32 total)
{
    if (!wakeKnown) {
        lastWake = GetTickCount();
        wakeKnown = true;
    }
    if (total == 0) {
        SendMessageW(progressState.bar, PBM_SETPOS, 0, 0);
        return NothingDone;
    }
    const u32 position = TruncateToUnsigned(done * f64{ProgressSteps} / total);
    SendMessageW(progressState.bar, PBM_SETPOS, position, 0);
    KeepAwake();
    return mainFrame != nullptr && mainFrame->abortRequested != 0 ? Failed : Done;
}

i32 TAVRIX_CALL MessageCallback(const TavrixChar* text, const TavrixChar* caption, u32 flags)
{
    if (IsWindow(progressState.statusLine)) {
        SetWindowTextW(progressState.statusLine, text);
        if ((flags & MB_ICONHAND) != 0) {
            MessageBeep(MB_ICONHAND);
            Sleep(ErrorDelay);
        }
    } else {
        MessageBoxW(mainFrame != nullptr ? mainFrame->window : nullptr, text, caption, flags);
    }
    return NothingDone;
}

i32 TAVRIX_CALL PutPropertyCallback(Variant* item)
{
    return mainFrame != nullptr ? mainFrame->settings->SetValue(PluginSection, item) : Failed;
}

i32 TAVRIX_CALL GetPropertyCallback(Variant* item)
{
    return mainFrame != nullptr ? mainFrame->settings->GetValue(PluginSection, item) : Failed;
}
