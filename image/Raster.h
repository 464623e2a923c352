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

#include "image/DrawingContext.h"
#include "image/LineTable.h"

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
    /// Unpins every line and pages nothing.
    i32 UnlockAll();
    /// The palette, always present. BadArgument for null.
    i32 GetPalette(ColorTable** out);
    /// The strings stay the raster's and live until its next Create, Reset or end.
    i32 GetSwapDirs(SwapDirs* out);
    /// Copies `height` * `stride` bytes in, line by line. NoMemory for null, WrongState when the
    /// first physical line is missing.
    [[nodiscard]] i32 LoadRaw(const void* block);

    // Compositing (pixel/Compositing*.cpp, pixel/Fill.cpp, ...).
    /// Failed out of bounds or at a depth other than 24 and 32, NoMemory for null.
    [[nodiscard]] i32 GetPixel(i32 x, i32 y, u32* color);
    /// No blending; the alpha byte is stored at 32 bits and dropped at 24.
    [[nodiscard]] i32 SetPixel(i32 x, i32 y, u32 color);
    /// 24 bits: out = ((a + 1) * c + (255 - a) * old) >> 8, plain stores at alpha 255.
    /// 32 bits: stores the word a, red, green, blue in byte order, the reverse of SetPixel's.
    i32 FillAll(u32 color);
    /// Copies width x height pixels at (x, y) to (targetX, targetY) of `target`. Only SRCCOPY. A
    /// negative source position shifts the target and does not shorten the run.
    i32 CopyTo(i32 x, i32 y, i32 width, i32 height, Raster* target, i32 targetX, i32 targetY,
               u32 operation);

    // Scaling (pixel/Stretch.cpp).
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

private:
    /// The three words of each logical line, as arrays.
    struct Records {
        u32* swapped;
        uintptr_t* lineRef;
        u32* locked;
    };

    [[nodiscard]] i32 CopyFolder(const WCHAR* folder, WCHAR** out);
    [[nodiscard]] i32 TakeRecords(u64 count, Records* out);
    void CopyRecords(const Records& target, u32 to, u32 from, u32 count) const;
    void InstallRecords(const Records& made, u32 count);
    void DropRecordsFrom(u32 line);

    [[nodiscard]] i32 FillNewLines(u32 first, u32 count);
    void DropPhysicalLine(uintptr_t physical, u32 removedFrom, u32 removedCount);

    [[nodiscard]] i32 NameFile(u32 line, const WCHAR* folder, HANDLE* file);
    [[nodiscard]] i32 MakeLineFile(u32 line, HANDLE* file);
    [[nodiscard]] bool WriteLineFile(HANDLE file, uintptr_t physical);
    void DropName(u32 line);
    void DeleteLineFile(u32 line);
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
    RasterInfo info;
    u32 records; // entries in the three arrays; `info.height` unless a change of height failed
};
