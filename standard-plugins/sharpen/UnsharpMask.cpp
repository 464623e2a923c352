#include "standard-plugins/sharpen/UnsharpMask.h"

#include <stddef.h>
#include <stdlib.h>
#include <string.h>

namespace
{

constexpr int32_t stepsBetween = 256;
constexpr int32_t scale = 100 * stepsBetween;

uint8_t* KeptRow(const UnsharpMask& mask, uint32_t y)
{
    return mask.kept + size_t{mask.blurred.samples} * (y % mask.keptRows);
}

// `blurred` in steps of 1/256.
uint8_t Sharpened(const UnsharpMask& mask, int32_t value, int32_t blurred)
{
    const int32_t lost = stepsBetween * value - blurred;
    if (abs(lost) < stepsBetween * mask.threshold)
        return static_cast<uint8_t>(value);
    const int32_t sum = scale * value + mask.amount * lost + scale / 2;
    if (sum < 0)
        return 0;
    return static_cast<uint8_t>(sum / scale < 255 ? sum / scale : 255);
}

} // namespace

bool OpenUnsharpMask(UnsharpMask* mask, uint32_t width, uint32_t height, uint32_t radius)
{
    if (!OpenGaussianRows(&mask->blurred, width, height, radius))
        return false;
    mask->keptRows = mask->blurred.reach + 1 < height ? mask->blurred.reach + 1 : height;
    mask->kept = static_cast<uint8_t*>(malloc(size_t{mask->blurred.samples} * mask->keptRows));
    return mask->kept;
}

void CloseUnsharpMask(UnsharpMask* mask)
{
    FreeGaussianRows(&mask->blurred);
    free(mask->kept);
    *mask = {};
}

void TakeUnsharpRow(UnsharpMask* mask, uint32_t y, const uint8_t* row)
{
    TakeRow(&mask->blurred, y, row);
    memcpy(KeptRow(*mask, y), row, mask->blurred.samples);
}

void WriteUnsharpRow(UnsharpMask* mask, uint32_t y, uint8_t* row)
{
    const float* blurred = BlurRow(&mask->blurred, y);
    const uint8_t* kept = KeptRow(*mask, y);
    for (uint32_t i = 0; i < mask->blurred.samples; ++i)
        row[i] = Sharpened(*mask, kept[i], static_cast<int32_t>(blurred[i] + 0.5F));
}
