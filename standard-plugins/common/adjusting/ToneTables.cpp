#include "standard-plugins/common/adjusting/ToneTables.h"

void ApplyTones(const ToneTables& tables, const FilterRows& rows, uint8_t* out)
{
    const uint8_t* row = RowAt(rows, 0);
    for (uint32_t x = 0; x < rows.width; ++x, row += PixelBytes, out += PixelBytes)
        for (uint32_t byte = 0; byte < PixelBytes; ++byte)
            out[byte] = tables.of[byte][row[byte]];
}

uint8_t RoundedTone(double value)
{
    if (value <= 0)
        return 0;
    return value >= 255 ? 255 : static_cast<uint8_t>(static_cast<int32_t>(value + 0.5));
}

uint8_t RoundedShare(int64_t number, int64_t divisor)
{
    if (number <= 0)
        return 0;
    const int64_t rounded = (2 * number + divisor) / (2 * divisor);
    return rounded > 255 ? 255 : static_cast<uint8_t>(rounded);
}
