// The colour profile of a HEIF picture: its own, or one made of its code points, which stand in the
// boxes or with the coded picture.
#pragma once

#include "standard-plugins/heif-input/HeifLibrary.h"

struct HeifColors {
    /// Null without one.
    uint8_t* profile;
    size_t bytes;
};

/// A profile that is too large or cannot be had is passed over, as ColorConversion does with broken
/// ones.
void ReadHeifColors(HeifColors* colors, const HeifLibrary& library,
                    const heif_image_handle* picture, const heif_image* image);
void FreeHeifColors(HeifColors* colors);
