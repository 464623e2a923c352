// The dialog that asks where to and how to print. User-interface thread, inside Configure.
#pragma once

#include "standard-plugins/pdf-print/PrintSettings.h"

/// Shows the dialog over `owner`, which may be null, with what *settings holds, and puts there what
/// was chosen: every field within its range, a file in a folder that is there, and for a file that
/// is there itself the user's agreement to replace it. PluginDone for OK; PluginNothing when the
/// user cancelled, and PluginFailed when the dialog cannot be shown: *settings then stays.
int32_t AskPrintSettings(PrintSettings* settings, TavrixWindow owner);
