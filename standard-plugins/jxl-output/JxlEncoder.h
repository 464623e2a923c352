// Writes the host's picture as a JPEG XL codestream, with loss or without. The codec's library
// takes a frame as a whole: the rows are put together, three bytes a pixel, until it has made its
// own numbers of them. What it takes is reckoned before and refused above a limit
// (JxlMemoryNeeded); it cannot be held to one itself, since what it does without memory is to end
// the program.
//
// The library works in this thread alone. It hands the pieces of its work to a runner of ours,
// which so tells the progress and hears a refusal. Without loss the work then ends at its next
// turn; with loss only when the frame is done, since the library ends the program where some of its
// pieces fail.
#pragma once

#include "standard-plugins/common/writing/Writer.h"

/// What was chosen.
struct JxlChoice {
    bool lossless;
    /// 1 to 100; of no meaning without loss. The library's distance is (100 - quality) / 10 and 0.1
    /// at least: 90 is 1, where a difference is just about to be seen.
    uint32_t quality;
    /// 1 to 9: time for a smaller file.
    uint32_t effort;
    /// The most that the encoder may take.
    uint32_t megabytes;
};

/// None once the whole file stands. Otherwise nothing is left of what was begun, and a file of that
/// name is as it was.
WriteOutcome WriteJxlPicture(const WriteOrder& order, const JxlChoice& choice);
