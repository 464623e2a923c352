// Where an operation on pixels lands: rectangles and runs of copies cut to the rasters, for any
// arguments whatever. A raster's width fits a signed number; its height need not.
#pragma once

#include "image/PixelRect.h"
#include "image/Raster.h"

/// Orders an inclusive rectangle and cuts it to the raster. False when nothing of it is inside,
/// and then it is ordered only. Meant: a right or bottom edge of 0 counts as outside, though column
/// and row 0 are in the raster.
bool ClipRect(PixelRect* rectangle, const RasterInfo& raster);

/// An outline: a rectangle inside the raster and which of its sides are drawn.
struct Outline {
    PixelRect rectangle;
    bool left;
    bool top;
    bool right;
    bool bottom;
};

/// The outline of a rectangle as ClipRect leaves it, without the sides that were cut away. Putting
/// the rectangle in order is no cut. False when nothing is inside.
bool ClipOutline(PixelRect rectangle, const RasterInfo& raster, Outline* out);

/// A rectangle of pixels on its way from one raster to another. 64 bits, so that no sum or
/// difference of two arguments comes round.
struct CopyRun {
    i64 x;
    i64 y;
    i64 width;
    i64 height;
    i64 targetX;
    i64 targetY;
};

/// Moves a run that starts before its source or its target. Meant: a start before the source moves
/// the target and leaves the size as it is; only one before the target shortens the run.
void MoveIntoRasters(CopyRun* run);
/// Whether the run starts behind the end of either raster.
bool StartsBehind(const CopyRun& run, const RasterInfo& source, const RasterInfo& target);
/// Moves a run and cuts it to both rasters, which can leave a size below 1. False when it starts
/// behind either.
bool ClipRun(CopyRun* run, const RasterInfo& source, const RasterInfo& target);
