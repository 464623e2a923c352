// Where the old picture stays when the canvas around it changes its size: nine anchors, each the
// number of its button in the dialog, with its name and its place.
#pragma once

#include "foundation/Types.h"

#include <windows.h>

/// The side of the canvas, in one direction, that the old picture keeps to.
enum class CanvasEdge : u32 { First, Middle, Last };

struct CanvasAnchor {
    u32 id; // the button
    CanvasEdge across;
    CanvasEdge down;
    const WCHAR* name;
    const WCHAR* japaneseName;
};

/// Null for a number that is none of the nine.
const CanvasAnchor* FindCanvasAnchor(u32 id);

/// Where a picture of `oldLength` begins in a canvas of `newLength`, in pixels of one direction;
/// negative where it is cut off there. In the middle half the difference, towards 0. Meant: at the
/// last edge one pixel short of it. Lengths beyond 31 bits wrap.
i32 PlaceOnCanvas(CanvasEdge edge, u32 oldLength, u32 newLength);
