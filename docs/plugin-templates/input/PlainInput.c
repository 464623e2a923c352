/*
 * An INPUT plugin: reads "plain" pictures (*.tlp), a format of this example. All numbers are 32-bit,
 * the lowest byte first.
 *
 *     "TLP1"            four bytes
 *     width, height     two numbers, both from 1 to 65,535
 *     the lines         width * 3 bytes each, top line first: blue, green, red of each pixel
 *
 * The stream is read forward only, one line of the picture at a time.
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
        return TAVRIX_TEXT("TX_INPUT");
    case PluginInfoName:
        return InLanguage(TAVRIX_TEXT("Plain reader"), TAVRIX_TEXT("プレーン読み込み"));
    case PluginInfoVersion:
        return TAVRIX_TEXT("1.0");
    case PluginInfoCopyright:
        return TAVRIX_TEXT("Free to use");
    case PluginInfoDate:
        return TAVRIX_TEXT("2026-11-21");
    case PluginInfoDescription:
        return InLanguage(TAVRIX_TEXT("Reads plain pictures."),
                          TAVRIX_TEXT("プレーン形式の画像を読み込みます。"));
    case PluginInfoFormat:
        return InLanguage(TAVRIX_TEXT("Plain picture (*.tlp)"),
                          TAVRIX_TEXT("プレーン画像 (*.tlp)"));
    case PluginInfoPattern:
        return TAVRIX_TEXT("*.tlp");
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
TAVRIX_EXPORT int32_t TAVRIX_CALL Configure(TavrixWindow owner, TavrixMessageCallback message,
                                            TavrixPutPropertyCallback put,
                                            TavrixGetPropertyCallback get)
{
    (void)owner, (void)message, (void)put, (void)get;
    return Done;
}

/* A stream may give fewer bytes than it was asked for, over a network often. */
static int32_t ReadAll(PluginStreamRecord *stream, void *buffer, uint32_t length)
{
    uint8_t *to = buffer;
    while (length > 0) {
        uint32_t got = length;
        if (stream->read(stream->handle, to, &got) < 0 || got == 0 || got > length)
            return Failed;
        to += got;
        length -= got;
    }
    return Done;
}

static uint32_t Number(const uint8_t *bytes)
{
    return bytes[0] | (uint32_t)bytes[1] << 8 | (uint32_t)bytes[2] << 16 | (uint32_t)bytes[3] << 24;
}

static int32_t ReadHeader(PluginStreamRecord *stream, uint32_t *width, uint32_t *height)
{
    uint8_t header[12];
    if (ReadAll(stream, header, sizeof header) < 0)
        return Failed;
    if (header[0] != 'T' || header[1] != 'L' || header[2] != 'P' || header[3] != '1')
        return Failed;
    *width = Number(header + 4);
    *height = Number(header + 8);
    /* What the header claims is not to be believed before anything is allocated for it. */
    if (*width < 1 || *width > 65535 || *height < 1 || *height > 65535)
        return Failed;
    return (uint64_t)*width * *height <= 64000000 ? Done : Failed;
}

static int32_t ReadLine(PluginStreamRecord *stream, TavrixImageHandle image,
                        RasterFunctionTable *rasters, uint32_t y, uint32_t bytes)
{
    void *line = 0;
    uint32_t count = 1;
    if (rasters->RasterLockLines(image, (int32_t)y, &line, &count) < 1)
        return Failed;
    const int32_t result = ReadAll(stream, line, bytes);
    /* One line at a time: all others may be put out of memory meanwhile. */
    if (rasters->RasterUnlockLines(image, (int32_t)y, 1) < 1)
        return Failed;
    return result;
}

TAVRIX_EXPORT int32_t TAVRIX_CALL GetImage(const TavrixChar *path, PluginStreamRecord *stream,
                                           TavrixImageHandle image, RasterFunctionTable *rasters,
                                           PaletteFunctionTable *palettes,
                                           TavrixProgressCallback progress,
                                           TavrixMessageCallback message,
                                           TavrixPutPropertyCallback put,
                                           TavrixGetPropertyCallback get)
{
    (void)path, (void)palettes, (void)message, (void)put, (void)get;
    if (!stream || !image || !rasters || !progress)
        return BadArgument;
    uint32_t width = 0;
    uint32_t height = 0;
    if (ReadHeader(stream, &width, &height) < 0)
        return Failed;
    int32_t result = rasters->RasterAlloc(image, width, height, 24);
    if (result < 0)
        return result;
    for (uint32_t y = 0; y < height; ++y) {
        result = ReadLine(stream, image, rasters, y, width * 3);
        if (result < 0)
            return result; /* what has come stays in the picture; the host says that it failed */
        if (progress(y + 1, height) < 0)
            return Cancelled;
    }
    return Done;
}

/* The size alone, for whoever wants a look at the header. */
TAVRIX_EXPORT int32_t TAVRIX_CALL GetImageInfo(const TavrixChar *path, PluginStreamRecord *stream,
                                               void *info)
{
    (void)path;
    RasterInfo *answer = info;
    if (!stream || !answer || answer->size < sizeof(RasterInfo))
        return BadArgument;
    uint32_t width = 0;
    uint32_t height = 0;
    if (ReadHeader(stream, &width, &height) < 0)
        return Failed;
    answer->width = width;
    answer->height = height;
    answer->depth = 24;
    answer->stride = (3 * (width + 1)) & ~3u;
    answer->colorCount = 0;
    return Done;
}
