#include "standard-plugins/color-balance/BalanceTables.h"

namespace
{

constexpr int64_t lumaWeights[PixelBytes] = {114, 587, 299};
constexpr int64_t lumaWhole = 1000;

// Also of numbers below 0.
int32_t RoundedDifference(int64_t number)
{
    const int64_t doubled = 2 * number + lumaWhole;
    const int64_t quotient = doubled / (2 * lumaWhole);
    return static_cast<int32_t>(doubled % (2 * lumaWhole) < 0 ? quotient - 1 : quotient);
}

uint8_t Cut(int32_t value)
{
    return static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
}

} // namespace

void FillBalance(uint8_t table[256], const ToneBalance& balance)
{
    constexpr int64_t whole = int64_t{4} * 100 * 255;
    for (int64_t value = 0; value < 256; ++value) {
        const int64_t rest = 255 - value;
        const int64_t moved = balance.shadows * rest * rest + 2 * balance.midtones * value * rest +
                              balance.highlights * value * value;
        table[value] = RoundedShare(value * whole + moved, whole);
    }
}

void BalanceRowKeepingLuma(const ToneTables& tables, const uint8_t* row, uint32_t width,
                           uint8_t* out)
{
    for (uint32_t x = 0; x < width; ++x, row += PixelBytes, out += PixelBytes) {
        uint8_t toned[PixelBytes];
        int64_t lost = 0;
        for (uint32_t byte = 0; byte < PixelBytes; ++byte) {
            toned[byte] = tables.of[byte][row[byte]];
            lost += lumaWeights[byte] * (row[byte] - toned[byte]);
        }
        for (uint32_t byte = 0; byte < PixelBytes; ++byte)
            out[byte] = Cut(toned[byte] + RoundedDifference(lost));
    }
}
