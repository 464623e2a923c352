// Rectangles of the pixel operations: left, top, right, bottom, inclusive on all sides, in pixels.
#pragma once

#include "foundation/Types.h"

struct PixelRect {
    i32 left;
    i32 top;
    i32 right;
    i32 bottom;
};

struct DoubleRect {
    f64 left;
    f64 top;
    f64 right;
    f64 bottom;
};
