#include "standard-plugins/brightness-contrast/ToneTable.h"

namespace
{

// Rounded to the nearest and a half up; the divisor is above 0.
int64_t Divide(int64_t number, int64_t divisor)
{
    const int64_t doubled = 2 * number + divisor;
    const int64_t quotient = doubled / (2 * divisor);
    return doubled % (2 * divisor) < 0 ? quotient - 1 : quotient;
}

// `offset` is 200 * (v + 2.55 b - M).
int64_t Tone(int64_t offset, int32_t contrast)
{
    if (contrast <= 0)
        return Divide(2550000 + offset * (100 + contrast), 20000);
    if (contrast < mostTone)
        return Divide(255 * (100 - contrast) + offset, 2 * (100 - contrast));
    return offset < 0 ? 0 : offset > 0 ? 255 : 128;
}

} // namespace

void FillToneTable(uint8_t table[256], int32_t brightness, int32_t contrast)
{
    for (int32_t value = 0; value < 256; ++value) {
        const int64_t tone = Tone(200 * value + 510 * brightness - 25500, contrast);
        table[value] = static_cast<uint8_t>(tone < 0 ? 0 : tone > 255 ? 255 : tone);
    }
}
