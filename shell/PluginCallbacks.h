// The four callbacks that every plugin run gets. The first two speak to the progress dialog when
// one is open; the other two reach the settings' section that plugins share. Called on the worker
// during a run and on the user-interface thread during Configure.
//
// Outside of an export, and on every thread but that of the export, each gives Failed and touches
// nothing: a thread that a plugin started and a callback that it kept do no harm. Nor does the
// worker meet anybody in the settings: while a job runs they are its own (HandOver.h tells who else
// would write them).
#pragma once

#include "foundation/Result.h"

#include "plugin/PluginModule.h"

extern "C" {
/// Sets the bar to done/total. NothingDone for a total of 0, which empties the bar; Failed once the
/// user has asked to stop, else Done. Every ten seconds it tells the device that it is in use.
i32 TAVRIX_CALL ProgressCallback(u32 done, u32 total);
/// ShowPluginMessage. NothingDone.
i32 TAVRIX_CALL MessageCallback(const TavrixChar* text, const TavrixChar* caption, u32 flags);
i32 TAVRIX_CALL PutPropertyCallback(Variant* item);
i32 TAVRIX_CALL GetPropertyCallback(Variant* item);
}

/// The four, as the plugin hosts take them.
inline constexpr PluginCallbacks JobCallbacks = {ProgressCallback, MessageCallback,
                                                 PutPropertyCallback, GetPropertyCallback};

/// The status line while a dialog is open (with the bit of the stop icon, 16, also a beep and two
/// seconds' wait), else a message box on the main window. From any thread.
void ShowPluginMessage(const WCHAR* text, const WCHAR* caption, u32 flags);
