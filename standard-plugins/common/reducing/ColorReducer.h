// The second pass over a picture: rows of colours become rows of palette entries, each the nearest
// one, or with what it lacks spread over the neighbours (ErrorDiffusion). Holds 260 KB and, with
// diffusion, two rows.
#pragma once

#include "standard-plugins/common/reducing/ErrorDiffusion.h"

/// Zeroed memory is a closed one.
struct ColorReducer {
    ReducedPalette palette;
    uint32_t width;
    bool diffuses;
    PaletteMatcher matcher;
    ErrorDiffusion diffusion;
};

/// `palette` has at least one entry. False without memory.
bool OpenReducer(ColorReducer* reducer, const ReducedPalette& palette, uint32_t width,
                 bool diffuses);
/// Back to the first row: it comes again.
void RestartReducer(ColorReducer* reducer);
/// The next row, of red, green and blue; with diffusion they come in order from the first on.
void ReduceRow(ColorReducer* reducer, const uint8_t* rgb, uint8_t* indexes);
/// Also right for a closed one.
void CloseReducer(ColorReducer* reducer);
