// The toolbox: a small modeless window at the right edge of the screen below the command bar. It
// shows the tool in force and is dragged by the strip above it; a click below the strip goes to the
// shell. One at a time. User-interface thread.
#pragma once

#include "foundation/Types.h"

#include <windows.h>

struct ToolboxParameters {
    f64 clientOriginX; // the view's top left in the main window
    f64 clientOriginY;
    void (*onClick)();
};

/// The hidden window, null on failure. The parameters are copied. WM_APP with a cell of the tool
/// strip (column, row) shows that tool; -1, -1 shows none.
HWND CreateToolbox(HWND owner, HINSTANCE instance, const ToolboxParameters& parameters);

inline const WCHAR* const ToolboxTitle = TEXT("Tavrix Toolbox");
