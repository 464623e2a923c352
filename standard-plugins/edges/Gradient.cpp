#include "standard-plugins/edges/Gradient.h"

#include <math.h>

namespace
{

// 100 per cent times the 4 of the formula.
constexpr uint64_t scale = 400;

uint32_t SquareOf(const FilterRows& rows, uint32_t sample)
{
    const uint8_t* upper = RowAt(rows, -1) + sample;
    const uint8_t* middle = RowAt(rows, 0) + sample;
    const uint8_t* lower = RowAt(rows, 1) + sample;
    const int32_t across =
        (upper[3] + 2 * middle[3] + lower[3]) - (upper[-3] + 2 * middle[-3] + lower[-3]);
    const int32_t down =
        (lower[-3] + 2 * lower[0] + lower[3]) - (upper[-3] + 2 * upper[0] + upper[3]);
    return static_cast<uint32_t>(across * across + down * down);
}

uint8_t Magnitude(const Gradient& gradient, uint32_t square)
{
    const float estimate = gradient.factor * sqrtf(static_cast<float>(square)) + 0.5F;
    uint32_t magnitude = estimate < 255 ? static_cast<uint32_t>(estimate) : 255;
    while (square < gradient.least[magnitude])
        --magnitude;
    while (square >= gradient.least[magnitude + 1])
        ++magnitude;
    return static_cast<uint8_t>(gradient.lightGround ? 255 - magnitude : magnitude);
}

uint32_t Greater(uint32_t a, uint32_t b)
{
    return a > b ? a : b;
}

} // namespace

void OpenGradient(Gradient* gradient, uint32_t strength)
{
    gradient->factor = static_cast<float>(strength) / static_cast<float>(scale);
    gradient->least[0] = 0;
    gradient->least[256] = UINT32_MAX;
    const uint64_t divisor = 4 * uint64_t{strength} * strength;
    for (uint64_t m = 1; m < 256; ++m) {
        // m - 1/2 <= strength * sqrt(square) / scale.
        const uint64_t root = (2 * m - 1) * scale;
        gradient->least[m] = static_cast<uint32_t>((root * root + divisor - 1) / divisor);
    }
}

void WriteGradientRow(const Gradient& gradient, const FilterRows& rows, uint8_t* out)
{
    for (uint32_t at = 0; at < 3 * rows.width; at += 3) {
        uint32_t squares[3];
        for (uint32_t channel = 0; channel < 3; ++channel)
            squares[channel] = SquareOf(rows, at + channel);
        if (gradient.inColour) {
            for (uint32_t channel = 0; channel < 3; ++channel)
                out[at + channel] = Magnitude(gradient, squares[channel]);
            continue;
        }
        const uint8_t magnitude =
            Magnitude(gradient, Greater(squares[0], Greater(squares[1], squares[2])));
        out[at] = out[at + 1] = out[at + 2] = magnitude;
    }
}
