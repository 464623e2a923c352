#include "standard-plugins/invert/InvertedRow.h"

void InvertRow(const uint8_t* row, uint32_t width, uint8_t* out)
{
    for (uint32_t i = 0; i < 3 * width; ++i)
        out[i] = static_cast<uint8_t>(255 - row[i]);
}
