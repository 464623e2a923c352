// The different colours of a picture, as long as they are few: a picture of no more colours than a
// palette holds needs no reduction.
#pragma once

#include "standard-plugins/common/reducing/ReducedPalette.h"

constexpr uint32_t distinctSlots = 1024;

/// Zeroed memory has seen no colour. Open addressing; at most a quarter of the slots is taken.
struct DistinctColors {
    /// In the order in which they came; complete unless `tooMany`.
    ReducedPalette colors;
    /// More than mostReducedColors came.
    bool tooMany;
    /// 0, or the colour's number in `colors` from 1 on.
    uint16_t slots[distinctSlots];
};

/// `rgb` is a row of `width` pixels of red, green and blue.
void NoteColors(DistinctColors* distinct, const uint8_t* rgb, uint32_t width);
