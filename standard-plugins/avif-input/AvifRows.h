// The decoded frame as rows of the host's picture, some at a time. Colour samples of half height
// are read between rows, so each run of rows is converted with two more on either side: the result
// is the same as if the frame were converted at one stroke.
#pragma once

#include "standard-plugins/avif-input/AvifGeometry.h"
#include "standard-plugins/common/frames/FramePixels.h"
#include "standard-plugins/common/frames/FrameProgress.h"
#include "standard-plugins/common/reading/OrientedLines.h"

/// All zero is a closed one.
struct AvifRows {
    const AvifLibrary* library;
    const avifImage* frame;
    AvifGeometry geometry;
    avifImage* view;
    avifRGBImage slice;
    FramePixels pixels;
    OrientedLines oriented;
    /// A row in the host's order of colours.
    uint8_t* row;
};

/// The frame is decoded and stays until the rows are closed. PluginDone or a negative result; right
/// to close after either.
int32_t OpenAvifRows(AvifRows* rows, const AvifLibrary& library, const avifImage& frame,
                     const Background& ground, LineWriter* lines);
/// Puts those of the first `count` rows of the frame that belong to the picture. PluginDone or a
/// negative result.
int32_t PutAvifRows(AvifRows* rows, uint32_t count, FrameProgress* progress);
void CloseAvifRows(AvifRows* rows);
