// The dialog in which letters are written before they are drawn: a modal dialog with the text, its
// font and its size. User-interface thread.
#pragma once

#include "image/Raster.h"
#include "settings/VariantStack.h"

#include <windows.h>

/// What the letters are for, and where they go to. Everything is the caller's.
struct LettersRequest {
    Raster* image;
    VariantStack* stack; // takes the size, the text and the font's name, as texts, in this order
    f64 left;            // the selection's corners
    f64 top;
    f64 right;
    f64 bottom;
    u32 faceColor;
};

/// Done when the letters are to be drawn, with the answers on the stack; NothingDone when they were
/// given up, with the stack as it was; BadArgument for a null record or stack; Failed when there
/// was no dialog.
i32 ShowEditLetters(HWND owner, HINSTANCE instance, const LettersRequest* request);
