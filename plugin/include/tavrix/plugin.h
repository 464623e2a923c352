/*
 * The contract between Tavrix and its plugin libraries.
 *
 * A plugin is a shared library with the extension ".dll" in a folder named after its kind, below
 * PLUGINS beside the program. It exports the functions of its kind, by the names of the typedefs
 * below without "Tavrix" and "Function", and nothing else. It is loaded for one use and unloaded
 * right after: no state survives but what it stores through the property callbacks.
 *
 * One use, in order:
 *   1. The library is loaded; SetLanguage(17) is called on Japanese systems only.
 *   2. The exports are looked up. One that is missing makes the call that needs it fail (-3).
 *   3. Configure, if this use asks for it, on the user-interface thread. 0 is "the user cancelled"
 *      and ends the use; a negative result makes the host warn and go on.
 *   4. The processing export, on a worker thread, while a progress dialog is shown.
 *   5. The library is unloaded. No thread may be left running in it.
 *
 * Conventions. Every function returns a signed 32-bit number: positive for success, 0 for nothing
 * done, negative for a failure. Text is UTF-16, ends in a zero and stays the caller's. Records and
 * tables begin with their own size in bytes. A pointer handed to a plugin is valid for that call
 * only, unless told otherwise. Line numbers may be negative: -1 is the last line. Pixel bytes in a
 * line run blue, green, red and, at 32 bits, alpha.
 *
 * Memory. Before every processing export the host makes a private heap, from which everything comes
 * that the plugin makes through the function tables, and drops it when the call returns. A plugin
 * destroys what it made, and nothing it made outlives the call.
 *
 * Threads. GetPluginInfo, SetLanguage and Configure run on the user-interface thread, a processing
 * export on one worker thread. The tables and callbacks may be used only from the thread of the
 * export that got them, and only until it returns.
 */
#ifndef TAVRIX_PLUGIN_H
#define TAVRIX_PLUGIN_H

#include <stdint.h>
#include <uchar.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifdef _WIN32
#define TAVRIX_CALL __cdecl
#define TAVRIX_EXPORT __declspec(dllexport)
typedef wchar_t TavrixChar;
#else
#define TAVRIX_CALL
#define TAVRIX_EXPORT __attribute__((visibility("default")))
typedef char16_t TavrixChar;
#endif

/* Opaque: a picture, a palette, a window of the device. */
typedef struct TavrixImage *TavrixImageHandle;
typedef struct TavrixPalette *TavrixPaletteHandle;
typedef void *TavrixWindow;

/* ---- Records -------------------------------------------------------------------------------- */

/* A file or memory stream. Each function takes `handle` first and returns 1, -1 on failure or for
 * a null handle, -4 for a null pointer. */
typedef struct PluginStreamRecord {
    /* Bytes of this record. */
    uint32_t size;
    /* First argument of the four functions. */
    void *handle;
    /* The total length in bytes. */
    int32_t(TAVRIX_CALL *getSize)(void *handle, uint64_t *size);
    /* Moves the position by *offset bytes from `origin`: 0 the start, 1 the position, 2 the end.
     * newPosition may be null. An INPUT plugin reads forward only: over a network a seek asks the
     * server again, and some streams refuse. */
    int32_t(TAVRIX_CALL *seek)(void *handle, const int64_t *offset, uint64_t *newPosition,
                               uint32_t origin);
    /* *length in: bytes wanted; out: bytes got, which may be fewer at any time, so read in a loop.
     * 0 bytes is the end; a failing disk looks like it. */
    int32_t(TAVRIX_CALL *read)(void *handle, void *buffer, uint32_t *length);
    /* *length in: bytes to write; out: bytes written. A full disk gives 1 with fewer: compare. A
     * stream that only measures keeps nothing, and its read always fails with 0 bytes: an OUTPUT
     * plugin that has to read back what it wrote returns a negative value. */
    int32_t(TAVRIX_CALL *write)(void *handle, const void *buffer, uint32_t *length);
} PluginStreamRecord;

