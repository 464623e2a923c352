// A mosaic: the picture in square blocks from its upper left corner on, each of one colour.
//
// Of each colour that is the mean of the block's pixels, sum / count, rounded to the nearest, a
// half up: the sampling with a box of J. Foley, A. van Dam, S. Feiner, J. Hughes, Computer
// Graphics, on area sampling, with each sample drawn as large as its box. Blocks that the right and
// the lower edge cut have the mean of what they hold. In whole numbers, without any error.
//
// Held are the sums of two rows of blocks, the one in work and the next. Plain data; zeroed memory
// is a closed one.
#pragma once

#include <stdint.h>

struct BlockAverages {
    uint32_t size;
    uint32_t width;
    uint32_t height;
    /// Blocks in a row.
    uint32_t blocks;
    /// Blue, green and red of each block; block row b lies in place b % 2.
    uint32_t* sums;
    uint8_t* averages;
};

/// `size` pixels a side, 1 to 4096. False without memory.
bool OpenBlockAverages(BlockAverages* averages, uint32_t width, uint32_t height, uint32_t size);
void CloseBlockAverages(BlockAverages* averages);
/// Takes row `y` of the picture; rows come in order, from 0.
void TakeBlockRow(BlockAverages* averages, uint32_t y, const uint8_t* row);
/// Writes row `y`, in order from 0, once the last row of its blocks was taken and no row more than
/// size - 1 below `y`.
void WriteBlockRow(BlockAverages* averages, uint32_t y, uint8_t* row);
