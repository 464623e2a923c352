// One run of zimg over a picture of three planes of floats, line by line: lines are asked for and
// handed out through two callbacks, and only the lines that the filter spans are held.
//
// zimg goes through the picture from the top. A picture whose columns it finds too many to hold at
// once it does in strips of columns, one after the other: the callbacks are told which columns are
// meant, and lines may be asked for again. Each plane holds values of 0 to 255, which come out
// beyond that range where the kernel overshoots.
//
// Plain data; ClosePass gives everything back, also of a record that is all zero.
#pragma once

#include "standard-plugins/common/scaling/ZimgLibrary.h"

#include <stddef.h>
#include <stdint.h>

enum class ScaleKernel : uint8_t {
    Bilinear, // a triangle that reaches one pixel to either side
    Bicubic,  // Catmull-Rom, which reaches two
    Lanczos,  // sinc(x) sinc(x / 3), which reaches three
    Area      // no kernel of zimg's: see AreaReducer
};

/// The columns of line `y` from `left` to before `right`: planes[c][x] is the value of column x.
/// False ends the run.
using LineCallback = bool (*)(void* user, uint32_t y, uint32_t left, uint32_t right,
                              float* const planes[3]);

struct ZimgSize {
    uint32_t width;
    uint32_t height;
};

/// The lines between a callback and the library: a ring, of which a mask picks the line.
struct ZimgLines {
    float* samples;
    uint32_t mask;
    uint32_t lines;
    size_t stride; // floats from line to line
};

struct ZimgPass {
    const ZimgLibrary* library;
    zimg_filter_graph* graph;
    /// What `work`, `in.samples` and `out.samples` point into.
    void* block;
    void* work;
    size_t workBytes;
    ZimgLines in;
    ZimgLines out;
    LineCallback give;
    LineCallback take;
    void* user;
};

enum class PassResult : uint8_t { Done, NoMemory, Refused, Ended };

/// Asks the library for a way from one size to the other. Done or Refused. Nothing but the filter's
/// weights is allocated yet.
PassResult OpenPass(ZimgPass* pass, const ZimgLibrary* library, ZimgSize from, ZimgSize to,
                    ScaleKernel kernel);
/// Bytes that the run will hold.
uint64_t BytesOf(const ZimgPass& pass);
/// Runs once. `give` fills lines of the source, `take` gets lines of the target. Ended where one of
/// them said so.
PassResult RunPass(ZimgPass* pass, LineCallback give, LineCallback take, void* user);
void ClosePass(ZimgPass* pass);