/* What a picture is. */
typedef struct RasterInfo {
    /* In: bytes the caller can take, to be set before each use (at most the whole record is
     * filled). Out: the whole size. */
    uint32_t size;
    /* Pixels. */
    uint32_t width;
    /* Lines. */
    uint32_t height;
    /* Bits a pixel: 8, 16, 24 or 32. */
    uint32_t depth;
    /* Bytes a line: (width+3)&~3 at 8 bits, (2*width+3)&~3 at 16, (3*(width+1))&~3 at 24,
     * 4*width at 32. */
    uint32_t stride;
    /* Palette entries in use. */
    uint32_t colorCount;
} RasterInfo;

/* A palette entry. Colours run from 0 to 255; the fourth word is stored and handed back. */
typedef struct PaletteEntry {
    uint32_t red;
    uint32_t green;
    uint32_t blue;
    uint32_t fourth;
} PaletteEntry;

/* Types of a variant. */
enum {
    VariantNone = 0,     /* nothing */
    VariantUnsigned = 1, /* 32-bit unsigned number */
    VariantSigned = 2,   /* 32-bit signed number; a minus sign is lost in the store */
    VariantWide = 3,     /* pointer to UTF-16 text */
    VariantNarrow = 4,   /* pointer to text in the system's 8-bit code page */
    VariantDouble = 5    /* pointer to a double; cannot be stored */
};

/* A named value, as the two property callbacks take it. */
typedef struct Variant {
    /* The key. All plugins share one section: begin it with the plugin's own name. */
    const TavrixChar *name;
    /* One of the types above. */
    uint32_t type;
    /* The number, or a pointer to the text or double. */
    uintptr_t value;
} Variant;

/* ---- Function tables ------------------------------------------------------------------------ */

