/*
 * An EFFECT plugin: inverts the colours that its dialog was told, which it remembers in the settings
 * under "InvertChannels" (bits 0, 1, 2: blue, green, red).
 */
#include "InvertDialog.h"

#include <tavrix/text.h>

enum { Done = 1, Failed = -1, BadArgument = -4, Cancelled = -9 };
enum { AllChannels = 7 };

/* The one thing that is kept between calls; it is forgotten when the library is unloaded. */
static int japanese;

static const TavrixChar *InLanguage(const TavrixChar *english, const TavrixChar *inJapanese)
{
    return japanese ? inJapanese : english;
}

static const TavrixChar *TextOf(uint32_t index)
{
    switch (index) {
    case PluginInfoIdentity:
        return TAVRIX_TEXT("TX_EFFECT");
    case PluginInfoName:
        return InLanguage(TAVRIX_TEXT("Invert"), TAVRIX_TEXT("反転"));
    case PluginInfoVersion:
        return TAVRIX_TEXT("1.0");
    case PluginInfoCopyright:
        return TAVRIX_TEXT("Free to use");
    case PluginInfoDate:
        return TAVRIX_TEXT("2026-11-21");
    case PluginInfoDescription:
        return InLanguage(TAVRIX_TEXT("Inverts the colours of the picture."),
                          TAVRIX_TEXT("画像の色を反転します。"));
    default:
        return 0;
    }
}

TAVRIX_EXPORT int32_t TAVRIX_CALL GetPluginInfo(uint32_t index, TavrixChar *buffer,
                                                uint32_t capacity)
{
    if (!buffer || capacity == 0)
        return BadArgument;
    const TavrixChar *text = TextOf(index);
    if (!text)
        return Failed;
    uint32_t length = 0;
    for (; length + 1 < capacity && text[length]; ++length)
        buffer[length] = text[length];
    buffer[length] = 0;
    return Done;
}

TAVRIX_EXPORT int32_t TAVRIX_CALL SetLanguage(uint32_t language)
{
    japanese = language == 17;
    return Done;
}

/* What was chosen last; everything at first. */
static uint32_t StoredChannels(TavrixGetPropertyCallback get)
{
    Variant item = {.name = TAVRIX_TEXT("InvertChannels"), .type = VariantUnsigned};
    return get(&item) > 0 ? (uint32_t)item.value & AllChannels : AllChannels;
}

TAVRIX_EXPORT int32_t TAVRIX_CALL Configure(TavrixWindow owner, TavrixImageHandle image,
                                            RasterFunctionTable *rasters,
                                            PaletteFunctionTable *palettes,
                                            TavrixMessageCallback message,
                                            TavrixPutPropertyCallback put,
                                            TavrixGetPropertyCallback get)
{
    (void)image, (void)rasters, (void)palettes, (void)message;
    if (!put || !get)
        return BadArgument;
    uint32_t channels = StoredChannels(get);
    const int32_t result = AskForChannels(owner, &channels);
    if (result < 1)
        return result;
    Variant item = {
        .name = TAVRIX_TEXT("InvertChannels"), .type = VariantUnsigned, .value = channels};
    return put(&item) > 0 ? Done : Failed;
}

static void InvertLine(uint8_t *pixel, const RasterInfo *info, uint32_t channels)
{
    const uint32_t bytesPerPixel = info->depth / 8;
    for (uint32_t x = 0; x < info->width; ++x, pixel += bytesPerPixel)
        for (uint32_t channel = 0; channel < 3; ++channel)
            if (channels >> channel & 1)
                pixel[channel] = (uint8_t)(255 - pixel[channel]);
}

TAVRIX_EXPORT int32_t TAVRIX_CALL Effect(TavrixImageHandle image, RasterFunctionTable *rasters,
                                         PaletteFunctionTable *palettes,
                                         TavrixProgressCallback progress,
                                         TavrixMessageCallback message,
                                         TavrixPutPropertyCallback put,
                                         TavrixGetPropertyCallback get)
{
    (void)palettes, (void)message, (void)put;
    if (!image || !rasters || !progress || !get)
        return BadArgument;
    RasterInfo info = {.size = sizeof info};
    if (rasters->RasterGetInfo(image, &info) < 1)
        return Failed;
    if (info.depth != 24 && info.depth != 32)
        return Failed;
    const uint32_t channels = StoredChannels(get);
    for (uint32_t y = 0; y < info.height; ++y) {
        void *line = 0;
        uint32_t count = 1;
        if (rasters->RasterLockLines(image, (int32_t)y, &line, &count) < 1)
            return Failed;
        InvertLine(line, &info, channels);
        if (rasters->RasterUnlockLines(image, (int32_t)y, 1) < 1)
            return Failed;
        if (progress(y + 1, info.height) < 0)
            return Cancelled;
    }
    return Done;
}
