// Writes the host's picture as a PNG of true colour, 8 bits a channel, a row at a time: no picture
// is held beside the host's. An interlaced file is written in seven passes, for each of which the
// lines that it needs are read anew.
#pragma once

#include "standard-plugins/common/writing/Writer.h"

/// What was chosen.
struct PngChoice {
    /// 0 to 9, as the compressor counts.
    uint32_t compression;
    bool interlaced;
};

/// None once the whole file stands. Otherwise nothing is left of what was begun, and a file of that
/// name is as it was.
WriteProblem WritePngPicture(const WriteOrder& order, const PngChoice& choice);
