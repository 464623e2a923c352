// Small pictures as plain bytes, for comparing an operation with its formula written out.
#pragma once

#include "image/tests/PagingTest.h"

/// A picture without rows that page: what the transcriptions of the formulas work on.
struct Plain {
    u32 width = 0;
    u32 height = 0;
    u32 depth = 0;
    Rows rows;
    bool operator==(const Plain&) const = default;
};

inline Plain PlainOf(Raster& raster)
{
    const RasterInfo info = InfoOf(raster);
    return {info.width, info.height, info.depth, RowsOf(raster)};
}

enum class Paging { None, Under };

/// A raster filled with the pattern of `seed`; with Paging::Under its released lines go to files
/// for as long as memory is short, which is left to the caller.
inline void MakeRaster(Raster& raster, u32 width, u32 height, u32 depth, u32 seed, Paging paging)
{
    PlentyOfMemory();
    const bool pages = paging == Paging::Under;
    ASSERT_EQ(raster.Create(width, height, depth, pages ? FirstFolder : nullptr,
                            pages ? SecondFolder : nullptr),
              1);
    FillPattern(raster, seed);
}
