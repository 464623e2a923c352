// The host's picture filled from rows that lie in the file as the camera was held: each row that is
// put goes where the orientation (ExifOrientation.h) wants it. Rows come in order, from 0.
//
// Orientations 1 and 2 go line by line. 3 and 4 fill the picture from its end, and so make the host
// allocate all of it with the first row. 5 to 8 gather `blockRows` rows and then write that many
// pixels of every line at once: a line is locked once a block and not once a pixel. Nothing but
// these rows is held.
//
// Plain data, so that a codec's jump may pass over it; zeroed memory is a closed one.
#pragma once

#include "standard-plugins/common/LineWriter.h"

struct OrientedLines {
    LineWriter* lines;
    /// Of the rows that are put.
    uint32_t width;
    uint32_t height;
    uint32_t orientation;
    /// Gathered rows, how many, and all that were put; 5 to 8 only.
    uint8_t* block;
    uint32_t gathered;
    uint32_t rowsDone;
};

constexpr uint32_t blockRows = 64;

/// `lines` was opened; its size is set here. `width` and `height` passed IsPictureSize; orientation
/// 1 to 8. False without memory.
bool OpenOrientedLines(OrientedLines* oriented, LineWriter* lines, uint32_t width, uint32_t height,
                       uint32_t orientation);
/// Row `y` as `width` pixels of blue, green, red. False with `lines->result` set.
bool PutOrientedRow(OrientedLines* oriented, uint32_t y, const uint8_t* row);
/// Writes what is still gathered, behind the last row or where a broken file ends. False with
/// `lines->result` set.
bool FinishOrientedLines(OrientedLines* oriented);
void CloseOrientedLines(OrientedLines* oriented);
