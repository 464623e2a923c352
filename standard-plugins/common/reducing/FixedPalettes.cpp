#include "standard-plugins/common/reducing/FixedPalettes.h"

namespace
{

constexpr uint32_t cubeSide = 6;
constexpr uint32_t cubeStep = 255 / (cubeSide - 1);
constexpr uint8_t half = 128;
constexpr uint8_t silver = 192;
constexpr uint32_t mixtures = 8;

void Add(ReducedPalette* palette, uint32_t red, uint32_t green, uint32_t blue)
{
    uint8_t* color = palette->colors[palette->count++];
    color[0] = static_cast<uint8_t>(red);
    color[1] = static_cast<uint8_t>(green);
    color[2] = static_cast<uint8_t>(blue);
}

void FillCube(ReducedPalette* palette)
{
    for (uint32_t red = 0; red < cubeSide; ++red)
        for (uint32_t green = 0; green < cubeSide; ++green)
            for (uint32_t blue = 0; blue < cubeSide; ++blue)
                Add(palette, red * cubeStep, green * cubeStep, blue * cubeStep);
}

// Each bit of a mixture is one of the three colours.
void FillMixtures(ReducedPalette* palette, uint32_t level)
{
    for (uint32_t mixture = 1; mixture < mixtures; ++mixture)
        Add(palette, (mixture & 1) * level, (mixture >> 1 & 1) * level, (mixture >> 2) * level);
}

void FillStandard(ReducedPalette* palette)
{
    Add(palette, 0, 0, 0);
    FillMixtures(palette, half);
    Add(palette, silver, silver, silver);
    FillMixtures(palette, 255);
}

void FillGreys(ReducedPalette* palette, uint32_t count)
{
    for (uint32_t i = 0; i < count; ++i) {
        const uint32_t level = i * 255 / (count - 1);
        Add(palette, level, level, level);
    }
}

} // namespace

void FillFixedPalette(FixedPalette which, ReducedPalette* palette)
{
    palette->count = 0;
    switch (which) {
    case FixedPalette::WebCube:
        return FillCube(palette);
    case FixedPalette::Standard16:
        return FillStandard(palette);
    case FixedPalette::Grey256:
        return FillGreys(palette, 256);
    case FixedPalette::Grey16:
        return FillGreys(palette, 16);
    default:
        return FillGreys(palette, 2);
    }
}
