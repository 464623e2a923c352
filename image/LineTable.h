// A growable table of in-memory lines, each a block of its own: the physical layer below Raster.
// The table is rebuilt at exactly the size in use on every change; no spare capacity is kept.
// One thread at a time. Lines come zero-filled.
#pragma once

#include "foundation/Allocator.h"
#include "foundation/ColorTable.h"

/// What a LineTable reports.
struct LineTableInfo {
    u32 width;      // pixels
    u32 lineCount;  // physical lines in memory
    u32 depth;      // bits a pixel
    u32 stride;     // bytes a line
    u32 colorCount; // palette entries in use
};

class LineTable
{
public:
    /// Null makes a private heap allocator that the table owns.
    explicit LineTable(Allocator* allocator = nullptr);
    ~LineTable();
    LineTable(const LineTable&) = delete;
    LineTable& operator=(const LineTable&) = delete;

    /// Bytes a line of `width` pixels at `depth` bits takes: (width+3)&~3 at 8, (2*width+3)&~3 at
    /// 16, (3*(width+1))&~3 at 24, 4*width at 32. Failed for another depth or a stride beyond 31
    /// bits; BadArgument for null.
    [[nodiscard]] static i32 StrideOf(u32 width, u32 depth, u32* stride);

    /// Clears, then makes `lines` blank lines. Failed for a depth or width that StrideOf refuses,
    /// which leaves the table empty; NoMemory.
    [[nodiscard]] i32 Create(u32 width, u32 lines, u32 depth);
    /// Frees every line, the table and the palette's entries.
    void Clear();
    /// Inserts blank lines before `at`, which may equal the count; negative counts from the end.
    /// WrongState, Failed, NoMemory (then nothing has changed).
    [[nodiscard]] i32 InsertLines(i32 at, u32 count);
    /// Frees `count` lines from `at`. WrongState; Failed for a bad index; NoMemory when the smaller
    /// table cannot be had, after which the count is lowered and no line has been freed. `count` is
    /// limited to the lines there are, not to those behind `at`: what the lowered count has no
    /// place for goes too.
    [[nodiscard]] i32 DeleteLines(i32 at, u32 count);
    /// Exchanges the addresses of two lines; negative counts from the end. WrongState, Failed.
    [[nodiscard]] i32 SwapLines(i32 a, i32 b);
    /// BadArgument for null.
    i32 GetInfo(LineTableInfo* info);
    /// The address of a line's table entry. Failed for null, an empty table or a bad index.
    [[nodiscard]] i32 GetLineSlot(u32 index, u8*** slot) const;
    /// Moves the source's lines into this table one by one from its last line upward, which keeps
    /// their order and the peak at one extra line. BadArgument for null or the table itself; the
    /// first negative result of a step.
    [[nodiscard]] i32 TakeFrom(LineTable* source);

protected:
    /// Places before the table's first entry, for lines that enter at physical index 0 one after
    /// the other without a rebuilding for each. While places are free, only EnterLine and
    /// ClosePlaces may change the table.
    struct LineRun {
        u32 free = 0;
    };
    /// Rebuilds the table with `places` free ones; none may be free before. NoMemory, with nothing
    /// changed.
    [[nodiscard]] i32 OpenPlaces(LineRun* run, u32 places);
    /// Makes one more line, zero-filled, in a free place. NoMemory.
    [[nodiscard]] i32 EnterLine(LineRun* run);
    /// As EnterLine for the first of `left` lines that are to come; opens places where none is
    /// free.
    [[nodiscard]] i32 EnterOneOf(LineRun* run, u32 left);
    /// Gives back the places that are still free.
    void ClosePlaces(LineRun* run);
    /// Rebuilds a table whose block is larger than its entries at their number. Without memory for
    /// that the block stays.
    void TrimTable();

    /// TakeFrom, here and in Raster, rebuilds tables that many times in place of once a line: each
    /// time by this part of all lines.
    enum : u32 { TakenInPortions = 16 };

    /// A zero-filled block, or null: no memory, no allocator, or more than 32 bits of bytes.
    [[nodiscard]] void* TakeBlock(u64 bytes);
    /// Null is let pass.
    void GiveBlock(void* block);
    /// A line number that may count from the end, as an index. The count is added once; a number
    /// that is still below zero comes out beyond every count.
    [[nodiscard]] static u32 IndexOf(i32 line, u32 count);

private:
    [[nodiscard]] i32 TakeLastLine(LineTable* source);
    [[nodiscard]] i32 TakePortion(LineTable* source, LineRun* run);

protected:
    i32 tableCreated;
    u32 tableWidth;
    u32 lineCount;
    u32 depth;
    u32 stride;
    u32 colorCount; // the palette's count as the last GetInfo saw it
    Allocator* allocator;
    Allocator* ownedAllocator;
    u8** lines;
    ColorTable* palette;
};
