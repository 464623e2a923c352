// What the first bytes of a WebP's picture data say (VP8: RFC 6386, 9.1; VP8L: the lossless
// bitstream's specification, 3).
#pragma once

#include <stddef.h>
#include <stdint.h>

constexpr size_t bitstreamStart = 10;

struct WebpBitstream {
    uint32_t width;
    uint32_t height;
    bool lossless;
    /// Of lossless data alone: lossy data have their alpha in a chunk of its own.
    bool hasAlpha;
};

/// `bytes` are the first `bitstreamStart` of `chunkBytes`. False where they begin no picture, and
/// where a lossy picture has more macroblocks than its data could hold: each takes more than two
/// bits, since the fixed probabilities of its modes (RFC 6386, 11.2) allow no fewer.
bool ReadBitstreamStart(const uint8_t* bytes, uint64_t chunkBytes, bool lossless,
                        WebpBitstream* bitstream);