/* Functions on pictures. Each returns -1 if its first argument is null, unless told otherwise. */
typedef struct RasterFunctionTable {
    /* Bytes of this table. */
    uint32_t size;
    /* Makes an empty picture in *out. 1; -1 for null out; -2 without memory (*out is null). */
    int32_t(TAVRIX_CALL *RasterCreate)(TavrixImageHandle *out);
    /* Releases a picture made by RasterCreate in this call and nulls *image. 1, also for a null
     * *image; -1 for any other picture, such as the one the export was given. */
    int32_t(TAVRIX_CALL *RasterDestroy)(TavrixImageHandle *image);
    /* Frees any old lines and allocates new ones, all zero. Depth 8, 16, 24 or 32 and no side
     * beyond 65,535, else -1. Lines may live in files when memory is short. 1 or a negative
     * failure, after which the picture must be freed or allocated anew. */
    int32_t(TAVRIX_CALL *RasterAlloc)(TavrixImageHandle image, uint32_t width, uint32_t height,
                                      uint32_t depth);
    /* Frees the lines; the picture can take a new RasterAlloc. 1. */
    int32_t(TAVRIX_CALL *RasterFree)(TavrixImageHandle image);
    /* Gives dst the size, depth, lines and palette of src. src is consumed: destroy it next. -1 if
     * either is null. */
    int32_t(TAVRIX_CALL *RasterCopy)(TavrixImageHandle dst, TavrixImageHandle src);
    /* Inserts *count blank lines (one if count is null) before `line`, which may equal the height.
     * -3 if no lines were allocated, -1 beyond the height or to more than 65,535 lines; another
     * negative result without memory, and then the height has grown all the same: give up. */
    int32_t(TAVRIX_CALL *RasterInsertLines)(TavrixImageHandle image, int32_t line,
                                            uint32_t *count);
    /* Deletes *count lines (one if count is null) from `line`. 1; -3, -1 as above; -2 memory. A run
     * that reaches the last line deletes nothing and gives 1. */
    int32_t(TAVRIX_CALL *RasterDeleteLines)(TavrixImageHandle image, int32_t line,
                                            uint32_t *count);
    /* Exchanges two lines without moving their data. -3, -1 as above. */
    int32_t(TAVRIX_CALL *RasterSwapLines)(TavrixImageHandle image, int32_t a, int32_t b);
    /* Fills as much of *info as info->size says. 1; -4 for null info. */
    int32_t(TAVRIX_CALL *RasterGetInfo)(TavrixImageHandle image, RasterInfo *info);
    /* Makes *count lines (one if count is null) present and stores a pointer to each in lines[].
     * The count is cut at the end of the picture and written back. Pointers are valid until the
     * line is unlocked. 1; -3; -1 for a line at or beyond the height; on a failure part way
     * negative or 0, and *count tells how many were locked: unlock those and give up. Lines are not
     * adjacent in memory. Locks do not add up: one unlock ends two. Lock few lines at a time, since
     * locked ones stay in memory. */
    int32_t(TAVRIX_CALL *RasterLockLines)(TavrixImageHandle image, int32_t line, void **lines,
                                          uint32_t *count);
    /* Ends the lock of `count` lines, which may write them to their files. 1; -3, -1 as above; 0 if
     * a line could not be stored: its data is lost, give up. When line + count reaches the height,
     * the count becomes height - line - count, so a run that touches the last line unlocks nothing
     * (or fewer lines) and gives 1. The last line so stays locked until the export has returned,
     * which does no harm; unlock a tall run line by line, and the others are let go. */
    int32_t(TAVRIX_CALL *RasterUnlockLines)(TavrixImageHandle image, int32_t line,
                                            uint32_t count);
    /* With null `palette` the picture's entry count; else copies the picture's palette into it. The
     * picture comes first and the target second. */
    int32_t(TAVRIX_CALL *RasterGetPalette)(TavrixImageHandle image, TavrixPaletteHandle palette);
    /* Copies `palette` into the picture's; `palette` stays the caller's to destroy. -1 if either is
     * null. */
    int32_t(TAVRIX_CALL *RasterSetPalette)(TavrixImageHandle image, TavrixPaletteHandle palette);
    /* Nearest-neighbour stretch of the inclusive rectangle (sx1,sy1)-(sx2,sy2) of src to
     * (dx1,dy1)-(dx2,dy2) of dst; a whole picture is (0,0)-(width-1,height-1). -1 if either is null
     * or not 24 bits deep. Reports no progress. */
    int32_t(TAVRIX_CALL *RasterStretch)(TavrixImageHandle src, TavrixImageHandle dst, int32_t sx1,
                                        int32_t sy1, int32_t sx2, int32_t sy2, int32_t dx1,
                                        int32_t dy1, int32_t dx2, int32_t dy2);
    /* 24 and 32 bits only: *value gets the stored bytes 0, 1, 2 in bits 8-15, 16-23, 24-31, and in
     * bits 0-7 byte 3 (255 at 24 bits). 1; -2 for null value; -1 outside or at another depth. */
    int32_t(TAVRIX_CALL *RasterGetPixel)(TavrixImageHandle image, int32_t x, int32_t y,
                                         uint32_t *value);
    /* The reverse of RasterGetPixel. 1; -1 outside or at another depth. */
    int32_t(TAVRIX_CALL *RasterSetPixel)(TavrixImageHandle image, int32_t x, int32_t y,
                                         uint32_t value);
} RasterFunctionTable;

/* Functions on palettes. Each returns -1 if its first argument is null. */
typedef struct PaletteFunctionTable {
    /* Bytes of this table. */
    uint32_t size;
    /* Makes an empty palette. 1; -1 for null out; -2 without memory. */
    int32_t(TAVRIX_CALL *PaletteCreate)(TavrixPaletteHandle *out);
    /* Releases it and nulls *palette. 1; -1 also for a null *palette. */
    int32_t(TAVRIX_CALL *PaletteDestroy)(TavrixPaletteHandle *palette);
    /* Drops the entries and reserves `capacity` new ones, none in use. 1; -2. */
    int32_t(TAVRIX_CALL *PaletteAlloc)(TavrixPaletteHandle palette, uint32_t capacity);
    /* Drops the entries. 1. */
    int32_t(TAVRIX_CALL *PaletteFree)(TavrixPaletteHandle palette);
    /* -4 for null src, else as PaletteSetEntries with its entries. */
    int32_t(TAVRIX_CALL *PaletteCopy)(TavrixPaletteHandle dst, TavrixPaletteHandle src);
    /* Appends one. 1; -3 without PaletteAlloc before; -1 when full. */
    int32_t(TAVRIX_CALL *PaletteAddEntry)(TavrixPaletteHandle palette, uint32_t red,
                                          uint32_t green, uint32_t blue, uint32_t fourth);
    /* Appends in order and stops at the first failure, whose value it returns. */
    int32_t(TAVRIX_CALL *PaletteAddEntries)(TavrixPaletteHandle palette,
                                            const PaletteEntry *entries, uint32_t count);
    /* Reallocates to `count` and copies. -4 for null entries. */
    int32_t(TAVRIX_CALL *PaletteSetEntries)(TavrixPaletteHandle palette,
                                            const PaletteEntry *entries, uint32_t count);
    /* With null buffer the used count; else copies all used entries, for which the buffer must
     * have room, and returns 1. */
    int32_t(TAVRIX_CALL *PaletteGetEntries)(TavrixPaletteHandle palette, PaletteEntry *buffer);
    /* The internal array, valid until the palette changes. -3 (*entries null) if not allocated; -4
     * for null entries. */
    int32_t(TAVRIX_CALL *PaletteGetPointer)(TavrixPaletteHandle palette, PaletteEntry **entries);
} PaletteFunctionTable;

