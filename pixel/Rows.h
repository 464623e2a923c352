// The inner loops of the operations on pixels: plain functions on one row, without state. Each
// takes the address of its first pixel and a count of pixels, and touches nothing outside them.
//
// Rows of one call may overlap or be one and the same, where a raster is its own source, target or
// mask. Except for CopyRow24 and CopyBytes, which move what the source held before the call, the
// pixels are then worked from left to right, each with what the ones before it have left.
#pragma once

#include <stddef.h>

#include "foundation/Types.h"

/// A colour word's bytes.
struct ColorBytes {
    u8 blue;
    u8 green;
    u8 red;
    u8 alpha;
};

/// What blending one colour over a row needs. The weights of colour and picture make 256.
struct ColorBlend {
    u32 added[3]; // the colour's weight times its blue, green and red
    u32 kept;     // the picture's weight
};

inline ColorBytes BytesOf(u32 color)
{
    return {static_cast<u8>(color >> 8), static_cast<u8>(color >> 16), static_cast<u8>(color >> 24),
            static_cast<u8>(color)};
}

inline u32 WeightOf(const ColorBytes& color)
{
    return u32{color.alpha} + 1;
}

inline ColorBlend BlendOf(const ColorBytes& color)
{
    const u32 weight = WeightOf(color);
    return {{weight * color.blue, weight * color.green, weight * color.red}, 256 - weight};
}

/// Whether pixels of this depth have a blue, a green and a red byte.
inline bool HasColor(u32 depth)
{
    return depth == 24 || depth == 32;
}

/// Bytes from pixel to pixel; any depth but 24 is walked in steps of 4.
inline u32 StepOf(u32 depth)
{
    return depth == 24 ? 3 : 4;
}

void StoreRow24(u8* pixels, size_t count, const ColorBytes& color);
/// Meant: alpha comes first and the colours after it from red on, the reverse of a pixel's usual
/// order. Filling, framing and inverting agree in it; reading and setting a pixel do not.
void StoreRow32(u8* pixels, size_t count, const ColorBytes& color);
/// (added + kept * old) >> 8.
void BlendRow24(u8* pixels, size_t count, const ColorBlend& blend);

/// 255 - byte.
void InvertRow24(u8* pixels, size_t count);
/// The same, but byte 0 of each pixel stays.
void InvertRow32(u8* pixels, size_t count);

/// With m the mask's byte and w = m * (alpha + 1): ((0x10000 - w) * old + w * color) >> 16. Meant:
/// 16 bits of weight, not 8, so that the faint rim of a soft stamp still counts. `rows` rows one
/// after the other, each with its mask's.
void BlendMaskRows24(u8* const* pixels, const u8* const* masks, size_t rows, size_t count,
                     const ColorBytes& color);
/// The same of one row; byte 3 stays.
void BlendMaskRow32(u8* pixels, const u8* mask, size_t count, const ColorBytes& color);

/// Exchanges the pixels end for end.
void ReverseRow24(u8* pixels, size_t count);

void CopyRow24(u8* target, const u8* source, size_t count);
void CopyBytes(u8* target, const u8* source, size_t count);
/// Bytes 0 to 2 of pixels that lie `targetStep` and `step` bytes apart.
void CopyColors(u8* target, u32 targetStep, const u8* source, u32 step, size_t count);

/// With m the mask's byte: (old * (255 - m) + source * (m + 1)) >> 8. Meant: m = 0 is not quite
/// nothing.
void CopyMaskedRow24(u8* target, const u8* source, const u8* mask, size_t count);

/// A row of 32 bits over one of 24, with s the source's byte 3:
/// ((s + 1) * source + (255 - s) * old) >> 8.
void CompositeRow24(u8* target, const u8* source, size_t count);
/// The same over one of 32, whose byte 3 stays.
void CompositeRow32(u8* target, const u8* source, size_t count);
