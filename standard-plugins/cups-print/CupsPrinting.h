// The print itself: the host's picture, a line at a time, as a PDF document to a printer of the
// host's printing system. Held are one row and the packer's window. After a failure or the user's
// Abort the job is cancelled and nothing is printed. Worker thread.
#pragma once

#include <tavrix/plugin.h>

/// What Print was given. Anything may be null: what is needed is checked.
struct PrintRequest {
    TavrixImageHandle image;
    RasterFunctionTable* rasters;
    PaletteFunctionTable* palettes;
    const TavrixChar* title;
    TavrixProgressCallback progress;
    TavrixMessageCallback message;
    TavrixGetPropertyCallback get;
};

/// Prints, and tells the user where to, or what went wrong. Without settings the standard ones
/// hold. PluginDone or a negative result, PluginStopped when the user gave up.
int32_t PrintPicture(const PrintRequest& request);
