#include "standard-plugins/greyscale/GreyRow.h"

#include <string.h>

void GreyRow(const uint8_t* row, uint32_t width, LumaKind kind, uint8_t* out)
{
    for (uint32_t x = 0; x < width; ++x, row += 3, out += 3)
        memset(out, LumaOf(row, kind), 3);
}
