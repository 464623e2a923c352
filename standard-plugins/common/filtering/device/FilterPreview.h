// A few of a picture's pixels, as they are and as a filter makes them, for a dialog to draw. Plain
// data; zeroed memory is an empty one.
#pragma once

#include "standard-plugins/common/filtering/Filter.h"

#include <windows.h>

struct FilterPreview {
    /// Pixels; 0 while there is none.
    uint32_t width;
    uint32_t height;
    /// Rows of 3 * width bytes of blue, green, red.
    uint8_t* before;
    uint8_t* after;
};

/// Takes pixels for a place of `place`, at most its size, in the picture's own proportions.
void TakePreview(FilterPreview* preview, SIZE place, PreviewSample sample, TavrixImageHandle image,
                 RasterFunctionTable* rasters);
/// Fills `after`.
void ChangePreview(FilterPreview* preview, const FilterWork& work, const uint32_t* values);
/// Draws `after` in the middle of the rectangle, and a grey ground around it.
void DrawPreview(const FilterPreview& preview, HDC dc, const RECT& place);
/// The pixel of `before` at a point of the rectangle; null outside the pixels.
const uint8_t* PreviewPixelAt(const FilterPreview& preview, const RECT& place, POINT point);
void FreePreview(FilterPreview* preview);
