#include "standard-plugins/median/SlidingMedian.h"

namespace
{

struct Histogram {
    uint16_t counts[256];
    uint32_t median;
    /// How many values lie below the median.
    uint32_t below;
};

void Add(Histogram* histogram, uint32_t value)
{
    ++histogram->counts[value];
    histogram->below += value < histogram->median;
}

void Remove(Histogram* histogram, uint32_t value)
{
    --histogram->counts[value];
    histogram->below -= value < histogram->median;
}

// As many values lie below the middle one as above it: `half`.
uint8_t Settle(Histogram* histogram, uint32_t half)
{
    while (histogram->below > half)
        histogram->below -= histogram->counts[--histogram->median];
    while (histogram->below + histogram->counts[histogram->median] <= half)
        histogram->below += histogram->counts[histogram->median++];
    return static_cast<uint8_t>(histogram->median);
}

void AddColumn(Histogram* histograms, const FilterRows& rows, int64_t x)
{
    for (uint32_t i = 0; i <= 2 * rows.reach; ++i)
        for (uint32_t channel = 0; channel < 3; ++channel)
            Add(&histograms[channel], rows.rows[i][3 * x + channel]);
}

void RemoveColumn(Histogram* histograms, const FilterRows& rows, int64_t x)
{
    for (uint32_t i = 0; i <= 2 * rows.reach; ++i)
        for (uint32_t channel = 0; channel < 3; ++channel)
            Remove(&histograms[channel], rows.rows[i][3 * x + channel]);
}

} // namespace

void WriteMedianRow(const FilterRows& rows, uint8_t* out)
{
    Histogram histograms[3] = {};
    const int64_t reach = rows.reach;
    const uint32_t side = 2 * rows.reach + 1;
    for (int64_t x = -reach; x < reach; ++x)
        AddColumn(histograms, rows, x);
    for (int64_t x = 0; x < rows.width; ++x) {
        AddColumn(histograms, rows, x + reach);
        for (uint32_t channel = 0; channel < 3; ++channel)
            out[3 * x + channel] = Settle(&histograms[channel], side * side / 2);
        RemoveColumn(histograms, rows, x - reach);
    }
}
