/*
 * A PRINT plugin: "prints" the picture as letters, 80 in a row, to a text file, where the darker a
 * place is the denser is its letter. A real one would send the lines to its printer instead.
 *
 * Its one setting, "TextPrintFile", is the file's path on the device.
 */
#include <tavrix/text.h>
#include <windows.h>

enum { Done = 1, Failed = -1, BadArgument = -4, Cancelled = -9 };
enum { Columns = 80 };

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
        return TAVRIX_TEXT("TX_PRINT");
    case PluginInfoName:
        return InLanguage(TAVRIX_TEXT("Text file"), TAVRIX_TEXT("テキストファイル"));
    case PluginInfoVersion:
        return TAVRIX_TEXT("1.0");
    case PluginInfoCopyright:
        return TAVRIX_TEXT("Free to use");
    case PluginInfoDate:
        return TAVRIX_TEXT("2026-11-21");
    case PluginInfoDescription:
        return InLanguage(TAVRIX_TEXT("Prints the picture as letters to a text file."),
                          TAVRIX_TEXT("画像を文字にしてテキストファイルに印刷します。"));
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

/* Where the text goes. The setting's text is the host's and stands until it is set again. */
static const TavrixChar *TargetPath(TavrixGetPropertyCallback get)
{
    Variant item = {.name = TAVRIX_TEXT("TextPrintFile"), .type = VariantWide};
    if (get(&item) > 0 && item.value)
        return (const TavrixChar *)item.value;
    return TAVRIX_TEXT("\\My Documents\\Tavrix print.txt");
}

/* For the print dialog's button. It runs outside a job, so the message is a box. */
TAVRIX_EXPORT int32_t TAVRIX_CALL Configure(TavrixWindow owner, TavrixMessageCallback message,
                                            TavrixPutPropertyCallback put,
                                            TavrixGetPropertyCallback get)
{
    (void)owner, (void)put;
    if (!message || !get)
        return BadArgument;
    message(TargetPath(get), InLanguage(TAVRIX_TEXT("Prints to"), TAVRIX_TEXT("印刷先")),
            MB_ICONASTERISK);
    return Done;
}

/* One row of letters, from one line of the picture. */
static void DrawRow(char *row, const uint8_t *line, const RasterInfo *info)
{
    static const char letters[] = "@%#*+=-:. "; /* from black to white */
    const uint32_t bytesPerPixel = info->depth / 8;
    for (uint32_t column = 0; column < Columns; ++column) {
        const uint64_t x = ((uint64_t)column * 2 + 1) * info->width / (2 * Columns);
        const uint8_t *pixel = line + x * bytesPerPixel;
        const uint32_t brightness = (pixel[0] + 6u * pixel[1] + 3u * pixel[2]) / 10;
        row[column] = letters[brightness * (sizeof letters - 1) / 256];
    }
    row[Columns] = '\n';
}

/* Letters are about twice as high as wide. */
static uint32_t RowCount(const RasterInfo *info)
{
    const uint64_t rows = (uint64_t)info->height * Columns / info->width / 2;
    return rows > 0 ? (uint32_t)rows : 1;
}

static int32_t PrintRows(HANDLE file, TavrixImageHandle image, const RasterInfo *info,
                         RasterFunctionTable *rasters, TavrixProgressCallback progress)
{
    const uint32_t rows = RowCount(info);
    for (uint32_t i = 0; i < rows; ++i) {
        char row[Columns + 1];
        const int32_t y = (int32_t)(((uint64_t)i * 2 + 1) * info->height / (2 * (uint64_t)rows));
        void *line = 0;
        uint32_t count = 1;
        if (rasters->RasterLockLines(image, y, &line, &count) < 1)
            return Failed;
        DrawRow(row, line, info);
        if (rasters->RasterUnlockLines(image, y, 1) < 1)
            return Failed;
        DWORD done = 0;
        if (!WriteFile(file, row, sizeof row, &done, NULL) || done != sizeof row)
            return Failed;
        if (progress(i + 1, rows) < 0)
            return Cancelled;
    }
    return Done;
}

TAVRIX_EXPORT int32_t TAVRIX_CALL Print(TavrixImageHandle image, RasterFunctionTable *rasters,
                                        PaletteFunctionTable *palettes, TavrixWindow owner,
                                        uint32_t zero1, uint32_t zero2, uint32_t zero3,
                                        uint32_t zero4, const TavrixChar *title,
                                        TavrixProgressCallback progress,
                                        TavrixMessageCallback message,
                                        TavrixPutPropertyCallback put,
                                        TavrixGetPropertyCallback get)
{
    (void)palettes, (void)owner, (void)zero1, (void)zero2, (void)zero3, (void)zero4, (void)put;
    if (!image || !rasters || !progress || !message || !get)
        return BadArgument;
    RasterInfo info = {.size = sizeof info};
    if (rasters->RasterGetInfo(image, &info) < 1)
        return Failed;
    if ((info.depth != 24 && info.depth != 32) || info.width < 1 || info.height < 1)
        return Failed;
    const TavrixChar *path = TargetPath(get);
    const HANDLE file =
        CreateFileW(path, GENERIC_WRITE, 0, NULL, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, NULL);
    int32_t result = Failed;
    if (file != INVALID_HANDLE_VALUE) {
        result = PrintRows(file, image, &info, rasters, progress);
        if (!CloseHandle(file) && result > 0)
            result = Failed;
        if (result < 0)
            DeleteFileW(path);
    }
    /* The host does not look at the result of printing, so what went wrong is told here. */
    if (result < 0 && result != Cancelled)
        message(InLanguage(TAVRIX_TEXT("The text file could not be written."),
                           TAVRIX_TEXT("テキストファイルを書き込めませんでした。")),
                title, MB_ICONHAND);
    return result;
}
