#include "standard-plugins/common/frames/FramePixels.h"

#include <stdlib.h>

namespace
{

bool HasAlpha(ColorLayout layout)
{
    return layout == ColorLayout::GreyAlpha8 || layout == ColorLayout::Rgba8;
}

uint32_t ColorSamples(ColorLayout layout)
{
    return layout == ColorLayout::Grey8 || layout == ColorLayout::GreyAlpha8 ? 1 : 3;
}

uint32_t SamplesOf(ColorLayout layout)
{
    return ColorSamples(layout) + (HasAlpha(layout) ? 1 : 0);
}

// To the nearest, c * 255 / a; broken files have colours beyond their alpha.
void DivideByAlpha(const uint8_t* source, uint8_t* target, uint32_t count, uint32_t samples)
{
    for (uint32_t i = 0; i < count; ++i, source += samples, target += samples) {
        const uint32_t alpha = source[samples - 1];
        for (uint32_t k = 0; k + 1 < samples; ++k) {
            const uint32_t color = alpha ? (source[k] * 255u + alpha / 2) / alpha : 0;
            target[k] = static_cast<uint8_t>(color < 255 ? color : 255);
        }
        target[samples - 1] = static_cast<uint8_t>(alpha);
    }
}

void StoreOpaque(const uint8_t* source, uint32_t count, uint32_t samples, uint8_t* target)
{
    const uint32_t last = samples - 1;
    for (uint32_t i = 0; i < count; ++i, source += samples, target += 3) {
        target[0] = source[last];
        target[1] = source[last / 2];
        target[2] = source[0];
    }
}

void StoreOverGround(const Background& ground, const uint8_t* source, uint32_t count,
                     uint32_t samples, uint8_t* target)
{
    const uint32_t last = samples - 2;
    for (uint32_t i = 0; i < count; ++i, source += samples, target += 3) {
        const uint32_t alpha = source[samples - 1];
        target[0] = OverGround8(source[last], alpha, ground.blue);
        target[1] = OverGround8(source[last / 2], alpha, ground.green);
        target[2] = OverGround8(source[0], alpha, ground.red);
    }
}

} // namespace

bool OpenFramePixels(FramePixels* pixels, const FrameForm& form, const Background& ground)
{
    *pixels = {};
    pixels->layout = form.layout;
    pixels->premultiplied = form.premultiplied && HasAlpha(form.layout);
    pixels->mostPixels = form.mostPixels;
    pixels->ground = ground;
    (void)OpenColorConversion(&pixels->colors, form.profile, form.profileBytes, form.layout);
    if (!ConvertsColors(pixels->colors) && !pixels->premultiplied)
        return true;
    pixels->scratch =
        static_cast<uint8_t*>(malloc(size_t{SamplesOf(form.layout)} * form.mostPixels));
    return pixels->scratch != nullptr;
}

void StoreFramePixels(FramePixels* pixels, const uint8_t* source, uint32_t count, uint8_t* target)
{
    const uint32_t samples = SamplesOf(pixels->layout);
    if (pixels->premultiplied) {
        DivideByAlpha(source, pixels->scratch, count, samples);
        source = pixels->scratch;
    }
    if (ConvertsColors(pixels->colors)) {
        ConvertColors(pixels->colors, source, pixels->scratch, count);
        source = pixels->scratch;
    }
    if (HasAlpha(pixels->layout))
        StoreOverGround(pixels->ground, source, count, samples, target);
    else
        StoreOpaque(source, count, samples, target);
}

void CloseFramePixels(FramePixels* pixels)
{
    CloseColorConversion(&pixels->colors);
    free(pixels->scratch);
    *pixels = {};
}
