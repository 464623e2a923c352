// The dialog for another canvas: its size, and where in it the old picture stays. User-interface
// thread.
#pragma once

#include "image/Raster.h"

#include <windows.h>

struct SizeRequest {
    u32 width; // out, as the next two
    u32 height;
    u32 anchor; // also in: the number of the button (CanvasAnchor.h)
    RasterInfo old;
};

/// Done on OK, whatever the numbers; NothingDone when it was given up, and nothing in the request
/// is changed; Failed when there was no dialog; BadArgument for null.
[[nodiscard]] i32 ShowSizeDialog(HWND owner, HINSTANCE instance, SizeRequest* request);
