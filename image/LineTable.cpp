#include "image/LineTable.h"

#include <algorithm>
#include <new>
#include <string.h>

namespace
{

constexpr u32 FirstPlaces = 16;

// No table stands behind no entries.
void CopyEntries(u8** to, u8* const* from, u32 count)
{
    if (count > 0)
        memcpy(to, from, size_t{count} * sizeof(u8*));
}

} // namespace

LineTable::LineTable(Allocator* given)
    : tableCreated(0), tableWidth(0), lineCount(0), depth(0), stride(0), colorCount(0),
      allocator(given), ownedAllocator(nullptr), lines(nullptr), palette(nullptr)
{
    if (allocator == nullptr) {
        ownedAllocator = new (std::nothrow) HeapAllocator();
        allocator = ownedAllocator;
    }
    palette = new (std::nothrow) ColorTable(allocator);
}

LineTable::~LineTable()
{
    Clear();
    delete palette;
    delete ownedAllocator;
}

i32 LineTable::StrideOf(u32 width, u32 depth, u32* stride)
{
    if (stride == nullptr)
        return BadArgument;
    const u64 pixels = width;
    u64 bytes = 0;
    switch (depth) {
    case 8:
        bytes = (pixels + 3) & ~u64{3};
        break;
    case 16:
        bytes = (pixels * 2 + 3) & ~u64{3};
        break;
    case 24:
        bytes = (3 * (pixels + 1)) & ~u64{3};
        break;
    case 32:
        bytes = pixels * 4;
        break;
    default:
        return Failed;
    }
    if (bytes > 0x7FFFFFFF)
        return Failed;
    *stride = static_cast<u32>(bytes);
    return Done;
}

i32 LineTable::Create(u32 width, u32 newLines, u32 newDepth)
{
    Clear();
    if (allocator == nullptr || palette == nullptr)
        return NoMemory;
    const i32 status = StrideOf(width, newDepth, &stride);
    if (status < 0)
        return status;
    depth = newDepth;
    tableWidth = width;
    tableCreated = 1;
    return InsertLines(0, newLines);
}

void LineTable::Clear()
{
    if (palette != nullptr)
        (void)palette->Destroy();
    for (u32 i = 0; i < lineCount; ++i)
        GiveBlock(lines[i]);
    GiveBlock(lines);
    lines = nullptr;
    tableCreated = 0;
    tableWidth = 0;
    lineCount = 0;
    depth = 0;
    stride = 0;
    colorCount = 0;
}

i32 LineTable::InsertLines(i32 at, u32 count)
{
    if (!tableCreated)
        return WrongState;
    const u32 first = IndexOf(at, lineCount);
    if (first > lineCount)
        return Failed;
    const u64 newCount = u64{lineCount} + count;
    u8** const table = static_cast<u8**>(TakeBlock(newCount * sizeof(u8*)));
    if (table == nullptr)
        return NoMemory;
    for (u32 made = 0; made < count; ++made) {
        table[first + made] = static_cast<u8*>(TakeBlock(stride));
        if (table[first + made] != nullptr)
            continue;
        while (made > 0)
            GiveBlock(table[first + --made]);
        GiveBlock(table);
        return NoMemory;
    }
    CopyEntries(table, lines, first);
    CopyEntries(table + first + count, lines + first, lineCount - first);
    GiveBlock(lines);
    lines = table;
    lineCount = static_cast<u32>(newCount);
    return Done;
}

i32 LineTable::DeleteLines(i32 at, u32 count)
{
    if (!tableCreated)
        return WrongState;
    const u32 first = IndexOf(at, lineCount);
    if (first >= lineCount)
        return Failed;
    const u32 oldCount = lineCount;
    if (count > oldCount)
        count = oldCount;
    // The count drops before the smaller table is asked for and stays lowered when there is none:
    // the last lines then belong to nobody until their allocator goes.
    lineCount -= count;
    u8** const table = static_cast<u8**>(TakeBlock(u64{lineCount} * sizeof(u8*)));
    if (table == nullptr)
        return NoMemory;
    const u32 before = first < lineCount ? first : lineCount;
    const u32 behind = oldCount - first < count ? oldCount : first + count;
    CopyEntries(table, lines, before);
    for (u32 i = before; i < behind; ++i)
        GiveBlock(lines[i]);
    CopyEntries(table + before, lines + behind, oldCount - behind);
    GiveBlock(lines);
    lines = table;
    return Done;
}

i32 LineTable::SwapLines(i32 a, i32 b)
{
    if (!tableCreated)
        return WrongState;
    const u32 first = IndexOf(a, lineCount);
    const u32 second = IndexOf(b, lineCount);
    if (first >= lineCount || second >= lineCount)
        return Failed;
    u8* const line = lines[first];
    lines[first] = lines[second];
    lines[second] = line;
    return Done;
}

