// The entry of a palette that is nearest to a colour: the smallest sum of squared differences of
// red, green and blue; of several the first.
//
// The colours lie in cells of 16 levels a side. Of a cell, once a colour of it is asked for, the
// entries are noted that can be nearest to any of its colours: those whose distance from the
// nearest corner of the cell is not beyond the smallest distance that any entry has from its
// farthest one. (P. Heckbert, Color Image Quantization for Frame Buffer Display, SIGGRAPH 1982,
// names such a search; the bounds are ours.) The answer is exact.
#pragma once

#include "standard-plugins/common/reducing/ReducedPalette.h"

constexpr uint32_t matcherCells = 16 * 16 * 16;
constexpr uint32_t mostCandidates = 63;

/// 260 KB. Plain data, without pointers.
struct PaletteMatcher {
    ReducedPalette palette;
    /// 0 for a cell that nobody asked for yet; more than mostCandidates for one that has too many
    /// and where all entries are looked at.
    uint8_t counts[matcherCells];
    /// The entries' numbers, rising.
    uint8_t candidates[matcherCells][mostCandidates];
};

/// The palette has at least one entry.
void PrepareMatcher(PaletteMatcher* matcher, const ReducedPalette& palette);
/// The entry's number in the palette. `rgb` is red, green, blue.
uint8_t NearestEntry(PaletteMatcher* matcher, const uint8_t* rgb);
