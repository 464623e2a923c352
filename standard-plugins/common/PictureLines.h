// The lines of a picture that a plugin changes in place or makes anew: 24 bits a pixel, blue, green
// and red. Only such pictures are shown, so that other depths are refused.
//
// A line is locked, read or written, and let go at once; that is all that a picture whose lines lie
// in files needs. The host's unlock of the last line does nothing and succeeds; that line stays
// locked until the export has returned, which the contract says is right.
//
// Plain data with nothing to give back. Worker thread of the export only, as the host's table is.
#pragma once

#include "standard-plugins/common/WriteProblem.h"

struct PictureLines {
    RasterFunctionTable* rasters;
    TavrixImageHandle image;
    /// At least 1 each once the picture is open.
    uint32_t width;
    uint32_t height;
    /// The line that was locked last; at most one is at a time.
    const void* held;
    /// Why an operation failed; None otherwise.
    WriteProblem problem;
};

/// Looks at the picture. False with `problem` set: Arguments, Empty, TrueColor.
bool OpenPictureLines(PictureLines* lines, RasterFunctionTable* rasters, TavrixImageHandle image);
/// The bytes of line `y`, counted from 0 at the top; null with `problem` Line.
uint8_t* LockPictureLine(PictureLines* lines, uint32_t y);
/// False with `problem` Line when the host could not keep the line.
bool UnlockPictureLine(PictureLines* lines, uint32_t y);
