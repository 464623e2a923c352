// The four callbacks that every plugin run gets. The first two speak to the progress dialog when
// one is open; the other two reach the settings' section that plugins share. Called on the worker
// during a run and on the user-interface thread during Configure.
#pragma once

#include "foundation/Result.h"

#include "plugin/PluginModule.h"

extern "C" {
/// Sets the bar to done/total. NothingDone for a total of 0, which empties the bar; Failed once the
/// user has asked to stop, else Done. Every ten seconds it tells the device that it is in use.
i32 TAVRIX_CALL ProgressCallback(u32 done, u32 total);
/// The status line while a dialog is open (with the stop icon also a beep and two seconds' wait),
/// else a message box on the main window. NothingDone.
i32 TAVRIX_CALL MessageCallback(const TavrixChar* text, const TavrixChar* caption, u32 flags);
i32 TAVRIX_CALL PutPropertyCallback(Variant* item);
i32 TAVRIX_CALL GetPropertyCallback(Variant* item);
}

/// The four, as the plugin hosts take them.
inline constexpr PluginCallbacks JobCallbacks = {ProgressCallback, MessageCallback,
                                                 PutPropertyCallback, GetPropertyCallback};
