// The dialog that lists every plugin with its name, version, copyright, date and description.
// User-interface thread. Nothing of a plugin is kept: it is loaded to be asked, once for the tree
// and again at each selection, and unloaded right after.
#pragma once

#include "plugin/PluginModule.h"

/// The hosts in the order in which the dialog shows them: INPUT, OUTPUT, EFFECT, ADJUST, SCALE,
/// SUBTRACT, PRINT. They stay the caller's.
struct PluginInformationHosts {
    enum : u32 { Count = 7 };
    PluginModule* hosts[Count];
};

/// Opens the dialog and returns when it is closed. `owner` answers the private message 32768 with
/// the instance that holds the dialog's icons. NothingDone when it was closed, Failed when there
/// was no dialog.
i32 ShowPluginInformation(HWND owner, HINSTANCE instance, const PluginInformationHosts& hosts);
