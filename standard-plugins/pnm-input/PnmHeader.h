// The header of a portable anymap, and the numbers of its plain forms.
#pragma once

#include "standard-plugins/common/rows/RowReading.h"

struct PnmHeader {
    uint32_t width;
    uint32_t height;
    /// Samples are decimal numbers.
    bool plain;
    /// One bit a sample, 1 being black: P1 and P4.
    bool bits;
    /// Samples a pixel, 1 to 4; of 2 and 4 the last is alpha.
    uint32_t samples;
    /// 1 to 65535.
    uint32_t highest;
};

/// Reads up to the first sample. False with the reading's `result` set.
bool ReadPnmHeader(RowReading* rows, PnmHeader* header);
/// The next decimal number behind white space and comments, and the one character behind it. False
/// where there is none, and for a number beyond 65,535.
bool ReadPnmNumber(RowReading* rows, uint32_t* number);
/// The next 0 or 1 of a plain bitmap, which needs nothing between two of them.
bool ReadPnmBit(RowReading* rows, uint32_t* bit);
