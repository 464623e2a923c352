// Reads a Targa file from a stream into the host's picture, a row at a time: types 1, 2, 3 and,
// run-length coded, 9, 10, 11, from each of the four corners. Runs may reach over the ends of rows,
// but not over the picture's: then the result is negative.
//
// 5 bits of a channel become 8 by (255 * v + 15) div 31. Alpha counts where the header tells of
// attribute bits, and lies over the ground (Background.h). A number outside the colour map gives
// black, and a negative result. What follows the pixels, such as the footer of newer files, is not
// looked at.
#pragma once

#include "standard-plugins/common/reading/Background.h"
#include "standard-plugins/common/reading/Reader.h"

extern const BackgroundSettings tgaBackground;

int32_t ReadTgaPicture(const ReadOrder& order);
int32_t ReadTgaSize(PluginStreamRecord* stream, uint32_t* width, uint32_t* height);
