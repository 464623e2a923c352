#include "pixel/OrderedDither.h"

#include "pixel/RowKernels.h"

#include <algorithm>

void FillDitherTable(u8* table)
{
    for (const u32 threshold : DitherThresholds)
        for (u32 value = 0; value < DitherEntries; ++value)
            *table++ = static_cast<u8>(std::min((value + threshold) & ~u32{7}, u32{255}));
}

void DitherRow(u8* target, const u8* source, u32 columns, const u8* table, u32 y)
{
    Kernels().ditherRow(target, source, columns, table, y);
}
