#include "standard-plugins/old-photo/SepiaTone.h"

namespace
{

// Hundredths, of blue, green and red.
constexpr uint32_t gains[3] = {94, 120, 135};
// Of a tone: thousandths of luma and hundredths of the gain.
constexpr uint32_t scale = 100000;
constexpr uint32_t fullLight = 65536;

uint32_t Lesser(uint32_t a, uint32_t b)
{
    return a < b ? a : b;
}

void Brown(uint32_t strength, uint8_t* pixel)
{
    const uint32_t luma = 114U * pixel[0] + 587U * pixel[1] + 299U * pixel[2];
    for (uint32_t channel = 0; channel < 3; ++channel) {
        const uint32_t tone = Lesser(gains[channel] * luma, 255 * scale);
        const uint32_t sum = (100 - strength) * scale * pixel[channel] + strength * tone;
        pixel[channel] = static_cast<uint8_t>((sum + 50 * scale) / (100 * scale));
    }
}

uint64_t Square(uint32_t index, uint32_t count)
{
    const int64_t doubled = 2 * int64_t{index} + 1 - count;
    return static_cast<uint64_t>(doubled * doubled);
}

// The light at a pixel; `square` of twice the distance from the middle.
uint32_t LightAt(const SepiaTone& tone, uint64_t square)
{
    const uint64_t whole =
        100 * (uint64_t{tone.width} * tone.width + uint64_t{tone.height} * tone.height);
    const uint64_t rest = whole - tone.corners * square;
    return static_cast<uint32_t>((fullLight * rest + whole / 2) / whole);
}

void Darken(uint32_t light, uint8_t* pixel)
{
    for (uint32_t channel = 0; channel < 3; ++channel)
        pixel[channel] = static_cast<uint8_t>((pixel[channel] * light + fullLight / 2) / fullLight);
}

} // namespace

void ToneRow(const SepiaTone& tone, uint32_t y, uint8_t* row)
{
    const uint64_t down = Square(y, tone.height);
    for (uint32_t x = 0; x < tone.width; ++x, row += 3) {
        Brown(tone.strength, row);
        if (tone.corners > 0)
            Darken(LightAt(tone, down + Square(x, tone.width)), row);
    }
}
