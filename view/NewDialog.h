// The dialog for a new picture: its size, its kind of colours, of which there is one, and what it
// is filled with. User-interface thread.
#pragma once

#include "image/Raster.h"

#include <windows.h>

struct NewRequest {
    RasterInfo* info; // width and height: shown first, and with the depth what was asked for on OK
    // What the picture is to be filled with: 0 white, 1 black, 2 transparent. Meant: the dialog's
    // three buttons are not read, so that it stays as the caller gave it.
    u32* background;
};

/// Done on OK, whatever the numbers, 0 among them; NothingDone when it was given up, and nothing in
/// the request is changed; Failed when there was no dialog; BadArgument for null.
[[nodiscard]] i32 ShowNewDialog(HWND owner, HINSTANCE instance, const NewRequest* request);
