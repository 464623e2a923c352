// Text on its way from a bitmap of ink to a row of pixels: the bitmap is eight times as large as
// the raster each way and holds 1 bit a pixel, a set bit being ink, so that a byte of each of 8
// rows is what covers one pixel. Plain functions, without state.
#pragma once

#include "pixel/Rows.h"

/// Rows and columns of the bitmap for each of the raster's.
inline constexpr u32 TextScale = 8;

/// The share of ink in a block, 0 to 64: the bits that are set in 8 bytes, `rowBytes` apart.
u32 TextCoverage(const u8* bits, size_t rowBytes);

/// With n the coverage of each pixel and w = n * (alpha + 1): ((16384 - w) * old + w * color)
/// >> 14. A pixel without ink stays as it is. `bits` is the first pixel's byte in the first of its
/// 8 rows.
void BlendTextRow(u8* pixels, const u8* bits, size_t rowBytes, size_t count,
                  const ColorBytes& color);
