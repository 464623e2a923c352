#include "standard-plugins/common/gaussian/GaussianRows.h"

#include <math.h>
#include <stddef.h>
#include <stdlib.h>

namespace
{

constexpr float stepsBetween = 256;

void FillWeights(GaussianRows* rows, double sigma)
{
    const auto at = [sigma](uint32_t k) { return exp(-0.5 * (k / sigma) * (k / sigma)); };
    double total = at(0);
    for (uint32_t k = 1; k <= rows->reach; ++k)
        total += 2 * at(k);
    for (uint32_t k = 0; k <= rows->reach; ++k)
        rows->weights[k] = static_cast<float>(at(k) / total);
}

// A row with its first and last pixel repeated on either side.
void Pad(GaussianRows* rows, const uint8_t* row)
{
    float* out = rows->padded;
    for (uint32_t k = 0; k < rows->reach; ++k)
        for (uint32_t channel = 0; channel < 3; ++channel)
            *out++ = row[channel];
    for (uint32_t i = 0; i < rows->samples; ++i)
        *out++ = row[i];
    for (uint32_t k = 0; k < rows->reach; ++k)
        for (uint32_t channel = 3; channel > 0; --channel)
            *out++ = row[rows->samples - channel];
}

const uint16_t* RingRow(const GaussianRows& rows, uint32_t y)
{
    return rows.ring + size_t{rows.samples} * (y % rows.ringRows);
}

const uint16_t* RingRowAbove(const GaussianRows& rows, uint32_t y, uint32_t distance)
{
    return RingRow(rows, distance < y ? y - distance : 0);
}

const uint16_t* RingRowBelow(const GaussianRows& rows, uint32_t y, uint32_t distance)
{
    const uint32_t left = rows.height - 1 - y;
    return RingRow(rows, y + (distance < left ? distance : left));
}

} // namespace

uint32_t GaussianReach(uint32_t radius)
{
    return (3 * radius + 9) / 10;
}

bool OpenGaussianRows(GaussianRows* rows, uint32_t width, uint32_t height, uint32_t radius)
{
    *rows = {};
    rows->reach = GaussianReach(radius);
    rows->samples = 3 * width;
    rows->height = height;
    const uint32_t span = 2 * rows->reach + 1;
    rows->ringRows = span < height ? span : height;
    const size_t samples = rows->samples;
    rows->weights = static_cast<float*>(calloc(size_t{rows->reach} + 1, sizeof(float)));
    rows->padded = static_cast<float*>(calloc(samples + size_t{6} * rows->reach, sizeof(float)));
    rows->sums = static_cast<float*>(calloc(samples, sizeof(float)));
    rows->ring = static_cast<uint16_t*>(calloc(rows->ringRows, samples * sizeof(uint16_t)));
    if (!rows->weights || !rows->padded || !rows->sums || !rows->ring)
        return false;
    FillWeights(rows, radius / 10.0);
    return true;
}

void FreeGaussianRows(GaussianRows* rows)
{
    free(rows->weights);
    free(rows->padded);
    free(rows->sums);
    free(rows->ring);
    *rows = {};
}

void TakeRow(GaussianRows* rows, uint32_t y, const uint8_t* row)
{
    Pad(rows, row);
    float* __restrict sums = rows->sums;
    const float* middle = rows->padded + size_t{3} * rows->reach;
    for (uint32_t i = 0; i < rows->samples; ++i)
        sums[i] = rows->weights[0] * middle[i];
    for (uint32_t k = 1; k <= rows->reach; ++k) {
        const float weight = rows->weights[k];
        const float* before = middle - size_t{3} * k;
        const float* behind = middle + size_t{3} * k;
        for (uint32_t i = 0; i < rows->samples; ++i)
            sums[i] += weight * (before[i] + behind[i]);
    }
    uint16_t* out = rows->ring + size_t{rows->samples} * (y % rows->ringRows);
    for (uint32_t i = 0; i < rows->samples; ++i)
        out[i] = static_cast<uint16_t>(static_cast<int32_t>(sums[i] * stepsBetween + 0.5F));
}

const float* BlurRow(GaussianRows* rows, uint32_t y)
{
    float* __restrict sums = rows->sums;
    const uint16_t* middle = RingRow(*rows, y);
    for (uint32_t i = 0; i < rows->samples; ++i)
        sums[i] = rows->weights[0] * middle[i];
    for (uint32_t k = 1; k <= rows->reach; ++k) {
        const float weight = rows->weights[k];
        const uint16_t* above = RingRowAbove(*rows, y, k);
        const uint16_t* below = RingRowBelow(*rows, y, k);
        for (uint32_t i = 0; i < rows->samples; ++i)
            sums[i] += weight * static_cast<float>(above[i] + below[i]);
    }
    return sums;
}

void WriteRow(GaussianRows* rows, uint32_t y, uint8_t* row)
{
    const float* __restrict sums = BlurRow(rows, y);
    for (uint32_t i = 0; i < rows->samples; ++i)
        row[i] = static_cast<uint8_t>(static_cast<int32_t>(sums[i] / stepsBetween + 0.5F));
}
