#include "pixel/OrderedDither.h"

#include "pixel/RowKernels.h"

#include <algorithm>

namespace
{

constexpr u8 Thresholds[DitherSide * DitherSide] = {
    7, 3, 6, 2, //
    1, 5, 0, 4, //
    6, 2, 7, 3, //
    0, 4, 1, 5,
};

} // namespace

u8 DitherThreshold(u32 x, u32 y)
{
    return Thresholds[y % DitherSide * DitherSide + x % DitherSide];
}

void FillDitherTable(u8* table)
{
    for (const u32 threshold : Thresholds)
        for (u32 value = 0; value < DitherEntries; ++value)
            *table++ = static_cast<u8>(std::min((value + threshold) & ~u32{7}, u32{255}));
}

void DitherRow(u8* target, const u8* source, u32 columns, const u8* table, u32 y)
{
    Kernels().ditherRow(target, source, columns, table, y);
}
