// The directory of an icon or cursor file, and which of its pictures is the one to show: the one of
// the largest area, among equals the one of the most bits a pixel, among equals the first. What a
// picture says itself counts; the directory's own sizes are often wrong and have only a byte.
#pragma once

#include "standard-plugins/common/device/TemporaryFile.h"
#include "standard-plugins/common/rows/RowReading.h"

struct IcoPicture {
    /// Where it begins in the temporary file.
    uint64_t offset;
    bool isPng;
    uint32_t width;
    uint32_t height;
    /// Bits a pixel.
    uint32_t bits;
};

struct IcoDirectory {
    /// 1 to 65535.
    uint32_t count;
    /// A picture's header lies beyond the file's end, or the picture reaches over it.
    bool broken;
    IcoPicture best;
};

/// Reads the mark alone, six bytes. False with the reading's `result` set for another file.
bool ReadIcoMark(RowReading* rows, IcoDirectory* directory);
/// Looks at every picture. `file` holds what follows the mark. False where none can be read.
bool FindBestPicture(TemporaryFile* file, IcoDirectory* directory);
