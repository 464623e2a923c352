// Reads a PCX file from a stream into the host's picture, a row at a time.
//
// - Runs may reach over the ends of planes and rows, but not over the last row's: then the result
// is
//   negative.
// - 256 colours lie behind the pixels, in the last 769 bytes of the file. Such a file goes through
// a
//   temporary one; all others are read forward. Without these colours the numbers are shown as grey
//   levels, and the result is negative unless the header says that they are.
// - Three planes are red, green and blue, a fourth is alpha over the ground (Background.h).
#pragma once

#include "standard-plugins/common/reading/Background.h"
#include "standard-plugins/common/reading/Reader.h"

extern const BackgroundSettings pcxBackground;

int32_t ReadPcxPicture(const ReadOrder& order);
int32_t ReadPcxSize(PluginStreamRecord* stream, uint32_t* width, uint32_t* height);
