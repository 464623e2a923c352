// The header of a device-independent bitmap and its palette, as they lie in bitmap files and in
// icons: the forms that Windows and OS/2 have had, told apart by their length.
//
//     12               OS/2 1.x: sides of 16 bits, a palette of three bytes an entry
//     16 .. 64         OS/2 2.x, of any length: what is cut off counts as 0
//     40, 52, 56       Windows 3; with the masks of three and of four channels
//     108, 124         Windows 95 and 98
//
// What lies behind the pixels, such as a colour profile, cannot be had by forward reading and is
// not looked at; nor are gamma and end points.
#pragma once

#include "standard-plugins/common/dib/DibPixels.h"
#include "standard-plugins/common/rows/RowReading.h"

enum class DibCompression : uint8_t { None, Fields, Rle4, Rle8, Rle24 };

struct DibHeader {
    /// Bytes of the header as it says itself, without masks that follow it.
    uint32_t size;
    uint32_t width;
    uint32_t height;
    bool topDown;
    uint32_t planes;
    /// 1, 2, 4, 8, 16, 24 or 32.
    uint32_t bits;
    DibCompression compression;
    /// Bytes of a palette entry, and how many entries the file says that it has.
    uint32_t entryBytes;
    uint32_t entries;
    /// Red, green, blue and alpha; for 16 and 32 bits. Without alpha the last is 0.
    uint32_t masks[4];
};

/// Reads a header with the masks behind it. False with the reading's `result` set for forms that
/// are not known or not read: compressed by PNG, JPEG or Huffman codes, a height of -2^31, masks
/// with gaps, palettes of more than 65,536 entries. The sides may be anything else.
bool ReadDibHeader(RowReading* rows, DibHeader* header);
/// Entries of the palette that the file holds; 0 without one.
uint32_t DibEntriesInFile(const DibHeader& header);
/// Reads `count` entries into the colours of `pixels`, those beyond what `bits` can tell apart only
/// to pass over them.
bool ReadDibPalette(RowReading* rows, const DibHeader& header, uint32_t count, DibPixels* pixels);
