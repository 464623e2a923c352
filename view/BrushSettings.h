// The brush settings: a modal dialog with a trackbar each for radius, strength and diffusion.
// User-interface thread.
#pragma once

#include "pixel/Brush.h"

#include <windows.h>

/// 1 when the person took the settings, which the brush then has; 0 when they were given up; -1
/// without a dialog.
INT_PTR ShowBrushSettings(HWND owner, HINSTANCE instance, Brush* brush);
