// Gives the lines of the host's picture as rows of red, green and blue bytes, for plugins that
// write or print it. The picture is never changed.
//
// A line is locked, copied into the caller's row and let go again at once, so that no line is
// locked while a codec works, which may leave its call by a jump. Any line may be asked for, any
// number of times, in any order (interlaced formats read the picture in several passes). The host's
// unlock of the last line does nothing and succeeds; that line stays locked until the export has
// returned, which the contract says is right.
//
// Depths: 24 bits as they are; 32 bits without their fourth byte, since the program's pictures
// leave it at whatever was there; 8 bits through the picture's palette, or as grey levels where it
// has none, and black for a value behind the palette's end. 16 bits are refused: nobody has said
// what their bits mean.
//
// Plain data with nothing to give back, so that a jump may pass over it. Worker thread of the
// export only, as the host's tables are.
#pragma once

#include "standard-plugins/common/WriteProblem.h"

#include <stddef.h>

struct PictureReader {
    RasterFunctionTable* rasters;
    TavrixImageHandle image;
    /// At least 1 each once the picture is open.
    uint32_t width;
    uint32_t height;
    /// 8, 24 or 32.
    uint32_t depth;
    /// At 8 bits the colour of each value: red, green, blue.
    uint8_t colors[256][3];
    /// Why OpenPicture or ReadRow failed; None otherwise.
    WriteProblem problem;
};

/// Looks at the picture and copies its palette. `palettes` is needed for a palette alone and may be
/// null otherwise. False with `problem` set: Arguments, Empty, Depth, Memory.
bool OpenPicture(PictureReader* reader, RasterFunctionTable* rasters,
                 PaletteFunctionTable* palettes, TavrixImageHandle image);
/// Bytes of a row: 3 * width.
inline size_t RowBytes(const PictureReader& reader)
{
    return size_t{3} * reader.width;
}
/// Fills `rgb` with line `y`, counted from 0 at the top. False with `problem` Line.
bool ReadRow(PictureReader* reader, uint32_t y, uint8_t* rgb);
/// The same in the host's order, blue first; of a picture of 24 bits alone.
bool ReadHostRow(PictureReader* reader, uint32_t y, uint8_t* bgr);
