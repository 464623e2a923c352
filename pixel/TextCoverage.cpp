#include "pixel/TextCoverage.h"

#include <array>

namespace
{

constexpr u32 FullWeight = 64 * 256;
constexpr u32 WeightShift = 14;

constexpr std::array<u8, 256> CountBits()
{
    std::array<u8, 256> counts = {};
    for (size_t byte = 1; byte < counts.size(); ++byte)
        counts[byte] = static_cast<u8>(counts[byte / 2] + byte % 2);
    return counts;
}

constexpr std::array<u8, 256> SetBits = CountBits();

void BlendPixel(u8* pixel, u32 weight, const ColorBytes& color)
{
    const u32 kept = FullWeight - weight;
    pixel[0] = static_cast<u8>((kept * pixel[0] + weight * color.blue) >> WeightShift);
    pixel[1] = static_cast<u8>((kept * pixel[1] + weight * color.green) >> WeightShift);
    pixel[2] = static_cast<u8>((kept * pixel[2] + weight * color.red) >> WeightShift);
}

} // namespace

u32 TextCoverage(const u8* bits, size_t rowBytes)
{
    u32 count = 0;
    for (u32 row = 0; row < TextScale; ++row)
        count += SetBits[bits[row * rowBytes]];
    return count;
}

void BlendTextRow(u8* pixels, const u8* bits, size_t rowBytes, size_t count,
                  const ColorBytes& color)
{
    const u32 opacity = WeightOf(color);
    for (size_t i = 0; i < count; ++i)
        BlendPixel(pixels + 3 * i, TextCoverage(bits + i, rowBytes) * opacity, color);
}
