#include "standard-plugins/posterise/LevelTable.h"

void FillLevelTable(uint8_t table[256], uint32_t levels)
{
    for (uint32_t value = 0; value < 256; ++value) {
        const uint32_t level = value * levels / 256;
        table[value] = static_cast<uint8_t>((255 * level + (levels - 1) / 2) / (levels - 1));
    }
}
