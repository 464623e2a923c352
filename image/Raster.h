// The one image container: a table of separately allocated scanlines, each of which sits in memory
// or alone in a small file of its own. Pixels are reached only between LockLines and ReleaseLines;
// the pair is the paging protocol. No two lines are adjacent in memory, and none is locked longer
// than its row takes.
//
// Depth 8 (a value a pixel), 16 (never interpreted), 24 (blue, green, red) or 32 (blue, green, red,
// alpha). Colour words are 0xRRGGBBAA. Line numbers may be negative, meaning from the end; counts
// go by pointer (in: wanted, out: done), null meaning one. A raster with no folders cannot page and
// refuses to grow when memory is short. Creator owns; one thread at a time; no locks.
//
// Results: Done; NothingDone as told; Failed bad index, depth, or no folder to page to; NoMemory;
// WrongState not created; BadArgument null result pointer; NoStorage a line could not be written
// out, after which that line's data is lost until Reset and the picture may be damaged.
#pragma once

#include "foundation/MemoryGauge.h"
#include "image/DrawingContext.h"
#include "image/LineTable.h"
#include "image/PixelRect.h"

/// The folders of a paging raster, for making a like one. Owned by the raster.
struct SwapDirs {
    const WCHAR* primary;
    const WCHAR* secondary;
};

class Raster : public LineTable
{
public:
    /// Null makes a private heap, so that destroying the raster gives everything back at a stroke.
    explicit Raster(Allocator* allocator = nullptr);
    ~Raster();

    /// Resets, then makes `height` blank lines. Folders end in a backslash; null means none; they
    /// are copied and must not be this raster's own. After a failure part way the asked height is
    /// reported and the raster must be reset or destroyed. Failed for a bad depth or a stride
    /// beyond 31 bits, with the raster empty; NoMemory; as InsertLines.
    [[nodiscard]] i32 Create(u32 width, u32 height, u32 depth, const WCHAR* primaryDir,
                             const WCHAR* secondaryDir);
    /// Releases everything but the object and deletes all line files.
    void Reset();
    /// Takes over the source's pixels, size, folders and palette line by line, so that the peak is
    /// one extra line. The source keeps one line; destroy or reset it next. BadArgument for null or
    /// the raster itself; a failure leaves both partly filled.
    [[nodiscard]] i32 TakeFrom(Raster* source);
    /// Inserts blank lines before `at`, which may equal the height. Where memory is short a line
    /// begins as an empty file; Failed without folders. The height grows first and is not taken
    /// back on failure.
    [[nodiscard]] i32 InsertLines(i32 at, u32* count);
    /// Deletes lines and their files. A run that reaches the last line is cut to
    /// height - count - at, which is never above 0: such a call removes nothing. Of several lines
    /// in memory each one frees the physical index of the first.
    [[nodiscard]] i32 RemoveLines(i32 at, u32* count);
    /// Exchanges two lines' records; no data moves, and locks and files go with them.
    [[nodiscard]] i32 SwapLines(i32 a, i32 b);
    /// Stops at the first exchange that gives less than Done and returns its result.
    i32 FlipVertical();
    /// Copies as many bytes as `target->size` says, at most the whole record. BadArgument for null.
    i32 GetInfo(RasterInfo* target);
    /// Pages in and pins consecutive lines and puts their addresses into `out`. Cut at the last
    /// line; `*count` tells how many were locked, also on a failure part way. Locks do not count:
    /// one release frees a line that was locked twice. NothingDone for a line whose data is lost;
    /// BadArgument for a null `out`.
    [[nodiscard]] i32 LockLines(i32 line, u8** out, u32* count);
    /// Unpins; when memory is short or `force` is set writes each line out. A release whose run
    /// reaches the last line is cut to height - line - count, so that releasing the last line alone
    /// does nothing. NothingDone when a line could not be written.
    i32 ReleaseLines(i32 line, u32 count, i32 force);
    /// LockLines of one line, and ReleaseLines of one without force, for loops over rows: those
    /// two, with a short way for a line that is in memory and stays there. `out` is not null.
    [[nodiscard]] i32 LockLine(i32 line, u8** out)
    {
        const u32 at = static_cast<u32>(line);
        if (line < 0 || at >= records || at >= info.height || swapped[at] ||
            lineRef[at] >= lineCount)
            return LockLines(line, out, nullptr);
        locked[at] = 1;
        *out = lines[lineRef[at]];
        return Done;
    }
    i32 ReleaseLine(i32 line)
    {
        // The last line is not let go of.
        const u64 at = static_cast<u32>(line);
        if (line < 0 || at >= records || at + 1 >= info.height ||
            MemoryGauge::HasRoomFor(info.stride) < 1)
            return ReleaseLines(line, 1, 0);
        locked[at] = 0;
        return Done;
    }
    /// Whether a line that is released stays in memory: memory is not short, or there is no folder.
    bool KeepsLines() const
    {
        return primaryDir == nullptr || MemoryGauge::HasRoomFor(info.stride) > 0;
    }
    /// The addresses of lines that are all in memory and would stay there when released, for loops
    /// over many short rows. They are not pinned. False, with `out` undefined, where one is not so.
    [[nodiscard]] bool GetKeptLines(i64 line, u32 count, u8** out) const;
    /// Leaves such lines as locking and releasing each would.
    void PassKeptLines(i64 line, u32 count);
    /// Unpins every line and pages nothing.
    i32 UnlockAll();
    /// The palette, always present. BadArgument for null.
    i32 GetPalette(ColorTable** out);
    /// The strings stay the raster's and live until its next Create, Reset or end.
    i32 GetSwapDirs(SwapDirs* out);
    /// Copies `height` * `stride` bytes in, line by line. NoMemory for null, WrongState when the
    /// first physical line is missing.
    [[nodiscard]] i32 LoadRaw(const void* block);

