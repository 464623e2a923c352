// Decoded pixels of 8 bits a sample as the host's: converted to sRGB where the picture has a
// profile, laid over the background where it has alpha, in the order blue, green, red. Plain data;
// zeroed memory is a closed one.
#pragma once

#include "standard-plugins/common/reading/Background.h"
#include "standard-plugins/common/reading/ColorConversion.h"

struct FramePixels {
    ColorConversion colors;
    Background ground;
    /// Grey8, GreyAlpha8, Rgb8 or Rgba8.
    ColorLayout layout;
    /// The colours were multiplied by alpha; GreyAlpha8 and Rgba8 only.
    bool premultiplied;
    uint8_t* scratch;
    uint32_t mostPixels;
};

/// What the pixels are. `profile` may be null; it is copied from, not kept.
struct FrameForm {
    ColorLayout layout;
    bool premultiplied;
    const void* profile;
    size_t profileBytes;
    /// The most that one StoreFramePixels takes.
    uint32_t mostPixels;
};

/// False without memory.
bool OpenFramePixels(FramePixels* pixels, const FrameForm& form, const Background& ground);
/// `count` pixels of `source`, which is not changed, as 3 bytes each at `target`.
void StoreFramePixels(FramePixels* pixels, const uint8_t* source, uint32_t count, uint8_t* target);
void CloseFramePixels(FramePixels* pixels);
