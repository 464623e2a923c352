#include "standard-plugins/auto-levels/StretchedTones.h"

namespace
{

constexpr uint64_t wholeClip = 10000;

// The first value, from one end on, with which more than the lost share is passed.
int32_t EndOf(const Histogram& histogram, uint32_t clip, int32_t from, int32_t step)
{
    const uint64_t lost = CountOf(histogram) * clip;
    uint64_t passed = 0;
    int32_t value = from;
    for (; value + step >= 0 && value + step < 256; value += step) {
        passed += histogram.counts[value];
        if (passed * wholeClip > lost)
            break;
    }
    return value;
}

} // namespace

void FillStretch(uint8_t table[256], const Histogram& histogram, uint32_t clip)
{
    const int32_t low = EndOf(histogram, clip, 0, 1);
    const int32_t high = EndOf(histogram, clip, 255, -1);
    for (int32_t value = 0; value < 256; ++value)
        table[value] = high > low ? RoundedShare(int64_t{255} * (value - low), high - low)
                                  : static_cast<uint8_t>(value);
}
