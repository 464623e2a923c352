// Writes the host's picture as a bitmap of 24 bits, from its last line up, a row at a time: a file
// header of 14 bytes, one of 40, and rows filled up to a multiple of four bytes. The resolution is
// 2835 pixels a metre, which are 72 an inch.
#pragma once

#include "standard-plugins/common/writing/Writer.h"

/// None once the whole file stands. Size for a picture of which the file would be longer than its
/// fields of 32 bits can tell.
WriteProblem WriteBmpPicture(const WriteOrder& order);
