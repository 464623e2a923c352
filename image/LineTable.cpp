#include "image/LineTable.h"

#include <new>
#include <string.h>

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
    for (u32 i = 0; i < first; ++i)
        table[i] = lines[i];
    for (u32 i = first; i < lineCount; ++i)
        table[i + count] = lines[i];
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
    u32 kept = 0;
    for (u32 i = 0; i < oldCount; ++i) {
        const bool asked = i >= first && i - first < count;
        if (!asked && kept < lineCount)
            table[kept++] = lines[i];
        else
            GiveBlock(lines[i]);
    }
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

i32 LineTable::TakeFrom(LineTable* source)
{
    if (source == nullptr || source == this)
        return BadArgument;
    i32 status = Create(source->tableWidth, 0, source->depth);
    if (status < 0)
        return status;
    while (source->lineCount > 0) {
        status = InsertLines(0, 1);
        if (status < 0)
            return status;
        memcpy(lines[0], source->lines[source->lineCount - 1], stride);
        status = source->DeleteLines(-1, 1);
        if (status < 0)
            return status;
    }
    return Done;
}

i32 LineTable::BeginRun(LineRun* run, u32 places)
{
    *run = {};
    const u64 newCount = u64{lineCount} + places;
    run->table = static_cast<u8**>(TakeBlock(newCount * sizeof(u8*)));
    if (run->table == nullptr)
        return NoMemory;
    run->places = places;
    run->free = places;
    for (u32 i = 0; i < lineCount; ++i)
        run->table[places + i] = lines[i];
    return Done;
}

i32 LineTable::EnterLine(LineRun* run)
{
    u8* const line = static_cast<u8*>(TakeBlock(stride));
    if (line == nullptr)
        return NoMemory;
    run->table[--run->free] = line;
    return Done;
}

void LineTable::EndRun(LineRun* run)
{
    const u32 entered = run->places - run->free;
    u8** table = run->table;
    run->table = nullptr;
    if (entered == 0) {
        GiveBlock(table);
        return;
    }
    const u32 newCount = lineCount + entered;
    if (run->free > 0) {
        u8** const exact = static_cast<u8**>(TakeBlock(u64{newCount} * sizeof(u8*)));
        // Without memory for the exact table the run's own serves, with its entries moved down.
        u8** const target = exact != nullptr ? exact : table;
        memmove(target, table + run->free, size_t{newCount} * sizeof(u8*));
        if (exact != nullptr)
            GiveBlock(table);
        table = target;
    }
    GiveBlock(lines);
    lines = table;
    lineCount = newCount;
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
