// The background that a program gives a control: its parent answers WM_CTLCOLORSTATIC with a brush.
// The parent is asked when the control is drawn for the first time and after each InvalidateRect of
// it or of the dialog's ground, not at each drawing: it may itself draw on the control meanwhile.
// It is asked while the toolkit paints, so it must not run a message loop. User-interface thread.
#pragma once

#include <windows.h>

#include <optional>

namespace tavrix::platform
{

struct Window;

/// The colour below the control; empty where the dialog shows through. Behind the call the control
/// may be gone.
std::optional<COLORREF> GroundOf(HWND control);
/// The parent is asked again when the control is drawn next.
void ForgetGround(Window& control);

} // namespace tavrix::platform
