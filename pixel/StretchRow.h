// One row of a nearest-neighbour stretch of 24-bit pixels: target pixel i shows the source pixel
// that (start + i * step) >> 16 names, in unsigned 32 bits that wrap.
#pragma once

#include <stddef.h>

#include "foundation/Types.h"

constexpr size_t StretchBlockPixels = 5; // 15 bytes of 16
constexpr size_t MostStretchBlocks = 512;

/// What all rows of one picture have in common. Made by MapColumns.
struct StretchColumns {
    u32 start; // 16.16
    u32 step;
    size_t count;       // target pixels, all of which have their source inside the row
    size_t sourceBytes; // that may be read of a row of the source
    /// Of an enlargement, five target pixels each: where 16 bytes of the source begin, and which of
    /// them come where.
    size_t blocks;
    u32 offsets[MostStretchBlocks];
    u8 shuffles[MostStretchBlocks][16];
};

void MapColumns(StretchColumns* columns, u32 start, u32 step, size_t count, size_t sourceBytes);
/// From `source`, its row's first byte, to the first pixel to be written. Where both rows have
/// bytes in common, pixels are worked from left to right, each with what the ones before it have
/// left.
void StretchRow24(u8* target, const u8* source, const StretchColumns& columns);
