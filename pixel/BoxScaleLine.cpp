// One row of an area-averaged reduction.

#include "image/Raster.h"
#include "pixel/BoxRow.h"

#include <algorithm>
#include <stdlib.h>

i32 Raster::BoxScaleLine(u8* out, u32 row, u32 height, u32 width)
{
    if (out == nullptr || row >= height)
        return BadArgument;
    if (info.depth != 24)
        return Failed;
    if (width == 0)
        return Done;
    const BoxAxis columnAxis = MakeBoxAxis(info.width, width);
    const BoxAxis rowAxis = MakeBoxAxis(info.height, height);
    const BoxSpan rows = BoxSpanOf(rowAxis, row);
    const u32 room = (rowAxis.step >> 16) + 2;
    u8** const table = static_cast<u8**>(malloc(room * sizeof(u8*)));
    if (table == nullptr)
        return NoMemory;

    const u32 wanted = rows.last - rows.first + 1; // at most `room`
    u32 got = wanted;
    table[0] = nullptr; // `got` says nothing where there are no lines
    const i32 status = LockLines(static_cast<i32>(rows.first), table, &got);
    if (status < 1 && table[0] == nullptr) {
        free(table);
        return status;
    }
    // The source's lines stay locked until UnlockAll. Where some could not be had, the last one
    // that could stands in for them.
    const u32 count = std::min(wanted, info.height - rows.first);
    for (u32 j = got; j < count; ++j)
        table[j] = table[got - 1];
    AverageRow24(out, width, table, count, rows, columnAxis, rowAxis);
    free(table);
    return Done;
}
