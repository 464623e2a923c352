// The brush settings: a modal dialog with a trackbar each for radius, strength and diffusion.
// User-interface thread.
#pragma once

#include "pixel/Brush.h"

#include <windows.h>

/// Done when the person took the settings, which the brush then has; NothingDone when they were
/// given up; BadArgument for a null brush; Failed when there was no dialog.
i32 ShowBrushSettings(HWND owner, HINSTANCE instance, Brush* brush);
