#include "standard-plugins/common/reducing/ColorReducer.h"

bool OpenReducer(ColorReducer* reducer, const ReducedPalette& palette, uint32_t width,
                 bool diffuses)
{
    reducer->palette = palette;
    reducer->width = width;
    reducer->diffuses = diffuses;
    PrepareMatcher(&reducer->matcher, palette);
    return !diffuses || OpenDiffusion(&reducer->diffusion, width);
}

void RestartReducer(ColorReducer* reducer)
{
    if (reducer->diffuses)
        RestartDiffusion(&reducer->diffusion);
}

void ReduceRow(ColorReducer* reducer, const uint8_t* rgb, uint8_t* indexes)
{
    if (reducer->diffuses) {
        DiffuseRow(&reducer->diffusion, &reducer->matcher, reducer->palette, rgb, indexes);
        return;
    }
    for (uint32_t x = 0; x < reducer->width; ++x, rgb += 3)
        indexes[x] = NearestEntry(&reducer->matcher, rgb);
}

void CloseReducer(ColorReducer* reducer)
{
    CloseDiffusion(&reducer->diffusion);
}
