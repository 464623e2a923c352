// Writes the host's picture as a WebP, with loss or without. The codec's library takes a picture as
// a whole: its rows are put into the library's own memory one by one, four bytes a pixel, so that
// there is one copy beside the host's picture. What the encoder takes beyond it depends on the
// form; the whole is reckoned before and refused above a limit (WebPMemoryNeeded).
#pragma once

#include "standard-plugins/common/writing/Writer.h"

/// What was chosen.
struct WebPChoice {
    bool lossless;
    /// 0 to 100, the library's scale; of no meaning without loss.
    uint32_t quality;
    /// 0 to 6: time for a smaller file.
    uint32_t effort;
    /// The most that the picture and its encoder may take.
    uint32_t megabytes;
};

/// None once the whole file stands. Otherwise nothing is left of what was begun, and a file of that
/// name is as it was.
WriteOutcome WriteWebPPicture(const WriteOrder& order, const WebPChoice& choice);
