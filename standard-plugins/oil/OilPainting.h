// A picture as if painted with broad strokes of few tones.
//
// The luma of ITU-R Recommendation BT.601, Y = 0.299 R + 0.587 G + 0.114 B, is divided into n equal
// levels, level = floor(Y n / 256). In the square of 2 radius + 1 pixels a side around a pixel the
// level is looked for that most pixels have, of several the darkest, and the pixel gets the mean
// colour of those, sum / count, rounded to the nearest, a half up. (G. Holzmann, Beyond
// Photography, 1988, on the oil transfer; with the mean of a level in the place of a single value.)
// Edges are replicated. In whole numbers, without any error.
//
// Counts and sums of the levels slide along the row: at each step a column of pixels leaves them
// and another comes in. Plain data; zeroed memory is a closed one.
#pragma once

#include "standard-plugins/common/filtering/Filter.h"

constexpr uint32_t mostOilLevels = 64;

struct OilPainting {
    uint32_t levels;
    uint32_t reach;
    uint32_t width;
    /// The levels of 2 * reach + 1 rows, each with `reach` pixels more on either side, and a
    /// pointer to pixel 0 of each, from the uppermost on.
    uint8_t* storage;
    uint8_t** rows;
};

/// `levels` from 1 to mostOilLevels, `reach` from 1 to 127. False without memory.
bool OpenOilPainting(OilPainting* painting, uint32_t width, uint32_t reach, uint32_t levels);
void CloseOilPainting(OilPainting* painting);
/// Rows come in order, from 0.
void WriteOilRow(OilPainting* painting, const FilterRows& rows, uint8_t* out);
