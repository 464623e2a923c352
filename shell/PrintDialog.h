// The dialog before a picture is printed: configure the printer, then print or not. It calls the
// plugin's Configure with the jobs' callbacks, hence it stands here and not among the view's.
// User-interface thread, with the plugin loaded.
#pragma once

#include "shell/Job.h"

/// `record` is that of the print job to come (JobPrint with PrintArguments); nothing in it is
/// changed. Done for "Print", also when nothing was configured; NothingDone for "Cancel"; Failed
/// when there was no dialog; BadArgument for null.
[[nodiscard]] i32 ShowPrintDialog(HWND owner, HINSTANCE instance, const JobRecord* record);
