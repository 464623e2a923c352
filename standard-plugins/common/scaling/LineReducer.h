// Makes fewer lines of many, one after the other as they come, for reductions of which zimg would
// hold hundreds of lines at once: here a line is added, with its weights, to the few lines of the
// result that it has a part in, and is forgotten.
//
// The kernel is the one that zimg is asked for, and positions and edges are as there: line j of the
// result lies at (j + 1/2) r of the source, where r is the ratio of the heights; a line whose
// middle is d away from that weighs kernel(d / r), divided by the sum of all weights; beyond the
// first and the last line the picture is mirrored, and what lies beyond the mirrored picture too
// has the colour of its far edge.
//
// Sums are doubles. Lines have to come in order from line 0; a run over another strip of columns
// begins with line 0 again. Plain data; CloseReducer gives it back.
#pragma once

#include "standard-plugins/common/scaling/ZimgPass.h"

struct LineReducer {
    ScaleKernel kernel;
    /// Lines of the source and of the result; not more of these.
    uint32_t from;
    uint32_t to;
    uint32_t width;
    /// The lines of the result that are being summed up, each in place j % summedLines.
    double* sums;
    /// The first line of the result that is not finished.
    uint32_t next;
    /// A finished line for `take`.
    float* line;
    LineCallback take;
    void* user;
};

/// Bytes that a reducer of this width holds.
uint64_t ReducerBytes(uint32_t width);
/// False without memory.
bool OpenReducer(LineReducer* reducer, ScaleKernel kernel, uint32_t from, ZimgSize to,
                 LineCallback take, void* user);
void CloseReducer(LineReducer* reducer);
/// A line of the source; hands on the lines of the result that it completes. False when `take` said
/// so. `user` is the reducer: a LineCallback.
bool ReduceLine(void* user, uint32_t y, uint32_t left, uint32_t right, float* const planes[3]);
