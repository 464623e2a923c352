// The dialog that asks which printer to print on, and how. User-interface thread, inside Configure.
#pragma once

#include "standard-plugins/cups-print/CupsSettings.h"

/// Shows the dialog over `owner`, which may be null, with what *settings holds, and puts there what
/// was chosen: every field within its range, a printer of the list. Where the settings name none of
/// the list, its standard one is shown. PluginDone for OK; PluginNothing when the user cancelled,
/// and PluginFailed when the dialog cannot be shown: *settings then stays.
int32_t AskCupsSettings(CupsSettings* settings, const PrinterList& printers, TavrixWindow owner);