/* ---- Callbacks ------------------------------------------------------------------------------ */

/* Reports done/total. total 0 resets the bar and returns 0. A negative result means that the user
 * gave up: stop and return a negative value. Otherwise 1. Waits for the user-interface thread, so
 * once a line is enough; some times a second, since it also keeps the device awake. */
typedef int32_t(TAVRIX_CALL *TavrixProgressCallback)(uint32_t done, uint32_t total);
/* During a processing export `text` replaces the status line; with bit 4 of `flags` set (16, the
 * stop icon) it beeps and waits two seconds. At other times a message box with `flags` as the
 * device's MessageBoxW takes them. Returns 0. Both texts stay the caller's. */
typedef int32_t(TAVRIX_CALL *TavrixMessageCallback)(const TavrixChar *text,
                                                    const TavrixChar *caption, uint32_t flags);
/* Stores a value, which is copied. 3 added, 5 replaced, negative on failure. Never store an empty
 * text: it comes back as a key without a value. */
typedef int32_t(TAVRIX_CALL *TavrixPutPropertyCallback)(Variant *item);
/* Reads a value: set name and the wanted type. 1 found; -1 nothing was ever stored; -10 unknown
 * key; -100 not convertible. Text points into the store and is valid until that key is set again. */
typedef int32_t(TAVRIX_CALL *TavrixGetPropertyCallback)(Variant *item);

/* ---- Exports -------------------------------------------------------------------------------- */

/* Indexes of GetPluginInfo. */
enum {
    PluginInfoIdentity = 0, /* "TX_" and the kind, such as "TX_INPUT", exactly */
    PluginInfoName = 1,     /* menu entry and tree entry */
    PluginInfoVersion = 2,
    PluginInfoCopyright = 3,
    PluginInfoDate = 4,
    PluginInfoDescription = 5,
    PluginInfoFormat = 0x10000,  /* + 2k: description of the k-th file format */
    PluginInfoPattern = 0x10001, /* + 2k: its patterns, "*.ext" items joined with ";" */
    PluginFormatLimit = 50       /* formats asked of a plugin at the most */
};

/* Every kind. Writes at most `capacity` characters, the final zero among them. Positive on success
 * (the host needs it for 0 and 1), negative for an index it does not know. Formats are asked of
 * INPUT and OUTPUT plugins; they end at the first negative result or empty description. */
typedef int32_t(TAVRIX_CALL *TavrixGetPluginInfoFunction)(uint32_t index, TavrixChar *buffer,
                                                          uint32_t capacity);
/* Every kind, optional. The primary language number: 17 on Japanese systems, where it is called
 * right after the load; elsewhere it is not called at all. All text follows it, but for the
 * identity and the patterns. The result is not looked at. */
typedef int32_t(TAVRIX_CALL *TavrixSetLanguageFunction)(uint32_t language);

/* INPUT. Reserved for a header read; of path and stream exactly one is not null. `info` is a
 * RasterInfo by custom, its size set by the caller. Runs without a heap and without tables. */