i32 LineTable::GetInfo(LineTableInfo* info)
{
    if (info == nullptr)
        return BadArgument;
    colorCount = palette != nullptr ? palette->Count() : 0;
    *info = {tableWidth, lineCount, depth, stride, colorCount};
    return Done;
}

i32 LineTable::GetLineSlot(u32 index, u8*** slot) const
{
    if (slot == nullptr || lines == nullptr || index >= lineCount)
        return Failed;
    *slot = &lines[index];
    return Done;
}

// Line by line, each move would rebuild both tables. Here that is done once for a portion of lines,
// and what comes of it is the same: lines enter and leave in the same order, each block is given
// back before the next one is taken, and a line that finds no memory ends the work with the same
// lines on either side. Nor does it run short earlier: a portion's spare places are a fraction of
// the second table that each rebuilding of the larger side holds for a moment. Without memory for
// a portion its first line goes by itself.
i32 LineTable::TakeFrom(LineTable* source)
{
    if (source == nullptr || source == this)
        return BadArgument;
    i32 status = Create(source->tableWidth, 0, source->depth);
    if (status < 0)
        return status;
    const u32 portion = source->lineCount / TakenInPortions;
    while (source->lineCount > 0) {
        const u32 count = portion < source->lineCount ? portion : source->lineCount;
        LineRun run;
        if (portion > 1 && OpenPlaces(&run, count) > 0)
            status = TakePortion(source, &run);
        else
            status = TakeLastLine(source);
        if (status < 0)
            return status;
    }
    return Done;
}

i32 LineTable::TakeLastLine(LineTable* source)
{
    const i32 status = InsertLines(0, 1);
    if (status < 0)
        return status;
    memcpy(lines[0], source->lines[source->lineCount - 1], stride);
    return source->DeleteLines(-1, 1);
}

i32 LineTable::TakePortion(LineTable* source, LineRun* run)
{
    i32 status = Done;
    while (run->free > 0) {
        status = EnterLine(run);
        if (status < 0)
            break;
        u8* const line = source->lines[--source->lineCount];
        memcpy(lines[0], line, stride);
        source->GiveBlock(line);
    }
    ClosePlaces(run);
    source->TrimTable();
    return status;
}

i32 LineTable::OpenPlaces(LineRun* run, u32 places)
{
    u8** const table = static_cast<u8**>(TakeBlock((u64{lineCount} + places) * sizeof(u8*)));
    if (table == nullptr)
        return NoMemory;
    for (u32 i = 0; i < lineCount; ++i)
        table[places + i] = lines[i];
    GiveBlock(lines);
    lines = table + places;
    run->free = places;
    return Done;
}

i32 LineTable::EnterLine(LineRun* run)
{
    u8* const line = static_cast<u8*>(TakeBlock(stride));
    if (line == nullptr)
        return NoMemory;
    *--lines = line;
    --run->free;
    ++lineCount;
    return Done;
}

// The table doubles at most, but for the first few places: then it takes no more than the two
// tables that a rebuilding for this line alone would hold while it takes the line's block, and a
// block is refused only where it would be refused there. Without memory for the places this line's
// rebuilding is done after all.
i32 LineTable::EnterOneOf(LineRun* run, u32 left)
{
    if (run->free == 0) {
        const u32 places = std::min(left, std::max(lineCount + 1, FirstPlaces));
        if (places < 2 || OpenPlaces(run, places) < 0)
            return InsertLines(0, 1);
    }
    return EnterLine(run);
}

void LineTable::ClosePlaces(LineRun* run)
{
    if (run->free == 0)
        return;
    u8** const block = lines - run->free;
    memmove(block, lines, size_t{lineCount} * sizeof(u8*));
    lines = block;
    run->free = 0;
    TrimTable();
}

void LineTable::TrimTable()
{
    u8** const exact = static_cast<u8**>(TakeBlock(u64{lineCount} * sizeof(u8*)));
    if (exact == nullptr)
        return;
    memcpy(exact, lines, size_t{lineCount} * sizeof(u8*));
    GiveBlock(lines);
    lines = exact;
}

void* LineTable::TakeBlock(u64 bytes)
{
    if (allocator == nullptr || bytes > 0xFFFFFFFF)
        return nullptr;
    // Null means failure to every caller, and a block of no bytes may come as null.
    const u32 size = bytes == 0 ? 1 : static_cast<u32>(bytes);
    void* block = nullptr;
    return allocator->Alloc(&block, size) < 1 ? nullptr : block;
}

void LineTable::GiveBlock(void* block)
{
    if (block != nullptr)
        (void)allocator->Free(block);
}

u32 LineTable::IndexOf(i32 line, u32 count)
{
    const i64 index = line < 0 ? i64{line} + count : i64{line};
    return index < 0 ? 0xFFFFFFFF : static_cast<u32>(index);
}
