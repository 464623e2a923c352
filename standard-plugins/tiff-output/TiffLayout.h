// How a TIFF's rows are cut into strips, and which kind of file holds them. (TIFF revision 6.0,
// section "RowsPerStrip"; the offsets of a BigTIFF have 64 bits in place of 32.)
#pragma once

#include <stdint.h>

/// Rows of a strip of about 64 KB; at least one.
uint32_t RowsPerStrip(uint32_t width);
/// Whether the file could grow beyond what offsets of 32 bits reach. Compressed pixels are reckoned
/// at half as much again as they are, LZW's worst case: codes of 12 bits for each byte.
bool NeedsBigTiff(uint32_t width, uint32_t height, bool compresses);