typedef int32_t(TAVRIX_CALL *TavrixGetImageInfoFunction)(const TavrixChar *path,
                                                         PluginStreamRecord *stream, void *info);
/* INPUT: GetImage and GetImageFast. OUTPUT: PutImage. Of path and stream exactly one is not null;
 * GetImage always gets a stream, GetImageFast (a quick decode, not called yet) never does. A path
 * is a path of the device: open it with the device's file functions. GetImage reads forward, sizes
 * the picture with RasterAlloc, fills the lines, reports progress and returns 0 or more, or a
 * negative value on failure. PutImage must not change the picture, and returns a negative value
 * where it cannot write to a stream. */
typedef int32_t(TAVRIX_CALL *TavrixImageFunction)(
    const TavrixChar *path, PluginStreamRecord *stream, TavrixImageHandle image,
    RasterFunctionTable *rasters, PaletteFunctionTable *palettes, TavrixProgressCallback progress,
    TavrixMessageCallback message, TavrixPutPropertyCallback put, TavrixGetPropertyCallback get);
/* PRINT: Print. The four zeros are always 0; `title` names the print job. The result is not looked
 * at, so tell the user of a failure through `message`. `owner` belongs to the user-interface
 * thread: make no windows here. */
typedef int32_t(TAVRIX_CALL *TavrixPrintFunction)(
    TavrixImageHandle image, RasterFunctionTable *rasters, PaletteFunctionTable *palettes,
    TavrixWindow owner, uint32_t zero1, uint32_t zero2, uint32_t zero3, uint32_t zero4,
    const TavrixChar *title, TavrixProgressCallback progress, TavrixMessageCallback message,
    TavrixPutPropertyCallback put, TavrixGetPropertyCallback get);
/* EFFECT: Effect. ADJUST: AdjustImage. Change the picture in place and keep its size: it may be a
 * copy of the selected rectangle, of which that rectangle's size goes back. */
typedef int32_t(TAVRIX_CALL *TavrixProcessFunction)(
    TavrixImageHandle image, RasterFunctionTable *rasters, PaletteFunctionTable *palettes,
    TavrixProgressCallback progress, TavrixMessageCallback message, TavrixPutPropertyCallback put,
    TavrixGetPropertyCallback get);
/* SCALE: ScaleImage. Resizes the picture in place, to `width` pixels by `height` lines. */
typedef int32_t(TAVRIX_CALL *TavrixScaleFunction)(
    TavrixImageHandle image, RasterFunctionTable *rasters, PaletteFunctionTable *palettes,
    uint32_t width, uint32_t height, TavrixProgressCallback progress,
    TavrixMessageCallback message, TavrixPutPropertyCallback put, TavrixGetPropertyCallback get);
/* SUBTRACT: SubtractImage. Reduces the colours. `argument` has no meaning yet: take any value. */
typedef int32_t(TAVRIX_CALL *TavrixSubtractFunction)(
    TavrixImageHandle image, RasterFunctionTable *rasters, PaletteFunctionTable *palettes,
    uint32_t argument, TavrixProgressCallback progress, TavrixMessageCallback message,
    TavrixPutPropertyCallback put, TavrixGetPropertyCallback get);
/* Configure of INPUT, OUTPUT and PRINT. 1 to go on, 0 when the user cancelled, negative on failure.
 * An INPUT, OUTPUT, EFFECT or ADJUST plugin without it makes the host warn at every use. What was
 * chosen goes into the properties, where the processing export finds it. */
typedef int32_t(TAVRIX_CALL *TavrixConfigureFunction)(TavrixWindow owner,
                                                      TavrixMessageCallback message,
                                                      TavrixPutPropertyCallback put,
                                                      TavrixGetPropertyCallback get);
/* Configure of EFFECT and ADJUST. The picture may be looked at; what is changed in it stays so,
 * also when the user cancels. */
typedef int32_t(TAVRIX_CALL *TavrixConfigureImageFunction)(
    TavrixWindow owner, TavrixImageHandle image, RasterFunctionTable *rasters,
    PaletteFunctionTable *palettes, TavrixMessageCallback message, TavrixPutPropertyCallback put,
    TavrixGetPropertyCallback get);

#ifdef __cplusplus
}
#endif

#endif
