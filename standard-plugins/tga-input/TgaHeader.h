// The 18 bytes that begin a Targa file. The format has no mark of its own: a header is taken for
// one when all its fields agree with each other.
#pragma once

#include "standard-plugins/common/rows/RowReading.h"

enum class TgaKind : uint8_t { Mapped, Color, Grey };

struct TgaHeader {
    TgaKind kind;
    bool runLength;
    uint32_t width;
    uint32_t height;
    /// Of a pixel in the file: 8, 15, 16, 24 or 32; grey ones 8 or, with alpha, 16.
    uint32_t bits;
    /// Bytes of text between the header and the colour map.
    uint32_t idBytes;
    /// The colour map in the file, used or not: its first index, its entries and their bits.
    uint32_t mapFirst;
    uint32_t mapEntries;
    uint32_t mapBits;
    /// The attribute bits are alpha: 1 of 16 bits or 8 of 32, 8 of grey with 16.
    bool hasAlpha;
    bool fromTheTop;
    bool fromTheRight;
};

/// False with the reading's `result` set for what is no Targa file or of a kind that is not read:
/// lines in two or four passes, types with other codes.
bool ReadTgaHeader(RowReading* rows, TgaHeader* header);
/// Bytes of a value of `bits`.
inline uint32_t TgaBytes(uint32_t bits)
{
    return (bits + 7) / 8;
}
