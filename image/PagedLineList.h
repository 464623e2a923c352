// A picture as a list of lines, each a page of a SwapStore: a second way of holding one, beside
// Raster, with no caller in the program. Beside the lines it carries a plain list of 32-bit values.
//
// A line has (width * depth + 7) >> 3 bytes, without alignment. Index arguments may be negative,
// counted from the end; below the first or beyond the count is BadArgument, and the count itself is
// a place to insert at and no line (Failed). Operations give WrongState on a list that was not
// created and NoMemory without a store. One thread at a time.
#pragma once

#include "image/SwapStore.h"

/// What a list reports.
struct PagedLineInfo {
    u32 width; // pixels
    u32 lineCount;
    u32 depth; // bits a pixel
    u32 valueCount;
    u32 stride; // bytes a line
};

class PagedLineList
{
public:
    /// Null makes and owns a store without a folder and with a reserve of 1 MiB, which refuses
    /// pages where memory is short.
    explicit PagedLineList(SwapStore* store = nullptr);
    /// Destroys, then drops an owned store.
    ~PagedLineList();
    PagedLineList(const PagedLineList&) = delete;
    PagedLineList& operator=(const PagedLineList&) = delete;

    /// Destroys what was there and makes blank lines. BadArgument for a width of 0, and nothing is
    /// touched; Failed, and nothing is left, when not all lines can be had or a line has more than
    /// 31 bits of bytes.
    [[nodiscard]] i32 Create(u32 width, u32 lines, u32 depth);
    /// Frees all lines and values. NothingDone when not created.
    i32 Destroy();
    /// Inserts `*count` (null: one) blank lines before `index` and puts there how many it made;
    /// stops at the first failure and returns its result.
    [[nodiscard]] i32 InsertBlank(i32 index, u32* count);
    /// Inserts a line before `index`, filled from `source` unless that is null. Failed when there
    /// is no memory or room for it, which changes nothing.
    [[nodiscard]] i32 InsertLine(i32 index, const void* source);
    i32 RemoveLine(i32 index);
    /// Meant: removes all lines from `index` to the end, whatever `*count` (null: one) asks, and
    /// puts there how many these were. Failed unless that is what was asked.
    i32 RemoveFrom(i32 index, u32* count);
    /// SwapStore::Lock on the line's page. BadArgument for a null `out`.
    [[nodiscard]] i32 LockLine(i32 index, u8** out);
    /// SwapStore::Unlock on the line's page.
    i32 UnlockLine(i32 index);
    /// One Unlock for each line.
    i32 UnlockAll();
    /// WrongState unless created, BadArgument for null.
    i32 GetInfo(PagedLineInfo* info) const;
    /// Replaces the values. BadArgument for null unless there are none; NoMemory leaves the old
    /// ones.
    [[nodiscard]] i32 SetValues(const u32* values, u32 count);
    /// Appends a value. NoMemory.
    [[nodiscard]] i32 AddValue(u32 value);
    /// Removes the first entry of that value. NothingDone when there is none.
    i32 RemoveValue(u32 value);

private:
    struct Line {
        Line* previous;
        PageHandle page;
        Line* next;
    };
    struct Value {
        Value* next;
        u32 value;
    };

    /// State and index checked in that order: Done and `*position`, from 0 to the count, or why
    /// not.
    [[nodiscard]] i32 Locate(i32 index, u32* position) const;
    /// As Locate for what needs a line: Failed at the count.
    [[nodiscard]] i32 FindLine(i32 index, Line** line) const;
    Line* LineAt(u32 position) const;
    Line* LineBefore(u32 position) const;
    [[nodiscard]] i32 CheckState() const;
    [[nodiscard]] i32 Enter(Line* previous, Line* next, const void* source, Line** entered);
    [[nodiscard]] i32 MakePage(const void* source, PageHandle* page);
    void Drop(Line* line);
    [[nodiscard]] Value* MakeValue(u32 value);
    void DropCache();
    void DropValues(Value* first);

    i32 created;
    u32 width;
    u32 lineCount;
    u32 depth;
    u32 valueCount;
    u32 stride;
    Line* firstLine;
    Value* firstValue;
    u32* valueCache; // made by no operation; freed on every change of the values
    SwapStore* store;
    i32 ownsStore;
    MallocAllocator allocator;
};
