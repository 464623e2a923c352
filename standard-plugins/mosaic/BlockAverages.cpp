#include "standard-plugins/mosaic/BlockAverages.h"

#include <stddef.h>
#include <stdlib.h>
#include <string.h>

namespace
{

uint32_t Lesser(uint32_t a, uint32_t b)
{
    return a < b ? a : b;
}

uint32_t* SumsOf(const BlockAverages& averages, uint32_t y)
{
    return averages.sums + size_t{3} * averages.blocks * (y / averages.size % 2);
}

// Of the blocks that row `y`, the first of theirs, begins.
void Divide(BlockAverages* averages, uint32_t y)
{
    const uint32_t* sums = SumsOf(*averages, y);
    const uint32_t tall = Lesser(averages->size, averages->height - y);
    for (uint32_t block = 0; block < averages->blocks; ++block) {
        const uint32_t wide = Lesser(averages->size, averages->width - block * averages->size);
        const uint32_t count = wide * tall;
        for (uint32_t i = 3 * block; i < 3 * block + 3; ++i)
            averages->averages[i] = static_cast<uint8_t>((sums[i] + count / 2) / count);
    }
}

} // namespace

bool OpenBlockAverages(BlockAverages* averages, uint32_t width, uint32_t height, uint32_t size)
{
    averages->size = size;
    averages->width = width;
    averages->height = height;
    averages->blocks = (width + size - 1) / size;
    const size_t samples = size_t{3} * averages->blocks;
    averages->sums = static_cast<uint32_t*>(calloc(2 * samples, sizeof(uint32_t)));
    averages->averages = static_cast<uint8_t*>(calloc(samples, 1));
    return averages->sums && averages->averages;
}

void CloseBlockAverages(BlockAverages* averages)
{
    free(averages->sums);
    free(averages->averages);
    *averages = {};
}

void TakeBlockRow(BlockAverages* averages, uint32_t y, const uint8_t* row)
{
    uint32_t* sums = SumsOf(*averages, y);
    if (y % averages->size == 0)
        memset(sums, 0, size_t{3} * averages->blocks * sizeof(uint32_t));
    for (uint32_t left = 0; left < averages->width; left += averages->size, sums += 3) {
        const uint32_t end = Lesser(averages->width, left + averages->size);
        for (uint32_t x = left; x < end; ++x)
            for (uint32_t channel = 0; channel < 3; ++channel)
                sums[channel] += row[size_t{3} * x + channel];
    }
}

void WriteBlockRow(BlockAverages* averages, uint32_t y, uint8_t* row)
{
    if (y % averages->size == 0)
        Divide(averages, y);
    const uint8_t* average = averages->averages;
    for (uint32_t left = 0; left < averages->width; left += averages->size, average += 3) {
        const uint32_t end = Lesser(averages->width, left + averages->size);
        for (uint32_t x = left; x < end; ++x)
            memcpy(row + size_t{3} * x, average, 3);
    }
}
