// What text is drawn with and into: a font, and a bitmap of which a pixel has ink or has none. The
// caller deletes both.
#pragma once

#include "foundation/Types.h"

#include <windows.h>

inline constexpr COLORREF InkColor = 0;           // black
inline constexpr COLORREF GroundColor = 0xFFFFFF; // white

/// Upright, of the face `name`, which is cut where the platform's record ends (null: a face of the
/// platform's choice), `height` pixels high. Null when the platform refuses.
HFONT MakeTextFont(const WCHAR* name, i32 weight, u32 height);

/// Bottom-up, 1 bit a pixel, set for ink, rows padded to 4 bytes; `*bits` is its first byte. Null
/// for a size of no pixels or beyond what a bitmap may have, and when there is no memory.
HBITMAP MakeInkBitmap(i64 width, i64 height, u8** bits);
