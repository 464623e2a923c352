#include "standard-plugins/threshold/ThresholdLevel.h"

#include "standard-plugins/common/adjusting/Luma.h"

#include <string.h>

namespace
{

// A class of pixels.
struct Share {
    double count;
    double sum;
};

Share ShareOf(const Histogram& histogram, uint32_t first, uint32_t end)
{
    Share share = {};
    for (uint32_t value = first; value < end; ++value) {
        const auto count = static_cast<double>(histogram.counts[value]);
        share.count += count;
        share.sum += count * value;
    }
    return share;
}

// Counts and sums are whole numbers below 2^53, and exact.
double VarianceAt(const Histogram& histogram, uint32_t level)
{
    const Share below = ShareOf(histogram, 0, level);
    const Share above = ShareOf(histogram, level, 256);
    if (below.count == 0 || above.count == 0)
        return 0;
    const double apart = below.sum * above.count - above.sum * below.count;
    return apart * apart / (below.count * above.count);
}

} // namespace

void CountLumas(Histogram* histogram, const uint8_t* row, uint32_t width)
{
    for (uint32_t x = 0; x < width; ++x, row += PixelBytes)
        ++histogram->counts[LumaOf(row, LumaKind::Rec601)];
}

uint32_t DividingLevel(const Histogram& histogram, uint32_t otherwise)
{
    double largest = 0;
    uint32_t found = otherwise;
    for (uint32_t level = leastLevel; level <= mostLevel; ++level) {
        const double variance = VarianceAt(histogram, level);
        if (variance > largest) {
            largest = variance;
            found = level;
        }
    }
    return found;
}

void DivideRow(const uint8_t* row, uint32_t width, uint32_t level, uint8_t* out)
{
    for (uint32_t x = 0; x < width; ++x, row += PixelBytes, out += PixelBytes)
        memset(out, LumaOf(row, LumaKind::Rec601) >= level ? 255 : 0, PixelBytes);
}
