#include "standard-plugins/common/adjusting/Histogram.h"

void CountColors(Histogram histograms[PixelBytes], const uint8_t* row, uint32_t width)
{
    for (uint32_t x = 0; x < width; ++x, row += PixelBytes)
        for (uint32_t byte = 0; byte < PixelBytes; ++byte)
            ++histograms[byte].counts[row[byte]];
}

uint64_t CountOf(const Histogram& histogram)
{
    uint64_t count = 0;
    for (const uint64_t each : histogram.counts)
        count += each;
    return count;
}
