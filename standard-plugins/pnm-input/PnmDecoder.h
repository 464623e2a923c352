// Reads a portable anymap from a stream into the host's picture, a row at a time: P1 to P6 and P7.
//
// - A sample of 0 to maxval becomes (255 * s + maxval div 2) div maxval (RowReading.h). With alpha
// a,
//   over the ground g, in one rounding with m for maxval:
//
//       (255 * a * s + (m - a) * m * g + m * m div 2) div (m * m)
//
// - P7 has one to four samples a pixel; its TUPLTYPE is BLACKANDWHITE, GRAYSCALE or RGB, each also
//   with _ALPHA behind it. Where it is missing the count of samples decides.
// - A comment may stand anywhere in the header, and between the samples of a plain form. The one
//   that begins directly behind the header's last number ends with the header.
// - A sample beyond maxval ends the reading. What follows the first picture is not looked at.
#pragma once

#include "standard-plugins/common/reading/Background.h"
#include "standard-plugins/common/reading/Reader.h"

extern const BackgroundSettings pnmBackground;

int32_t ReadPnmPicture(const ReadOrder& order);
int32_t ReadPnmSize(PluginStreamRecord* stream, uint32_t* width, uint32_t* height);
