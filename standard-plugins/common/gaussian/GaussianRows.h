// The Gaussian blur of rows, for all that are made with one: a picture of one colour direction
// after the other, first along the rows, then along the columns.
//
// The kernel is g(k) = exp(-k^2 / (2 sigma^2)) for whole k from -reach to reach, divided by its
// sum, with reach = ceil(3 sigma); beyond lie 0.3 per cent of the curve. (The formula: L. Shapiro,
// G. Stockman, Computer Vision, 2001, on Gaussian filtering.) That a separable filter may go in two
// passes is from there too. Edges are replicated: what lies outside the picture has the colour of
// the nearest pixel inside.
//
// Sums are floats, of which the error stays below a hundredth of a step. A row between the passes
// is kept in steps of 1/256, rounded to the nearest; a half goes up. The result is rounded the same
// way, once: it is off the exact sum by less than 0.51, and by less than 0.01 where it is taken
// before that (BlurRow).
//
// Only 2 * reach + 1 rows between the passes are held, in a ring, or all of a picture that has
// fewer. Plain data; FreeGaussianRows gives it back, also when it is all zero.
#pragma once

#include <stdint.h>

struct GaussianRows {
    uint32_t reach;
    /// Bytes of colour in a row: 3 * width.
    uint32_t samples;
    uint32_t height;
    /// g(0) to g(reach).
    float* weights;
    /// A row with `reach` pixels more on either side.
    float* padded;
    float* sums;
    /// Row y lies in place y % ringRows.
    uint16_t* ring;
    uint32_t ringRows;
};

/// The reach of a radius in tenths of a pixel.
uint32_t GaussianReach(uint32_t radius);
/// `radius` is sigma in tenths of a pixel, at least 1. False without memory.
bool OpenGaussianRows(GaussianRows* rows, uint32_t width, uint32_t height, uint32_t radius);
void FreeGaussianRows(GaussianRows* rows);
/// Takes row `y` of the picture; rows come in order, from 0.
void TakeRow(GaussianRows* rows, uint32_t y, const uint8_t* row);
/// Blurred row `y` in steps of 1/256, not rounded: `samples` numbers from 0 to 65280, valid until
/// the next call. Once row y + reach (or the last one) was taken and no later row.
const float* BlurRow(GaussianRows* rows, uint32_t y);
/// Writes the same row in whole steps.
void WriteRow(GaussianRows* rows, uint32_t y, uint8_t* row);
