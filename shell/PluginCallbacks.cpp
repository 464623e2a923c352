#include "shell/PluginCallbacks.h"

#include "foundation/Numbers.h"
#include "shell/MainFrame.h"
#include "shell/ProgressDialog.h"

#include <commctrl.h>
#include <handheld.h>

#include <atomic>

namespace
{

constexpr u32 WakeInterval = 10000; // milliseconds
constexpr u32 ErrorDelay = 2000;

// The time of the last wake-up counts across jobs: it is set at the first report of the process and
// never put back.
std::atomic<u32>& LastWake()
{
    static std::atomic<u32> lastWake{GetTickCount()};
    return lastWake;
}

// Meant as it stands where the ticks begin anew after 49.7 days: the sum wraps a little before
// them, and for those seconds every report resets the timer. Once the ticks have wrapped behind a
// sum that had not, no report does until they reach it again.
void KeepAwake()
{
    std::atomic<u32>& lastWake = LastWake();
    if (GetTickCount() >= lastWake + WakeInterval) {
        SystemIdleTimerReset();
        lastWake = GetTickCount();
    }
}

} // namespace

i32 TAVRIX_CALL ProgressCallback(u32 done, u32 total)
{
    if (!IsInPluginCall())
        return Failed;
    (void)LastWake(); // the first call of the process starts the clock
    if (total == 0) {
        SendMessageW(progressState.bar, PBM_SETPOS, 0, 0);
        return NothingDone;
    }
    const u32 position = TruncateToUnsigned(done * f64{ProgressSteps} / total);
    SendMessageW(progressState.bar, PBM_SETPOS, position, 0);
    KeepAwake();
    return mainFrame != nullptr && mainFrame->abortRequested != 0 ? Failed : Done;
}

void ShowPluginMessage(const WCHAR* text, const WCHAR* caption, u32 flags)
{
    if (IsWindow(progressState.statusLine)) {
        SetWindowTextW(progressState.statusLine, text);
        // Meant: the bit alone is asked for, which the number of the exclamation mark has, too.
        if ((flags & MB_ICONHAND) != 0) {
            MessageBeep(MB_ICONHAND);
            Sleep(ErrorDelay);
        }
    } else {
        MessageBoxW(mainFrame != nullptr ? mainFrame->window : nullptr, text, caption, flags);
    }
}

i32 TAVRIX_CALL MessageCallback(const TavrixChar* text, const TavrixChar* caption, u32 flags)
{
    if (!IsInPluginCall())
        return Failed;
    ShowPluginMessage(text, caption, flags);
    return NothingDone;
}

i32 TAVRIX_CALL PutPropertyCallback(Variant* item)
{
    if (!IsInPluginCall() || mainFrame == nullptr)
        return Failed;
    return mainFrame->settings->SetValue(PluginSection, item);
}

i32 TAVRIX_CALL GetPropertyCallback(Variant* item)
{
    if (!IsInPluginCall() || mainFrame == nullptr)
        return Failed;
    return mainFrame->settings->GetValue(PluginSection, item);
}
