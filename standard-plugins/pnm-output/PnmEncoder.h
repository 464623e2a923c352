// Writes the host's picture as a portable pixmap of 8 bits a sample, a row at a time: P6, or P3
// with samples as decimal numbers, five pixels a line of text, which is below the format's 70
// characters.
#pragma once

#include "standard-plugins/common/writing/Writer.h"

/// None once the whole file stands.
WriteProblem WritePnmPicture(const WriteOrder& order, bool plain);
