#include "pixel/Rows.h"

#include "pixel/PlainRows.h"
#include "pixel/RowKernels.h"

#include <string.h>

void StoreRow24(u8* pixels, size_t count, const ColorBytes& color)
{
    Kernels().storeRow24(pixels, count, color);
}

void StoreRow32(u8* pixels, size_t count, const ColorBytes& color)
{
    const u8 bytes[4] = {color.alpha, color.red, color.green, color.blue};
    for (size_t i = 0; i < count; ++i, pixels += 4)
        memcpy(pixels, bytes, sizeof(bytes));
}

void BlendRow24(u8* pixels, size_t count, const ColorBlend& blend)
{
    Kernels().blendRow24(pixels, count, blend);
}

void InvertRow24(u8* pixels, size_t count)
{
    Kernels().invertRow24(pixels, count);
}

void InvertRow32(u8* pixels, size_t count)
{
    for (size_t i = 0; i < count; ++i, pixels += 4) {
        pixels[1] = static_cast<u8>(255 - pixels[1]);
        pixels[2] = static_cast<u8>(255 - pixels[2]);
        pixels[3] = static_cast<u8>(255 - pixels[3]);
    }
}

void BlendMaskRows24(u8* const* pixels, const u8* const* masks, size_t rows, size_t count,
                     const ColorBytes& color)
{
    bool apart = true;
    for (size_t i = 0; i < rows; ++i)
        apart &= !Overlap(pixels[i], 3 * count, masks[i], count);
    (apart ? Kernels().blendMaskRows24 : plain::BlendMaskRows24)(pixels, masks, rows, count, color);
}

void BlendMaskRow32(u8* pixels, const u8* mask, size_t count, const ColorBytes& color)
{
    plain::BlendMaskRow32(pixels, mask, count, color);
}

void ReverseRow24(u8* pixels, size_t count)
{
    Kernels().reverseRow24(pixels, count);
}

void CopyRow24(u8* target, const u8* source, size_t count)
{
    memmove(target, source, 3 * count);
}

void CopyBytes(u8* target, const u8* source, size_t count)
{
    memmove(target, source, count);
}

void CopyColors(u8* target, u32 targetStep, const u8* source, u32 step, size_t count)
{
    for (size_t i = 0; i < count; ++i, target += targetStep, source += step) {
        target[0] = source[0];
        target[1] = source[1];
        target[2] = source[2];
    }
}

void CopyMaskedRow24(u8* target, const u8* source, const u8* mask, size_t count)
{
    if (Overlap(target, 3 * count, source, 3 * count) || Overlap(target, 3 * count, mask, count))
        plain::CopyMaskedRow24(target, source, mask, count);
    else
        Kernels().copyMaskedRow24(target, source, mask, count);
}

void CompositeRow24(u8* target, const u8* source, size_t count)
{
    if (Overlap(target, 3 * count, source, 4 * count))
        plain::CompositeRow24(target, source, count);
    else
        Kernels().compositeRow24(target, source, count);
}

void CompositeRow32(u8* target, const u8* source, size_t count)
{
    plain::CompositeRow32(target, source, count);
}
