#include "standard-plugins/noise/Grain.h"

#include <stddef.h>

namespace
{

constexpr int32_t meanOfBytes = 510;

uint32_t Hash(uint32_t number)
{
    const uint32_t state = number * 747796405U + 2891336453U;
    const uint32_t word = ((state >> ((state >> 28) + 4)) ^ state) * 277803737U;
    return (word >> 22) ^ word;
}

int32_t Even(uint32_t hash, int32_t width)
{
    return static_cast<int32_t>((uint64_t{hash} * static_cast<uint64_t>(2 * width + 1)) >> 32) -
           width;
}

int32_t Gaussian(uint32_t hash, int32_t width)
{
    const uint32_t sum = (hash & 255) + (hash >> 8 & 255) + (hash >> 16 & 255) + (hash >> 24);
    // Shifted up by whole steps, so that the division rounds down below 0 too.
    const int32_t lifted = width * (static_cast<int32_t>(sum) - meanOfBytes) + 128 + 256 * 1024;
    return lifted / 256 - 1024;
}

uint8_t Cut(int32_t value)
{
    return static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
}

} // namespace

void AddGrain(const Grain& grain, uint32_t y, uint32_t width, uint8_t* row)
{
    const auto size = static_cast<int32_t>((255 * grain.amount + 50) / 100);
    for (uint32_t x = 0; x < width; ++x) {
        const uint32_t place = Hash(Hash(x) + y);
        for (uint32_t channel = 0; channel < 3; ++channel) {
            const uint32_t hash = Hash(place + (grain.inColour ? channel : 0));
            uint8_t* value = row + size_t{3} * x + channel;
            *value = Cut(*value + (grain.gaussian ? Gaussian(hash, size) : Even(hash, size)));
        }
    }
}
