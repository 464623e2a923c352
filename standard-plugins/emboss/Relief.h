// A picture as a relief in slanting light: what is brighter stands higher, and a slope is bright
// where it faces the light and dark where it turns away.
//
// The height is the luma of ITU-R Recommendation BT.601, Y = 0.299 R + 0.587 G + 0.114 B. The slope
// s is the sum of the three neighbours away from the light less that of the three towards it, as in
// the compass masks of J. Prewitt (Object Enhancement and Extraction, 1970). With a strength of
// p per cent:
//     out = ground + p / 100 * s / 3,
// cut to 0 .. 255 and rounded to the nearest, a half up; the ground is a grey of 128, or each
// colour as it was. Edges are replicated. In whole numbers, without any error.
#pragma once

#include "standard-plugins/common/filtering/Filter.h"

constexpr uint32_t lightDirections = 8;

struct Relief {
    /// Where the light comes from: 0 from above, then by 45 degrees clockwise.
    uint32_t light;
    int32_t strength;
    bool keepsColours;
    /// Thousandths of luma of three rows, with a pixel more on either side.
    int32_t* lumas;
};

/// `light`, `strength` and `keepsColours` are the caller's. False without memory.
bool OpenRelief(Relief* relief, uint32_t width);
void CloseRelief(Relief* relief);
/// `rows` reach over one pixel at least.
void WriteReliefRow(const Relief& relief, const FilterRows& rows, uint8_t* out);
