#include "pixel/TextCoverage.h"

#include "pixel/RowKernels.h"

#include <array>

namespace
{

constexpr std::array<u8, 256> CountBits()
{
    std::array<u8, 256> counts = {};
    for (size_t byte = 1; byte < counts.size(); ++byte)
        counts[byte] = static_cast<u8>(counts[byte / 2] + byte % 2);
    return counts;
}

constexpr std::array<u8, 256> SetBits = CountBits();

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
    Kernels().blendTextRow(pixels, bits, rowBytes, count, color);
}
