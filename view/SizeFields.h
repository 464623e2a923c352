// What the dialogs that ask for a picture's size have in common: a number each for width and
// height, and a list of units beside it. User-interface thread.
#pragma once

#include "foundation/Types.h"

#include <windows.h>

/// Puts the size into the two fields.
void ShowSize(HWND dialog, u32 width, u32 height);
/// What stands there; 0 for what is no number of 32 bits.
void ReadSize(HWND dialog, u32* width, u32* height);
/// Gives both lists pixels, and percent too where `percent` is set, and chooses pixels.
void FillUnits(HWND dialog, bool percent);
