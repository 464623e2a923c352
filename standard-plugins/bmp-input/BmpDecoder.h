// Reads a bitmap file from a stream into the host's picture, a row at a time.
//
// - Headers, palettes and masks as DibHeader.h tells; a first picture in an OS/2 array of them.
// - Rows come from the last line up, unless the height is negative. Neither the length that the
// file
//   claims nor the bytes behind the pixels are looked at. Of the last row its filling has to be
//   there too.
// - A palette that does not reach the pixels' numbers is filled up with black, and a pixel that
//   takes such an entry makes the result negative though all rows are there.
// - Pixels that run-length data skip have the palette's colour 0; without a palette, black. Data
//   that end before the end mark are broken off.
// - Alpha counts where its mask is in the file, and not in plain pixels of 32 bits.
#pragma once

#include "standard-plugins/common/reading/Background.h"
#include "standard-plugins/common/reading/Reader.h"

extern const BackgroundSettings bmpBackground;

int32_t ReadBmpPicture(const ReadOrder& order);
int32_t ReadBmpSize(PluginStreamRecord* stream, uint32_t* width, uint32_t* height);
