// The print itself: the host's picture, a line at a time, to a PDF file. Held are one row, the
// packer's window and a buffer of the file. The file appears when it is whole; after a failure or
// the user's Abort nothing is left, and a file that was there is as it was. Worker thread.
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
    TavrixPutPropertyCallback put;
    TavrixGetPropertyCallback get;
};

/// Prints, and tells the user where to, or what went wrong. Without settings the standard ones
/// hold. PluginDone or a negative result, PluginStopped when the user gave up.
int32_t PrintPicture(const PrintRequest& request);