    // Compositing (pixel/PixelAccess.cpp, Fill.cpp, Frame.cpp, Invert.cpp, BlendMask.cpp,
    // CopyTo.cpp, CopyMasked.cpp, Composite.cpp). Rectangles are inclusive, ordered first and
    // clipped; a call that clips to nothing gives Done. A line that cannot be locked ends the work
    // with its status: the rows before it stay changed and the row of the other raster stays locked
    // until UnlockAll.
    //
    // In the formulas c is a byte of the colour (blue, green or red), a its alpha byte and w the
    // weight a + 1 of 256.

    /// Failed out of bounds or at a depth other than 24 and 32, NoMemory for null.
    [[nodiscard]] i32 GetPixel(i32 x, i32 y, u32* color);
    /// No blending; the alpha byte is stored at 32 bits and dropped at 24.
    [[nodiscard]] i32 SetPixel(i32 x, i32 y, u32 color);
    /// 24 bits: out = (w * c + (256 - w) * old) >> 8, plain stores at alpha 255, padding included.
    /// 32 bits: stores the bytes a, red, green, blue, the reverse of SetPixel's. Failed at other
    /// depths, as for the next four.
    i32 FillAll(u32 color);
    /// As FillAll inside a rectangle. A right or bottom edge of 0 counts as outside; so for the
    /// next four.
    i32 FillRect(u32 color, PixelRect rectangle);
    /// 24 bits: FillRect's formula along the outline, one pixel wide, without the sides that were
    /// clipped. A rectangle of one row or column is drawn twice. 32 bits: FillRect.
    i32 FrameRect(u32 color, PixelRect rectangle);
    /// 24 bits: 255 - byte. 32 bits: the same, but for byte 0 of each pixel, which stays.
    i32 InvertRect(PixelRect rectangle);
    /// InvertRect along the outline. 24 bits: sides that were clipped are left out, but for the
    /// bottom row, which is always drawn. 32 bits: top and bottom row always, the right column
    /// unless it was clipped, the left one never.
    i32 InvertFrame(PixelRect rectangle);
    /// Paints a colour through a mask of one byte a pixel, whose (maskX, maskY) lies on the
    /// rectangle's top left: with m the mask's byte and w = m * (a + 1),
    /// out = ((0x10000 - w) * old + w * c) >> 16; byte 3 of a 32-bit pixel stays. The rectangle
    /// comes back ordered and clipped to raster and mask; one outside the raster only ordered.
    /// BadArgument for a null rectangle or mask. At depths other than 24 and 32 nothing is painted:
    /// Done with an 8-bit mask, else Failed and the rectangle stays.
    i32 BlendMask(u32 color, PixelRect* rectangle, Raster* mask, i32 maskX, i32 maskY);
    /// BlendMask for callers that do not ask what was painted.
    i32 BlendMaskRect(u32 color, PixelRect rectangle, Raster* mask, i32 maskX, i32 maskY);
    /// Copies width x height pixels at (x, y) to (targetX, targetY) of `target`. Only SRCCOPY. A
    /// negative source position shifts the target and does not shorten the run. BadArgument for a
    /// null raster, as for the next two.
    i32 CopyTo(i32 x, i32 y, i32 width, i32 height, Raster* target, i32 targetX, i32 targetY,
               u32 operation);
    /// Copies through a mask: out = (old * (255 - m) + source * (m + 1)) >> 8. Both rasters 24 bits
    /// and the mask 8, else Failed; Failed also when the mask is smaller than what is copied.
    /// Negative positions as in CopyTo, without shifting the mask. Meant: a run that is cut at a
    /// raster's edge ends one pixel before it.
    i32 CopyMasked(i32 x, i32 y, i32 width, i32 height, Raster* target, i32 targetX, i32 targetY,
                   Raster* mask, i32 maskX, i32 maskY);
    /// Lays this raster (32 bits) over a target of 24 or 32 bits by its own alpha s, else Failed:
    /// out = ((s + 1) * source + (255 - s) * old) >> 8, byte 3 of the target stays. Clipped as
    /// CopyTo. Meant: onto 32 bits both rows are walked one pixel ahead.
    i32 CompositeTo(i32 x, i32 y, i32 width, i32 height, Raster* target, i32 targetX, i32 targetY);

