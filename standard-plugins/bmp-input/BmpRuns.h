// The run-length forms of bitmap files, of 4, 8 and 24 bits a pixel. Each code is two bytes:
//
//     n v       n pixels of the value v; of 4 bits its two halves in turn; of 24 bits v is blue,
//               and green and red follow
//     0 0       the end of the row        0 1      the end of the picture
//     0 2 x y   x pixels on and y rows up
//     0 n       n (3 or more) pixels follow as they are, filled up to an even count of bytes
//
// Some programs code the filling of their rows to a multiple of four bytes too: so many pixels
// behind a row's end are passed over.
//
// Skipped pixels are not in the data, so that a few bytes could ask for a picture of gigabytes:
// beyond 64 million pixels in rows that got none, the file is refused.
#pragma once

#include "standard-plugins/common/dib/DibPixels.h"
#include "standard-plugins/common/rows/RowReading.h"

/// Reads from the first code to the end mark. False with the reading's `result` set; data that
/// reach further over a row's end set `damaged` and go on.
bool ReadBmpRuns(RowReading* rows, uint32_t bits, DibPixels* pixels);
