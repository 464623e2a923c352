// The dialog that lists every plugin with its name, version, copyright, date and description.
#pragma once

#include "plugin/PluginModule.h"

/// The hosts in the order in which the dialog shows them: INPUT, OUTPUT, EFFECT, ADJUST, SCALE,
/// SUBTRACT, PRINT.
struct PluginInformationHosts {
    enum : u32 { Count = 7 };
    PluginModule* hosts[Count];
};

/// Opens the dialog and returns when it is closed. Each plugin is loaded to be asked and unloaded
/// again; nothing stays loaded. NothingDone when it was closed, negative when there was no dialog.
i32 ShowPluginInformation(HWND owner, HINSTANCE instance, PluginInformationHosts* hosts);
