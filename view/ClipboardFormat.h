// The dialog that asks in which format a picture goes to the clipboard. User-interface thread.
#pragma once

#include "foundation/Types.h"

#include <windows.h>

/// The rows of its list.
enum : i32 { ClipboardDib = 0, ClipboardBitmap = 1 };

/// `last` is the row chosen at first. The chosen row, or -1: closed, no row chosen, or no dialog.
[[nodiscard]] i32 AskClipboardFormat(HWND owner, HINSTANCE instance, u32 last);
