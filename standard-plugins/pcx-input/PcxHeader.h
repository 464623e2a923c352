// The 128 bytes that begin a PCX file, with the palette of up to 16 colours in them.
#pragma once

#include "standard-plugins/common/rows/RowReading.h"

struct PcxHeader {
    /// 0, 2, 3, 4 or 5.
    uint32_t version;
    bool runLength;
    uint32_t width;
    uint32_t height;
    /// Bits of a sample in a plane, and planes: 1 x 1..4, 2 x 1, 4 x 1, 8 x 1, 8 x 3, 8 x 4.
    uint32_t bits;
    uint32_t planes;
    /// Bytes of a plane's row, filling included.
    uint32_t planeBytes;
    /// The file says that its colours are grey levels.
    bool grey;
    /// Blue, green, red of each entry of pictures with up to 16 colours.
    uint8_t colors[16][3];
};

/// False with the reading's `result` set for what is no PCX file, and for planes that cannot hold
/// a row.
bool ReadPcxHeader(RowReading* rows, PcxHeader* header);
