// Pixels as squares laid over one another: each pixel of the result is the mean of the area of the
// source that it covers. Lines go in as they come and come out as they are complete.
//
// Pixel j of `to` along one side covers the source from j * from / to to (j + 1) * from / to.
// Counted in parts of 1 / to that is from j * from to (j + 1) * from, and pixel i of the source
// lies from i * to to (i + 1) * to, so that all shares are whole numbers. Sums are whole numbers
// too, and divided once at the end, to the nearest, a half up: no other error. Where the picture
// becomes larger, a pixel of the result that lies within one of the source has its colour, and one
// across a seam is mixed by its shares of both sides. (E. Catmull, A Hidden-Surface Algorithm with
// Anti-Aliasing, 1978, weighs by area so.)
//
// Plain data; zeroed memory is a closed one.
#pragma once

#include <stdint.h>

struct AreaSides {
    uint32_t fromWidth;
    uint32_t fromHeight;
    uint32_t toWidth;
    uint32_t toHeight;
};

/// Gets a finished line of 3 * toWidth bytes; false ends the run.
using AreaLineCallback = bool (*)(void* user, uint32_t y, const uint8_t* line);

struct AreaReducer {
    AreaSides sides;
    /// The line of the source, and what was summed up for line `next` of the result.
    uint32_t* across;
    uint64_t* sums;
    uint8_t* line;
    uint32_t next;
    AreaLineCallback take;
    void* user;
};

/// False without memory. Sides are 1 to 65,535.
bool OpenAreaReducer(AreaReducer* reducer, const AreaSides& sides, AreaLineCallback take,
                     void* user);
void CloseAreaReducer(AreaReducer* reducer);
/// Line `y` of the source, in order from 0: 3 * fromWidth bytes. Hands on the lines that it
/// completes; false when `take` said so.
bool ReduceAreaLine(AreaReducer* reducer, uint32_t y, const uint8_t* row);
