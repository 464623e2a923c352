// The lines of the list, each a page of the store. The values stand in PagedLineValues.cpp.

#include "image/PagedLineList.h"

#include <new>
#include <string.h>

namespace
{

constexpr u32 ReserveOfOwnStore = 0x100000; // bytes

} // namespace

PagedLineList::PagedLineList(SwapStore* given)
    : created(0), width(0), lineCount(0), depth(0), valueCount(0), stride(0), firstLine(nullptr),
      firstValue(nullptr), valueCache(nullptr), store(given), ownsStore(0)
{
    if (store == nullptr) {
        store = new (std::nothrow) SwapStore(nullptr, ReserveOfOwnStore);
        ownsStore = 1;
    }
}

PagedLineList::~PagedLineList()
{
    (void)Destroy();
    if (ownsStore)
        delete store;
}

i32 PagedLineList::Create(u32 newWidth, u32 lines, u32 newDepth)
{
    if (newWidth == 0)
        return BadArgument;
    (void)Destroy();
    if (store == nullptr)
        return NoMemory;
    const u64 bytes = (u64{newWidth} * newDepth + 7) >> 3;
    if (bytes > 0x7FFFFFFF)
        return Failed;
    created = 1;
    width = newWidth;
    depth = newDepth;
    stride = static_cast<u32>(bytes);
    u32 made = lines;
    if (InsertBlank(0, &made) > 0)
        return Done;
    (void)Destroy();
    return Failed;
}

i32 PagedLineList::Destroy()
{
    if (!created)
        return NothingDone;
    while (firstLine != nullptr)
        Drop(firstLine);
    DropCache();
    DropValues(firstValue);
    firstValue = nullptr;
    valueCount = 0;
    created = 0;
    width = 0;
    depth = 0;
    stride = 0;
    return Done;
}

i32 PagedLineList::InsertBlank(i32 index, u32* count)
{
    const u32 wanted = count != nullptr ? *count : 1;
    if (count != nullptr)
        *count = 0;
    u32 position = 0;
    i32 status = Locate(index, &position);
    if (status < 0)
        return status;
    Line* previous = LineBefore(position);
    Line* const next = previous != nullptr ? previous->next : firstLine;
    for (u32 made = 0; made < wanted; ++made) {
        status = Enter(previous, next, nullptr, &previous);
        if (status < 0)
            return status;
        if (count != nullptr)
            ++*count;
    }
    return Done;
}

i32 PagedLineList::InsertLine(i32 index, const void* source)
{
    u32 position = 0;
    const i32 status = Locate(index, &position);
    if (status < 0)
        return status;
    Line* const previous = LineBefore(position);
    Line* entered = nullptr;
    return Enter(previous, previous != nullptr ? previous->next : firstLine, source, &entered);
}

i32 PagedLineList::RemoveLine(i32 index)
{
    Line* line = nullptr;
    const i32 status = FindLine(index, &line);
    if (status < 0)
        return status;
    Drop(line);
    return Done;
}

i32 PagedLineList::RemoveFrom(i32 index, u32* count)
{
    const u32 asked = count != nullptr ? *count : 1;
    if (count != nullptr)
        *count = 0;
    u32 position = 0;
    const i32 status = Locate(index, &position);
    if (status < 0)
        return status;
    u32 removed = 0;
    // Meant: to the end, whatever was asked.
    for (Line* line = LineAt(position); line != nullptr; ++removed) {
        Line* const next = line->next;
        Drop(line);
        line = next;
    }
    if (count != nullptr)
        *count = removed;
    return removed == asked ? Done : Failed;
}

i32 PagedLineList::LockLine(i32 index, u8** out)
{
    if (out == nullptr)
        return BadArgument;
    Line* line = nullptr;
    i32 status = FindLine(index, &line);
    if (status < 0)
        return status;
    void* address = nullptr;
    status = store->Lock(line->page, &address);
    if (status > 0)
        *out = static_cast<u8*>(address);
    return status;
}

i32 PagedLineList::UnlockLine(i32 index)
{
    Line* line = nullptr;
    const i32 status = FindLine(index, &line);
    return status < 0 ? status : store->Unlock(line->page);
}

i32 PagedLineList::UnlockAll()
{
    const i32 status = CheckState();
    if (status < 0)
        return status;
    for (Line* line = firstLine; line != nullptr; line = line->next)
        (void)store->Unlock(line->page);
    return Done;
}

i32 PagedLineList::GetInfo(PagedLineInfo* info) const
{
    if (info == nullptr)
        return BadArgument;
    if (!created)
        return WrongState;
    *info = {width, lineCount, depth, valueCount, stride};
    return Done;
}

i32 PagedLineList::CheckState() const
{
    if (!created)
        return WrongState;
    return store != nullptr ? Done : NoMemory;
}

i32 PagedLineList::Locate(i32 index, u32* position) const
{
    const i32 state = CheckState();
    if (state < 0)
        return state;
    const i64 found = index < 0 ? i64{index} + lineCount : i64{index};
    if (found < 0 || found > lineCount)
        return BadArgument;
    *position = static_cast<u32>(found);
    return Done;
}

i32 PagedLineList::FindLine(i32 index, Line** line) const
{
    u32 position = 0;
    const i32 status = Locate(index, &position);
    if (status < 0)
        return status;
    *line = LineAt(position);
    return *line != nullptr ? Done : Failed;
}

PagedLineList::Line* PagedLineList::LineAt(u32 position) const
{
    Line* line = firstLine;
    for (; line != nullptr && position > 0; --position)
        line = line->next;
    return line;
}

PagedLineList::Line* PagedLineList::LineBefore(u32 position) const
{
    return position > 0 ? LineAt(position - 1) : nullptr;
}

// A page of one line, blank or with the source's bytes.
i32 PagedLineList::MakePage(const void* source, PageHandle* page)
{
    if (store->Allocate(page, stride) < 0)
        return Failed;
    if (source == nullptr)
        return Done;
    void* bytes = nullptr;
    if (store->Lock(*page, &bytes) < 0) {
        (void)store->Free(*page);
        return Failed;
    }
    memcpy(bytes, source, stride);
    (void)store->Unlock(*page);
    return Done;
}

// Failed, with nothing changed, for want of memory or room, and for a line without neighbours that
// is not the first.
i32 PagedLineList::Enter(Line* previous, Line* next, const void* source, Line** entered)
{
    void* block = nullptr;
    if (allocator.Alloc(&block, sizeof(Line)) < 0)
        return Failed;
    Line* const line = new (block) Line();
    if (MakePage(source, &line->page) < 0) {
        (void)allocator.Free(line);
        return Failed;
    }
    if (previous == nullptr && next == nullptr && firstLine != nullptr) {
        (void)store->Free(line->page);
        (void)allocator.Free(line);
        return Failed;
    }
    line->previous = previous;
    line->next = next;
    (previous != nullptr ? previous->next : firstLine) = line;
    if (next != nullptr)
        next->previous = line;
    ++lineCount;
    *entered = line;
    return Done;
}

void PagedLineList::Drop(Line* line)
{
    (line->previous != nullptr ? line->previous->next : firstLine) = line->next;
    if (line->next != nullptr)
        line->next->previous = line->previous;
    (void)store->Free(line->page);
    (void)allocator.Free(line);
    --lineCount;
}
