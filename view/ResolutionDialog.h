// The dialog for another number of pixels: the new size, in pixels or in percent, and the plugin
// that makes it. A field is written anew while a person types into it. User-interface thread.
#pragma once

#include "image/Raster.h"
#include "settings/PropertyList.h"

#include <windows.h>

struct ResolutionRequest {
    RasterInfo* info;          // width and height are those of the picture, and on OK the new ones
    const PropertyList* names; // plugin name -> plugin index; the first 100 are offered
    i32 chosen;                // out: the plugin's index, negative where none was chosen
    i32 preselected;           // the index of the one that is chosen first
};

/// Done on OK; NothingDone when it was given up, and nothing in the request is changed; Failed when
/// there was no dialog; BadArgument for null.
[[nodiscard]] i32 ShowResolutionDialog(HWND owner, HINSTANCE instance, ResolutionRequest* request);