    // Scaling and turning (pixel/Stretch.cpp, ScaleTo.cpp, Rotated.cpp).
    /// Nearest neighbour from one inclusive rectangle (doubles: left, top, right, bottom) of this
    /// raster to one of `target`, both 24 bits, else Failed. 16.16 fixed point, so both sides stay
    /// below 65,536. A line that cannot be locked ends the work and still gives Done.
    i32 StretchRect(Raster* target, f64 sourceLeft, f64 sourceTop, f64 sourceRight,
                    f64 sourceBottom, f64 targetLeft, f64 targetTop, f64 targetRight,
                    f64 targetBottom);
    /// The same mapping for the same two rectangles, written only inside the inclusive clip
    /// rectangle of the target, so that a part drawn by it lines up with the whole to the pixel.
    /// Rectangles of one size are mapped like any others. Results as StretchRect.
    i32 StretchRegion(Raster* target, f64 sourceLeft, f64 sourceTop, f64 sourceRight,
                      f64 sourceBottom, f64 targetLeft, f64 targetTop, f64 targetRight,
                      f64 targetBottom, f64 clipLeft, f64 clipTop, f64 clipRight, f64 clipBottom);
    /// Centres this raster in `target`, which is filled with `background` first. With `fit`, and
    /// where the source is the larger in either direction, the size is the largest of the source's
    /// aspect; it is never enlarged without `fit`. `box` 0 stretches, else averages (BoxScaleLine).
    /// Both 24 bits. BadArgument for a null target or this raster itself; Failed for a source that
    /// was not created; the first result below Done of a step. With `box` the lines locked here
    /// stay so until UnlockAll.
    i32 ScaleTo(Raster* target, u32 background, u32 fit, u32 box);
    /// Row `row` of this 24-bit raster averaged over areas to `width` x `height` pixels: 3 * width
    /// bytes to `out`. Weights are coverages in 1/1024 of an output pixel, sums in 32 bits.
    /// BadArgument for null or a row from `height` on, Failed at another depth, NoMemory; the
    /// status of the first line when none can be locked. Source lines stay locked.
    i32 BoxScaleLine(u8* out, u32 row, u32 height, u32 width);
    /// Angles 0 and 90: a quarter turn clockwise into a new 24-bit `target`; 180: half a turn;
    /// any other: Done, and nothing. Meant: 0 turns. BadArgument for null or this raster itself;
    /// the first result below Done of a step.
    i32 Rotated(Raster* target, i32 angle);

    // In place, and across (pixel/Mirror.cpp, Transpose.cpp).
    /// Exchanges the pixels of each row, 3 bytes each, from the first row down; where the line ends
    /// before a pixel does, its partner stays, too. Stops at a line that cannot be locked with its
    /// status; the rows before it stay changed. WrongState not created.
    i32 FlipHorizontal();
    /// Pixel (x, y), 3 bytes, becomes pixel (y, x) of `target`, which exists with this raster's
    /// height as its width and the reverse; what does not lie inside both lines is left out. Holds
    /// two lines at a time where a raster pages, else a block of them. A line that cannot be locked
    /// ends it with its status: the pixels before it, row by row, stay written, and the source's
    /// line stays locked where it was the target's that failed. Otherwise the last line of each is
    /// left locked. BadArgument for null or this raster itself, WrongState where one was not
    /// created.
    [[nodiscard]] i32 TransposeTo(Raster* target);

