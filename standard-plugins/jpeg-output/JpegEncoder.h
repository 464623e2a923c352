// Writes the host's picture as a JPEG of colour, a row at a time. A baseline file leaves the
// encoder as its rows come. A progressive one is made from the coefficients of the whole picture,
// which the encoder holds meanwhile; what they take is computed before and refused above a limit:
// 512 MB, or the number of megabytes under `JpegOutputMemory` in the settings.
#pragma once

#include "standard-plugins/common/writing/Writer.h"

/// How many pixels share a colour. The numbers are stored in the settings.
enum class ChromaSampling : uint32_t {
    Automatic, // every pixel has its own from quality 90 on, every four share one below
    Every444,
    Two422,
    Four420
};

/// What was chosen.
struct JpegChoice {
    /// 1 to 100, the codec library's scale.
    uint32_t quality;
    ChromaSampling sampling;
    bool progressive;
    /// The most that a progressive file's coefficients may take.
    uint32_t megabytes;
};

/// None once the whole file stands. Otherwise nothing is left of what was begun, and a file of that
/// name is as it was.
WriteOutcome WriteJpegPicture(const WriteOrder& order, const JpegChoice& choice);
