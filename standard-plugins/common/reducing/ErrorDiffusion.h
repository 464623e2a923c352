// Spreads what a pixel's new colour lacks over its neighbours: R. Floyd, L. Steinberg, An Adaptive
// Algorithm for Spatial Grey Scale, Proceedings of the Society for Information Display 17 (1976).
//
// Rows run to the right and to the left by turns, the first to the right. All is reckoned in whole
// numbers, for each of red, green and blue: a pixel's value v and the sixteenths s that its
// neighbours gave it make the wanted value
//     w = v + floor((s + 8) / 16), brought into 0 to 255;
// the palette's entry nearest to (w, w, w) is taken, and the difference d of w to it is given on,
// 7d sixteenths to the next pixel of the row, and 3d, 5d and d to those of the row below: behind,
// straight below, and ahead. What would go beyond an edge is lost.
#pragma once

#include "standard-plugins/common/reducing/PaletteMatcher.h"

/// Zeroed memory is a closed one.
struct ErrorDiffusion {
    uint32_t width;
    /// Sixteenths for the row at hand and the one below it: red, green, blue of a pixel beyond each
    /// edge and of those between.
    int16_t* here;
    int16_t* below;
    bool leftward;
};

/// False without memory.
bool OpenDiffusion(ErrorDiffusion* diffusion, uint32_t width);
/// As before the first row.
void RestartDiffusion(ErrorDiffusion* diffusion);
/// The next row: `indexes` gets its entries of the palette that the matcher was prepared with.
void DiffuseRow(ErrorDiffusion* diffusion, PaletteMatcher* matcher, const ReducedPalette& palette,
                const uint8_t* rgb, uint8_t* indexes);
/// Also right for a closed one.
void CloseDiffusion(ErrorDiffusion* diffusion);
