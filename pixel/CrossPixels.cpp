#include "pixel/CrossPixels.h"

#include "pixel/RowKernels.h"

#include <string.h>

void CrossPixels24(u8* const* targets, u32 lines, const CrossedBlock& block, u32 column)
{
    const u32 fours = block.count & ~u32{3};
    u32 n = 0;
    // Four by four, where 16 bytes can be read of the last four.
    for (; n + 4 <= lines && column + n + 6 <= block.columns && fours > 0; n += 4) {
        Kernels().crossFour24(targets + n, block.rows, column + n, fours);
        for (u32 line = n; line < n + 4; ++line)
            for (u32 i = fours; i < block.count; ++i)
                memcpy(targets[line] + size_t{3} * i, block.rows[i] + size_t{3} * (column + line),
                       3);
    }
    for (; n < lines; ++n)
        for (u32 i = 0; i < block.count; ++i)
            memcpy(targets[n] + size_t{3} * i, block.rows[i] + size_t{3} * (column + n), 3);
}

void PrefetchCrossed(u8* const* targets, u32 lines, const CrossedBlock& block, u32 column)
{
    constexpr u32 cacheLine = 64;
    constexpr u32 ahead = 32; // pixels
    if (column + ahead < block.columns)
        for (u32 i = 0; i < block.count; ++i)
            __builtin_prefetch(block.rows[i] + size_t{3} * (column + ahead));
    for (u32 n = 0; n < lines; ++n)
        for (u32 byte = 0; byte < 3 * block.count; byte += cacheLine)
            __builtin_prefetch(targets[n] + byte, 1);
}
