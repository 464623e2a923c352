/*
 * An OUTPUT plugin: writes "plain" pictures (*.tlp), the format of the INPUT example, to a file of
 * the device or to a stream. It writes forward only and never reads back, so that it works on every
 * stream.
 */
#include <tavrix/text.h>
#include <windows.h>

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
        return TAVRIX_TEXT("TX_OUTPUT");
    case PluginInfoName:
        return InLanguage(TAVRIX_TEXT("Plain writer"), TAVRIX_TEXT("プレーン書き込み"));
    case PluginInfoVersion:
        return TAVRIX_TEXT("1.0");
    case PluginInfoCopyright:
        return TAVRIX_TEXT("Free to use");
    case PluginInfoDate:
        return TAVRIX_TEXT("2026-11-21");
    case PluginInfoDescription:
        return InLanguage(TAVRIX_TEXT("Writes plain pictures."),
                          TAVRIX_TEXT("プレーン形式の画像を書き込みます。"));
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

/* Where the bytes go: the stream, or without one the file. */
struct Target {
    PluginStreamRecord *stream;
    HANDLE file;
};

/* Writes all of it or fails. A full disk shows as fewer bytes, not as a failure of the call. */
static int32_t WriteAll(const struct Target *target, const void *bytes, uint32_t length)
{
    if (target->stream) {
        uint32_t done = length;
        if (target->stream->write(target->stream->handle, bytes, &done) < 0)
            return Failed;
        return done == length ? Done : Failed;
    }
    DWORD done = 0;
    return WriteFile(target->file, bytes, length, &done, NULL) && done == length ? Done : Failed;
}

static void PutNumber(uint8_t *bytes, uint32_t number)
{
    for (int i = 0; i < 4; ++i)
        bytes[i] = (uint8_t)(number >> 8 * i);
}

static int32_t WriteHeader(const struct Target *target, const RasterInfo *info)
{
    uint8_t header[12] = {'T', 'L', 'P', '1'};
    PutNumber(header + 4, info->width);
    PutNumber(header + 8, info->height);
    return WriteAll(target, header, sizeof header);
}

static int32_t WriteLines(const struct Target *target, TavrixImageHandle image,
                          const RasterInfo *info, RasterFunctionTable *rasters,
                          TavrixProgressCallback progress)
{
    for (uint32_t y = 0; y < info->height; ++y) {
        void *line = 0;
        uint32_t count = 1;
        if (rasters->RasterLockLines(image, (int32_t)y, &line, &count) < 1)
            return Failed;
        const int32_t written = WriteAll(target, line, info->width * 3);
        if (rasters->RasterUnlockLines(image, (int32_t)y, 1) < 1 || written < 0)
            return Failed;
        if (progress(y + 1, info->height) < 0)
            return Cancelled;
    }
    return Done;
}

TAVRIX_EXPORT int32_t TAVRIX_CALL PutImage(const TavrixChar *path, PluginStreamRecord *stream,
                                           TavrixImageHandle image, RasterFunctionTable *rasters,
                                           PaletteFunctionTable *palettes,
                                           TavrixProgressCallback progress,
                                           TavrixMessageCallback message,
                                           TavrixPutPropertyCallback put,
                                           TavrixGetPropertyCallback get)
{
    (void)palettes, (void)message, (void)put, (void)get;
    if ((!path && !stream) || !image || !rasters || !progress)
        return BadArgument;
    RasterInfo info = {.size = sizeof info};
    if (rasters->RasterGetInfo(image, &info) < 1)
        return Failed;
    /* Nothing is made on the disk for a picture that this format cannot hold. */
    if (info.depth != 24 || info.width < 1 || info.height < 1)
        return Failed;

    struct Target target = {stream, INVALID_HANDLE_VALUE};
    if (!stream) {
        /* A path of the device: its own functions open it, never the C library's. */
        target.file =
            CreateFileW(path, GENERIC_WRITE, 0, NULL, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, NULL);
        if (target.file == INVALID_HANDLE_VALUE)
            return Failed;
    }
    int32_t result = WriteHeader(&target, &info);
    if (result > 0)
        result = WriteLines(&target, image, &info, rasters, progress);
    if (!stream) {
        if (!CloseHandle(target.file) && result > 0)
            result = Failed;
        /* Half a picture is worth less than none. */
        if (result < 0)
            DeleteFileW(path);
    }
    return result;
}
