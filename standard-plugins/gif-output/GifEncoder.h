// Writes the host's picture as a GIF of one image, with a palette of its own. The picture is read
// once to find the palette, and once to write it, a row at a time; no picture is held beside the
// host's. A picture of no more colours than were chosen is written without loss.
//
// An interlaced file has its rows in four passes: every eighth from the first and from the fifth,
// every fourth from the third, and every second from the second (GIF89a specification, appendix E).
// Its rows are read anew for each pass; with diffusion all of them from the top, since each one
// depends on those above it.
#pragma once

#include "standard-plugins/common/writing/Writer.h"

/// What was chosen.
struct GifChoice {
    /// 2 to 256; the file's palette has the next power of two, filled up with black.
    uint32_t colors;
    bool diffuses;
    bool interlaced;
};

/// None once the whole file stands. Otherwise nothing is left of what was begun, and a file of that
/// name is as it was.
WriteOutcome WriteGifPicture(const WriteOrder& order, const GifChoice& choice);
