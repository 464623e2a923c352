// Writes the host's picture as a TIFF of true colour, 8 bits a channel, a strip of about 64 KB at a
// time: no picture is held beside the host's. The library comes back to the file's first bytes when
// it knows where the directory lies, so that a stream is refused. A picture that could grow beyond
// 4 GB becomes a BigTIFF.
#pragma once

#include "standard-plugins/common/writing/Writer.h"

/// The numbers are stored in the settings.
enum class TiffCompression : uint32_t { None, PackBits, Lzw, Deflate };

/// What was chosen.
struct TiffChoice {
    TiffCompression compression;
    /// LZW and Deflate get the differences of neighbouring pixels; of no meaning to the others.
    bool predictor;
};

/// None once the whole file stands. Otherwise nothing is left of what was begun, and a file of that
/// name is as it was.
WriteOutcome WriteTiffPicture(const WriteOrder& order, const TiffChoice& choice);
