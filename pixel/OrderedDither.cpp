#include "pixel/OrderedDither.h"

#include <algorithm>

namespace
{

constexpr u32 Side = 4; // of the matrix
constexpr u32 Entries = 256;

constexpr u8 Thresholds[Side * Side] = {
    7, 3, 6, 2, //
    1, 5, 0, 4, //
    6, 2, 7, 3, //
    0, 4, 1, 5,
};
static_assert(sizeof(Thresholds) * Entries == DitherTableSize);

void DitherPixel(u8* target, const u8* source, const u8* entries)
{
    target[0] = entries[source[0]];
    target[1] = entries[source[1]];
    target[2] = entries[source[2]];
}

} // namespace

void FillDitherTable(u8* table)
{
    for (const u32 threshold : Thresholds)
        for (u32 value = 0; value < Entries; ++value)
            *table++ = static_cast<u8>(std::min((value + threshold) & ~u32{7}, u32{255}));
}

void DitherRow(u8* target, const u8* source, u32 columns, const u8* table, u32 y)
{
    const u8* const entries = table + (y % Side) * Side * Entries;
    for (; columns >= Side; columns -= Side, target += 3 * Side, source += 3 * Side) {
        DitherPixel(target, source, entries);
        DitherPixel(target + 3, source + 3, entries + Entries);
        DitherPixel(target + 6, source + 6, entries + 2 * Entries);
        DitherPixel(target + 9, source + 9, entries + 3 * Entries);
    }
    for (u32 x = 0; x < columns; ++x)
        DitherPixel(target + 3 * x, source + 3 * x, entries + x * Entries);
}
