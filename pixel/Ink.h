// A colour made ready to be laid on rows of one depth, 24 or 32 bits, as filling and framing do:
// stored where it is opaque, blended by its alpha elsewhere, and always stored at 32 bits.
#pragma once

#include "pixel/Rows.h"

struct Ink {
    ColorBytes color;
    ColorBlend blend;
    u32 depth;
};

inline Ink InkOf(u32 color, u32 depth)
{
    const ColorBytes bytes = BytesOf(color);
    return {bytes, BlendOf(bytes), depth};
}

inline void DrawInk(const Ink& ink, u8* row, i32 x, size_t count)
{
    u8* const pixels = row + size_t{StepOf(ink.depth)} * static_cast<u32>(x);
    if (ink.depth == 32)
        StoreRow32(pixels, count, ink.color);
    else if (ink.color.alpha == 255)
        StoreRow24(pixels, count, ink.color);
    else
        BlendRow24(pixels, count, ink.blend);
}
