#include "standard-plugins/common/reducing/ErrorDiffusion.h"

#include <stddef.h>
#include <stdlib.h>
#include <string.h>

namespace
{

size_t SumBytes(const ErrorDiffusion& diffusion)
{
    return (size_t{diffusion.width} + 2) * 3 * sizeof(int16_t);
}

uint8_t Wanted(uint8_t value, int sixteenths)
{
    const int wanted = value + ((sixteenths + 8) >> 4);
    return static_cast<uint8_t>(wanted < 0 ? 0 : wanted > 255 ? 255 : wanted);
}

void Give(int16_t* sum, int part)
{
    *sum = static_cast<int16_t>(*sum + part);
}

// `at` is the pixel's place in the sums, `ahead` the step to the next pixel's.
void Spread(ErrorDiffusion* diffusion, ptrdiff_t at, ptrdiff_t ahead, int difference)
{
    Give(diffusion->here + at + ahead, 7 * difference);
    Give(diffusion->below + at - ahead, 3 * difference);
    Give(diffusion->below + at, 5 * difference);
    Give(diffusion->below + at + ahead, difference);
}

uint8_t ChooseEntry(ErrorDiffusion* diffusion, PaletteMatcher* matcher,
                    const ReducedPalette& palette, const uint8_t* pixel, ptrdiff_t at)
{
    uint8_t wanted[3];
    for (int i = 0; i < 3; ++i)
        wanted[i] = Wanted(pixel[i], diffusion->here[at + i]);
    const uint8_t entry = NearestEntry(matcher, wanted);
    const ptrdiff_t ahead = diffusion->leftward ? -3 : 3;
    for (int i = 0; i < 3; ++i)
        Spread(diffusion, at + i, ahead, wanted[i] - palette.colors[entry][i]);
    return entry;
}

} // namespace

bool OpenDiffusion(ErrorDiffusion* diffusion, uint32_t width)
{
    *diffusion = {};
    diffusion->width = width;
    diffusion->here = static_cast<int16_t*>(malloc(SumBytes(*diffusion)));
    diffusion->below = static_cast<int16_t*>(malloc(SumBytes(*diffusion)));
    if (!diffusion->here || !diffusion->below) {
        CloseDiffusion(diffusion);
        return false;
    }
    RestartDiffusion(diffusion);
    return true;
}

void RestartDiffusion(ErrorDiffusion* diffusion)
{
    memset(diffusion->here, 0, SumBytes(*diffusion));
    memset(diffusion->below, 0, SumBytes(*diffusion));
    diffusion->leftward = false;
}

void DiffuseRow(ErrorDiffusion* diffusion, PaletteMatcher* matcher, const ReducedPalette& palette,
                const uint8_t* rgb, uint8_t* indexes)
{
    const uint32_t width = diffusion->width;
    for (uint32_t i = 0; i < width; ++i) {
        const uint32_t x = diffusion->leftward ? width - 1 - i : i;
        indexes[x] = ChooseEntry(diffusion, matcher, palette, rgb + size_t{3} * x,
                                 ptrdiff_t{3} * (ptrdiff_t{x} + 1));
    }
    int16_t* used = diffusion->here;
    diffusion->here = diffusion->below;
    diffusion->below = used;
    memset(used, 0, SumBytes(*diffusion));
    diffusion->leftward = !diffusion->leftward;
}

void CloseDiffusion(ErrorDiffusion* diffusion)
{
    free(diffusion->here);
    free(diffusion->below);
    *diffusion = {};
}
