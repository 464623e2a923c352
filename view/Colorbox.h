// The colorbox: a small modeless window below the toolbox with a swatch for the face colour and one
// for the background. A click on a swatch asks for another colour. One at a time. User-interface
// thread.
#pragma once

#include "foundation/Types.h"

#include <windows.h>

struct ColorboxParameters {
    f64 clientOriginX; // the view's top left in the main window
    f64 clientOriginY;
    u32* faceColor; // colour words; they outlive the window
    u32* backgroundColor;
    /// Asks the person for a colour and writes it. 0 when nothing was chosen.
    u32 (*onPick)(HWND owner, u32* colorWord);
};

/// The window, null on failure. The parameters are copied. WM_APP has it read both colours again
/// and repaint.
HWND CreateColorbox(HWND owner, HINSTANCE instance, const ColorboxParameters& parameters);

inline const WCHAR* const ColorboxTitle = TEXT("Tavrix Colorbox");
