// Follows the codes of a GIF's picture data beside the library and counts the pixels that they
// stand for (T. A. Welch, A Technique for High-Performance Data Compression, 1984, with the
// variable widths and the clear code of GIF89a, appendix F). The library takes a code that nothing
// defines for some colour; here it is the end of what can be believed. The entries' lengths are all
// that is kept.
#pragma once

#include <stddef.h>
#include <stdint.h>

struct GifCodeCheck {
    /// Pixels that each code stands for.
    uint16_t lengths[4096];
    uint32_t clearCode;
    uint32_t startBits;
    /// Bits of the next code, and the code that is defined next.
    uint32_t bits;
    uint32_t next;
    /// Pixels of the code before; 0 behind a clear.
    uint32_t previous;
    /// Bits that make no whole code yet.
    uint32_t held;
    uint32_t heldBits;
    /// Pixels of all sound codes.
    uint64_t pixels;
    /// At the end code, or at a code that means nothing.
    bool ended;
};

/// `codeSize` as in the file, 1 to 8.
void StartCodeCheck(GifCodeCheck* check, uint32_t codeSize);
/// The next bytes of the data, without the lengths of their blocks.
void CheckCodes(GifCodeCheck* check, const uint8_t* bytes, size_t count);
