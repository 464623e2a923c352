#include "standard-plugins/emboss/Relief.h"

#include <stdlib.h>

namespace
{

constexpr int32_t grey = 128;
// Of luma, the mean of three and per cent.
constexpr int32_t scale = 1000 * 3 * 100;

struct Step {
    int32_t x;
    int32_t y;
};

// The neighbours in the order of the directions.
constexpr Step ring[lightDirections] = {{0, -1}, {1, -1}, {1, 0},  {1, 1},
                                        {0, 1},  {-1, 1}, {-1, 0}, {-1, -1}};

void FillLumas(const uint8_t* row, uint32_t width, int32_t* lumas)
{
    row -= 3;
    for (uint32_t i = 0; i < width + 2; ++i, row += 3)
        lumas[i] = 114 * row[0] + 587 * row[1] + 299 * row[2];
}

// The lumas of the neighbours in a direction, pixel by pixel.
const int32_t* Neighbours(const Relief& relief, uint32_t width, uint32_t direction)
{
    const Step step = ring[direction % lightDirections];
    return relief.lumas + (static_cast<size_t>(width) + 2) * static_cast<size_t>(1 + step.y) + 1 +
           step.x;
}

uint8_t Lit(int32_t ground, int32_t light)
{
    const int32_t sum = scale * ground + light + scale / 2;
    if (sum < 0)
        return 0;
    return static_cast<uint8_t>(sum / scale < 255 ? sum / scale : 255);
}

} // namespace

bool OpenRelief(Relief* relief, uint32_t width)
{
    relief->lumas = static_cast<int32_t*>(calloc(3 * (size_t{width} + 2), sizeof(int32_t)));
    return relief->lumas;
}

void CloseRelief(Relief* relief)
{
    free(relief->lumas);
    relief->lumas = nullptr;
}

void WriteReliefRow(const Relief& relief, const FilterRows& rows, uint8_t* out)
{
    const uint32_t width = rows.width;
    for (int32_t i = 0; i < 3; ++i)
        FillLumas(RowAt(rows, i - 1), width,
                  relief.lumas + static_cast<size_t>(i) * (size_t{width} + 2));
    const int32_t* towards[3];
    const int32_t* away[3];
    for (uint32_t i = 0; i < 3; ++i) {
        towards[i] = Neighbours(relief, width, relief.light + lightDirections - 1 + i);
        away[i] = Neighbours(relief, width, relief.light + lightDirections / 2 - 1 + i);
    }
    const uint8_t* row = RowAt(rows, 0);
    for (uint32_t x = 0; x < width; ++x)
        for (uint32_t channel = 0; channel < 3; ++channel) {
            const int32_t slope = away[0][x] + away[1][x] + away[2][x] - towards[0][x] -
                                  towards[1][x] - towards[2][x];
            const uint32_t at = 3 * x + channel;
            out[at] = Lit(relief.keepsColours ? row[at] : grey, relief.strength * slope);
        }
}
