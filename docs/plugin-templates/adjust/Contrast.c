/*
 * An ADJUST plugin: spreads the contrast, so that the darkest byte of all pixels becomes 0 and the
 * brightest 255. It goes over the picture twice, and the bar counts both times.
 */
#include <tavrix/text.h>

enum { Done = 1, Failed = -1, BadArgument = -4, Cancelled = -9 };

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
        return TAVRIX_TEXT("TX_ADJUST");
    case PluginInfoName:
        return InLanguage(TAVRIX_TEXT("Full contrast"), TAVRIX_TEXT("コントラスト最大化"));
    case PluginInfoVersion:
        return TAVRIX_TEXT("1.0");
    case PluginInfoCopyright:
        return TAVRIX_TEXT("Free to use");
    case PluginInfoDate:
        return TAVRIX_TEXT("2026-11-21");
    case PluginInfoDescription:
        return InLanguage(TAVRIX_TEXT("Spreads the colours from black to white."),
                          TAVRIX_TEXT("色を黒から白まで広げます。"));
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

/* There is nothing to ask. Without the export the host would warn at every use. */
TAVRIX_EXPORT int32_t TAVRIX_CALL Configure(TavrixWindow owner, TavrixImageHandle image,
                                            RasterFunctionTable *rasters,
                                            PaletteFunctionTable *palettes,
                                            TavrixMessageCallback message,
                                            TavrixPutPropertyCallback put,
                                            TavrixGetPropertyCallback get)
{
    (void)owner, (void)image, (void)rasters, (void)palettes, (void)message, (void)put, (void)get;
    return Done;
}

/* What one line is gone over with, and what comes of it. */
struct Contrast {
    uint8_t darkest;
    uint8_t brightest;
    uint8_t becomes[256];
};

typedef void LineOperation(struct Contrast *contrast, uint8_t *pixel, const RasterInfo *info);

/* The fourth byte of a 32-bit pixel is no colour. */
static void Measure(struct Contrast *contrast, uint8_t *pixel, const RasterInfo *info)
{
    for (uint32_t x = 0; x < info->width; ++x, pixel += info->depth / 8)
        for (int i = 0; i < 3; ++i) {
            if (pixel[i] < contrast->darkest)
                contrast->darkest = pixel[i];
            if (pixel[i] > contrast->brightest)
                contrast->brightest = pixel[i];
        }
}

static void Spread(struct Contrast *contrast, uint8_t *pixel, const RasterInfo *info)
{
    for (uint32_t x = 0; x < info->width; ++x, pixel += info->depth / 8)
        for (int i = 0; i < 3; ++i)
            pixel[i] = contrast->becomes[pixel[i]];
}

static void PlanSpread(struct Contrast *contrast)
{
    const int range = contrast->brightest - contrast->darkest;
    for (int i = contrast->darkest; i <= contrast->brightest; ++i)
        contrast->becomes[i] =
            (uint8_t)(range > 0 ? (i - contrast->darkest) * 255 / range : contrast->darkest);
}

static int32_t ForEachLine(LineOperation *operation, struct Contrast *contrast,
                           TavrixImageHandle image, const RasterInfo *info,
                           RasterFunctionTable *rasters, TavrixProgressCallback progress,
                           uint32_t doneBefore)
{
    for (uint32_t y = 0; y < info->height; ++y) {
        void *line = 0;
        uint32_t count = 1;
        if (rasters->RasterLockLines(image, (int32_t)y, &line, &count) < 1)
            return Failed;
        operation(contrast, line, info);
        if (rasters->RasterUnlockLines(image, (int32_t)y, 1) < 1)
            return Failed;
        if (progress(doneBefore + y + 1, info->height * 2) < 0)
            return Cancelled;
    }
    return Done;
}

TAVRIX_EXPORT int32_t TAVRIX_CALL AdjustImage(TavrixImageHandle image, RasterFunctionTable *rasters,
                                              PaletteFunctionTable *palettes,
                                              TavrixProgressCallback progress,
                                              TavrixMessageCallback message,
                                              TavrixPutPropertyCallback put,
                                              TavrixGetPropertyCallback get)
{
    (void)palettes, (void)message, (void)put, (void)get;
    if (!image || !rasters || !progress)
        return BadArgument;
    RasterInfo info = {.size = sizeof info};
    if (rasters->RasterGetInfo(image, &info) < 1)
        return Failed;
    if (info.depth != 24 && info.depth != 32)
        return Failed;
    struct Contrast contrast = {.darkest = 255};
    int32_t result = ForEachLine(Measure, &contrast, image, &info, rasters, progress, 0);
    if (result < 0)
        return result;
    PlanSpread(&contrast);
    return ForEachLine(Spread, &contrast, image, &info, rasters, progress, info.height);
}