    // Text (pixel/Text.cpp, TextCells.cpp). On rasters of 24 bits; other depths are written as
    // such, inside the line.
    /// Draws `text` in black on white, eight times as large, and lays it over the inclusive
    /// rectangle by the share of black in each pixel: with n black of 64, a the colour's low byte
    /// and w = n * (a + 1), out = ((16384 - w) * old + w * c) >> 14. `size` is the font's height in
    /// pixels, `format` DrawTextW's. Meant: a rectangle that reaches below the raster draws
    /// nothing; one that reaches past its right edge draws what fits. Failed when the text could
    /// not be begun; Done, also when a line could not be locked. User-interface thread.
    i32 DrawTextSmooth(const WCHAR* text, u32 color, const WCHAR* fontName, i32 left, i32 top,
                       i32 right, i32 bottom, u32 size, u32 format);
    /// Letter by letter in cells of `cell` pixels, each drawn `scale` times as large (1 to 8, else
    /// Failed). With n black of scale * scale, v = n * a * 255 / (scale * scale) >> 8 and
    /// out = ((255 - v) * old + v * c) >> 8. No caller in the program.
    i32 DrawTextCells(const WCHAR* text, u32 color, const WCHAR* fontName, i32 left, i32 top,
                      i32 right, i32 bottom, u32 cell, u32 scale);

    // Undo (pixel/Snapshot.cpp).
    /// Makes `target` a 24-bit copy without folders, palette included, of as many bytes a line as
    /// both have. Every line of both rasters is locked afterwards until UnlockAll. BadArgument for
    /// null or this raster itself; Create's result when it is below Done; the status of a line that
    /// cannot be locked.
    i32 SnapshotTo(Raster* target);

private:
    [[nodiscard]] i32 BeginText(const WCHAR* fontName, u32 width, u32 height, u32 size);
    i32 RenderText(const WCHAR* text, u32 color, PixelRect rectangle, u32 format);
    i32 EndText();

    /// The three words of each logical line, as arrays.
    struct Records {
        u32* swapped;
        uintptr_t* lineRef;
        u32* locked;
    };

    [[nodiscard]] i32 CopyFolder(const WCHAR* folder, WCHAR** out);
    [[nodiscard]] i32 TakeRecords(u64 count, Records* out);
    void GiveRecords(Records* taken);
    void CopyRecords(const Records& target, u32 to, u32 from, u32 count) const;
    void InstallRecords(const Records& made, u32 count);
    void DropRecordsFrom(u32 line);

    [[nodiscard]] i32 TakeLine(Raster* source, u32 line);
    [[nodiscard]] i32 MoveFirstLine(u8* target);
    [[nodiscard]] i32 TakePortion(Raster* source, u32 count, u32* taken);
    [[nodiscard]] i32 OpenPortion(LineRun* run, u32 count);
    void ClosePortion(LineRun* run, u32 room);
    [[nodiscard]] i32 MakePinnedLine(LineRun* run, u32 line);
    [[nodiscard]] i32 HandOutLine(u32 line, u8* target, u32* victims);
    bool HasVictimBehind(u32 line, u32* end) const;
    bool IsConsistent();
    void DropHandedOut(u32 count);
    void CloseGaps(u32 first);

    [[nodiscard]] i32 FillNewLines(u32 first, u32 count);
    bool IsPinned(uintptr_t physical, u32 from, u32 to) const;
    void DropPhysicalLine(uintptr_t physical, u32 removedFrom, u32 removedCount);

    [[nodiscard]] i32 NameFile(u32 line, const WCHAR* folder, HANDLE* file);
    [[nodiscard]] i32 MakeLineFile(u32 line, HANDLE* file);
    [[nodiscard]] i32 MakeBlankFile(u32 line);
    [[nodiscard]] bool WriteLineFile(HANDLE file, uintptr_t physical);
    void DropName(u32 line);
    void DeleteLineFile(u32 line);
    void ReadLineFile(u32 line, u8* bytes);
    i32 SwapOutLine(u32 line);
    i32 SwapInLine(u32 line);
    i64 PickVictim(u32 line) const;

    i32 created;
    WCHAR* primaryDir;
    WCHAR* secondaryDir;
    u32* swapped;       // nonzero: the line lives in a file
    uintptr_t* lineRef; // the physical index, or while swapped the owned name of the line's file
    u32* locked;        // nonzero: pinned by LockLines
    DrawingContext textContext;
    HFONT textFont;
    HBITMAP textBitmap;
    HBRUSH textBrush;
    u8* textBits;
    RasterInfo info;
    u32 records; // entries in the three arrays; `info.height` unless a change of height failed
};
