// In what colours the library gives its pixels.
#pragma once

#include "standard-plugins/jxl-input/JxlLibrary.h"

struct JxlColors {
    /// The profile of the pixels as they come; null without one.
    uint8_t* profile;
    size_t bytes;
};

/// Asks the decoder for sRGB, which it gives only where the file's colours are its own, and then
/// what it will give. Called when the decoder knows the file's colours.
void ChooseJxlColors(JxlColors* colors, const JxlLibrary& library, JxlDecoder* decoder,
                     const JxlBasicInfo& info);
void FreeJxlColors(JxlColors* colors);
