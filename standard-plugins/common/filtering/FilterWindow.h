// The rows that a filter sees at a time: a ring of 2 * reach + 1 of them (or all of a picture that
// has fewer), each with its edge pixels repeated on both sides. Plain data; zeroed memory is a
// closed one.
#pragma once

#include "standard-plugins/common/filtering/Filter.h"

struct FilterWindow {
    uint32_t reach;
    uint32_t width;
    uint32_t height;
    uint32_t ringRows;
    size_t rowBytes;
    /// Row y lies in place y % ringRows.
    uint8_t* ring;
    const uint8_t** pointers; // 2 * reach + 1
};

/// False without memory. `reach` at least 1.
bool OpenFilterWindow(FilterWindow* window, uint32_t reach, uint32_t width, uint32_t height);
void CloseFilterWindow(FilterWindow* window);
/// The last row of `height` that row `y` looks at.
uint32_t LastRowInReach(uint32_t reach, uint32_t height, uint32_t y);
/// Takes row `y`; rows come in order, from 0.
void TakeFilterRow(FilterWindow* window, uint32_t y, const uint8_t* row);
/// What row `y` sees, once LastRowInReach(y) was taken and no later row. Valid until the next call.
FilterRows RowsAround(FilterWindow* window, uint32_t y);
