// Rectangles put in order: left <= right and top <= bottom.
#pragma once

#include "foundation/Result.h"
#include "image/PixelRect.h"

/// Orders the rectangle in place. BadArgument for null, else Done.
i32 NormalizeRect(PixelRect* rectangle);
i32 NormalizeDoubleRect(DoubleRect* rectangle);

/// Puts a selection's corners, in coordinates of a picture of `width` x `height` pixels, in order
/// and into the picture. Meant: of an inverted pair only the value that moves to the low end is
/// truncated. All four at -1 stand for no corners and stay. BadArgument for null, else Done.
i32 NormalizeSelectionRect(DoubleRect* selection, u32 width, u32 height);
