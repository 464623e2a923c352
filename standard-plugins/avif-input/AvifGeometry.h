// Which part of the decoded frame is the picture, and how it is turned (ISO/IEC 23000-22, 7.3.6.7:
// first cut out, then turned, then mirrored).
#pragma once

#include "standard-plugins/avif-input/AvifLibrary.h"

struct AvifGeometry {
    /// Of the frame.
    avifCropRect part;
    /// As in ExifOrientation.h.
    uint32_t orientation;
};

/// A clean aperture that the standard does not allow is passed over. False where the picture has no
/// size that the host takes.
bool FindAvifGeometry(const AvifLibrary& library, const avifImage& image, AvifGeometry* geometry);
